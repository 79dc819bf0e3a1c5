#include "zamrit/common/NetEncoding.h"

#include <gtest/gtest.h>

#include "tests/support/Raised.h"
#include "zamrit/platform/Exceptions.h"

namespace {

using namespace std::string_view_literals;
using zm::TZmNetEncoding;

TEST(Base64, CodesBothWays) {
  const auto& coder = TZmNetEncoding::GetBase64ExEncoding();
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", ""},         {"f", "Zg=="},       {"fo", "Zm8="}, {"foo", "Zm9v"}, {"foobar", "Zm9vYmFy"},
      {"\0"sv, "AA=="}, {"\xFB\xFF", "+/8="}};
  for (const auto& [bytes, code] : cases) {
    EXPECT_EQ(coder.Encode(bytes), code);
    EXPECT_EQ(coder.Decode(code), bytes) << code;
  }
  EXPECT_EQ(coder.Encode(u"\u20AC"), u"4oKs");
  EXPECT_EQ(coder.Decode(u" 4o\r\nKs\t"), u"\u20AC");
  EXPECT_EQ(coder.EncodeBytesToString("\xFF"), u"/w==");
  EXPECT_EQ(coder.DecodeStringToBytes(u"/w = ="), "\xFF");
}

TEST(Base64, BreaksLinesBetweenNotBehind) {
  const auto& lines = TZmNetEncoding::GetBase64Encoding();
  for (std::size_t size = 0; size < 300; ++size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 37);
    std::string flat = TZmNetEncoding::GetBase64ExEncoding().Encode(bytes);
    for (std::size_t at = 76; at < flat.size(); at += 78) flat.insert(at, "\r\n");
    ASSERT_EQ(lines.Encode(bytes), flat) << size;
    ASSERT_EQ(lines.Decode(flat), bytes) << size;
  }
}

TEST(Base64, RefusesWhatNoEncoderWrites) {
  for (const auto bad : {"Z"sv, "Zg"sv, "Zg="sv, "Zg==="sv, "=Zg="sv, "="sv, "===="sv, "Zg==Zg=="sv, "Zm9v="sv,
                         "Zh=="sv, "Zm9="sv, "Zm9-"sv, "Zm9vYmF*"sv, "Zm\0v"sv, "Zm9\xE9"sv})
    EXPECT_EQ(Raised<zm::EConvertError>([&] { TZmNetEncoding::GetBase64Encoding().Decode(bad); }),
              "The text is not valid base-64")
        << bad;
}

TEST(URLCoding, DiffersForFormsAndComponents) {
  const auto &form = TZmNetEncoding::GetURLEncoding(), &component = TZmNetEncoding::GetURLComponentEncoding();
  EXPECT_EQ(form.Encode("aZ09-._~ +&=/%\xC3\0"sv), "aZ09-._~+%2B%26%3D%2F%25%C3%00");
  EXPECT_EQ(component.Encode(u"a \u00E9+"), u"a%20%C3%A9%2B");
  std::string all;
  for (int i = 0; i < 256; ++i) all.push_back(static_cast<char>(i));
  for (const auto* coder : {&form, &component}) EXPECT_EQ(coder->Decode(coder->Encode(all)), all);

  EXPECT_EQ(form.Decode("a+b%2b%C3%a9"), "a b+\xC3\xA9");
  EXPECT_EQ(component.Decode("a+b"), "a+b");
  for (const auto literal : {"%"sv, "%4"sv, "a%4g"sv, "%%%"sv, "%g4"sv, "%\xFF\xFF"sv})
    EXPECT_EQ(form.Decode(literal), literal);
  EXPECT_EQ(form.Decode(u"\u20AC%FF%E2%82%AC"), u"\u20AC\uFFFD\u20AC");
}

}  // namespace
