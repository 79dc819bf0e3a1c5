#pragma once

#include <string>
#include <type_traits>

#include "tests/support/EventRecorder.h"
#include "zamrit/xml/json/JSONErrors.h"
#include "zamrit/xml/json/JSONReader.h"

/// The class, message and code of what a JSON parse raised.
inline std::string JSONFailureText(const zm::EZmException& E) {
  const char* const name = dynamic_cast<const zm::EZmJSONParseError*>(&E)  ? "EZmJSONParseError"
                           : dynamic_cast<const zm::EZmJSONException*>(&E) ? "EZmJSONException"
                                                                           : "EZmException";
  return EventText(name, {E.GetMessage()}) + ' ' + std::to_string(E.GetCode()) + '\n';
}

/// Writes every JSON event as a line into Text, with the place that Locator tells at that moment in front, if there is
/// one. Must outlive the reader that it is set in, or be taken out of it.
struct TJSONRecorder : zm::TZmJSONDefaultHandler {
  explicit TJSONRecorder(zm::IZmJSONLocator* ALocator = nullptr) : Locator(ALocator) {}

  zm::IZmJSONLocator* Locator;
  std::string Text;

  /// Reads a text, bytes in a page or a stream in a page. What that raises is the last line.
  template <class TSource, class... TPage>
  void Read(zm::TZmJSONReader& Reader, const TSource& Source, TPage... Page) {
    try {
      if constexpr (std::is_convertible_v<TSource, zm::TStream*>)
        Reader.ParseStream(Source, Page...);
      else
        Reader.Parse(Source, Page...);
    } catch (const zm::EZmException& e) {
      Text += JSONFailureText(e);
    } catch (const zm::Exception& e) {
      Text += EventText("Exception", {e.GetMessage()}) + '\n';
    }
  }

  void StartDocument() override { Add("StartDocument", {}); }
  void StartObject() override { Add("StartObject", {}); }
  void StartMember(zm::StringView Name) override { Add("StartMember", {Name}); }
  void StartArray() override { Add("StartArray", {}); }
  void Value(zm::TZmJSONDataType DataType, zm::StringView Raw) override {
    static const char* const names[] = {"Null", "String", "Number", "Boolean"};
    Add(names[DataType], {Raw});
  }
  void EndArray() override { Add("EndArray", {}); }
  void EndMember() override { Add("EndMember", {}); }
  void EndObject() override { Add("EndObject", {}); }
  void EndDocument() override { Add("EndDocument", {}); }
  void FatalError(zm::IZmJSONLocator* Where, zm::StringView Message) override {
    Text += PlaceText(Where->GetLineNr(), Where->GetColNr()) + EventText("FatalError", {Message}) + '\n';
  }

 private:
  void Add(const char* Name, std::initializer_list<zm::StringView> Texts) {
    if (Locator) Text += PlaceText(Locator->GetLineNr(), Locator->GetColNr());
    Text += EventText(Name, Texts) + '\n';
  }
};
