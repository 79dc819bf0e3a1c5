#pragma once

namespace zm::detail {

/// Whether a UTF-16 unit may begin a name of XML 1.0, fifth edition; no colon, no surrogate.
constexpr bool IsNameStartChar(char16_t C) {
  constexpr struct {
    char16_t First, Last;
  } ranges[] = {{u'A', u'Z'},     {u'_', u'_'},     {u'a', u'z'},     {0xC0, 0xD6},     {0xD8, 0xF6},
                {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F},
                {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}};
  for (const auto& range : ranges)
    if (C >= range.First && C <= range.Last) return true;
  return false;
}

/// Whether a unit may stand in such a name.
constexpr bool IsNameChar(char16_t C) {
  return IsNameStartChar(C) || C == u'-' || C == u'.' || (C >= u'0' && C <= u'9') || C == 0xB7 ||
         (C >= 0x300 && C <= 0x36F) || C == 0x203F || C == 0x2040;
}

}  // namespace zm::detail
