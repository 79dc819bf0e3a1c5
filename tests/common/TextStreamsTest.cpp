#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/CodePages.h"

namespace {

using zm::TZmStringStream;
using zm::TZmUTF8StreamAdapter;

std::string Content(zm::TMemoryStream& Stream) {
  return {static_cast<const char*>(Stream.GetMemory()), static_cast<std::size_t>(Stream.GetSize())};
}

TEST(StringStream, ShowsTheSameTextInEveryForm) {
  const zm::String text = u"a\u00E4\u20AC";
  const std::string utf8 = "a\xC3\xA4\xE2\x82\xAC", utf16 = zm::EncodePage(text, 1200), ansi = "a\xE4\x80";
  const int ansiSize = static_cast<int>(ansi.size());
  TZmStringStream wide(text), moved{zm::String(text)}, borrowed(zm::cZmBorrow, text), narrow(utf8, 65001),
      platform(utf8, 0), movedBytes(std::string(utf8), 65001), borrowedBytes(zm::cZmBorrow, ansi, 1252),
      block(ansi.data(), ansiSize, 1252), added(65001, 16), addedAnsi(1252, 0), literal(u"a\u00E4\u20AC");
  added.Add(text);
  addedAnsi.Add(text);
  const struct {
    TZmStringStream& Stream;
    std::string Data, Ansi;
  } cases[] = {{wide, utf16, utf8},    {moved, utf16, utf8},     {borrowed, utf16, utf8},     {narrow, utf8, utf8},
               {platform, utf8, utf8}, {movedBytes, utf8, utf8}, {borrowedBytes, ansi, ansi}, {block, ansi, ansi},
               {added, utf8, utf8},    {addedAnsi, ansi, ansi},  {literal, utf16, utf8}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.Stream.GetAsString(), text);
    EXPECT_EQ(c.Stream.GetWString(), text);
    EXPECT_EQ(c.Stream.GetDataString(), c.Data);
    EXPECT_EQ(c.Stream.GetAString(), c.Ansi);
    EXPECT_EQ(c.Stream.GetAsUTF8(), utf8);
    EXPECT_EQ(c.Stream.StringData(1252), ansi);
    EXPECT_EQ(c.Stream.StringData(1200), utf16);
    std::uint64_t size = 0;
    EXPECT_EQ(c.Stream.InPlace(size), c.Stream.GetMemory());
    EXPECT_EQ(size, c.Data.size());
  }
  EXPECT_EQ(borrowed.GetMemory(), text.data());
  EXPECT_EQ(block.GetMemory(), ansi.data());
}

TEST(StringStream, TextOfOthersIsOnlyRead) {
  const std::string bytes = "bytes";
  TZmStringStream borrowed(zm::cZmBorrow, u"text"), borrowedBytes(zm::cZmBorrow, bytes, 65001), block("ab", 2, 65001);
  for (auto* stream : {&borrowed, &borrowedBytes, &block}) {
    EXPECT_EQ(Raised<zm::EStreamError>([&] { stream->Add(u"x"); }), "TZmStringStream cannot be written");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { stream->WriteBuffer("x", 1); }), "TZmStringStream cannot be written");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { stream->SetSize(0); }), "TZmStringStream cannot be written");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { stream->Clear(); }), "TZmStringStream cannot be written");
  }
  EXPECT_EQ(block.GetDataString(), "ab");
}

TEST(StringStream, TextTakenOverCanBeWritten) {
  TZmStringStream stream(std::string("0123456789"), 65001);
  stream.WriteBuffer("ab", 2);
  EXPECT_EQ(stream.GetPosition(), 2);
  stream.Add(u"\u00E4");
  EXPECT_EQ(stream.GetPosition(), 12);
  EXPECT_EQ(stream.GetDataString(), "ab23456789\xC3\xA4");
  stream.Clear();
  stream.Add(u"x");
  EXPECT_EQ(stream.GetDataString(), "x");
}

TEST(StringStream, HalvesOfAPairMeet) {
  const std::string pair = "\xF0\x9F\x98\x80", lone = "\xEF\xBF\xBD";
  const struct {
    std::vector<zm::StringView> Texts;
    std::string UTF8;
  } cases[] = {
      {{u"\xD83D", u"\xDE00"}, pair},
      {{u"a\xD83D", u"",
        u"\xDE00"
        u"b"},
       "a" + pair + "b"},
      {{u"\xD83D", u"\xD83D", u"\xDE00"}, lone + pair},
      {{u"\xD83D", u"x", u"\xDE00"}, lone + "x" + lone},
      {{u"\xDE00", u"\xD83D"}, lone + lone},
  };
  for (const auto& c : cases)
    for (const std::uint16_t page : {zm::cZmPageUTF16, std::uint16_t(1201), zm::cZmPageUTF8, std::uint16_t(54936)}) {
      TZmStringStream stream(page);
      for (const auto text : c.Texts) {
        if (text.size() == 1)
          stream.AddChar(text[0]);
        else
          stream.Add(text);
      }
      std::string expected = c.UTF8;
      for (std::size_t at; page == 54936 && (at = expected.find(lone)) != std::string::npos;)
        expected.replace(at, 3, "?");
      EXPECT_EQ(stream.GetAsUTF8(), expected) << page;
    }
  TZmStringStream between(65001);
  between.AddChar(0xD83D);
  between.WriteBuffer("raw", 3);
  between.AddChar(0xDE00);
  EXPECT_EQ(between.GetDataString(), lone + "raw" + lone);
  between.AddChar(0xD83D);
  between.SetSize(0);
  between.AddChar(0xDE00);
  EXPECT_EQ(between.GetDataString(), lone);
}

