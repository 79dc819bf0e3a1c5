#include <charconv>
#include <cstdio>

#include "Values.h"

namespace zm::bench {
namespace {

// Into a buffer on the stack: nothing is allocated, and no text is made.
template <class T, class... Arguments>
TValuesWork WriteWith(const std::vector<T>& Values, Arguments... Format) {
  return [&Values, Format...](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) {
      char text[64];
      const auto result = std::to_chars(text, text + sizeof text, Values[i % Values.size()], Format...);
      Use(text);
      Use(result.ptr);
    }
  };
}

template <class T>
TValuesWork ReadWith(const std::vector<std::string>& Texts) {
  return [&Texts](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) {
      const std::string& text = Texts[i % Texts.size()];
      T value{};
      std::from_chars(text.data(), text.data() + text.size(), value);
      Use(value);
    }
  };
}

}  // namespace

TValuesWork WriteDoublesWithStd(const std::vector<double>& Values) {
  return WriteWith(Values, std::chars_format::general, 15);
}

TValuesWork ReadDoublesWithStd(const std::vector<std::string>& Texts) { return ReadWith<double>(Texts); }

TValuesWork WriteIntegersWithStd(const std::vector<std::int64_t>& Values) { return WriteWith(Values); }

TValuesWork ReadIntegersWithStd(const std::vector<std::string>& Texts) { return ReadWith<std::int64_t>(Texts); }

TValuesWork WriteMomentsWithStd(const std::vector<TMoment>& Values) {
  return [&Values](std::size_t Count) {
    for (std::size_t i = 0; i < Count; ++i) {
      const TMoment& m = Values[i % Values.size()];
      char text[80];
      std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", m.Year, m.Month, m.Day, m.Hour, m.Minute,
                    m.Second, m.Millisecond);
      Use(text);
    }
  };
}

}  // namespace zm::bench
