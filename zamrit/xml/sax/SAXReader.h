#pragma once

#include <vector>

#include "zamrit/common/TextParser.h"
#include "zamrit/xml/sax/Attributes.h"
#include "zamrit/xml/sax/Handlers.h"

namespace zm {

/// The base of the readers that push events into the handlers: their entry points, handlers and locator. Descendants
/// make the parser and read the document.
///
/// A reader runs one parse at a time and can be used again, also after a failure. Starting a second parse from inside
/// one raises EZmXMLException with code 14, or what the descendant says; a reader that is freed from inside an event
/// goes when the parse has ended, and a handler that is replaced from inside an event is released then. What a handler
/// throws ends the parse and reaches the caller. FatalError of the error handler is first told of errors of the text
/// and of what a handler throws, but not of an encoding that is refused or a file that cannot be opened. Handlers that
/// are not counted must live as long as they are set, at the longest as the reader.
class TZmSAXReader : public TZmObject, public IZmSAXLocator, public IZmSAXXMLReader {
  ZM_OBJECT(TZmSAXReader, TZmObject)
 public:
  TZmSAXReader();

  std::int64_t GetPosition() override;
  int GetLineNr() override;
  int GetColNr() override;
  StringView GetPublicID() override { return FPublicID; }

  IZmSAXLexicalHandler* GetLexicalHandler() override { return FLexicalHandler.Get(); }
  IZmSAXContentHandler* GetContentHandler() override { return FContentHandler.Get(); }
  IZmSAXErrorHandler* GetErrorHandler() override { return FErrorHandler.Get(); }
  void SetLexicalHandler(IZmSAXLexicalHandler* Handler) override { Replace(FLexicalHandler, Handler); }
  void SetContentHandler(IZmSAXContentHandler* Handler) override { Replace(FContentHandler, Handler); }
  void SetErrorHandler(IZmSAXErrorHandler* Handler) override { Replace(FErrorHandler, Handler); }
  /// Sets one object as content, lexical and error handler.
  void SetHandler(TZmSAXDefaultHandler* Handler);
  bool GetFeature(StringView) override { return false; }
  Variant GetProperty(StringView) override { return Null(); }
  void SetFeature(StringView, bool) override {}
  void SetProperty(StringView, const Variant&) override {}

  /// Reads a stream of the caller's from its present position on. CodePage 0 means that the text itself tells,
  /// though not by a byte order mark.
  void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, StringView PublicID = {}) override;
  /// Reads a file; a byte order mark decides the encoding, else the text itself. Raises EFOpenError naming the file
  /// when it cannot be opened.
  void ParseFile(StringView FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) override;
  void ParseFile(std::string_view FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) {
    ParseFile(FromUTF8(FileName), Mode, PublicID);
  }
  /// Reads a block of Size bytes in place.
  void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage = 0, StringView PublicID = {}) override;
  /// Reads a text in place.
  void Parse(StringView Text, StringView PublicID = {}) override;
  /// Reads the bytes of a text in place.
  void Parse(std::string_view Text, std::uint16_t CodePage = 0, StringView PublicID = {}) override;
  void Parse(const char* Text) { Parse(std::string_view(Text)); }
  void Parse(const char16_t* Text) { Parse(StringView(Text)); }

 protected:
  ~TZmSAXReader() override = default;

  /// Makes the parser of one run.
  virtual TZmOwner<TZmTextParser> CreateParser(TStream* Stream, bool OwnsStream, bool DetectCodePage,
                                               std::uint16_t CodePage) = 0;
  /// Reads the whole document from FParser.
  virtual void InternalParse() = 0;

  /// Refuses a parse while another one runs.
  [[noreturn]] virtual void RaiseAlreadyParsing() const;

  /// Runs Body; a failure is told to the error handler before it goes on.
  template <class F>
  void Guarded(F Body) {
    try {
      Body();
    } catch (...) {
      TellFatalError();
      throw;
    }
  }

  String FPublicID;
  int FLineNr = 0;
  int FColNr = 0;
  bool FUnexpectedEOF = false;
  TZmTextParser* FParser = nullptr;
  TZmOwner<TZmSAXXMAttributes> FEmptyAttributes;
  TZmIntf<IZmSAXLexicalHandler> FLexicalHandler;
  TZmIntf<IZmSAXContentHandler> FContentHandler;
  TZmIntf<IZmSAXErrorHandler> FErrorHandler;

 private:
  void Run(TStream* Stream, bool DetectCodePage, std::uint16_t CodePage, StringView PublicID);
  void CheckIdle() const;
  void TellFatalError();
  void KeepConstructPlace();

  template <class I>
  void Replace(TZmIntf<I>& Handler, I* NewHandler) {
    if (FRunning && Handler) FReplaced.emplace_back(Handler.Get());
    Handler = TZmIntf<I>(NewHandler);
  }

  bool FRunning = false;
  std::vector<TZmIntf<IZmInterface>> FReplaced;  // handlers that may be on the call stack
};

}  // namespace zm
