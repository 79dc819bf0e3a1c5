#pragma once

#include <string_view>

#include "zamrit/common/TextStreams.h"
#include "zamrit/platform/Strings.h"

namespace zm {

/// What ends a CDATA section, without the bracket in front of it.
inline constexpr char cZmCDATAEndA[2] = {']', '>'};
inline constexpr char16_t cZmCDATAEndW[2] = {u']', u'>'};

/// The text as it stands in XML: "<", ">" and "&" as "&lt;", "&gt;" and "&amp;", codes 1 to 31 as "&#9;" and the like
/// and, where asked for, apostrophes as "&apos;" and quotation marks as "&quot;". All else stays. The string form drops
/// code 0, the 8-bit form keeps it. Linear; where nothing is to be replaced, one pass and one copy.
String ZmStrToXML(StringView Text, bool EscapeApos, bool EscapeQuot);
RawByteString ZmStrToXML(std::string_view Text, bool EscapeApos, bool EscapeQuot);
/// Writes the same to a stream, with code 0 kept: what stays goes out as raw UTF-16 at the position of the stream, what
/// replaces goes to its end in its page. Length counts units; 0 writes nothing.
void ZmStrToXML(const char16_t* Text, int Length, TZmStringStream* Stream, bool EscapeApos, bool EscapeQuot);

/// The text with its references resolved: the named ones of HTML 4.01 except "&thetasym;", "&apos;", and numeric ones,
/// of which the low 16 bits make one unit. A name is known by a folded key alone, so some others mean an entity, too.
/// What is no reference, has a blank in it or is unknown stays as it stands. Raises EConvertError for a numeric
/// reference that is no number for StrToInt. Linear.
String ZmXMLToStr(StringView Text);
/// The same for 8-bit text, with fewer names: of one that begins with "a", "g", "l" or "q" in either case, the first
/// letter decides ("a" with "m" behind it is "&", any other "a" is an apostrophe); all others stay.
RawByteString ZmXMLToStr(std::string_view Text);

}  // namespace zm
