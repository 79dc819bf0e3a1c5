#pragma once

#include <cstddef>

#include "zamrit/platform/reflection/Members.h"
#include "zamrit/platform/reflection/Rtti.h"

namespace zm {

/// The descriptor of an object's own class, or of its nearest ancestor that has one. Nil for nil. Safe from several
/// threads; a lookup in a hash table under a shared lock.
const TRttiInstanceType* TypeOfObject(const TObject* Object);
/// The descriptor behind a class reference, or nil where none has been made or registered.
const TRttiInstanceType* ClassInfo(const TClass* Class);

/// Lets GetClass find a class by its name. Meant for the start of a program; safe from several threads.
void RegisterClass(const TClass* Class);
/// The registered class of that name, case ignored, or nil.
const TClass* GetClass(StringView Name);

namespace detail {

using TTypeThunk = const TRttiType* (*)();

/// Notes a type that is to be known by name: its descriptor is made at the first search. Returns true.
bool RegisterType(TTypeThunk Type);
/// Enters a new descriptor into the directory and returns it.
const TRttiType* Publish(const TRttiType* Type);
/// All descriptors, in the order of their making, the registered ones made first: the one at Index, or nil behind the
/// last. An index keeps its meaning.
const TRttiType* TypeAt(std::size_t Index);

[[noreturn]] void RaiseInvalidCast(const TRttiType* From, const TRttiType* To);
/// Whether a value is empty, or a TValue or Variant that holds nothing.
bool HoldsNothing(const TValue& Value);
[[noreturn]] void RaiseTooLong();
[[noreturn]] void RaisePropertyNotWritable(StringView Name);
void CheckArgumentCount(StringView Method, std::size_t Given, std::size_t Taken);

}  // namespace detail

}  // namespace zm
