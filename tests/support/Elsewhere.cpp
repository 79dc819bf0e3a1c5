#include "tests/support/Elsewhere.h"

#include "zamrit/common/uZmRTTI.h"

namespace elsewhere {

class TThing : public zm::TPersistent {
 public:
  int Size = 1;
};

ZM_CLASS(TThing, (zm::TPersistent), (Size))

const zm::TRttiType* ThingType() { return zm::TypeOf<TThing*>(); }

}  // namespace elsewhere
