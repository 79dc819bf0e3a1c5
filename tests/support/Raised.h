#pragma once

#include <string>
#include <typeinfo>

#include "zamrit/platform/Exceptions.h"

/// The message of what a call raises, which must be exactly of class E.
template <class E, class F>
std::string Raised(F Call) {
  try {
    Call();
  } catch (const zm::Exception& e) {
    return typeid(e) == typeid(E) ? e.what() : std::string("of another class: ") + e.what();
  }
  return "nothing was raised";
}
