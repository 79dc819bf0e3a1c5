#pragma once

#include "zamrit/platform/Strings.h"
#include "zamrit/platform/reflection/TypeBuilder.h"

namespace zm {

/// What a hint tells the serializers of a member or type, and what stands in the hint's value.
enum TSerializerHintOption {
  shoName,                ///< the name under which the member is written and read; empty leaves it out
  shoRequired,            ///< nothing yet
  shoSerializerHelper,    ///< the qualified name of the class that writes the member
  shoDeserializerHelper,  ///< the qualified name of the class that reads the member
  shoNodeType,            ///< "NodeValue": the text of the XML element goes to this member
  shoEnumPrefix,          ///< on an enumeration: what is cut off its names when they are written
  shoDoNotSerialize,      ///< leaves the member out
  shoTimezoneFormat,      ///< the name of the time zone form of a date or time
};

/// Attaches a hint to a member or type: T.Published(u"Id", &TOrder::Id).Hint(shoName, u"order-id").
class SerializerHint : public TCustomAttribute {
 public:
  explicit SerializerHint(TSerializerHintOption Option, StringView Value = {}) : FOption(Option), FValue(Value) {}
  TSerializerHintOption GetOption() const { return FOption; }
  const String& GetValue() const { return FValue; }

 private:
  TSerializerHintOption FOption;
  String FValue;
};

template <>
struct THintAttribute<TSerializerHintOption> {
  using TAttribute = SerializerHint;
};

}  // namespace zm
