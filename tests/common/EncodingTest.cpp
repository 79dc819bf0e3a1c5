#include <gtest/gtest.h>

#include <string>

#include "tests/support/Pipe.h"
#include "tests/support/Raised.h"
#include "zamrit/common/Encoding.h"

namespace {

TEST(Encoding, MarksInAStream) {
  const struct {
    std::string Bytes;
    std::uint16_t Page;
    int MarkSize;
  } cases[] = {{"\xEF\xBB\xBF<", 65001, 3},
               {"\xEF\xBB\xBF", 65001, 3},
               {"\xFF\xFE<", 1200, 2},
               {"\xFE\xFF", 1201, 2},
               {"\xEF\xBB", 0, 0},
               {"\xEF\xBB<", 0, 0},
               {"\xFF\xFF", 0, 0},
               {"\xFE", 0, 0},
               {"<a/>", 0, 0},
               {"", 0, 0}};
  for (const auto& c : cases) {
    const std::string bytes = "xy" + c.Bytes;
    zm::TMemoryStream stream;
    stream.WriteBuffer(bytes.data(), bytes.size());
    stream.SetPosition(2);
    EXPECT_EQ(zm::ZmGetCodePage(&stream), c.Page) << c.Bytes;
    EXPECT_EQ(stream.GetPosition(), 2 + c.MarkSize) << c.Bytes;

    TPipe pipe;
    pipe.Out.WriteBuffer(c.Bytes.data(), c.Bytes.size());
    pipe.CloseOut();
    if (c.Page != 0 || c.Bytes.empty())
      EXPECT_EQ(zm::ZmGetCodePage(&pipe.In), c.Page) << c.Bytes;
    else
      EXPECT_EQ(Raised<zm::EStreamError>([&] { zm::ZmGetCodePage(&pipe.In); }), "THandleStream cannot be moved");
  }
}

TEST(Encoding, NamesAndConversions) {
  EXPECT_EQ(zm::ZmCodePage(u"iso-8859-1"), 28591);
  EXPECT_EQ(zm::ZmCodePage(28591), u"ISO-8859-1");
  EXPECT_EQ(Raised<zm::EConvertError>([] { zm::ZmCodePage(u"nope"); }), "Unknown encoding \"nope\"");
  EXPECT_EQ(Raised<zm::EConvertError>([] { zm::ZmCodePage(9); }), "Unknown code page 9");
  EXPECT_EQ(zm::TZmEncoding::ConvertW(u"\u00E4\u0430", 1252), "\xE4?");
  EXPECT_EQ(zm::TZmEncoding::ConvertW(u"\u00E4", 0), "\xC3\xA4");
  EXPECT_EQ(zm::TZmEncoding::ConvertA("\xC3\xA4"), u"\u00E4");
  EXPECT_EQ(zm::TZmEncoding::ConvertA("\xE4", 1252), u"\u00E4");
  EXPECT_EQ(zm::TZmEncoding::ConvertA(zm::cZmUTF8, 3, 65001), u"\uFEFF");
  EXPECT_EQ(zm::TZmEncoding::ConvertA(zm::cZmUTF16LE, -1, 1200), u"");
}

}  // namespace
