#pragma once

#include <initializer_list>
#include <string>
#include <type_traits>

#include "zamrit/common/TextParser.h"
#include "zamrit/xml/sax/XMLReader.h"

/// The name of an event and its texts in quotes, in ASCII: quotes, backslashes and all beyond as \XXXX, a UTF-16 unit
/// each.
inline std::string EventText(const char* Name, std::initializer_list<zm::StringView> Texts) {
  static const char digits[] = "0123456789ABCDEF";
  std::string result = Name;
  for (const auto text : Texts) {
    result += " \"";
    for (const char16_t c : text) {
      if (c >= u' ' && c < 0x7F && c != u'"' && c != u'\\')
        result += static_cast<char>(c);
      else
        result += {'\\', digits[c >> 12], digits[c >> 8 & 15], digits[c >> 4 & 15], digits[c & 15]};
    }
    result += '"';
  }
  return result;
}
/// "3:7 " in front of an event at line 3, column 7.
inline std::string PlaceText(int Line, int Column) { return std::to_string(Line) + ':' + std::to_string(Column) + ' '; }
/// The class, message and code of what a parse raised.
inline std::string FailureText(const zm::EZmException& E) {
  const bool isEOF = dynamic_cast<const zm::EZmTextParserEOF*>(&E) != nullptr;
  return EventText(isEOF ? "EZmTextParserEOF" : "EZmXMLParseError", {E.GetMessage()}) + ' ' +
         std::to_string(E.GetCode()) + '\n';
}

/// Writes every event as a line into Text, with the place that Locator tells at that moment in front, if there is one.
/// Must outlive the reader that it is set in, or be taken out of it.
struct TEventRecorder : zm::TZmSAXDefaultHandler {
  explicit TEventRecorder(zm::IZmSAXLocator* ALocator = nullptr) : Locator(ALocator) {}

  zm::IZmSAXLocator* Locator;
  std::string Text;

  /// Reads a text, bytes in a page or a stream in a page with the handlers as they are set. What that raises is the
  /// last line.
  template <class TSource, class... TPage>
  void Read(zm::TZmSAXXMLReader& Reader, const TSource& Source, TPage... Page) {
    try {
      if constexpr (std::is_convertible_v<TSource, zm::TStream*>)
        Reader.ParseStream(Source, Page...);
      else
        Reader.Parse(Source, Page...);
    } catch (const zm::EZmException& e) {
      Text += FailureText(e);
    } catch (const zm::Exception& e) {
      Text += EventText("Exception", {e.GetMessage()}) + '\n';
    }
  }

  void StartDocument() override { Add("StartDocument", {}); }
  void EndDocument() override { Add("EndDocument", {}); }
  void StartPrefixMapping(zm::StringView P, zm::StringView URI) override { Add("StartPrefixMapping", {P, URI}); }
  void EndPrefixMapping(zm::StringView Prefix) override { Add("EndPrefixMapping", {Prefix}); }
  void StartElement(zm::StringView URI, zm::StringView Local, zm::StringView QName,
                    zm::IZmSAXAttributes& Attributes) override {
    Add("StartElement", {URI, Local, QName});
    for (auto a = Attributes.FirstAttribute(); a; a = a->Next)
      Text += EventText("  Attribute", {a->URI, a->LocalName, a->QName, a->Value}) + '\n';
  }
  void EndElement(zm::StringView URI, zm::StringView Local, zm::StringView QName) override {
    Add("EndElement", {URI, Local, QName});
  }
  void Characters(zm::StringView T) override { Add("Characters", {T}); }
  void IgnorableWhitespace(zm::StringView T) override { Add("IgnorableWhitespace", {T}); }
  void ProcessingInstruction(zm::StringView T, zm::StringView Data) override {
    Add("ProcessingInstruction", {T, Data});
  }
  void Comment(zm::StringView T) override { Add("Comment", {T}); }
  void StartCDATA() override { Add("StartCDATA", {}); }
  void EndCDATA() override { Add("EndCDATA", {}); }
  void StartDTD() override { Add("StartDTD", {}); }
  void EndDTD() override { Add("EndDTD", {}); }
  void FatalError(zm::IZmSAXLocator* Where, zm::StringView Message) override {
    Text += PlaceText(Where->GetLineNr(), Where->GetColNr()) + EventText("FatalError", {Message}) + '\n';
  }

 private:
  void Add(const char* Name, std::initializer_list<zm::StringView> Texts) {
    if (Locator) Text += PlaceText(Locator->GetLineNr(), Locator->GetColNr());
    Text += EventText(Name, Texts) + '\n';
  }
};

/// The events of one parse with the place of each, a line each: see TEventRecorder.
template <class TSource, class... TPage>
std::string EventsOf(zm::TZmSAXXMLReader& Reader, const TSource& Source, TPage... Page) {
  TEventRecorder recorder(&Reader);
  Reader.SetHandler(&recorder);
  recorder.Read(Reader, Source, Page...);
  Reader.SetHandler(nullptr);
  return recorder.Text;
}
