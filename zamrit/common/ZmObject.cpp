#include "zamrit/common/ZmObject.h"

namespace zm {

void TZmObjectEx::Assign(TZmObjectEx* Source) {
  if (!Source) throw EConvertError(u"Cannot assign a nil to a %s", {ClassName()});
  Source->AssignTo(this);
}

void TZmObjectEx::AssignTo(TZmObjectEx* Target) {
  throw EConvertError(u"Cannot assign a %s to a %s", {ClassName(), Target->ClassName()});
}

void TZmObjectEx::DefineProperties(TFiler*) {}

void TZmObjectEx::OnObjectDestroyed(TObject*) {}

}  // namespace zm
