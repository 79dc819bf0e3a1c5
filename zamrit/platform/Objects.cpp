#include "zamrit/platform/Objects.h"

namespace zm {

void TObject::Free() {
  BeforeDestruction();
  delete this;
}

const TClass* TObject::StaticClass() {
  static const TClass descriptor{u"TObject", nullptr};
  return &descriptor;
}

void detail::TFreeObject::operator()(TObject* Object) const noexcept {
  try {
    Object->EndOwnership();
  } catch (...) {  // NOLINT(bugprone-empty-catch): an object that refuses to go stays with whoever still holds it
  }
}

}  // namespace zm
