#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "zamrit/common/TextTypes.h"
#include "zamrit/common/TypeKinds.h"
#include "zamrit/common/ZmObject.h"
#include "zamrit/platform/Streams.h"

namespace zm {

/// Where a reader stands.
class IZmJSONLocator : public virtual IZmInterface {
 public:
  /// The line, from 1, and at most 2147483647; -1 when nothing is being read, and after an EZmTextParserEOF.
  virtual int GetLineNr() = 0;
  /// The column, from 1, in UTF-16 units; otherwise as GetLineNr.
  virtual int GetColNr() = 0;
  /// The public identifier that the parse was started with; valid until the next parse.
  virtual const ZmJSONString& GetPublicID() = 0;
};

/// Receives the content. Texts are as they stand in the source, strings without their quotation marks and with their
/// escapes; ZmJSONtoStr decodes them. Views are valid until the operation returns.
class IZmJSONContentHandler : public virtual IZmInterface {
 public:
  /// No reader calls it; FatalError gets the locator.
  virtual void SetDocumentLocator(IZmJSONLocator* Locator) = 0;
  virtual void StartDocument() = 0;
  virtual void StartObject() = 0;
  virtual void StartMember(StringView Name) = 0;
  virtual void StartArray() = 0;
  /// A null, string, number or boolean.
  virtual void Value(TZmJSONDataType DataType, StringView Text) = 0;
  virtual void EndArray() = 0;
  virtual void EndMember() = 0;
  virtual void EndObject() = 0;
  virtual void EndDocument() = 0;
};

/// Told of what goes wrong. The readers only call FatalError; the exception goes on to the caller of the parse after
/// it.
class IZmJSONErrorHandler : public virtual IZmInterface {
 public:
  virtual void Warning(IZmJSONLocator* Locator, StringView Message) = 0;
  virtual void Error(IZmJSONLocator* Locator, StringView Message) = 0;
  virtual void FatalError(IZmJSONLocator* Locator, StringView Message) = 0;
};

/// What every reader of JSON events offers. Handlers stay set until changed, and are kept alive where they are counted;
/// others must live as long as they are set, at the longest as the reader. The entry points are told at TZmJSONReader.
class IZmJSONReader : public virtual IZmInterface {
 public:
  virtual IZmJSONContentHandler* GetContentHandler() = 0;
  virtual IZmJSONErrorHandler* GetErrorHandler() = 0;
  virtual void SetContentHandler(IZmJSONContentHandler* Handler) = 0;
  virtual void SetErrorHandler(IZmJSONErrorHandler* Handler) = 0;
  virtual void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
  virtual void ParseFile(StringView FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) = 0;
  virtual void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
  virtual void Parse(StringView Text, StringView PublicID = {}) = 0;
  virtual void Parse(std::string_view Text, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
};

/// A handler of everything that does nothing: derive and override what is wanted. It may stand on the stack or in a
/// member; no reader ever frees it.
class TZmJSONDefaultHandler : public TZmObject, public IZmJSONContentHandler, public IZmJSONErrorHandler {
  ZM_OBJECT(TZmJSONDefaultHandler, TZmObject)
 public:
  TZmJSONDefaultHandler() { SetAutoDestroy(false); }

  void SetDocumentLocator(IZmJSONLocator*) override {}
  void StartDocument() override {}
  void StartObject() override {}
  void StartMember(StringView) override {}
  void StartArray() override {}
  void Value(TZmJSONDataType, StringView) override {}
  void EndArray() override {}
  void EndMember() override {}
  void EndObject() override {}
  void EndDocument() override {}

  void Warning(IZmJSONLocator*, StringView) override {}
  void Error(IZmJSONLocator*, StringView) override {}
  void FatalError(IZmJSONLocator*, StringView) override {}
};

/// A handler for short programs: assign what is wanted, all else does nothing. Arguments are those of the operation of
/// the same name; views are valid until the function returns.
class TZmJSONLambdaHandler : public TZmJSONDefaultHandler {
  ZM_OBJECT(TZmJSONLambdaHandler, TZmJSONDefaultHandler)
 public:
  std::function<void()> OnStartDocument;
  std::function<void()> OnStartObject;
  std::function<void(StringView Name)> OnStartMember;
  std::function<void()> OnStartArray;
  std::function<void(TZmJSONDataType DataType, StringView Text)> OnValue;
  std::function<void()> OnEndArray;
  std::function<void()> OnEndMember;
  std::function<void()> OnEndObject;
  std::function<void()> OnEndDocument;
  std::function<void(IZmJSONLocator* Locator, StringView Message)> OnFatalError;

  void StartDocument() override { Call(OnStartDocument); }
  void StartObject() override { Call(OnStartObject); }
  void StartMember(StringView Name) override { Call(OnStartMember, Name); }
  void StartArray() override { Call(OnStartArray); }
  void Value(TZmJSONDataType DataType, StringView Text) override { Call(OnValue, DataType, Text); }
  void EndArray() override { Call(OnEndArray); }
  void EndMember() override { Call(OnEndMember); }
  void EndObject() override { Call(OnEndObject); }
  void EndDocument() override { Call(OnEndDocument); }
  void FatalError(IZmJSONLocator* Locator, StringView Message) override { Call(OnFatalError, Locator, Message); }

 private:
  template <class F, class... Args>
  static void Call(const F& Function, Args&&... Arguments) {
    if (Function) Function(std::forward<Args>(Arguments)...);
  }
};

}  // namespace zm
