#include "zamrit/platform/Lists.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

#include "zamrit/platform/Exceptions.h"

namespace zm {
namespace {

constexpr StringView cIndexError = u"List index out of bounds (%d)";
constexpr StringView cDuplicateError = u"String list does not allow duplicates";
constexpr std::string_view cMark = "\xEF\xBB\xBF";

template <class E>
std::size_t CheckIndex(int Index, std::size_t Count) {
  if (Index < 0 || static_cast<std::size_t>(Index) >= Count) throw E(cIndexError, {Index});
  return static_cast<std::size_t>(Index);
}

template <class T>
auto IteratorAt(std::vector<T>& Items, std::size_t Index) {
  return Items.begin() + static_cast<std::ptrdiff_t>(Index);
}

char16_t FoldASCII(char16_t C) { return C >= u'A' && C <= u'Z' ? static_cast<char16_t>(C + 32) : C; }

// Whether the folded form of one text stands before that of the other.
bool BeforeFolded(StringView Left, StringView Right) {
  const std::size_t common = std::min(Left.size(), Right.size());
  for (std::size_t i = 0; i < common; ++i) {
    if ((Left[i] | Right[i]) >= 0x80) return FoldCase(Left.substr(i)) < FoldCase(Right.substr(i));
    const char16_t left = FoldASCII(Left[i]), right = FoldASCII(Right[i]);
    if (left != right) return left < right;
  }
  return Left.size() < Right.size();
}

std::string ReadToEnd(TStream* Stream) {
  constexpr std::size_t chunk = 64 * 1024;
  const auto buffer = std::make_unique_for_overwrite<char[]>(chunk);
  std::string out;
  while (const std::size_t count = Stream->Read(buffer.get(), chunk)) out.append(buffer.get(), count);
  return out;
}

}  // namespace

TObjectList::~TObjectList() {
  if (!FOwnsObjects) return;
  while (!FItems.empty()) {
    const TZmOwner<TObject> last(FItems.back());
    FItems.pop_back();
  }
}

std::size_t TObjectList::Check(int Index) const { return CheckIndex<EListError>(Index, FItems.size()); }

void TObjectList::FreeOwned(TObject* Object) const {
  if (FOwnsObjects && Object) Object->Free();
}

void TObjectList::SetCapacity(int Value) {
  if (Value > GetCount()) FItems.reserve(static_cast<std::size_t>(Value));
}

void TObjectList::Put(int Index, TObject* Object) {
  TObject* const old = std::exchange(FItems[Check(Index)], Object);
  if (old != Object) FreeOwned(old);
}

int TObjectList::Add(TObject* Object) {
  FItems.push_back(Object);
  return GetCount() - 1;
}

void TObjectList::Insert(int Index, TObject* Object) {
  const std::size_t at = CheckIndex<EListError>(Index, FItems.size() + 1);
  FItems.insert(IteratorAt(FItems, at), Object);
}

void TObjectList::Delete(int Index) {
  const auto at = IteratorAt(FItems, Check(Index));
  TObject* const object = *at;
  FItems.erase(at);
  FreeOwned(object);
}

int TObjectList::Remove(TObject* Object) {
  const int index = IndexOf(Object);
  if (index >= 0) Delete(index);
  return index;
}

TObject* TObjectList::Extract(TObject* Object) {
  const int index = IndexOf(Object);
  if (index < 0) return nullptr;
  FItems.erase(IteratorAt(FItems, static_cast<std::size_t>(index)));
  return Object;
}

void TObjectList::Clear() {
  while (!FItems.empty()) Delete(GetCount() - 1);
}

int TObjectList::IndexOf(const TObject* Object, TListDirection Direction) const {
  if (Direction == ldFromBeginning) {
    const auto at = std::find(FItems.begin(), FItems.end(), Object);
    return at == FItems.end() ? -1 : static_cast<int>(at - FItems.begin());
  }
  return static_cast<int>(FItems.rend() - std::find(FItems.rbegin(), FItems.rend(), Object)) - 1;
}

void TObjectList::Exchange(int Index1, int Index2) { std::swap(FItems[Check(Index1)], FItems[Check(Index2)]); }

void TObjectList::Move(int From, int To) {
  const auto from = IteratorAt(FItems, Check(From)), to = IteratorAt(FItems, Check(To));
  if (from < to)
    std::rotate(from, from + 1, to + 1);
  else
    std::rotate(to, from, from + 1);
}

int TStrings::AddObject(StringView Text, TObject* Object) {
  const int index = GetCount();
  InsertObject(index, Text, Object);
  return index;
}

int TStrings::IndexOf(StringView Text) const {
  for (int i = 0; i < GetCount(); ++i)
    if (SameText(Get(i), Text)) return i;
  return -1;
}

int TStrings::IndexOfName(StringView Name) const {
  for (int i = 0; i < GetCount(); ++i) {
    const StringView line = Get(i);
    const std::size_t equal = line.find(u'=');
    if (equal != StringView::npos && SameText(line.substr(0, equal), Name)) return i;
  }
  return -1;
}

StringView TStrings::GetName(int Index) const {
  const StringView line = Get(Index);
  const std::size_t equal = line.find(u'=');
  return line.substr(0, equal == StringView::npos ? 0 : equal);
}

StringView TStrings::GetValue(StringView Name) const {
  const int index = IndexOfName(Name);
  if (index < 0) return {};
  const StringView line = Get(index);
  return line.substr(line.find(u'=') + 1);
}

void TStrings::SetValue(StringView Name, StringView Value) {
  const int index = IndexOfName(Name);
  if (Value.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  String line(Name);
  line.append(u"=").append(Value);
  if (index >= 0)
    Put(index, line);
  else
    Add(line);
}

String TStrings::GetText() const {
  String out;
  for (int i = 0; i < GetCount(); ++i) out.append(Get(i)).append(u"\r\n");
  return out;
}

void TStrings::SetText(StringView Text) {
  std::vector<TItem> items;
  while (!Text.empty()) {
    const std::size_t length = std::min(Text.find_first_of(u"\r\n"), Text.size());
    items.push_back({String(Text.substr(0, length)), nullptr});
    Text.remove_prefix(length);
    Text.remove_prefix(Text.starts_with(u"\r\n") ? 2 : Text.empty() ? 0 : 1);
  }
  Fill(std::move(items));
}

void TStrings::LoadFromStream(TStream* Stream) {
  const std::string bytes = ReadToEnd(Stream);
  std::string_view text = bytes;
  if (text.starts_with(cMark)) text.remove_prefix(cMark.size());
  SetText(FromUTF8(text));
}

void TStrings::SaveToStream(TStream* Stream) const {
  const std::string text = ToUTF8(GetText());
  Stream->WriteBuffer(text.data(), text.size());
}

void TStrings::Assign(TPersistent* Source) {
  if (Source == this) return;
  const auto* strings = dynamic_cast<const TStrings*>(Source);
  if (!strings) return TPersistent::Assign(Source);
  std::vector<TItem> items;
  items.reserve(static_cast<std::size_t>(strings->GetCount()));
  for (int i = 0; i < strings->GetCount(); ++i) items.push_back({strings->Get(i), strings->GetObject(i)});
  Fill(std::move(items));
}

void TStrings::Fill(std::vector<TItem>&& Items) {
  Clear();
  for (const TItem& item : Items) AddObject(item.Text, item.Object);
}

TStringList::~TStringList() {
  if (!FOwnsObjects) return;
  for (const TItem& item : FItems) const TZmOwner<TObject> object(item.Object);
}

std::size_t TStringList::Check(int Index) const { return CheckIndex<EStringListError>(Index, FItems.size()); }

void TStringList::CheckUnsorted() const {
  if (FSorted) throw EStringListError(u"Operation not allowed on sorted list");
}

bool TStringList::Same(StringView Left, StringView Right) const {
  return FCaseSensitive ? Left == Right : SameText(Left, Right);
}

bool TStringList::Before(StringView Left, StringView Right) const {
  return FCaseSensitive ? Left < Right : BeforeFolded(Left, Right);
}

void TStringList::Put(int Index, StringView Text) {
  CheckUnsorted();
  FItems[Check(Index)].Text = Text;
}

void TStringList::InsertObject(int Index, StringView Text, TObject* Object) {
  CheckUnsorted();
  const std::size_t at = CheckIndex<EStringListError>(Index, FItems.size() + 1);
  FItems.insert(IteratorAt(FItems, at), {String(Text), Object});
}

void TStringList::Delete(int Index) {
  const auto at = IteratorAt(FItems, Check(Index));
  TObject* const object = at->Object;
  FItems.erase(at);
  if (FOwnsObjects && object) object->Free();
}

void TStringList::Clear() {
  while (!FItems.empty()) Delete(GetCount() - 1);
}

int TStringList::AddObject(StringView Text, TObject* Object) {
  int index = GetCount();
  if (FSorted && Find(Text, index)) {
    if (FDuplicates == dupIgnore) return index;
    if (FDuplicates == dupError) throw EStringListError(cDuplicateError);
  }
  FItems.insert(IteratorAt(FItems, static_cast<std::size_t>(index)), {String(Text), Object});
  return index;
}

int TStringList::IndexOf(StringView Text) const {
  if (FSorted) {
    int index;
    return Find(Text, index) ? index : -1;
  }
  const auto at = std::find_if(FItems.begin(), FItems.end(), [&](const TItem& item) { return Same(item.Text, Text); });
  return at == FItems.end() ? -1 : static_cast<int>(at - FItems.begin());
}

bool TStringList::Find(StringView Text, int& Index) const {
  const auto at = std::lower_bound(FItems.begin(), FItems.end(), Text,
                                   [this](const TItem& item, StringView text) { return Before(item.Text, text); });
  Index = static_cast<int>(at - FItems.begin());
  return at != FItems.end() && !Before(Text, at->Text);
}

void TStringList::SortItems(std::vector<TItem>& Items) const {
  std::stable_sort(Items.begin(), Items.end(),
                   [this](const TItem& left, const TItem& right) { return Before(left.Text, right.Text); });
}

void TStringList::Sort() { SortItems(FItems); }

void TStringList::SetSorted(bool Value) {
  if (Value && !FSorted) Sort();
  FSorted = Value;
}

void TStringList::SetCaseSensitive(bool Value) {
  FCaseSensitive = Value;
  if (FSorted) Sort();
}

// Sorts once: a search for every text would move the ones behind it each time.
void TStringList::Fill(std::vector<TItem>&& Items) {
  if (FSorted) {
    SortItems(Items);
    if (FDuplicates != dupAccept) {
      const auto end = std::unique(Items.begin(), Items.end(), [this](const TItem& left, const TItem& right) {
        return !Before(left.Text, right.Text);
      });
      if (end != Items.end() && FDuplicates == dupError) throw EStringListError(cDuplicateError);
      Items.erase(end, Items.end());
    }
  }
  Clear();
  FItems = std::move(Items);
}

}  // namespace zm
