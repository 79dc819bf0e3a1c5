#pragma once

#include <memory>
#include <vector>

#include "zamrit/xml/json/Interfaces.h"
#include "zamrit/xml/json/JSONTextParser.h"

namespace zm {

namespace detail {
struct TJSONScratch;
}

/// Reads JSON text and pushes it as events into the handlers. It is tolerant: it looks at the first character of a
/// value, the letters of true, false and null and the character behind a backslash, and skips what stands between the
/// places where it looks. Names, strings and numbers are told as they stand; nothing is decoded or checked, and the end
/// of the input ends what is open. Both handlers must be set. Every error of the text is an EZmJSONParseError.
///
/// A reader runs one parse at a time and can be used again, also after a failure. Starting a second parse from inside
/// one raises EZmJSONException with code 18; a reader that is freed from inside an event goes when the parse has ended,
/// and a handler that is replaced from inside an event is released then. What a handler throws ends the parse and
/// reaches the caller. FatalError of the error handler is first told of errors of the text and of what a handler
/// throws, but not of a handler that is missing at the start, an encoding that is refused or a file that cannot be
/// opened.
///
/// Time is linear in the input, whatever it holds; memory is that of the largest name or value, as stored and as
/// UTF-16, a bit for each level of nesting, and under 1 MB of buffers. Nesting takes no stack.
class TZmJSONReader : public TZmObject, public IZmJSONLocator, public IZmJSONReader {
  ZM_OBJECT(TZmJSONReader, TZmObject)
 public:
  TZmJSONReader();
  ~TZmJSONReader() override;

  int GetLineNr() override;
  int GetColNr() override;
  const ZmJSONString& GetPublicID() override { return FPublicID; }

  IZmJSONContentHandler* GetContentHandler() override { return FContentHandler.Get(); }
  IZmJSONErrorHandler* GetErrorHandler() override { return FErrorHandler.Get(); }
  void SetContentHandler(IZmJSONContentHandler* Handler) override { Replace(FContentHandler, Handler); }
  void SetErrorHandler(IZmJSONErrorHandler* Handler) override { Replace(FErrorHandler, Handler); }
  /// Sets one object as content and error handler.
  void SetHandler(TZmJSONDefaultHandler* Handler);

  /// Whether white space may stand before, between and behind top-level values, a line break at the end of a file above
  /// all: false at first, and only blanks in front of the first value and what follows a simple value are then taken.
  bool GetAllowSurroundingSpace() const { return FAllowSurroundingSpace; }
  void SetAllowSurroundingSpace(bool Value) { FAllowSurroundingSpace = Value; }

  /// Reads a stream of the caller's from its present position on. CodePage 1200 is UTF-16, 65001 UTF-8; with 0 and any
  /// single-byte page the text itself tells between the two.
  void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, StringView PublicID = {}) override;
  /// Reads a file; a byte order mark decides the encoding, else the text itself. Raises EFOpenError naming the file
  /// when it cannot be opened, and EStreamError for one without a mark in which it cannot move back, as a pipe is.
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
  /// Reads the whole document from FParser.
  virtual void InternalParse();

  /// Raises EZmJSONException with code 3 or 4 where a handler is missing.
  void CheckHandlers() const;
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

  ZmJSONString FPublicID;
  TZmIntf<IZmJSONContentHandler> FContentHandler;
  TZmIntf<IZmJSONErrorHandler> FErrorHandler;
  TZmJSONTextParser* FParser = nullptr;
  bool FUnexpectedEOF = false;
  int FLineNr = -1;
  int FColNr = -1;

 private:
  void Run(TStream* Stream, std::uint16_t CodePage, StringView PublicID);
  void CheckIdle() const;
  void TellFatalError();

  template <class I>
  void Replace(TZmIntf<I>& Handler, I* NewHandler) {
    if (FRunning && Handler) FReplaced.emplace_back(Handler.Get());
    Handler = TZmIntf<I>(NewHandler);
  }

  bool FAllowSurroundingSpace = false;
  bool FRunning = false;
  std::vector<TZmIntf<IZmInterface>> FReplaced;  // handlers that may be on the call stack
  std::unique_ptr<detail::TJSONScratch> FScratch;
};

}  // namespace zm
