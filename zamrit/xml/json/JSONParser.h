#pragma once

#include <functional>

#include "zamrit/xml/json/Interfaces.h"
#include "zamrit/xml/json/JSONReader.h"

namespace zm {

using TZmJSONOnError = std::function<void(IZmJSONLocator* Locator, StringView Message)>;
using TZmJSONOnStartDocument = std::function<void()>;
using TZmJSONOnStartObject = std::function<void()>;
using TZmJSONOnStartMember = std::function<void(StringView Name)>;
using TZmJSONOnStartArray = std::function<void()>;
using TZmJSONOnValue = std::function<void(TZmJSONDataType DataType, StringView Text)>;
using TZmJSONOnEndArray = std::function<void()>;
using TZmJSONOnEndMember = std::function<void()>;
using TZmJSONOnEndObject = std::function<void()>;
using TZmJSONOnEndDocument = std::function<void()>;

/// A component that turns the events of a JSON or form reader into functions to assign; what is not assigned does
/// nothing. Texts are raw, as IZmJSONContentHandler tells them. It makes a reader for each parse and runs one at a
/// time; a second one from inside an event raises EZmJSONException with code 18. What OnFatalError is told of a parse
/// that fails, and what is raised then, is told at the readers. An event must not be replaced while it runs.
class TZmJSONParser : public TZmComponent, public IZmJSONErrorHandler, public IZmJSONContentHandler {
  ZM_OBJECT(TZmJSONParser, TZmComponent)
 public:
  /// Owner may be nil.
  explicit TZmJSONParser(TComponent* Owner = nullptr) : TZmComponent(Owner) { SetAutoDestroy(false); }

  TZmJSONOnError OnWarning;
  TZmJSONOnError OnError;
  TZmJSONOnError OnFatalError;
  /// Nothing calls these two.
  TNotifyEvent OnStart;
  TNotifyEvent OnFinished;
  TZmJSONOnStartDocument OnStartDocument;
  TZmJSONOnStartObject OnStartObject;
  TZmJSONOnStartMember OnStartMember;
  TZmJSONOnStartArray OnStartArray;
  TZmJSONOnValue OnValue;
  TZmJSONOnEndArray OnEndArray;
  TZmJSONOnEndMember OnEndMember;
  TZmJSONOnEndObject OnEndObject;
  TZmJSONOnEndDocument OnEndDocument;

  /// As TZmJSONReader's, for the readers that this one makes.
  bool GetAllowSurroundingSpace() const { return FAllowSurroundingSpace; }
  void SetAllowSurroundingSpace(bool Value) { FAllowSurroundingSpace = Value; }

  /// \name Parsing
  /// As the operations of TZmJSONReader. With FormURLEncoded the text is a form post.
  ///@{
  void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, bool FormURLEncoded = false, StringView PublicID = {});
  void ParseFile(StringView FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {});
  void ParseFile(std::string_view FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) {
    ParseFile(FromUTF8(FileName), Mode, PublicID);
  }
  void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage = 0, bool FormURLEncoded = false,
                   StringView PublicID = {});
  /// A text would be taken for the flag.
  template <class Unit>
  void ParseStream(TStream* Stream, std::uint16_t CodePage, const Unit* PublicID) = delete;
  template <class Unit>
  void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage, const Unit* PublicID) = delete;
  void Parse(StringView Text, StringView PublicID = {});
  void Parse(std::string_view Text, std::uint16_t CodePage = 0, StringView PublicID = {});
  void Parse(const char* Text) { Parse(std::string_view(Text)); }
  void Parse(const char16_t* Text) { Parse(StringView(Text)); }
  ///@}

  void StartDocument() override { Call(OnStartDocument); }
  void StartObject() override { Call(OnStartObject); }
  void StartMember(StringView Name) override { Call(OnStartMember, Name); }
  void StartArray() override { Call(OnStartArray); }
  void Value(TZmJSONDataType DataType, StringView Text) override { Call(OnValue, DataType, Text); }
  void EndArray() override { Call(OnEndArray); }
  void EndMember() override { Call(OnEndMember); }
  void EndObject() override { Call(OnEndObject); }
  void EndDocument() override { Call(OnEndDocument); }

  void SetDocumentLocator(IZmJSONLocator* Locator) override { FLocator = TZmIntf<IZmJSONLocator>(Locator); }
  void Warning(IZmJSONLocator* Locator, StringView Message) override { Call(OnWarning, Locator, Message); }
  void Error(IZmJSONLocator* Locator, StringView Message) override { Call(OnError, Locator, Message); }
  void FatalError(IZmJSONLocator* Locator, StringView Message) override { Call(OnFatalError, Locator, Message); }

 protected:
  TZmIntf<IZmJSONLocator> FLocator;
  TZmOwner<TZmJSONReader> FReader;  // during a parse

 private:
  template <class F>
  void Run(bool FormURLEncoded, F Parse);

  template <class F, class... Args>
  static void Call(const F& Function, Args&&... Arguments) {
    if (Function) Function(std::forward<Args>(Arguments)...);
  }

  bool FAllowSurroundingSpace = false;
};

}  // namespace zm
