// refused: TBox.Inners: its type is not described
#include <vector>
#include "zamrit/platform/reflection/Reflection.h"
struct TInner {};
struct TBox {
  std::vector<TInner*> Inners;
};
ZM_CLASS(TBox, (), (Inners))
