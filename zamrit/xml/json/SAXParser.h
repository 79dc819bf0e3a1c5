#pragma once

#include <functional>

#include "zamrit/platform/Components.h"
#include "zamrit/xml/sax/Handlers.h"
#include "zamrit/xml/sax/SAXReader.h"

namespace zm {

using TZmSAXOnStartDocument = std::function<void(TObject* Sender)>;
using TZmSAXOnEndDocument = std::function<void(TObject* Sender)>;
using TZmSAXOnProcessingInstruction = std::function<void(TObject* Sender, StringView Target, StringView Data)>;
using TZmSAXOnStartPrefixMapping = std::function<void(TObject* Sender, StringView Prefix, StringView URI)>;
using TZmSAXOnEndPrefixMapping = std::function<void(TObject* Sender, StringView Prefix)>;
using TZmSAXOnStartElement = std::function<void(TObject* Sender, StringView URI, StringView LocalName, StringView QName,
                                                IZmSAXAttributes& Attributes)>;
using TZmSAXOnCharacters = std::function<void(TObject* Sender, StringView Text)>;
using TZmSAXOnIgnorableWhitespace = std::function<void(TObject* Sender, StringView Text)>;
using TZmSAXOnEndElement = std::function<void(TObject* Sender, StringView URI, StringView LocalName, StringView QName)>;
using TZmSAXOnComment = std::function<void(TObject* Sender, StringView Text)>;
using TZmSAXOnStartDTD = std::function<void(TObject* Sender)>;
using TZmSAXOnEndDTD = std::function<void(TObject* Sender)>;
using TZmSAXOnStartCDATA = std::function<void(TObject* Sender)>;
using TZmSAXOnEndCDATA = std::function<void(TObject* Sender)>;
using TZmSAXOnError = std::function<void(TObject* Sender, IZmSAXLocator* Locator, StringView Message)>;

/// A component that turns the events of an XML or JSON text into functions to assign; what is not assigned does
/// nothing. The first character above the blank decides: "<" is XML, all else JSON, as TZmSAXJSONReader tells it. It
/// runs one parse at a time; a second one from inside an event raises EZmXMLException with code 14. What OnFatalError
/// is told of a parse that fails, and what is raised then, is told at the readers. An event must not be replaced while
/// it runs.
class TZmSAXParser : public TZmComponent,
                     public IZmSAXErrorHandler,
                     public IZmSAXContentHandler,
                     public IZmSAXLexicalHandler {
  ZM_OBJECT(TZmSAXParser, TZmComponent)
 public:
  /// Owner may be nil.
  explicit TZmSAXParser(TComponent* Owner = nullptr) : TZmComponent(Owner) { SetAutoDestroy(false); }

  TZmSAXOnStartDocument OnStartDocument;
  TZmSAXOnEndDocument OnEndDocument;
  /// Nothing calls it.
  TZmSAXOnEndDocument OnEndProlog;
  TZmSAXOnProcessingInstruction OnProcessingInstruction;
  TZmSAXOnStartPrefixMapping OnStartPrefixMapping;
  TZmSAXOnEndPrefixMapping OnEndPrefixMapping;
  TZmSAXOnStartElement OnStartElement;
  TZmSAXOnCharacters OnCharacters;
  TZmSAXOnIgnorableWhitespace OnIgnorableWhitespace;
  TZmSAXOnEndElement OnEndElement;
  TZmSAXOnComment OnComment;
  TZmSAXOnStartDTD OnStartDTD;
  TZmSAXOnEndDTD OnEndDTD;
  TZmSAXOnStartCDATA OnStartCDATA;
  TZmSAXOnEndCDATA OnEndCDATA;
  TZmSAXOnError OnWarning;
  TZmSAXOnError OnError;
  TZmSAXOnError OnFatalError;
  /// In front of a parse, and behind one that has not failed.
  TNotifyEvent OnStart;
  TNotifyEvent OnFinished;

  /// \name Parsing
  /// As the operations of TZmSAXReader. The stream must be able to go back. A byte order mark is text to all but
  /// ParseFile, so that XML behind one is taken for JSON.
  ///@{
  void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, StringView PublicID = {});
  void ParseFile(StringView FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {});
  void ParseFile(std::string_view FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) {
    ParseFile(FromUTF8(FileName), Mode, PublicID);
  }
  void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage = 0, StringView PublicID = {});
  void Parse(StringView Text, StringView PublicID = {});
  void Parse(std::string_view Text, std::uint16_t CodePage = 0, StringView PublicID = {});
  void Parse(const char* Text) { Parse(std::string_view(Text)); }
  void Parse(const char16_t* Text) { Parse(StringView(Text)); }
  ///@}

  void Warning(IZmSAXLocator* Locator, StringView Message) override { Call(OnWarning, Locator, Message); }
  void Error(IZmSAXLocator* Locator, StringView Message) override { Call(OnError, Locator, Message); }
  void FatalError(IZmSAXLocator* Locator, StringView Message) override { Call(OnFatalError, Locator, Message); }

  void SetDocumentLocator(IZmSAXLocator* Locator) override { FLocator = TZmIntf<IZmSAXLocator>(Locator); }
  void Characters(StringView Text) override { Call(OnCharacters, Text); }
  void EndDocument() override { Call(OnEndDocument); }
  void EndElement(StringView URI, StringView LocalName, StringView QName) override {
    Call(OnEndElement, URI, LocalName, QName);
  }
  void EndPrefixMapping(StringView Prefix) override { Call(OnEndPrefixMapping, Prefix); }
  void IgnorableWhitespace(StringView Text) override { Call(OnIgnorableWhitespace, Text); }
  void ProcessingInstruction(StringView Target, StringView Data) override {
    Call(OnProcessingInstruction, Target, Data);
  }
  void SkippedEntity(StringView) override {}
  void StartDocument() override { Call(OnStartDocument); }
  void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) override {
    Call(OnStartElement, URI, LocalName, QName, Attributes);
  }
  void StartPrefixMapping(StringView Prefix, StringView URI) override { Call(OnStartPrefixMapping, Prefix, URI); }

  void Comment(StringView Text) override { Call(OnComment, Text); }
  void StartCDATA() override { Call(OnStartCDATA); }
  void StartDTD() override { Call(OnStartDTD); }
  void StartEntity(StringView) override {}
  void EndCDATA() override { Call(OnEndCDATA); }
  void EndDTD() override { Call(OnEndDTD); }
  void EndEntity(StringView) override {}

 protected:
  TZmIntf<IZmSAXLocator> FLocator;
  TZmOwner<TZmSAXReader> FReader;  // during a parse

 private:
  template <class F, class... Args>
  void Call(const F& Function, Args&&... Arguments) {
    if (Function) Function(this, std::forward<Args>(Arguments)...);
  }

  bool FRunning = false;
};

}  // namespace zm
