// refused: clGren
#include "zamrit/platform/reflection/Reflection.h"
enum class TColor { clRed };
ZM_ENUM(TColor, clRed, clGren)
