// refused: TBox.Inner: its type is not described
#include "zamrit/platform/reflection/Reflection.h"
struct TInner {};
struct TBox {
  TInner Inner;
};
ZM_CLASS(TBox, (), (Inner))
