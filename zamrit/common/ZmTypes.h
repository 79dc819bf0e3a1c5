#pragma once

#include <initializer_list>

#include "zamrit/common/TypeKinds.h"
#include "zamrit/platform/Exceptions.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Rtti.h"

namespace zm {

/// A type is not known by the name that is asked for.
ZM_EXCEPTION(EZmUnknownType, Exception);

/// The immutable descriptor of a type that walks over values work with: one for each type, owned by TZmTypes, for the
/// life of the program. Compare by address.
class TZmTypeInfo {
 public:
  /// The reflection of the type; nil for a virtual type.
  const TRttiType* const RttiType;
  /// The raw type record: that of the reflection.
  const TRttiType* const Handle;
  const String Name;
  const String QualifiedName;
  const TZmTypeKind TypeKind;

  /// The runtime's kind; tkUnknown for a virtual type.
  TTypeKind GetKind() const { return Handle ? Handle->GetTypeKind() : tkUnknown; }
  TZmMainTypeKind GetMainTypeKind() const;
  /// Whether the type's values stand in a document as a text: numbers, texts, booleans, enumerations, sets, dates,
  /// Variants.
  bool GetIsSimpleType() const;
  /// The name of the type in a schema: a built-in one such as "int" behind the prefix and a colon, where the prefix is
  /// not empty; an array as "ArrayOf" and its element; any other type by its own name, fit for an XML name. GetTypeInfo
  /// finds a type by this name.
  String SchemaName(StringView Prefix) const;
  /// The descriptor of a schema type that has no type in the program; nil for a number that is none.
  static const TZmTypeInfo* VirtualType(TZmSchemaDataType Type);

 private:
  friend class TZmTypes;
  TZmTypeInfo(const TRttiType* Type, StringView TheName, StringView TheQualifiedName, TZmTypeKind Kind)
      : RttiType(Type), Handle(Type), Name(TheName), QualifiedName(TheQualifiedName), TypeKind(Kind) {}
};

/// The directory of all types. Lookups are safe from several threads once main has begun; registrations too, as long
/// as no other thread relies on what they change.
class TZmTypes {
 public:
  /// The descriptor of a type, made at first use; nil for nil. Costs a load.
  static const TZmTypeInfo* GetTypeInfo(const TRttiType* Type);
  /// The descriptor of a class, or of its nearest ancestor that has been described or used by TypeOf. Nil for nil.
  static const TZmTypeInfo* GetTypeInfo(const TClass* Class);
  /// The descriptor of T.
  template <class T>
  static const TZmTypeInfo* Of();
  /// Looks a type up by one of its names, case ignored. Under tntSchemaName the name may hold a prefix. Kind, where it
  /// is not mtkNone, is the main kind that the type must have. An unknown name gives nil, or raises EZmUnknownType.
  static const TZmTypeInfo* GetTypeInfo(StringView Name, TZmTypeNameType NameType, bool Raise,
                                        TZmMainTypeKind Kind = mtkNone);

  /// Makes further names find a type, under all three kinds of names. A name that is taken stays with its type.
  static void RegisterTypeAlias(const TRttiType* Type, StringView Name);
  static void RegisterTypeAlias(const TRttiType* Type, std::initializer_list<StringView> Names);

  /// Stores a pair for a type and a format; the pair is not looked into and must live as long as the program. A nil
  /// type stands for the format's default. What an application registers comes before what is there; what is built in
  /// comes behind.
  static void RegisterTypeSerializers(const TRttiType* Type, TZmSerializeFormat Format, const void* Pair,
                                      bool BuiltIn = false);
  /// The pair that serves a type: its own, else for a class that of the nearest ancestor that has one, else the
  /// format's default. Choice counts further among the pairs of the type that was found. Nil where there is none; a nil
  /// type answers the default.
  static const void* FindSerializers(const TZmTypeInfo* Type, TZmSerializeFormat Format, std::size_t Choice = 0);

  /// The type code of Variants for a type, or Default where a Variant has none for it.
  static std::uint16_t GetVarType(StringView Name, TZmTypeNameType NameType, std::uint16_t Default);
  /// The descriptor of what a Variant holds: that of Variant itself for an array, nil for null and unassigned.
  static const TZmTypeInfo* VarTypeInfo(const Variant& Value);
  /// The coarse kind of what a Variant holds; none for null and unassigned.
  static TZmMainTypeKind VarMainTypeKind(const Variant& Value);
  static TZmMainTypeKind ToMainTypeKind(TZmTypeKind Kind);

 private:
  class TDirectory;
  static TDirectory& Directory();
  friend class TZmTypeInfo;
};

template <class T>
const TZmTypeInfo* TZmTypes::Of() {
  return GetTypeInfo(TypeOf<T>());
}

}  // namespace zm
