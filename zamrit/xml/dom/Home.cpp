#include <algorithm>
#include <functional>

#include "zamrit/platform/ASCIIDetail.h"
#include "zamrit/platform/TextDetail.h"
#include "zamrit/xml/dom/TreeDetail.h"

namespace zm::detail {

namespace {

/// A name record and its texts at To, which has room for SizeOf of them.
std::size_t SizeOf(StringView Prefix, StringView LocalName) {
  const std::size_t units = Prefix.size() + LocalName.size() + 1;
  return sizeof(TDOMName) + units * sizeof(char16_t) + 3 * units + 16;
}

TDOMName* MakeName(void* To, StringView Prefix, StringView LocalName) {
  auto* const wide = reinterpret_cast<char16_t*>(static_cast<char*>(To) + sizeof(TDOMName));
  char16_t* end = std::copy(Prefix.begin(), Prefix.end(), wide);
  if (!Prefix.empty()) *end++ = u':';
  end = std::copy(LocalName.begin(), LocalName.end(), end);
  const StringView qname(wide, static_cast<std::size_t>(end - wide));
  std::string narrow;
  const bool surrogates = TDOMTree::Narrow(qname, narrow);
  char* const bytes = reinterpret_cast<char*>(end);
  std::copy(narrow.begin(), narrow.end(), bytes);
  const StringView prefix = qname.substr(0, Prefix.size()), local = qname.substr(qname.size() - LocalName.size());
  const bool declares = prefix.empty() ? SameText(local, u"xmlns") : SameText(prefix, u"xmlns");
  return new (To) TDOMName{prefix,
                           local,
                           qname,
                           {bytes, narrow.size()},
                           IsASCII(qname),
                           declares,
                           SameText(qname, u"xml:space"),
                           surrogates ? TDOMName::cNotPlain : static_cast<std::uint32_t>(narrow.size())};
}

}  // namespace

constexpr char cNothing[16] = {};
const TDOMName cNoDOMName{{}, {}, {}, {cNothing}, true, false, false, 0};

const TDOMName* TDOMTree::NewName(StringView Prefix, StringView LocalName) {
  return MakeName(::operator new(SizeOf(Prefix, LocalName)), Prefix, LocalName);
}

void TDOMTree::FreeName(const TDOMName* Name) noexcept { ::operator delete(const_cast<TDOMName*>(Name)); }

TDOMName* TDOMHome::Intern(StringView Prefix, StringView LocalName) {
  const std::size_t hash = std::hash<StringView>()(LocalName) * 31 + std::hash<StringView>()(Prefix);
  const auto [begin, end] = FNames.equal_range(hash);
  for (auto it = begin; it != end; ++it)
    if (it->second->LocalName == LocalName && it->second->Prefix == Prefix) return it->second;
  TDOMName* const name = MakeName(FNameArena.Take(SizeOf(Prefix, LocalName)), Prefix, LocalName);
  FNames.emplace(hash, name);
  return name;
}

TDOMName* TDOMHome::Intern(StringView QName) {
  const std::size_t colon = QName.find(u':');
  if (colon == StringView::npos) return Intern({}, QName);
  return Intern(QName.substr(0, colon), QName.substr(colon + 1));
}

TDOMScope* TDOMHome::NewScope(TZmDOMElement* Owner) {
  return &FScopes.emplace_back(TDOMScope{nullptr, nullptr, Owner, true, {}, nullptr, {}, {}});
}

void TDOMHome::NextPage() {
  FFree = static_cast<char*>(FPages.TakePage());
  FPageEnd = FFree + TArena::cPage;
  *reinterpret_cast<TDOMHome**>(FFree) = this;
  FFree += sizeof(void*);
}

}  // namespace zm::detail
