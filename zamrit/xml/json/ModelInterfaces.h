#pragma once

#include <cstdint>

#include "zamrit/common/TypeKinds.h"
#include "zamrit/common/ZmObject.h"
#include "zamrit/platform/AnyText.h"
#include "zamrit/platform/Set.h"
#include "zamrit/platform/Streams.h"
#include "zamrit/platform/Strings.h"
#include "zamrit/platform/Variant.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

/// How a member or a path is looked up.
enum TZmJDOCSelectOption {
  jsoRaise,           ///< nothing found raises EZmJSONException
  jsoCreate,          ///< a member that is missing is added; wins over jsoRaise
  jsoCaseInsensitive  ///< names and filters ignore case
};
using TZmJDOCSelectOptions = TSet<TZmJDOCSelectOption>;

class IZmJSONMember;
class IZmJSONObject;
class IZmJSONArray;

/// A handle's way to any node of the JSON model. A handle keeps its node alive: one that is deleted from its tree lives
/// on without an owner until its last handle goes. What each operation does, and what it refuses, stands at the class
/// of the same name.
class IZmJSONBase : public virtual IZmInterface {
 public:
  virtual TObject* Implementor() = 0;
  virtual bool GetAsBoolean() = 0;
  virtual double GetAsDouble() = 0;
  virtual std::int32_t GetAsInteger() = 0;
  virtual std::int64_t GetAsLargeInt() = 0;
  virtual String GetAsString() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual TValue GetAsValue() = 0;
  virtual TZmIntf<IZmJSONObject> GetAsObjectIntf() = 0;
  virtual TZmIntf<IZmJSONArray> GetAsArrayIntf() = 0;
  virtual String GetName() = 0;
  virtual TZmIntf<IZmJSONBase> GetValue() = 0;
  virtual TZmJSONDataType GetJSONType() = 0;
  virtual String GetAsJSON() = 0;
  virtual TZmIntf<IZmJSONMember> GetMemberEx(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmJSONBase> GetItem(int Index) = 0;
  virtual void SetAsBoolean(bool Value) = 0;
  virtual void SetAsDouble(double Value) = 0;
  virtual void SetAsInteger(std::int32_t Value) = 0;
  virtual void SetAsString(const TZmAnyText& Value) = 0;
  virtual void SetAsLargeInt(std::int64_t Value) = 0;
  virtual void SetAsJSON(StringView Text) = 0;
  virtual void SetAsVariant(const Variant& Value) = 0;
  virtual void SetAsValue(const TValue& Value) = 0;
  virtual void SetName(const TZmAnyText& Name) = 0;
  virtual int Count() = 0;
  virtual TZmIntf<IZmJSONArray> SelectIntf(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {}) = 0;
  virtual TZmIntf<IZmJSONMember> FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase = false) = 0;
  virtual bool HasMember(const TZmAnyText& Name, bool IgnoreCase = false) = 0;
  virtual TZmIntf<IZmJSONMember> GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) = 0;
};

/// A handle's way to a string, number, boolean or null, whose value the two accessors are.
class IZmJSONSimpleType : public virtual IZmJSONBase {
 public:
  Variant GetAsVariant() override = 0;
  void SetAsVariant(const Variant& Value) override = 0;
};

/// A handle's way to an object: the operations of TZmJSONObject.
class IZmJSONObject : public virtual IZmJSONBase {
 public:
  virtual TZmIntf<IZmJSONMember> AddMemberIntf1(const TZmAnyText& Name) = 0;
  virtual TZmIntf<IZmJSONMember> AddMemberIntf2(const TZmAnyText& Name, TZmJSONDataType DataType) = 0;
  virtual TZmIntf<IZmJSONMember> AddMemberIntf3(const TZmAnyText& Name, TZmJSONDataType DataType,
                                                const TZmAnyText& Value) = 0;
  virtual TZmIntf<IZmJSONMember> AddMemberIntf4(const TZmAnyText& Name, const Variant& Value) = 0;
  virtual void DeleteMember(int Index) = 0;
  virtual void RemoveMemberIntf(const TZmIntf<IZmJSONMember>& Member) = 0;
};

/// A handle's way to an array: the operations of TZmJSONArray.
class IZmJSONArray : public virtual IZmJSONBase {
 public:
  virtual TZmIntf<IZmJSONBase> AddValueIntf1(TZmJSONDataType DataType) = 0;
  virtual TZmIntf<IZmJSONBase> AddValueIntf2(TZmJSONDataType DataType, const TZmAnyText& Value) = 0;
  virtual TZmIntf<IZmJSONBase> AddValueIntf3(const Variant& Value) = 0;
  virtual void DeleteValue(int Index) = 0;
  virtual void RemoveValueIntf(const TZmIntf<IZmJSONBase>& Value) = 0;
  virtual void Exchange(int Index1, int Index2) = 0;
};

/// A handle's way to a member: its name, and the accessors of its value. It is no IZmJSONBase.
class IZmJSONMember : public virtual IZmInterface {
 public:
  virtual TObject* Implementor() = 0;
  virtual TZmIntf<IZmJSONBase> GetValue() = 0;
  virtual String GetName() = 0;
  virtual std::int32_t GetAsInteger() = 0;
  virtual double GetAsDouble() = 0;
  virtual String GetAsString() = 0;
  virtual bool GetAsBoolean() = 0;
  virtual std::int64_t GetAsLargeInt() = 0;
  virtual Variant GetAsVariant() = 0;
  virtual TZmIntf<IZmJSONObject> GetAsObjectIntf() = 0;
  virtual TZmIntf<IZmJSONArray> GetAsArrayIntf() = 0;
  virtual void SetName(const TZmAnyText& Name) = 0;
  virtual void SetAsInteger(std::int32_t Value) = 0;
  virtual void SetAsDouble(double Value) = 0;
  virtual void SetAsString(const TZmAnyText& Value) = 0;
  virtual void SetAsBoolean(bool Value) = 0;
  virtual void SetAsLargeInt(std::int64_t Value) = 0;
  virtual void SetAsVariant(const Variant& Value) = 0;
  virtual TZmIntf<IZmJSONBase> CreateValueIntf(TZmJSONDataType DataType) = 0;
};

/// A handle's way to a document, which keeps it alive with all that is in it. It is no IZmJSONBase.
class IZmJSONDocument : public virtual IZmInterface {
 public:
  virtual TObject* Implementor() = 0;
  virtual TZmIntf<IZmJSONBase> GetRootValueIntf() = 0;
  virtual String GetAsJSON() = 0;
  virtual String GetFormattedJSON() = 0;
  virtual void SetAsJSON(StringView Text) = 0;
  virtual TZmIntf<IZmJSONBase> CreateRootValueIntf(TZmJSONDataType DataType) = 0;
  virtual TZmIntf<IZmJSONMember> FindMemberIntf(const TZmAnyText& Name, bool IgnoreCase = false) = 0;
  virtual TZmIntf<IZmJSONMember> GetMemberIntf(const TZmAnyText& Name, TZmJDOCSelectOptions Options) = 0;
  virtual TZmIntf<IZmJSONArray> SelectIntf(const TZmAnyText& Path, TZmJDOCSelectOptions Options = {}) = 0;
  virtual void LoadFromStream(TStream* Stream, std::uint16_t CodePage, bool FormURLEncoded) = 0;
  virtual void LoadFromFile(StringView FileName, std::uint16_t Mode) = 0;
  virtual void SaveToFile(StringView FileName, bool Format) = 0;
  virtual void SaveToStream(TStream* Stream, bool Format, std::uint16_t CodePage, bool WriteBOM) = 0;
};

}  // namespace zm
