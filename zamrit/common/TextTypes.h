#pragma once

#include <utility>

#include "zamrit/platform/Strings.h"
#include "zamrit/platform/reflection/Reflection.h"

namespace zm {

namespace detail {

/// A text with a meaning of its own: no other text becomes one without being told to.
template <class Tag>
class TTypedText {
 public:
  TTypedText() = default;
  explicit TTypedText(String Value) : FText(std::move(Value)) {}
  explicit TTypedText(StringView Value) : FText(Value) {}
  explicit TTypedText(const char16_t* Value) : FText(Value) {}

  const String& Text() const { return FText; }
  friend bool operator==(const TTypedText& Left, const TTypedText& Right) = default;

 private:
  String FText;
};

struct TXMLTextTag {
  static constexpr StringView Name = u"ZmXMLString";
};
struct TJSONTextTag {
  static constexpr StringView Name = u"ZmJSONString";
};

template <class Tag>
struct TDescriptor<TTypedText<Tag>> {
  static const TRttiType* Make() {
    return new TRttiTextType(
        Tag::Name, u"uZmTypes." + String(Tag::Name), tkUString, StorageOf<TTypedText<Tag>>(),
        [](const void* Data) { return static_cast<const TTypedText<Tag>*>(Data)->Text(); },
        [](void* Data, StringView Text) {
          *static_cast<TTypedText<Tag>*>(Data) = TTypedText<Tag>(Text);
          return true;
        });
  }
};

}  // namespace detail

/// A text that is XML already: it is written as it stands.
using ZmXMLString = detail::TTypedText<detail::TXMLTextTag>;
/// A text that is JSON already: it is written as it stands.
using ZmJSONString = detail::TTypedText<detail::TJSONTextTag>;

}  // namespace zm
