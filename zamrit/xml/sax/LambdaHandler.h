#pragma once

#include <functional>

#include "zamrit/xml/sax/Handlers.h"

namespace zm {

/// A handler for short programs: assign what is wanted, all else does nothing. Arguments are those of the operation of
/// the same name; views are valid until the function returns.
class TZmSAXLambdaHandler : public TZmSAXDefaultHandler {
  ZM_OBJECT(TZmSAXLambdaHandler, TZmSAXDefaultHandler)
 public:
  std::function<void()> OnStartDocument;
  std::function<void()> OnEndDocument;
  std::function<void(StringView Prefix, StringView URI)> OnStartPrefixMapping;
  std::function<void(StringView Prefix)> OnEndPrefixMapping;
  std::function<void(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes)>
      OnStartElement;
  std::function<void(StringView URI, StringView LocalName, StringView QName)> OnEndElement;
  std::function<void(StringView Text)> OnCharacters;
  std::function<void(StringView Text)> OnIgnorableWhitespace;
  std::function<void(StringView Target, StringView Data)> OnProcessingInstruction;
  std::function<void(StringView Text)> OnComment;
  std::function<void()> OnStartCDATA;
  std::function<void()> OnEndCDATA;
  std::function<void()> OnStartDTD;
  std::function<void()> OnEndDTD;
  std::function<void(IZmSAXLocator* Locator, StringView Message)> OnFatalError;

  void StartDocument() override { Call(OnStartDocument); }
  void EndDocument() override { Call(OnEndDocument); }
  void StartPrefixMapping(StringView Prefix, StringView URI) override { Call(OnStartPrefixMapping, Prefix, URI); }
  void EndPrefixMapping(StringView Prefix) override { Call(OnEndPrefixMapping, Prefix); }
  void StartElement(StringView URI, StringView LocalName, StringView QName, IZmSAXAttributes& Attributes) override {
    Call(OnStartElement, URI, LocalName, QName, Attributes);
  }
  void EndElement(StringView URI, StringView LocalName, StringView QName) override {
    Call(OnEndElement, URI, LocalName, QName);
  }
  void Characters(StringView Text) override { Call(OnCharacters, Text); }
  void IgnorableWhitespace(StringView Text) override { Call(OnIgnorableWhitespace, Text); }
  void ProcessingInstruction(StringView Target, StringView Data) override {
    Call(OnProcessingInstruction, Target, Data);
  }
  void Comment(StringView Text) override { Call(OnComment, Text); }
  void StartCDATA() override { Call(OnStartCDATA); }
  void EndCDATA() override { Call(OnEndCDATA); }
  void StartDTD() override { Call(OnStartDTD); }
  void EndDTD() override { Call(OnEndDTD); }
  void FatalError(IZmSAXLocator* Locator, StringView Message) override { Call(OnFatalError, Locator, Message); }

 private:
  template <class F, class... Args>
  static void Call(const F& Function, Args&&... Arguments) {
    if (Function) Function(std::forward<Args>(Arguments)...);
  }
};

}  // namespace zm
