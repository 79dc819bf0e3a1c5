#pragma once

#include "zamrit/common/TextParser.h"
#include "zamrit/platform/Exceptions.h"

namespace zm::detail {

/// The message of the exception that is being handled, empty where it has none; CutOff tells whether input ended in the
/// middle of something.
inline String CurrentMessage(bool& CutOff) {
  CutOff = false;
  try {
    throw;
  } catch (const EZmTextParserEOF& e) {
    CutOff = true;
    return e.GetMessage();
  } catch (const Exception& e) {
    return e.GetMessage();
  } catch (const std::exception& e) {
    return FromUTF8(e.what());
  } catch (...) {
    return {};
  }
}

}  // namespace zm::detail
