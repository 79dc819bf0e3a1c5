// Fills objects from the attributes of a document: what the members are called and how they are read is described once,
// with their types.

#include <iostream>

#include "zamrit/zamrit.h"

enum class TState { osOpen, osShipped };

class TOrder : public zm::TPersistent {
 public:
  int Id = 0;
  double Total = 0;
  TState State = TState::osOpen;
  zm::TDate Date;
  zm::String Note;
};

ZM_ENUM(TState, osOpen, osShipped)
ZM_CLASS(TOrder, (zm::TPersistent), (Id, Total, State, Date, Note))

class TInvoice : public TOrder {
  ZM_DESCRIBED(TInvoice)
 public:
  double GetTax() const { return Total * FRate; }

 private:
  double FRate = 0.2;
};

template <>
void zm::Describe(zm::TTypeBuilder<TInvoice>& T) {
  T.Base<TOrder>();
  T.Published(u"Rate", &TInvoice::FRate).Hint(shoName, u"tax-rate");
  T.Property(u"Tax", &TInvoice::GetTax);
}
ZM_REGISTER(TInvoice)

namespace {

void SetMember(zm::TObject* Object, const zm::TRttiType* Type, zm::StringView Name, zm::StringView Text) {
  const zm::TRttiField* field = Type->GetField(Name);
  if (!field) throw zm::Exception(u"There is no member \"%s\"", {Name});
  field->SetValue(Object, zm::ZmXMLToValue(Text, zm::TZmTypes::GetTypeInfo(field->GetFieldType())));
}

void Print(zm::TObject* Object, const zm::TRttiType* Type) {
  std::cout << zm::ToUTF8(Type->GetName());
  for (const zm::TRttiField* field : Type->GetFields())
    std::cout << ' ' << zm::ToUTF8(field->GetName()) << '=' << zm::ToUTF8(zm::ZmValToXML(field->GetValue(Object)));
  for (const zm::TRttiProperty* property : Type->GetProperties())
    std::cout << ' ' << zm::ToUTF8(property->GetName()) << '=' << zm::ToUTF8(property->GetValue(Object).ToString());
  std::cout << '\n';
}

}  // namespace

int main(int Count, char** Args) try {
  if (Count != 2) throw zm::Exception(u"usage: orders FILE");
  zm::TZmSAXLambdaHandler handler;
  handler.OnStartElement = [](zm::StringView, zm::StringView Name, zm::StringView, zm::IZmSAXAttributes& Attributes) {
    const zm::TZmTypeInfo* info = zm::TZmTypes::GetTypeInfo(Name, zm::tntName, false);
    if (!info || info->TypeKind != zm::rtkClass) return;
    const auto* type = static_cast<const zm::TRttiInstanceType*>(info->RttiType);
    const zm::TZmOwner<zm::TObject> object = type->CreateObject();
    for (int i = 0; i < Attributes.Count(); ++i)
      SetMember(object.get(), type, Attributes.GetLocalName(i), Attributes.GetValue(i));
    Print(object.get(), type);
  };
  auto reader = zm::Create<zm::TZmSAXXMLReader>();
  reader->SetHandler(&handler);
  reader->ParseFile(Args[1]);
} catch (const zm::Exception& e) {
  std::cerr << e.what() << '\n';
  return 1;
}
