#pragma once

#include "zamrit/xml/json/JSONReader.h"

namespace zm {

/// Reads the body of an HTML form post, as `a=1&b[c]=2&d[0]=x`, and tells it as one JSON object: a member for each key,
/// an object for a key in brackets, an array for brackets that are empty or hold a number, and every value as a string.
/// Values are escaped as ZmStrToJSON does, but one that begins with "[" or "{" is told as it stands.
///
/// The events are not balanced: a nested object that ends the post is closed without an EndMember, and an element of an
/// array is followed by an EndObject also where no object was begun. Only "=" and brackets end a key. What stands from
/// the first key on that begins with "_" and is not the first pair is not read.
///
/// The error handler is neither needed nor told. Raises Exception for a key that goes on behind a closing bracket with
/// anything but a bracket or "=" and for an escape of several bytes that does not go on with one, and EConvertError for
/// digits that are none or are missing; other bytes that are no UTF-8 become U+FFFD. Time is linear in the text; memory
/// is that of the largest key or value, with a record of 40 bytes for each open bracket.
class TZmFormURLEncodedJSONReader : public TZmJSONReader {
  ZM_OBJECT(TZmFormURLEncodedJSONReader, TZmJSONReader)
 protected:
  void InternalParse() override;
};

}  // namespace zm