TEST(MemoryStreamOverBlock, ReadsInPlaceAndRefusesToWrite) {
  const std::string block = "block";
  zm::TZmMemoryStream lent(block.data(), block.size()), own(1024), empty(0);
  EXPECT_EQ(lent.GetMemory(), block.data());
  EXPECT_EQ(lent.GetSize(), 5);
  EXPECT_EQ(Raised<zm::EStreamError>([&] { lent.WriteWord(1); }), "TZmMemoryStream cannot be written");
  own.WriteWord(0xFEFF);
  own.WriteWord(0x20AC);
  EXPECT_EQ(Content(own), "\xFF\xFE\xAC\x20");
  EXPECT_EQ(empty.CopyFrom(&lent), 5u);
  EXPECT_EQ(Content(empty), block);
}

// UTF-16 of a text with pairs, lone surrogates and more than a buffer of it.
zm::String MixedText() {
  zm::String text;
  for (int i = 0; i < 5000; ++i)
    text +=
        u"a\u00E4\U0001F600\u20AC\xD83D"
        u"b\xDE00";
  return text;
}

TEST(UTF8Adapter, WritesPiecesOfAnySize) {
  const zm::String text = MixedText();
  const std::string bytes = zm::EncodePage(text, 1200), expected = zm::ToUTF8(text);
  for (const std::size_t size : {std::size_t(1), std::size_t(2), std::size_t(3), std::size_t(5), std::size_t(8191),
                                 std::size_t(8193), bytes.size()}) {
    zm::TMemoryStream target;
    TZmUTF8StreamAdapter adapter(&target, false, false);
    for (std::size_t at = 0; at < bytes.size(); at += size)
      adapter.WriteBuffer(bytes.data() + at, std::min(size, bytes.size() - at));
    EXPECT_EQ(adapter.GetPosition(), static_cast<std::int64_t>(bytes.size()));
    EXPECT_EQ(Content(target), expected) << size;
  }
}

TEST(UTF8Adapter, EndsOfTexts) {
  const struct {
    std::string Bytes, Written, Flushed;
  } cases[] = {
      {"", "", ""},
      {{"a\0", 2},
       "\xEF\xBB\xBF"
       "a",
       "\xEF\xBB\xBF"
       "a"},
      {"a", "", "\xEF\xBB\xBF\xEF\xBF\xBD"},
      {"\x3D\xD8", "", "\xEF\xBB\xBF\xEF\xBF\xBD"},
      {{"a\0\x3D\xD8\0", 5},
       "\xEF\xBB\xBF"
       "a",
       "\xEF\xBB\xBF"
       "a\xEF\xBF\xBD"},
  };
  for (const auto& c : cases) {
    zm::TMemoryStream target, second;
    {
      TZmUTF8StreamAdapter adapter(&target, false, true);
      adapter.WriteBuffer(c.Bytes.data(), c.Bytes.size());
      EXPECT_EQ(Content(target), c.Written);
    }
    EXPECT_EQ(Content(target), c.Flushed);
    TZmUTF8StreamAdapter adapter(&second, false, true);
    adapter.WriteBuffer(c.Bytes.data(), c.Bytes.size());
    adapter.Flush();
    adapter.Flush();
    EXPECT_EQ(Content(second), c.Flushed);
  }
}

TEST(UTF8Adapter, ReadsPiecesOfAnySize) {
  const std::string utf8 = zm::ToUTF8(MixedText()) + "\xF0\x9F\xFF\xE2\x82";
  const std::string expected = zm::EncodePage(zm::FromUTF8(utf8), 1200);
  for (const std::size_t size : {1, 2, 3, 5, 100000}) {
    zm::TZmMemoryStream source(utf8.data(), utf8.size());
    TZmUTF8StreamAdapter adapter(&source, false, false);
    std::string read, piece(size, '\0');
    while (const std::size_t count = adapter.Read(piece.data(), size)) read.append(piece, 0, count);
    EXPECT_EQ(read, expected) << size;
    EXPECT_EQ(adapter.GetPosition(), static_cast<std::int64_t>(expected.size()));
    EXPECT_EQ(adapter.Read(piece.data(), size), 0u);
  }
}

// A target that fails, and tells of its end.
struct TFailing : zm::TStream {
  explicit TFailing(bool& AEnded) : Ended(AEnded) {}
  ~TFailing() override { Ended = true; }
  std::size_t Write(const void*, std::size_t) override { return 0; }
  bool& Ended;
};

TEST(UTF8Adapter, FailuresAndOwnership) {
  bool ended = false;
  {
    TZmUTF8StreamAdapter adapter(new TFailing(ended), true, false);
    EXPECT_EQ(Raised<zm::EWriteError>([&] { adapter.WriteBuffer("a\0", 2); }), "Stream write error");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { adapter.SetPosition(7); }), "TZmUTF8StreamAdapter cannot be moved");
    EXPECT_EQ(Raised<zm::EStreamError>([&] { adapter.GetSize(); }), "TZmUTF8StreamAdapter cannot be moved");
    adapter.WriteBuffer("a", 1);
    EXPECT_FALSE(ended);
  }
  EXPECT_TRUE(ended);
}

}  // namespace
