#pragma once

// One class with a member of every kind that a description takes.

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zamrit/common/uZmRTTI.h"
#include "zamrit/common/uZmTypes.h"

namespace described {

enum class TSuit { suHearts = -2, suSpades = 5, suClubs };
enum TDay { dayMonday, dayTuesday, dayWednesday };
using TDays = zm::TSet<TDay>;

struct TPlace {
  std::string Street;
  std::optional<int> Number;
};

/// A struct below another, holding more of itself.
struct TPart : TPlace {
  double Weight = 0;
  std::vector<TPart> Parts;
};

/// Has no description of its own, but a class descriptor.
class TPlain : public zm::TPersistent {
  ZM_OBJECT(TPlain, zm::TPersistent)
};

class TAncestor : public zm::TPersistent {
  ZM_DESCRIBED(TAncestor)
 public:
  int Id = 0;

 private:
  zm::String FSecret = u"hidden";
};

class TEverything : public TAncestor {
 public:
  std::int8_t I8 = -8;
  std::uint8_t U8 = 8;
  std::int16_t I16 = -16;
  std::uint16_t U16 = 16;
  std::int32_t I32 = -32;
  std::uint32_t U32 = 32;
  std::int64_t I64 = -64;
  std::uint64_t U64 = 18446744073709551615u;
  long long Wide = 7;
  float F32 = 1.5f;
  double F64 = 2.25;
  zm::Extended F80 = 3.125L;
  zm::Currency Money = zm::Currency(12.5);
  bool Flag = true;
  char Letter = 'x';
  char16_t Sign = u'\u00e9';
  zm::String Text = u"text";
  std::string Narrow = "\xC3\xA9";
  zm::ZmXMLString Markup{u"<a/>"};
  zm::ZmJSONString Json{u"{}"};
  TSuit Suit = TSuit::suSpades;
  TDays Days{dayMonday, dayWednesday};
  zm::TDate Date = 45000;
  zm::TTime Time = 0.25;
  zm::TDateTime Moment = 45000.5;
  zm::Variant Any = 4;
  zm::TValue Value = zm::TValue::From(5);
  std::array<int, 3> Three{1, 2, 3};
  std::vector<zm::String> Words{u"a", u"b"};
  std::vector<bool> Bits{true, false};
  std::vector<std::vector<int>> Table{{1}, {2, 3}};
  std::vector<std::unique_ptr<TPlace>> Places;
  TPlace Place{"Main", 3};
  std::optional<double> Maybe;
  TEverything* Next = nullptr;
  std::unique_ptr<TPlace> OwnPlace;
  zm::TZmOwner<TPlain> Own;
  std::shared_ptr<TPart> Shared;
  TPlain Inner;
  std::function<void(int, zm::String)> OnChange;
  void* Pointer = nullptr;
  const zm::TClass* Class = nullptr;
  const int Fixed = 9;

  int GetTotal() const { return FTotal; }
  void SetTotal(int NewTotal) { FTotal = NewTotal; }
  const zm::String& GetTitle() const { return Text; }
  zm::StringView GetView() const { return Text; }
  void SetWriteOnly(zm::StringView NewText) { Text = NewText; }
  zm::String GetItem(int Index) const { return Words.at(static_cast<std::size_t>(Index)); }
  void SetItem(int Index, zm::String Word) { Words.at(static_cast<std::size_t>(Index)) = std::move(Word); }
  std::int64_t Add(int Left, const std::int64_t& Right) { return Left + Right + FTotal; }
  void Clear() { Words.clear(); }

 private:
  int FTotal = 100;
};

ZM_ENUM(TDay, dayMonday, dayTuesday, dayWednesday)
ZM_SET(TDays, TDay)
ZM_CLASS(TPart, (TPlace), (Weight, Parts))
ZM_CLASS(TPlace, (), (Street, Number))
ZM_CLASS(TAncestor, (zm::TPersistent), (Id, FSecret))

}  // namespace described

template <>
inline void zm::Describe(zm::TTypeBuilder<described::TSuit>& T) {
  using enum described::TSuit;
  T.Value(u"suHearts", suHearts).Value(u"suSpades", suSpades).Value(u"suClubs", suClubs).Hint(shoEnumPrefix, u"su");
}

template <>
inline void zm::Describe(zm::TTypeBuilder<described::TEverything>& T) {
  using described::TEverything;
  T.Base<described::TAncestor>();
  T.Published(u"I8", &TEverything::I8);
  T.Published(u"U8", &TEverything::U8);
  T.Published(u"I16", &TEverything::I16);
  T.Published(u"U16", &TEverything::U16);
  T.Published(u"I32", &TEverything::I32);
  T.Published(u"U32", &TEverything::U32);
  T.Published(u"I64", &TEverything::I64);
  T.Published(u"U64", &TEverything::U64);
  T.Published(u"Wide", &TEverything::Wide);
  T.Published(u"F32", &TEverything::F32);
  T.Published(u"F64", &TEverything::F64);
  T.Published(u"F80", &TEverything::F80);
  T.Published(u"Money", &TEverything::Money);
  T.Published(u"Flag", &TEverything::Flag);
  T.Published(u"Letter", &TEverything::Letter);
  T.Published(u"Sign", &TEverything::Sign);
  T.Published(u"Text", &TEverything::Text).Hint(shoName, u"the-text");
  T.Published(u"Narrow", &TEverything::Narrow);
  T.Published(u"Markup", &TEverything::Markup);
  T.Published(u"Json", &TEverything::Json);
  T.Published(u"Suit", &TEverything::Suit);
  T.Published(u"Days", &TEverything::Days);
  T.Published(u"Date", &TEverything::Date);
  T.Published(u"Time", &TEverything::Time);
  T.Published(u"Moment", &TEverything::Moment);
  T.Published(u"Any", &TEverything::Any);
  T.Published(u"Value", &TEverything::Value);
  T.Published(u"Three", &TEverything::Three);
  T.Published(u"Words", &TEverything::Words);
  T.Published(u"Bits", &TEverything::Bits);
  T.Published(u"Table", &TEverything::Table);
  T.Published(u"Places", &TEverything::Places);
  T.Published(u"Place", &TEverything::Place);
  T.Published(u"Maybe", &TEverything::Maybe);
  T.Published(u"Next", &TEverything::Next);
  T.Published(u"OwnPlace", &TEverything::OwnPlace);
  T.Published(u"Own", &TEverything::Own);
  T.Published(u"Shared", &TEverything::Shared);
  T.Public(u"Inner", &TEverything::Inner);
  T.Protected(u"OnChange", &TEverything::OnChange);
  T.Private(u"Pointer", &TEverything::Pointer);
  T.Published(u"Class", &TEverything::Class);
  T.Published(u"Fixed", &TEverything::Fixed);
  T.Property(u"Total", &TEverything::GetTotal, &TEverything::SetTotal).Hint(shoRequired).Visibility(mvPublic);
  T.Property(u"Title", &TEverything::GetTitle);
  T.Property(u"View", &TEverything::GetView);
  T.Property(u"WriteOnly", nullptr, &TEverything::SetWriteOnly);
  T.IndexedProperty(u"Items", &TEverything::GetItem, &TEverything::SetItem);
  T.Method(u"Add", &TEverything::Add, {u"Left", u"Right"});
  T.Method(u"Clear", &TEverything::Clear);
}

ZM_REGISTER(described::TEverything)
