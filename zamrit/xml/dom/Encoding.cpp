#include "zamrit/common/Encoding.h"

#include "zamrit/xml/dom/TreeDetail.h"

namespace zm {

using detail::TDOMTree;

String TZmDOMDocument::GetEncoding() const { return FEncoding.empty() ? String(u"UTF-8") : FEncoding; }

void TZmDOMDocument::SetEncoding(const TZmAnyText& Name) {
  String name = Name.Text();
  std::uint16_t page = cZmPageUTF8;
  try {
    if (!name.empty()) page = ZmCodePage(name);
  } catch (const Exception&) {
    throw EZmDomNotSupported(u"The specified encoding (%s) is not supported!", {name});
  }
  FCodePage = page;
  FEncoding = name.empty() ? String(u"UTF-8") : std::move(name);
  const TZmDOMProcessingInstruction* const declaration = FindProcessingInstruction(u"xml");
  if (!declaration) return SetProcessingInstruction(u"xml", Format(u"version=\"1.0\" encoding=\"%s\"", {FEncoding}));
  String data = declaration->GetData();
  const std::size_t word = LowerCase(data).find(u"encoding");
  if (word == String::npos) {
    data += Format(u" encoding=\"%s\"", {FEncoding});
  } else {
    const std::size_t open = data.find(u'"', word);
    const std::size_t close = open == String::npos ? open : data.find(u'"', open + 1);
    if (close == String::npos) return;
    data.replace(open + 1, close - open - 1, FEncoding);
  }
  SetProcessingInstruction(u"xml", data);
}

void TZmDOMDocument::SetCodePage(std::uint16_t CodePage) {
  FCodePage = CodePage;
  try {
    FEncoding = ZmCodePage(CodePage);
  } catch (const EConvertError&) {  // a page without a name, which saving will refuse
    FEncoding.clear();
  }
}

void TZmDOMDocument::ReCalcEncoding() {
  FEncoding = u"UTF-8";
  const TZmDOMProcessingInstruction* const declaration = FindProcessingInstruction(u"xml");
  const String encoding = declaration ? TDOMTree::EncodingIn(declaration->GetData()) : String();
  if (!encoding.empty()) FEncoding = LowerCase(encoding);
}

TZmDOMProcessingInstruction* TZmDOMDocument::FindProcessingInstruction(const TZmAnyText& Target) const {
  const String target = Target.Text();
  const bool declaration = SameText(target, u"xml") && !HasFlag(detail::dfOwnLists);
  for (TZmDOMNode* node = declaration && FScanned ? FScanned->NextSibling() : FirstChild(); node;
       node = node->NextSibling()) {
    if (node->GetNodeType() == ntProcessingInstruction && SameText(node->GetQualifiedName(), target))
      return static_cast<TZmDOMProcessingInstruction*>(node);
    if (declaration) FScanned = node;
  }
  return nullptr;
}

String TZmDOMDocument::GetProcessingInstruction(const TZmAnyText& Target) const {
  if (const TZmDOMProcessingInstruction* const found = FindProcessingInstruction(Target)) return found->GetData();
  throw EZmDomNotFound(u"There is no processinginstruction \"%s\"!", {Target.Text()});
}

// A new one goes in front of the root, where those that apply to the document belong; the XML declaration is the first.
void TZmDOMDocument::SetProcessingInstruction(const TZmAnyText& Target, const TZmAnyText& Data) {
  if (TZmDOMProcessingInstruction* const found = FindProcessingInstruction(Target)) return found->SetData(Data);
  TZmOwner<TZmDOMProcessingInstruction> node = Create<TZmDOMProcessingInstruction>();
  node->SetQualifiedName(Target);
  node->SetData(Data);
  TZmDOMProcessingInstruction* const added = node.get();
  if (SameText(added->GetQualifiedName(), u"xml"))
    AddChild(added, nullptr, rdpFirst);
  else
    AddChild(added, FRootNode, FRootNode ? rdpBefore : rdpLast);
  node.reset();
}

}  // namespace zm
