// refused: Lenght
#include "zamrit/platform/reflection/Reflection.h"
struct TBox {
  int Length;
};
ZM_CLASS(TBox, (), (Length, Lenght))
