#pragma once

#include <string>
#include <string_view>

#include "zamrit/xml/uZmXMLDOM.h"

namespace zm {

/// A node in short: the name of an element with its id, "@" and the name of an attribute, a text in apostrophes.
inline std::string Short(TZmDOMNode* Node) {
  const std::string name = ToUTF8(Node->GetQualifiedName());
  switch (Node->GetNodeType()) {
    case ntElement:
      return name + ToUTF8(static_cast<TZmDOMElement*>(Node)->GetAttribute("id"));
    case ntAttribute:
      return "@" + name;
    case ntProcessingInstruction:
      return "?" + name;
    case ntDocument:
      return "document";
    default:
      return "'" + ToUTF8(Node->GetNodeValue()) + "'";
  }
}

inline std::string Short(const TZmDOMNodeListBase& List) {
  std::string all;
  for (TZmDOMNode* const node : List) all += (all.empty() ? "" : " ") + Short(node);
  return all;
}

/// What a path leads to from a node, or the message of what it raises.
inline std::string Found(TZmDOMNode& From, const char* Path, TZmDOMSelectOptions Options = {}) {
  try {
    return Short(*From.CreateNodeList(Path, Options));
  } catch (const Exception& e) {
    return e.what();
  }
}

inline TZmOwner<TZmDOMDocument> Loaded(std::string_view XML) {
  auto document = Create<TZmDOMDocument>();
  document->LoadFromXML(XML);
  return document;
}

}  // namespace zm
