#include <iostream>

#include "zamrit/zamrit.h"

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: json_document FILE");
  // Loading
  zm::TZmJSONDocument document;
  document.SetAllowSurroundingSpace(true);  // the file ends in a line break
  document.LoadFromFile(zm::FromUTF8(Args[1]));

  // Reading and editing
  zm::TZmJSONObject* root = document.GetRootValue()->GetAsObject();
  std::cout << zm::ToUTF8(root->FindMember("title")->GetAsString()) << '\n';
  root->GetMember("pages", {zm::jsoRaise})->SetAsInteger(128);
  root->GetMemberEx1("editor")->SetAsString("Kári");  // adds the member where it is missing
  zm::TZmJSONArray* authors = root->FindMember("authors")->GetAsArray();
  authors->AddValue(zm::jdtObject)->AddMember("name", zm::jdtString, "Ben");
  for (zm::TZmJSONBase* author : *authors) std::cout << zm::ToUTF8(author->FindMember("name")->GetAsString()) << '\n';
  for (zm::TZmJSONMember* member : *root) std::cout << zm::ToUTF8(member->GetName()) << ' ';
  std::cout << '\n';

  // A handle keeps what is deleted from the tree
  const zm::TZmIntf<zm::IZmJSONBase> first = authors->GetItem(0);
  authors->DeleteValue(0);
  std::cout << zm::ToUTF8(first->GetAsJSON()) << '\n';

  // Selecting
  const auto names = document.CreateNodeList("$.authors[?(@.name>'B')].name");
  for (zm::TZmJSONBase* name : *names) std::cout << zm::ToUTF8(name->GetAsString()) << '\n';
  document.SelectSingleNode("$.shop.city", {zm::jsoCreate})->SetAsString("Vík");

  // Saving
  zm::TMemoryStream saved;
  document.SaveToStream(&saved, false, zm::cZmPageUTF8, false);  // on one line, without a byte order mark
  std::cout.write(static_cast<const char*>(saved.GetMemory()), saved.GetSize()) << '\n';
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
