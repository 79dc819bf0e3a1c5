#pragma once

#include "zamrit/xml/dom/Node.h"

namespace zm {

/// An attribute. It stands among the children of its element and in the element's list of attributes.
class TZmDOMAttribute : public detail::TDOMNamedNode {
  ZM_OBJECT(TZmDOMAttribute, TZmDOMNode)
 public:
  TZmDOMAttribute() : TDOMNamedNode(ntAttribute) {}

  /// Whether it declares a namespace: xmlns, or a name with the prefix xmlns, in any case.
  bool IsNamespace() const { return HasFlag(detail::dfDeclaration); }
  /// The attribute that declares the namespace of this one, nil where there is none. Without a prefix that is the
  /// declaration of the default namespace.
  TZmDOMAttribute* GetNamespace() const;
  TZmDOMElement* OwnerElement() const;
  TZmDOMAttribute* NextAttribute() const;

  String GetNodeValue() const override;
  String GetText() const override { return GetNodeValue(); }
  String GetNamespaceURI() const override;
  void SetNodeValue(const TZmAnyText& Value) override;
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  void _SaveToJSONStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  TZmOwner<TZmDOMNode> CreateClone() const override;

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMAttribute() override = default;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

/// A processing instruction; the XML declaration is one too. The name is its target.
class TZmDOMProcessingInstruction : public detail::TDOMNamedNode {
  ZM_OBJECT(TZmDOMProcessingInstruction, TZmDOMNode)
 public:
  TZmDOMProcessingInstruction() : TDOMNamedNode(ntProcessingInstruction) {}

  String GetData() const;
  void SetData(const TZmAnyText& Data);
  String GetNodeValue() const override { return GetData(); }
  void SetNodeValue(const TZmAnyText& Value) override { SetData(Value); }
  void _SaveToStream(TStream* Stream, std::uint16_t CodePage, bool Formatted, int& Level) override;
  TZmOwner<TZmDOMNode> CreateClone() const override;

 protected:
  friend class detail::TDOMTree;
  ~TZmDOMProcessingInstruction() override = default;
  TZmDOMObjectImpl* CreateDOMImpl(TZmDOMObject* Object) override;
};

}  // namespace zm
