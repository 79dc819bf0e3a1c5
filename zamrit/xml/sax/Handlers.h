#pragma once

#include <cstdint>

#include "zamrit/common/ZmObject.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Variant.h"

namespace zm {

/// The type of an attribute. The XML reader only tells CDATA.
enum TZmSAXAttributeType { CDATA, ID, IDREF, IDREFS, NMTOKEN, NMTOKENS, ENTITY, ENTITIES, NOTATION };

/// One attribute of a list, in a chain. The texts belong to the list and are valid as long as it is not changed; in a
/// handler, until the handler returns.
struct TZmSAXXMAttribute {
  TZmSAXXMAttribute* Prev;
  std::int32_t Idx;
  StringView LocalName;
  StringView QName;
  StringView URI;
  TZmSAXAttributeType AttrType;
  StringView Value;
  TZmSAXXMAttribute* Next;
};
using PZmSAXXMAttribute = TZmSAXXMAttribute*;

/// Where a reader stands.
class IZmSAXLocator : public virtual IZmInterface {
 public:
  /// The offset in the source.
  virtual std::int64_t GetPosition() = 0;
  /// The line, from 1, and at most 2147483647. After an unexpected end of input the line on which the construct that
  /// was cut off began; -1 when nothing is being read.
  virtual int GetLineNr() = 0;
  /// The column, from 1, in UTF-16 units; otherwise as GetLineNr.
  virtual int GetColNr() = 0;
  /// The public identifier that the parse was started with; valid until the next parse.
  virtual StringView GetPublicID() = 0;
};

/// The attributes of an element. Names, URIs and prefixes that differ only in case are the same to every search. A
/// search costs a step an attribute, access by index is constant. Views are valid until the handler returns.
class IZmSAXAttributes : public virtual IZmInterface {
 public:
  virtual int Count() = 0;
  /// The head of the chain, or nil.
  virtual PZmSAXXMAttribute FirstAttribute() = 0;
  /// By index, from 0. An index that is not in the list raises EZmXMLParseError with code 4, in all operations.
  virtual PZmSAXXMAttribute GetAttribute(int Index) = 0;
  virtual StringView GetLocalName(int Index) = 0;
  virtual StringView GetQName(int Index) = 0;
  virtual StringView GetURI(int Index) = 0;
  /// The index of the first attribute of that name, or -1.
  virtual int GetIndex(StringView QName) = 0;
  virtual int GetIndex(StringView URI, StringView LocalName) = 0;
  /// By name: the first attribute that matches; none raises EZmXMLParseError with code 4.
  virtual TZmSAXAttributeType GetType(int Index) = 0;
  virtual TZmSAXAttributeType GetType(StringView QName) = 0;
  virtual TZmSAXAttributeType GetType(StringView URI, StringView LocalName) = 0;
  virtual StringView GetValue(int Index) = 0;
  virtual StringView GetValue(StringView QName) = 0;
  /// The URI "*" stands for any.
  virtual StringView GetValue(StringView URI, StringView LocalName) = 0;
};

/// Receives what is markup around the content. Views are valid until the operation returns.
class IZmSAXLexicalHandler : public virtual IZmInterface {
 public:
  virtual void Comment(StringView Text) = 0;
  virtual void StartCDATA() = 0;
  virtual void StartDTD() = 0;
  virtual void StartEntity(StringView Name) = 0;
  virtual void EndCDATA() = 0;
  virtual void EndDTD() = 0;
  virtual void EndEntity(StringView Name) = 0;
};

/// Receives the content. Texts are as they stand in the source: no reference is decoded, no line end changed. Views are
/// valid until the operation returns.
class IZmSAXContentHandler : public virtual IZmInterface {
 public:
  /// No reader calls it; FatalError gets the locator.
  virtual void SetDocumentLocator(IZmSAXLocator* Locator) = 0;
  virtual void Characters(StringView Text) = 0;
  virtual void EndDocument() = 0;
  virtual void EndElement(StringView URI, StringView LocalName, StringView QName) = 0;
  virtual void EndPrefixMapping(StringView Prefix) = 0;
  /// Text of white space and control characters alone.
  virtual void IgnorableWhitespace(StringView Text) = 0;
  virtual void ProcessingInstruction(StringView Target, StringView Data) = 0;
  virtual void SkippedEntity(StringView Name) = 0;
  virtual void StartDocument() = 0;
  virtual void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) = 0;
  virtual void StartPrefixMapping(StringView Prefix, StringView URI) = 0;
};

