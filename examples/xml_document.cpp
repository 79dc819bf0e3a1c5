#include <iostream>

#include "zamrit/zamrit.h"

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: xml_document FILE");
  // Loading
  zm::TZmDOMDocument document;
  document.LoadFromFile(Args[1]);

  // Walking
  zm::TZmDOMElement* root = document.GetRootNode();
  for (zm::TZmDOMElement* book : root->ChildElements()) {
    for (zm::TZmDOMAttribute* attribute : book->AllAttributes())
      std::cout << zm::ToUTF8(attribute->GetQualifiedName()) << ' ' << zm::ToUTF8(attribute->GetNodeValue()) << ": ";
    std::cout << zm::ToUTF8(book->FindElement("title")->GetAsString()) << '\n';
  }
  for (zm::TZmDOMNode* node : root->Children()) std::cout << zm::ToUTF8(zm::ZmDOMNodeTypes[node->GetNodeType()]) << ' ';
  std::cout << '\n';

  // Typed values
  zm::TZmDOMElement* first = root->FirstElement();
  zm::TZmDOMElement* pages = first->ElementByName("pages", {zm::soRaise});
  pages->SetAsInteger(pages->GetAsInteger() + 8);

  // Editing
  first->SetAttribute("shelf", "A \"3\"");
  first->RemoveAttribute("lent");
  first->AddElement("note")->SetAsString("2 < 3 & 4");  // escaped where it must be
  first->InsertElement("author", zm::rdpBefore, pages)->SetAsString("Snorri");

  // A handle keeps what is removed from the tree, and what outlives its document
  zm::TZmIntf<zm::IZmDOMElement> kept;
  {
    zm::TZmDOMDocument shelf("shelf");
    shelf.GetRootNode()->AppendChild(root->LastElement());  // moves the subtree, which leaves its document
    kept = zm::Supports<zm::IZmDOMElement>(shelf.SelectSingleElement("book"));
    std::cout << zm::ToUTF8(shelf.GetXML()) << '\n';
  }
  std::cout << zm::ToUTF8(kept->GetAttribute("id")) << ' ' << zm::ToUTF8(kept->GetText()) << '\n';

  // Selecting, and creating what is missing on the way
  const auto texts = document.CreateNodeList("/library/book/title/text() | //@id");
  for (zm::TZmDOMNode* text : *texts) std::cout << zm::ToUTF8(text->GetNodeValue()) << '\n';
  document.SelectSingleElement("owner/city", {zm::soCreate})->SetAsString("Vík & Höfn");

  // Saving
  zm::TMemoryStream saved;
  document.SaveToStream(&saved, zm::cZmPageUTF8, false, false);  // on one line, without a byte order mark
  std::cout.write(static_cast<const char*>(saved.GetMemory()), saved.GetSize()) << '\n';
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
