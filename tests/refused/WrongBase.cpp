// refused: TBox does not descend from TOther
#include "zamrit/platform/reflection/Reflection.h"
struct TOther {};
struct TBox {
  int Length;
};
ZM_CLASS(TBox, (TOther), (Length))
