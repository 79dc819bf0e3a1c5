#include "zamrit/common/Encoding.h"

#include <algorithm>
#include <cstring>

#include "zamrit/platform/CodePages.h"

namespace zm {
namespace {

struct TMark {
  std::string_view Bytes;
  std::uint16_t Page;
};
constexpr TMark cMarks[] = {{"\xEF\xBB\xBF", cZmPageUTF8}, {"\xFF\xFE", cZmPageUTF16}, {"\xFE\xFF", 1201}};

}  // namespace

std::uint16_t ZmCodePage(StringView Name) { return CodePageOfName(Name); }

String ZmCodePage(std::uint16_t Page) { return CodePageName(Page); }

std::uint16_t ZmGetCodePage(TStream* Stream) {
  const std::int64_t start = Stream->GetPosition();
  char bytes[3];
  std::size_t count = 0;
  // Reads on only as long as what has been read begins a mark.
  while (Stream->Read(bytes + count, 1) == 1) {
    const std::string_view seen(bytes, ++count);
    const auto* mark = std::find_if(std::begin(cMarks), std::end(cMarks),
                                    [seen](const TMark& known) { return known.Bytes.starts_with(seen); });
    if (mark == std::end(cMarks)) break;
    if (mark->Bytes == seen) return mark->Page;
  }
  Stream->SetPosition(start);
  return 0;
}

RawByteString TZmEncoding::ConvertW(StringView Text, std::uint16_t CodePage) { return EncodePage(Text, CodePage); }

String TZmEncoding::ConvertA(std::string_view Bytes, std::uint16_t CodePage) { return DecodePage(Bytes, CodePage); }

String TZmEncoding::ConvertA(const unsigned char* Bytes, int Size, std::uint16_t CodePage) {
  const auto size = static_cast<std::size_t>(std::max(Size, 0));
  return DecodePage({reinterpret_cast<const char*>(Bytes), size}, CodePage);
}

}  // namespace zm
