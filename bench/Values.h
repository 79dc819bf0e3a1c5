#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zm::bench {

/// Does a conversion as many times as it is told, on one value after the other.
using TValuesWork = std::function<void(std::size_t Count)>;

/// The fields of a moment.
struct TMoment {
  int Year, Month, Day, Hour, Minute, Second, Millisecond;
};

// What the compiler must take for used.
template <class T>
void Use(const T& Value) {
  asm volatile("" : : "r"(&Value) : "memory");
}

// The same conversions by others. Texts are in UTF-8; they and the values must outlive the work.
TValuesWork EscapeWithLibxml2(const std::string& Text);
TValuesWork EscapeEntitiesWithLibxml2(const std::string& Text);
TValuesWork DecodeWithLibxml2(const std::string& Text);
TValuesWork WriteDoublesWithStd(const std::vector<double>& Values);
TValuesWork ReadDoublesWithStd(const std::vector<std::string>& Texts);
TValuesWork WriteIntegersWithStd(const std::vector<std::int64_t>& Values);
TValuesWork ReadIntegersWithStd(const std::vector<std::string>& Texts);
TValuesWork WriteMomentsWithStd(const std::vector<TMoment>& Values);

}  // namespace zm::bench
