#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/CodePages.h"

namespace {

using zm::TZmStringStream;
using zm::TZmUTF8StreamAdapter;

std::string Content(const zm::TMemoryStream& Stream) {
  zm::TMemoryStream copy;
  Stream.SaveToStream(&copy);
  return {static_cast<const char*>(copy.GetMemory()), static_cast<std::size_t>(copy.GetSize())};
}

TEST(StringStream, ShowsTheSameTextInEveryForm) {
  const zm::String text = u"a\u00E4\u20AC";
  const std::string utf8 = "a\xC3\xA4\xE2\x82\xAC", utf16 = zm::EncodePage(text, 1200), ansi = "a\xE4\x80";
  TZmStringStream wide(text), moved{zm::String(text)}, borrowed(zm::cZmBorrow, text), literal(u"a\u00E4\u20AC"),
      narrow(utf8, 65001), platform(utf8, 0), movedBytes(std::string(utf8), 65001), added(65001, 16),
      borrowedBytes(zm::cZmBorrow, ansi, 1252), block(ansi.data(), 3, 1252), addedAnsi(1252, 0);
  added.Add(text);
  addedAnsi.Add(text);
  const auto check = [&](std::initializer_list<TZmStringStream*> streams, const std::string& data,
                         const std::string& narrowed) {
    for (auto* stream : streams) {
      EXPECT_EQ(stream->GetAsString(), text);
      EXPECT_EQ(stream->GetWString(), text);
      EXPECT_EQ(stream->GetDataString(), data);
      EXPECT_EQ(stream->GetAString(), narrowed);
      EXPECT_EQ(stream->GetAsUTF8(), utf8);
      EXPECT_EQ(stream->StringData(1252), ansi);
      EXPECT_EQ(stream->StringData(1200), utf16);
      std::uint64_t size = 0;
      EXPECT_EQ(stream->InPlace(size), stream->GetMemory());
      EXPECT_EQ(size, data.size());
    }
  };
  check({&wide, &moved, &borrowed, &literal}, utf16, utf8);
  check({&narrow, &platform, &movedBytes, &added}, utf8, utf8);
  check({&borrowedBytes, &block, &addedAnsi}, ansi, ansi);
  EXPECT_EQ(borrowed.GetMemory(), text.data());
  EXPECT_EQ(block.GetMemory(), ansi.data());
}

TEST(StringStream, HalvesOfAPairMeet) {
  const struct {
    std::vector<zm::StringView> Texts;
    zm::StringView Whole;
  } cases[] = {{{u"\xD83D", u"\xDE00"}, u"\U0001F600"},
               {{u"a\xD83D", u"", u"\xDE00\x62"}, u"a\U0001F600b"},
               {{u"\xD83D", u"\xD83D", u"\xDE00"}, u"\xD83D\U0001F600"},
               {{u"\xD83D", u"x", u"\xDE00", u"\xD83D"}, u"\xD83Dx\xDE00\xD83D"}};
  for (const auto& c : cases)
    for (const auto page : std::initializer_list<std::uint16_t>{1200, 1201, 65001, 54936, 1252}) {
      TZmStringStream stream(page);
      for (const auto text : c.Texts) text.size() == 1 ? stream.AddChar(text[0]) : stream.Add(text);
      EXPECT_EQ(stream.GetDataString(), zm::EncodePage(c.Whole, page)) << page;
    }
  TZmStringStream between(65001);
  between.AddChar(0xD83D);
  between.WriteBuffer("raw", 3);
  between.AddChar(0xDE00);
  EXPECT_EQ(between.GetWString(), u"\uFFFDraw\uFFFD");
  between.AddChar(0xD83D);
  between.SetSize(0);
  between.AddChar(0xDE00);
  EXPECT_EQ(between.GetWString(), u"\uFFFD");
}

// Pairs, lone surrogates, and more than a buffer of them.
zm::String MixedText() {
  zm::String text;
  for (int i = 0; i < 5000; ++i) text += u"a\u00E4\U0001F600\u20AC\xD83D\x62\xDE00";
  return text;
}

TEST(UTF8Adapter, PiecesOfAnySize) {
  const zm::String text = MixedText();
  const std::string utf16 = zm::EncodePage(text, 1200), utf8 = zm::ToUTF8(text) + "\xF0\x9F\xFF\xE2\x82";
  const std::string readable = zm::EncodePage(zm::FromUTF8(utf8), 1200);
  for (const auto size : std::initializer_list<std::size_t>{1, 2, 3, 5, 8191, 8193, 1000000}) {
    zm::TMemoryStream target;
    TZmUTF8StreamAdapter writer(&target, false, false);
    for (std::size_t at = 0; at < utf16.size(); at += size)
      writer.WriteBuffer(utf16.data() + at, std::min(size, utf16.size() - at));
    EXPECT_EQ(writer.GetPosition(), static_cast<std::int64_t>(utf16.size()));
    EXPECT_EQ(Content(target), zm::ToUTF8(text)) << size;

    zm::TZmMemoryStream source(utf8.data(), utf8.size());
    TZmUTF8StreamAdapter reader(&source, false, false);
    std::string read, piece(size, '\0');
    while (const std::size_t count = reader.Read(piece.data(), size)) read.append(piece, 0, count);
    EXPECT_EQ(read, readable) << size;
    EXPECT_EQ(reader.GetPosition(), static_cast<std::int64_t>(readable.size()));
  }
}

TEST(UTF8Adapter, MarkAndEndOfText) {
  const std::string mark = "\xEF\xBB\xBF", lone = "\xEF\xBF\xBD";
  const struct {
    std::string Bytes, Written, Flushed;
  } cases[] = {{"", "", ""},
               {{"a\0", 2}, mark + "a", mark + "a"},
               {"a", "", mark + lone},
               {"\x3D\xD8", "", mark + lone},
               {{"a\0\x3D\xD8\0", 5}, mark + "a", mark + "a" + lone}};
  for (const auto& c : cases) {
    zm::TMemoryStream target;
    {
      TZmUTF8StreamAdapter adapter(&target, false, true);
      adapter.WriteBuffer(c.Bytes.data(), c.Bytes.size());
      EXPECT_EQ(Content(target), c.Written);
    }
    EXPECT_EQ(Content(target), c.Flushed);
  }
}

}  // namespace
