#include "zamrit/platform/Exceptions.h"

namespace zm {

Exception::Exception(StringView Message)
    : FTexts(std::make_shared<const TTexts>(TTexts{String(Message), ToUTF8(Message)})) {}

Exception::Exception(StringView Pattern, std::initializer_list<TFormatArg> Arguments)
    : Exception(Format(Pattern, Arguments)) {}

const String& Exception::GetMessage() const noexcept { return FTexts->Wide; }

const char* Exception::what() const noexcept { return FTexts->Narrow.c_str(); }

}  // namespace zm
