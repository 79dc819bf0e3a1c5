// What scans text, once with vectors and once without, against plain loops. Text ends where memory ends, and room where
// it may: a step too far faults.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <random>

#include "zamrit/platform/TextDetail.h"

namespace {

using namespace zm::detail;

/// Memory that ends at a page that nobody may touch.
class TGuarded {
 public:
  TGuarded() : FPage(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
    FMemory = static_cast<char*>(mmap(nullptr, 2 * FPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    if (FMemory == MAP_FAILED || mprotect(FMemory + FPage, FPage, PROT_NONE) != 0) std::abort();
  }
  ~TGuarded() { munmap(FMemory, 2 * FPage); }
  TGuarded(const TGuarded&) = delete;
  TGuarded& operator=(const TGuarded&) = delete;

  /// The last Count units of it.
  template <class U>
  U* Last(std::size_t Count) const {
    return reinterpret_cast<U*>(FMemory + FPage) - Count;
  }

 private:
  std::size_t FPage;
  char* FMemory;
};

template <class T>
struct TLanes : testing::Test {};
using TAllLanes =
    testing::Types<TVectorLanes<char>, TScalarLanes<char>, TVectorLanes<char16_t>, TScalarLanes<char16_t>>;
TYPED_TEST_SUITE(TLanes, TAllLanes);

template <class U, class F>
std::uint32_t BitsOf(const U* Units, F Test) {
  std::uint32_t bits = 0;
  for (int i = 0; i < 16; i++) bits |= static_cast<std::uint32_t>(Test(Units[i])) << i;
  return bits;
}

TYPED_TEST(TLanes, CompareEveryUnit) {
  using U = typename TypeParam::Unit;
  const auto value = [](U u) { return static_cast<std::make_unsigned_t<U>>(u); };
  std::mt19937 random(1);
  for (unsigned c = 0; c < 1u << 8 * sizeof(U); c++) {
    const U unit = static_cast<U>(c), other = static_cast<U>(random());
    U units[16] = {static_cast<U>(c - 1), other, unit, static_cast<U>(c + 1), static_cast<U>(c ^ 0x80)};
    for (int i = 5; i < 16; i++) units[i] = static_cast<U>(random());
    std::shuffle(units, units + 16, random);
    const auto vector = TypeParam::Load(units);
    const auto equal = TypeParam::Eq(vector, unit), atMost = TypeParam::AtMost(vector, unit);
    const auto atMosts = BitsOf(units, [&](U u) { return value(u) <= value(unit); });
    ASSERT_EQ(TypeParam::Bits(equal), BitsOf(units, [&](U u) { return u == unit; })) << c;
    ASSERT_EQ(TypeParam::Bits(atMost), atMosts) << c;
    ASSERT_EQ(TypeParam::Bits(TypeParam::Not(atMost)), atMosts ^ 0xFFFF) << c;
    ASSERT_EQ(TypeParam::Bits(TypeParam::Or(equal, TypeParam::Eq(vector, other))),
              BitsOf(units, [&](U u) { return u == unit || u == other; }))
        << c;
  }
}

TYPED_TEST(TLanes, FindTheFirstMatch) {
  using U = typename TypeParam::Unit;
  const TGuarded memory;
  const U fill = static_cast<U>(0xBCBC);  // one less in its high byte alone is no match either
  for (std::size_t size = 0; size <= 64; size++)
    for (std::size_t at = 0; at <= size; at++) {
      U* const text = memory.Last<U>(size);
      const U* const end = text + size;
      std::fill_n(text, size, fill);
      if (at < size) text[at] = U('<');
      if (at + 1 < size) text[at + 1] = U('\t');
      const TAnyOf<TypeParam, '>', '<', '&'> delimiter;
      const TSpaceOrAnyOf<TypeParam, '/'> blank;
      ASSERT_EQ(Find<TypeParam>(text, end, delimiter), text + at) << size;
      ASSERT_EQ(FindFar<TypeParam>(text, end, delimiter), text + at) << size;
      ASSERT_EQ(Find<TypeParam>(text, end, blank), std::min<const U*>(text + at + 1, end)) << size;
      ASSERT_EQ(BitsAt<TypeParam>(text, end, blank), at + 1 < std::min<std::size_t>(size, 16) ? 2u << at : 0u) << size;
    }
}

// Widens Text, which ends Spare bytes before memory ends, into just the room that is asked for.
template <class F>
zm::String Widened(const TGuarded& From, const TGuarded& To, const std::string& Text, std::size_t Spare, F Widen) {
  char* const begin = From.Last<char>(Text.size() + Spare);
  std::fill_n(std::copy(Text.begin(), Text.end(), begin), Spare, '\x80');
  auto* const out = To.Last<char16_t>(Text.size() + cWidenPad);
  return zm::String(out, Widen(begin, begin + Text.size(), begin + Text.size() + Spare, out));
}

template <class Lanes>
void TestWidening() {
  char16_t table[256];
  for (int i = 0; i < 256; i++) table[i] = static_cast<char16_t>(i < 128 ? i : 0x400 + i);
  const auto utf8 = [](auto p, auto end, auto readable, auto out) { return WidenUTF8<Lanes>(p, end, readable, out); };
  const auto bytes = [&table](auto p, auto end, auto readable, auto out) {
    return WidenBytes<Lanes>(p, end, readable, out, table);
  };
  // A sequence that is cut must not take what lies behind the text for its trail.
  const std::pair<std::string, zm::String> odd[] = {{"", u""},
                                                    {"\xC3\xA4", u"\u00E4"},
                                                    {"\xE2\x82\xAC", u"\u20AC"},
                                                    {"\xF0\x9F\x98\x80", u"\U0001F600"},
                                                    {"\xF0\x9F\x98", u"\uFFFD"},
                                                    {"\xFF", u"\uFFFD"}};
  const TGuarded from, to;
  for (std::size_t offset = 0; offset <= 64; offset++)
    for (const std::size_t behind : {0u, 1u, 15u, 16u, 40u})
      for (const std::size_t spare : {0u, 1u, 16u, 70u})
        for (const auto& [in, out] : odd) {
          const std::string text = std::string(offset, 'x') + in + std::string(behind, 'y');
          zm::String byTable;
          for (const char c : text) byTable += table[static_cast<unsigned char>(c)];
          ASSERT_EQ(Widened(from, to, text, spare, bytes), byTable) << offset;
          ASSERT_EQ(Widened(from, to, text, spare, utf8), zm::String(offset, u'x') + out + zm::String(behind, u'y'))
              << offset;
        }
}

TEST(Widening, StaysWithinItsText) {
  TestWidening<TVectorLanes<char>>();
  TestWidening<TScalarLanes<char>>();
}

}  // namespace
