#pragma once

#include "zamrit/platform/Exceptions.h"

namespace zm {

/// Stops the fuzzer with the present input where a condition does not hold.
inline void Require(bool Condition) {
  if (!Condition) __builtin_trap();
}

/// Whether a call ends without one of the library's exceptions.
template <class F>
bool Try(F Call) {
  try {
    Call();
    return true;
  } catch (const Exception&) {
    return false;
  }
}

}  // namespace zm