/// Told of what goes wrong. The readers only call FatalError; the exception goes on to the caller of the parse after
/// it.
class IZmSAXErrorHandler : public virtual IZmInterface {
 public:
  virtual void Warning(IZmSAXLocator* Locator, StringView Message) = 0;
  virtual void Error(IZmSAXLocator* Locator, StringView Message) = 0;
  virtual void FatalError(IZmSAXLocator* Locator, StringView Message) = 0;
};

/// What every reader of events offers. Handlers stay set until changed, and are kept alive where they are counted. The
/// entry points are told at TZmSAXReader.
class IZmSAXXMLReader : public virtual IZmInterface {
 public:
  virtual IZmSAXLexicalHandler* GetLexicalHandler() = 0;
  virtual IZmSAXContentHandler* GetContentHandler() = 0;
  virtual IZmSAXErrorHandler* GetErrorHandler() = 0;
  /// Always false: the readers have no features.
  virtual bool GetFeature(StringView Name) = 0;
  /// Always null.
  virtual Variant GetProperty(StringView Name) = 0;
  virtual void SetLexicalHandler(IZmSAXLexicalHandler* Handler) = 0;
  virtual void SetContentHandler(IZmSAXContentHandler* Handler) = 0;
  virtual void SetErrorHandler(IZmSAXErrorHandler* Handler) = 0;
  virtual void SetFeature(StringView Name, bool Value) = 0;
  virtual void SetProperty(StringView Name, const Variant& Value) = 0;
  virtual void ParseStream(TStream* Stream, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
  virtual void ParseFile(StringView FileName, std::uint16_t Mode = fmOpenRead, StringView PublicID = {}) = 0;
  virtual void ParseBuffer(const void* Buffer, unsigned Size, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
  virtual void Parse(StringView Text, StringView PublicID = {}) = 0;
  virtual void Parse(std::string_view Text, std::uint16_t CodePage = 0, StringView PublicID = {}) = 0;
};

/// A handler of everything that does nothing: derive and override what is wanted. It may stand on the stack or in a
/// member; no reader ever frees it.
class TZmSAXDefaultHandler : public TZmObject,
                             public IZmSAXContentHandler,
                             public IZmSAXLexicalHandler,
                             public IZmSAXErrorHandler {
  ZM_OBJECT(TZmSAXDefaultHandler, TZmObject)
 public:
  TZmSAXDefaultHandler() { SetAutoDestroy(false); }

  void SetDocumentLocator(IZmSAXLocator*) override {}
  void StartDocument() override {}
  void EndDocument() override {}
  void StartPrefixMapping(StringView, StringView) override {}
  void EndPrefixMapping(StringView) override {}
  void StartElement(StringView, StringView, StringView, IZmSAXAttributes&) override {}
  void EndElement(StringView, StringView, StringView) override {}
  void Characters(StringView) override {}
  void IgnorableWhitespace(StringView) override {}
  void ProcessingInstruction(StringView, StringView) override {}
  void SkippedEntity(StringView) override {}

  void Comment(StringView) override {}
  void StartCDATA() override {}
  void EndCDATA() override {}
  void StartDTD() override {}
  void EndDTD() override {}
  void StartEntity(StringView) override {}
  void EndEntity(StringView) override {}

  void Warning(IZmSAXLocator*, StringView) override {}
  void Error(IZmSAXLocator*, StringView) override {}
  void FatalError(IZmSAXLocator*, StringView) override {}
};

}  // namespace zm
