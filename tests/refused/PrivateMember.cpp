// refused: FLength
#include "zamrit/platform/reflection/Reflection.h"
class TBox {
  int FLength = 0;
};
ZM_CLASS(TBox, (), (FLength))
