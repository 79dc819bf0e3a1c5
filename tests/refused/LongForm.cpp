// refused: Inner
#include "zamrit/platform/reflection/Reflection.h"
struct TInner {};
struct TBox {
  TInner Inner;
};
template <>
void zm::Describe(zm::TTypeBuilder<TBox>& T) {
  T.Published(u"Inner", &TBox::Inner);
}
