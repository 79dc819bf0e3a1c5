#include "zamrit/platform/Arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace zm {
namespace {

std::uintptr_t Address(const void* Memory) { return reinterpret_cast<std::uintptr_t>(Memory); }

// Writes all that an arena gives out, from the smallest block to several huge ones, and finds it again.
TEST(Arena, PiecesAndTextsDoNotOverlap) {
  for (const std::size_t hugeFrom : {std::size_t{1} << 14, std::size_t{256} << 10, std::size_t{1} << 20}) {
    TArena arena(hugeFrom);
    std::vector<std::pair<char*, std::size_t>> pieces;
    for (std::size_t i = 0, taken = 0; taken < (std::size_t{5} << 20); taken += pieces.back().second, ++i) {
      const std::size_t size = i % 1000 == 999 ? 100000 : 1 + i * 37 % 4000;
      char* memory;
      if (i % 2 == 0) {
        memory = static_cast<char*>(arena.Take(size));
        ASSERT_EQ(Address(memory) % 8, 0u);
      } else {
        memory = arena.Room(size + 100);
        arena.Keep(memory + size);
      }
      std::memset(memory, static_cast<int>(i % 251), size);
      pieces.emplace_back(memory, size);
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
      for (const std::size_t at : {std::size_t{0}, pieces[i].second - 1})
        ASSERT_EQ(static_cast<unsigned char>(pieces[i].first[at]), i % 251) << i;
  }
}

TEST(Arena, PagesAreAligned) {
  TArena arena;
  for (unsigned i = 0; i < 1000; ++i) {
    void* const page = arena.TakePage();
    ASSERT_EQ(Address(page) % TArena::cPage, 0u);
    std::memset(page, 1, TArena::cPage);
  }
}

TEST(Arena, WhatIsExpectedComesFromOneBlock) {
  TArena arena(std::size_t{1} << 20);
  arena.Take(500);
  arena.Expect(600000);
  char* const first = static_cast<char*>(arena.Take(1000));
  char* last = first;
  for (int i = 1; i < 600; ++i) last = static_cast<char*>(arena.Take(1000));
  EXPECT_EQ(first - last, 599 * 1000);
}

}  // namespace
}  // namespace zm
