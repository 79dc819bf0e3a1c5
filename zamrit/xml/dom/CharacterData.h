#pragma once

#include "zamrit/xml/dom/Node.h"

namespace zm {

/// A node that is text: text, CDATA section or comment.
class TZmDOMCharacterData : public TZmDOMNode {
  ZM_OBJECT(TZmDOMCharacterData, TZmDOMNode)
 public:
  String GetNodeValue() const override;
  String GetText() const override { return GetNodeValue(); }
  void SetNodeValue(const TZmAnyText& Value) override;
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  TZmOwner<TZmDOMNode> CreateClone() const override;

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMCharacterData() override = default;
  using TZmDOMNode::TZmDOMNode;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

/// Text. Held escaped; SetNodeValue escapes, GetNodeValue resolves references.
class TZmDOMText : public TZmDOMCharacterData {
  ZM_OBJECT(TZmDOMText, TZmDOMCharacterData)
 public:
  TZmDOMText() : TZmDOMText(ntText) {}

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMText() override = default;
  explicit TZmDOMText(TZmDOMNodeType Type) : TZmDOMCharacterData(Type) {}
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

/// A CDATA section. Its text is held and given as it stands.
class TZmDOMCDATA : public TZmDOMText {
  ZM_OBJECT(TZmDOMCDATA, TZmDOMText)
 public:
  TZmDOMCDATA() : TZmDOMText(ntCDATA) {}

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMCDATA() override = default;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

/// A comment. Its text is held and given as it stands.
class TZmDOMComment : public TZmDOMCharacterData {
  ZM_OBJECT(TZmDOMComment, TZmDOMCharacterData)
 public:
  TZmDOMComment() : TZmDOMCharacterData(ntComment) {}

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMComment() override = default;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

}  // namespace zm
