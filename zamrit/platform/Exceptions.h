#pragma once

#include <exception>
#include <initializer_list>
#include <memory>
#include <string>

#include "zamrit/platform/Strings.h"

namespace zm {

/// The root of everything that the library throws.
class Exception : public std::exception {
 public:
  explicit Exception(StringView Message);
  /// Formats the message as Format does.
  Exception(StringView Pattern, std::initializer_list<TFormatArg> Arguments);

  /// The message in UTF-16. Valid as long as the exception or a copy of it lives.
  const String& GetMessage() const noexcept;
  /// The message in UTF-8. Valid as long as the exception or a copy of it lives.
  const char* what() const noexcept override;

 private:
  struct TTexts {
    String Wide;
    std::string Narrow;
  };
  std::shared_ptr<const TTexts> FTexts;  // shared, so that copying an exception cannot throw
};

/// Declares an exception class that adds nothing to its parent.
#define ZM_EXCEPTION(Name, Parent) \
  class Name : public Parent {     \
   public:                         \
    using Parent::Parent;          \
  }

/// A condition inside the library that must hold did not; present in every build type.
ZM_EXCEPTION(EAssertionFailed, Exception);
/// A text or value could not be converted.
ZM_EXCEPTION(EConvertError, Exception);
/// A value lies outside the range of its target.
ZM_EXCEPTION(ERangeError, Exception);
/// An operation is not offered.
ZM_EXCEPTION(ENotSupportedException, Exception);
/// A nesting or a chain of calls that would never end.
ZM_EXCEPTION(EStackOverflow, Exception);
/// An object is used against the rules of its lifetime.
ZM_EXCEPTION(EInvalidPointer, Exception);
/// A stream could not do what was asked.
ZM_EXCEPTION(EStreamError, Exception);
/// A stream ended before the bytes that were asked for, or could not be read.
ZM_EXCEPTION(EReadError, EStreamError);
/// A stream did not take all bytes.
ZM_EXCEPTION(EWriteError, EStreamError);
/// A file could not be opened.
ZM_EXCEPTION(EFOpenError, EStreamError);
/// A file could not be created.
ZM_EXCEPTION(EFCreateError, EStreamError);
/// A list has no entry at an index, or refuses one.
ZM_EXCEPTION(EListError, Exception);
/// A list of texts refuses an entry.
ZM_EXCEPTION(EStringListError, EListError);

/// Raises EAssertionFailed with the text when the condition does not hold.
inline void Assert(bool Condition, StringView Message) {
  if (!Condition) throw EAssertionFailed(Message);
}

}  // namespace zm
