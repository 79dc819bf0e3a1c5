#include "zamrit/platform/Variant.h"

#include <cmath>
#include <limits>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "zamrit/platform/VariantDetail.h"

namespace zm {

namespace detail {

TVariantKind KindOf(std::uint16_t Type) {
  switch (Type) {
    case varSmallint:
    case varInteger:
    case varShortInt:
    case varByte:
    case varWord:
    case varLongWord:
    case varInt64:
      return vkWhole;
    case varUInt64:
      return vkUnsigned;
    case varSingle:
    case varDouble:
      return vkReal;
    case varCurrency:
      return vkCurrency;
    case varDate:
      return vkDate;
    case varBoolean:
      return vkBoolean;
    case varUString:
      return vkText;
    default:
      return (Type & varArray) != 0 ? vkArray : vkNone;
  }
}

StringView VarTypeName(std::uint16_t Type) {
  switch (Type) {
    case varEmpty:
      return u"Unassigned";
    case varNull:
      return u"Null";
    case varSmallint:
      return u"Smallint";
    case varInteger:
      return u"Integer";
    case varSingle:
      return u"Single";
    case varDouble:
      return u"Double";
    case varCurrency:
      return u"Currency";
    case varDate:
      return u"Date";
    case varBoolean:
      return u"Boolean";
    case varVariant:
      return u"Variant";
    case varShortInt:
      return u"ShortInt";
    case varByte:
      return u"Byte";
    case varWord:
      return u"Word";
    case varLongWord:
      return u"LongWord";
    case varInt64:
      return u"Int64";
    case varUInt64:
      return u"UInt64";
    case varOleStr:
    case varString:
    case varUString:
      return u"String";
    default:
      return (Type & varArray) != 0 ? StringView(u"Array") : StringView(u"Unknown");
  }
}

void RaiseVariantCast(std::uint16_t From, std::uint16_t To) {
  throw EVariantTypeCastError(u"Could not convert variant of type (%s) into type (%s)",
                              {VarTypeName(From), VarTypeName(To)});
}

}  // namespace detail

using namespace detail;

namespace {

/// Takes a number of digits, all of them.
bool TakeDigits(StringView& Text, std::size_t Count, int& Value) {
  if (Text.size() < Count) return false;
  Value = 0;
  for (std::size_t i = 0; i < Count; ++i) {
    if (Text[i] < u'0' || Text[i] > u'9') return false;
    Value = Value * 10 + (Text[i] - u'0');
  }
  Text.remove_prefix(Count);
  return true;
}

bool TakeUnit(StringView& Text, StringView OneOf) {
  if (Text.empty() || OneOf.find(Text[0]) == StringView::npos) return false;
  Text.remove_prefix(1);
  return true;
}

/// Reads what AsString writes for a date, with parts left out from the end.
bool ReadDate(StringView Text, TDateTime& Value) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
  if (!TakeDigits(Text, 4, year) || !TakeUnit(Text, u"-") || !TakeDigits(Text, 2, month) || !TakeUnit(Text, u"-") ||
      !TakeDigits(Text, 2, day))
    return false;
  if (!Text.empty() &&
      (!TakeUnit(Text, u" T") || !TakeDigits(Text, 2, hour) || !TakeUnit(Text, u":") || !TakeDigits(Text, 2, minute)))
    return false;
  if (!Text.empty() && (!TakeUnit(Text, u":") || !TakeDigits(Text, 2, second))) return false;
  if (!Text.empty() && (!TakeUnit(Text, u".") || !TakeDigits(Text, 3, millisecond))) return false;
  TDateTime date, time;
  if (!Text.empty() || !TryEncodeDate(year, month, day, date) ||
      !TryEncodeTime(hour, minute, second, millisecond, time))
    return false;
  Value = date < 0 ? date - time : date + time;
  return true;
}

void AppendPadded(String& Text, std::uint16_t Number, int Width) {
  for (int unit = Width == 4 ? 1000 : Width == 3 ? 100 : 10; unit > 0; unit /= 10)
    Text += static_cast<char16_t>(u'0' + Number / unit % 10);
}

String WriteDate(TDateTime Value) {
  std::uint16_t year, month, day, hour, minute, second, millisecond;
  DecodeDateTime(Value, year, month, day, hour, minute, second, millisecond);
  String text;
  const struct {
    std::uint16_t Number;
    int Width;
    char16_t Behind;
  } parts[] = {{year, 4, u'-'},   {month, 2, u'-'},  {day, 2, u' '},         {hour, 2, u':'},
               {minute, 2, u':'}, {second, 2, u'.'}, {millisecond, 3, u'\0'}};
  for (const auto& part : parts) {
    AppendPadded(text, part.Number, part.Width);
    if (part.Behind) text += part.Behind;
  }
  return text;
}

String WriteCurrency(std::int64_t Scaled) {
  const std::uint64_t size =
      Scaled < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(Scaled) : static_cast<std::uint64_t>(Scaled);
  String text = Scaled < 0 ? u"-" : u"";
  text += IntToStr(static_cast<std::int64_t>(size / 10000));
  String decimals = IntToStr(static_cast<std::int64_t>(10000 + size % 10000)).substr(1);
  while (!decimals.empty() && decimals.back() == u'0') decimals.pop_back();
  return decimals.empty() ? text : text + u'.' + decimals;
}

String WriteUnsigned(std::uint64_t Value) {
  if (Value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
    return IntToStr(static_cast<std::int64_t>(Value));
  return IntToStr(static_cast<std::int64_t>(Value / 10)) + static_cast<char16_t>(u'0' + Value % 10);
}

/// Arrays that nobody holds any more, with those that only they held: a chain, however deep they are nested.
void FreeArrays(TVariantArray* First) noexcept;

}  // namespace

Variant::Variant(String Value) : FType(varEmpty) {
  FData.Text = new TVariantText{1, std::move(Value)};
  FType = varUString;
}

void Variant::AddReference() const noexcept {
  auto& count = FType == varUString ? FData.Text->References : FData.Array->References;
  count.fetch_add(1, std::memory_order_relaxed);
}

/// Gives back what others hold too at once, and collects the arrays that end.
class TVariantAccess {
 public:
  static TVariantArray* Drop(Variant& Value) noexcept {
    const std::uint16_t type = std::exchange(Value.FType, varEmpty);
    if (type == varUString) {
      if (Value.FData.Text->References.fetch_sub(1, std::memory_order_acq_rel) == 1) delete Value.FData.Text;
    } else if (type >= varString && Value.FData.Array->References.fetch_sub(1, std::memory_order_acq_rel) == 1) {
      return Value.FData.Array;
    }
    return nullptr;
  }
  static Variant Make(TVariantArray* Array) {
    Variant value;
    value.FType = static_cast<std::uint16_t>(varArray | Array->ElementType);
    value.FData.Array = Array;
    return value;
  }
  static TVariantArray& Array(const Variant& Value) {
    if (!VarIsArray(Value)) throw EVariantArrayError(u"The variant is not an array");
    return *Value.FData.Array;
  }
  /// An array that no other Variant shares.
  static TVariantArray& OwnArray(Variant& Value) {
    TVariantArray& array = Array(Value);
    if (array.References.load(std::memory_order_acquire) == 1) return array;
    Value = Make(new TVariantArray{1, array.ElementType, array.Low, array.Elements, nullptr});
    return *Value.FData.Array;
  }
};

namespace {

void FreeArrays(TVariantArray* First) noexcept {
  while (First) {
    TVariantArray* const array = First;
    First = array->NextToFree;
    for (Variant& element : array->Elements) {
      if (TVariantArray* ended = TVariantAccess::Drop(element)) {
        ended->NextToFree = First;
        First = ended;
      }
    }
    delete array;
  }
}

}  // namespace

void Variant::Release() noexcept { FreeArrays(TVariantAccess::Drop(*this)); }

void Variant::RaiseCast(std::uint16_t Type) const { RaiseVariantCast(FType, Type); }

namespace {

bool HasNumber(std::uint16_t Type) {
  const TVariantKind kind = KindOf(Type);
  return kind != vkNone && kind != vkText && kind != vkArray;
}

}  // namespace

bool Variant::AsBoolean() const {
  switch (KindOf(FType)) {
    case vkBoolean:
    case vkWhole:
    case vkUnsigned:
    case vkCurrency:
      return FData.Int != 0;
    case vkReal:
    case vkDate:
      return FData.Real != 0;
    case vkText: {
      const String& text = FData.Text->Text;
      if (SameText(text, u"true")) return true;
      if (SameText(text, u"false")) return false;
      double number = 0;
      if (TryStrToFloat(text, number)) return number != 0;
      break;
    }
    default:
      break;
  }
  RaiseCast(varBoolean);
}

std::int64_t Variant::AsInteger() const {
  switch (KindOf(FType)) {
    case vkBoolean:
    case vkWhole:
      return FData.Int;
    case vkUnsigned:
      if (FData.Int < 0) throw ERangeError(u"The value does not fit an integer");
      return FData.Int;
    case vkCurrency: {
      const std::int64_t odd = FData.Int / 10000 % 2;  // kept with the decimals, so that halves go to the even number
      return FData.Int / 10000 - odd + Round(static_cast<double>(FData.Int % 10000) / 10000 + static_cast<double>(odd));
    }
    case vkReal:
    case vkDate:
      return Round(FData.Real);
    case vkText: {
      std::int64_t whole = 0;
      double number = 0;
      if (TryStrToInt64(FData.Text->Text, whole)) return whole;
      if (TryStrToFloat(FData.Text->Text, number)) return Round(number);
      break;
    }
    default:
      break;
  }
  RaiseCast(varInt64);
}

std::uint64_t Variant::AsUInt64() const {
  if (FType == varUInt64) return static_cast<std::uint64_t>(FData.Int);
  Extended large = KindOf(FType) == vkReal ? FData.Real : 0;
  if (FType == varUString) TryStrToExtended(FData.Text->Text, large);
  if (large >= 0x1p63L && large < 0x1p64L) return static_cast<std::uint64_t>(large);
  const std::int64_t number = AsInteger();
  if (number < 0) throw ERangeError(u"The value does not fit an integer");
  return static_cast<std::uint64_t>(number);
}

double Variant::AsDouble() const {
  switch (KindOf(FType)) {
    case vkBoolean:
    case vkWhole:
      return static_cast<double>(FData.Int);
    case vkUnsigned:
      return static_cast<double>(static_cast<std::uint64_t>(FData.Int));
    case vkCurrency:
      return static_cast<double>(Currency::FromScaled(FData.Int));
    case vkReal:
    case vkDate:
      return FData.Real;
    case vkText: {
      double number = 0;
      if (TryStrToFloat(FData.Text->Text, number)) return number;
      break;
    }
    default:
      break;
  }
  RaiseCast(varDouble);
}

Currency Variant::AsCurrency() const {
  if (FType == varCurrency) return Currency::FromScaled(FData.Int);
  if (HasNumber(FType)) return Currency(AsDouble());
  Extended number = 0;
  if (FType != varUString || !TryStrToExtended(FData.Text->Text, number)) RaiseCast(varCurrency);
  return Currency(number);
}

TDateTime Variant::AsDateTime() const {
  if (HasNumber(FType)) return AsDouble();
  if (FType != varUString) RaiseCast(varDate);
  TDateTime value;
  double days = 0;
  if (ReadDate(FData.Text->Text, value)) return value;
  if (TryStrToFloat(FData.Text->Text, days)) return days;
  RaiseCast(varDate);
}

String Variant::AsString() const {
  switch (KindOf(FType)) {
    case vkBoolean:
      return FData.Int != 0 ? u"True" : u"False";
    case vkWhole:
      return IntToStr(FData.Int);
    case vkUnsigned:
      return WriteUnsigned(static_cast<std::uint64_t>(FData.Int));
    case vkCurrency:
      return WriteCurrency(FData.Int);
    case vkReal:
      return FloatToStr(FData.Real);
    case vkDate:
      return WriteDate(FData.Real);
    case vkText:
      return FData.Text->Text;
    case vkNone:
      return String();
    default:
      RaiseCast(varUString);
  }
}

const String& Variant::TextRef() const {
  if (FType != varUString) RaiseCast(varUString);
  return FData.Text->Text;
}

bool operator==(const Variant& Left, const Variant& Right) {
  std::vector<std::pair<const Variant*, const Variant*>> open;
  std::set<std::pair<const TVariantArray*, const TVariantArray*>> seen;  // what many share is compared once
  const Variant* left = &Left;
  const Variant* right = &Right;
  for (;;) {
    if (left->FType != right->FType) return false;
    switch (KindOf(left->FType)) {
      case vkNone:
        break;
      case vkReal:
      case vkDate:
        if (left->FData.Real != right->FData.Real) return false;
        break;
      case vkText:
        if (left->FData.Text->Text != right->FData.Text->Text) return false;
        break;
      case vkArray: {
        const TVariantArray &l = *left->FData.Array, &r = *right->FData.Array;
        if (&l == &r || (l.References > 1 && !seen.emplace(&l, &r).second)) break;
        if (l.Low != r.Low || l.Elements.size() != r.Elements.size()) return false;
        for (std::size_t i = 0; i < l.Elements.size(); ++i) open.emplace_back(&l.Elements[i], &r.Elements[i]);
        break;
      }
      default:
        if (left->FData.Int != right->FData.Int) return false;
    }
    if (open.empty()) return true;
    std::tie(left, right) = open.back();
    open.pop_back();
  }
}

Variant Null() {
  Variant null;
  null.FType = varNull;
  return null;
}

bool VarIsNumeric(const Variant& Value) {
  const TVariantKind kind = KindOf(VarType(Value));
  return kind >= vkWhole && kind <= vkBoolean && kind != vkDate;
}

double VarToReal(const Variant& Value) { return Value.AsDouble(); }

std::int32_t VarToInteger(const Variant& Value) {
  const std::int64_t number = Value.AsInteger();
  if (number != static_cast<std::int32_t>(number)) throw ERangeError(u"The value does not fit an integer");
  return static_cast<std::int32_t>(number);
}

std::int64_t VarToInt64(const Variant& Value) { return Value.AsInteger(); }

String VarToStr(const Variant& Value) { return Value.AsString(); }

namespace {

template <class T>
Variant AsWhole(const Variant& Value) {
  const std::int64_t number = Value.AsInteger();
  if (number != static_cast<std::int64_t>(static_cast<T>(number)))
    throw ERangeError(u"The value does not fit an integer");
  return static_cast<T>(number);
}

}  // namespace

Variant VarAsType(const Variant& Value, std::uint16_t Type) {
  if (Type == VarType(Value) || Type == varVariant) return Value;
  switch (Type) {
    case varEmpty:
      return Variant();
    case varNull:
      return Null();
    case varSmallint:
      return AsWhole<std::int16_t>(Value);
    case varInteger:
      return AsWhole<std::int32_t>(Value);
    case varShortInt:
      return AsWhole<std::int8_t>(Value);
    case varByte:
      return AsWhole<std::uint8_t>(Value);
    case varWord:
      return AsWhole<std::uint16_t>(Value);
    case varLongWord:
      return AsWhole<std::uint32_t>(Value);
    case varInt64:
      return Value.AsInteger();
    case varUInt64:
      return Value.AsUInt64();
    case varSingle: {
      const double number = Value.AsDouble();
      if (std::isfinite(number) && std::fabs(number) > std::numeric_limits<float>::max())
        throw ERangeError(u"The value does not fit a single");
      return static_cast<float>(number);
    }
    case varDouble:
      return Value.AsDouble();
    case varCurrency:
      return Value.AsCurrency();
    case varDate:
      return Value.AsDateTime();
    case varBoolean:
      return Value.AsBoolean();
    case varOleStr:
    case varString:
    case varUString:
      if (Value.IsNull() || Value.IsEmpty()) RaiseVariantCast(VarType(Value), Type);
      return Value.AsString();
    default:
      RaiseVariantCast(VarType(Value), Type);
  }
}

namespace {

constexpr std::int64_t cMaxElements = std::int64_t{1} << 31;

std::size_t CountBetween(std::int64_t Low, std::int64_t High) {
  const bool valid = Low > std::numeric_limits<std::int64_t>::min() && High >= Low - 1 &&
                     static_cast<std::uint64_t>(High) - static_cast<std::uint64_t>(Low) + 1 <= cMaxElements;
  if (!valid) throw EVariantArrayError(u"Invalid bounds of a variant array");
  return static_cast<std::size_t>(High - Low + 1);
}

Variant EmptyElement(std::uint16_t Type) {
  switch (KindOf(Type == varOleStr || Type == varString ? std::uint16_t{varUString} : Type)) {
    case vkWhole:
    case vkUnsigned:
    case vkReal:
    case vkCurrency:
    case vkDate:
    case vkBoolean:
      return VarAsType(0, Type);
    case vkText:
      return String();
    default:
      if (Type != varVariant) throw EVariantArrayError(u"Invalid element type of a variant array");
      return Variant();
  }
}

std::size_t Place(const TVariantArray& Array, std::int64_t Index) {
  const std::uint64_t place = static_cast<std::uint64_t>(Index) - static_cast<std::uint64_t>(Array.Low);
  if (place >= Array.Elements.size()) throw EVariantArrayError(u"Variant array index out of bounds (%d)", {Index});
  return static_cast<std::size_t>(place);
}

}  // namespace

Variant VarArrayCreate(std::int64_t Low, std::int64_t High, std::uint16_t ElementType) {
  const std::uint16_t type =
      ElementType == varOleStr || ElementType == varString ? std::uint16_t{varUString} : ElementType;
  std::vector<Variant> elements(CountBetween(Low, High), EmptyElement(type));
  return TVariantAccess::Make(new TVariantArray{1, type, Low, std::move(elements), nullptr});
}

Variant VarArrayOf(std::initializer_list<Variant> Values) {
  return TVariantAccess::Make(new TVariantArray{1, varVariant, 0, std::vector<Variant>(Values), nullptr});
}

std::int64_t VarArrayLowBound(const Variant& Value) { return TVariantAccess::Array(Value).Low; }

std::int64_t VarArrayHighBound(const Variant& Value) {
  const TVariantArray& array = TVariantAccess::Array(Value);
  return array.Low - 1 + static_cast<std::int64_t>(array.Elements.size());
}

Variant VarArrayGet(const Variant& Value, std::int64_t Index) {
  const TVariantArray& array = TVariantAccess::Array(Value);
  return array.Elements[Place(array, Index)];
}

void VarArrayPut(Variant& Value, std::int64_t Index, Variant Element) {
  const TVariantArray& shared = TVariantAccess::Array(Value);
  const std::size_t place = Place(shared, Index);
  if (shared.ElementType != varVariant) Element = VarAsType(Element, shared.ElementType);
  TVariantAccess::OwnArray(Value).Elements[place] = std::move(Element);
}

void VarArrayRedim(Variant& Value, std::int64_t High) {
  const TVariantArray& shared = TVariantAccess::Array(Value);
  const std::size_t count = CountBetween(shared.Low, High);
  TVariantArray& array = TVariantAccess::OwnArray(Value);
  array.Elements.resize(count, EmptyElement(array.ElementType));
}

}  // namespace zm
