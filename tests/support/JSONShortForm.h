#pragma once

#include <string>
#include <type_traits>

#include "tests/support/EventRecorder.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONReader.h"

/// The events of a text in short: {} [] for objects and arrays, a name and ":" for a member, ";" at its end, values
/// with a letter for their kind (S, N, B, Z for null), D for the bounds of the document, and at the end the message
/// that was raised, without its first line, behind the place that FatalError was told at.
struct TShortForm : zm::TZmJSONDefaultHandler {
  std::string Text;

  void StartDocument() override { Text += "D "; }
  void StartObject() override { Text += "{ "; }
  void StartMember(zm::StringView Name) override { Text += zm::ToUTF8(Name) + ": "; }
  void StartArray() override { Text += "[ "; }
  void Value(zm::TZmJSONDataType DataType, zm::StringView Raw) override {
    Text += std::string(1, "ZSNB"[DataType]) + '(' + zm::ToUTF8(Raw) + ") ";
  }
  void EndArray() override { Text += "] "; }
  void EndMember() override { Text += "; "; }
  void EndObject() override { Text += "} "; }
  void EndDocument() override { Text += "D"; }
  void FatalError(zm::IZmJSONLocator* Where, zm::StringView) override {
    Text += PlaceText(Where->GetLineNr(), Where->GetColNr());
  }

  /// Reads a text, bytes in a page or a stream in a page.
  template <class TSource, class... TPage>
  std::string Read(zm::TZmJSONReader& Reader, const TSource& Source, TPage... Page) {
    Text.clear();
    Reader.SetHandler(this);
    try {
      if constexpr (std::is_convertible_v<TSource, zm::TStream*>)
        Reader.ParseStream(Source, Page...);
      else
        Reader.Parse(Source, Page...);
    } catch (const zm::EZmJSONParseError& e) {
      const std::string what = e.what();
      Text += what.substr(what.find('\n') + 1);
    } catch (const zm::Exception& e) {
      Text += e.what();
    }
    Reader.SetHandler(nullptr);
    return Text;
  }
};
