#pragma once

#include <initializer_list>
#include <memory>
#include <span>
#include <type_traits>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zamrit/platform/Components.h"
#include "zamrit/platform/reflection/Rtti.h"
#include "zamrit/platform/reflection/Value.h"

namespace zm {

namespace detail {

/// Where the members of an object or record are reached from: a descendant of TObject at its TObject, all else at its
/// beginning. An untyped address is taken to be such a one.
template <class T>
void* InstanceAddress(T* Instance) {
  using TPlain = std::remove_const_t<T>;
  if constexpr (std::is_base_of_v<TObject, TPlain>)
    return static_cast<TObject*>(const_cast<TPlain*>(Instance));
  else
    return const_cast<TPlain*>(Instance);
}

}  // namespace detail

/// A member of a class or record.
class TRttiMember : public TRttiObject {
 public:
  /// Leads from the place of a descendant to that of the ancestor that has the member.
  using TCast = void* (*)(void*);

  TRttiMember(StringView Name, std::vector<TCast> Casts) : FName(Name), FCasts(std::move(Casts)) {}

  const String& GetName() const { return FName; }
  TMemberVisibility GetVisibility() const { return FVisibility; }
  void SetVisibility(TMemberVisibility Value) { FVisibility = Value; }

 protected:
  void* Holder(const void* Instance) const {
    void* holder = const_cast<void*>(Instance);
    for (TCast cast : FCasts) holder = cast(holder);
    return holder;
  }

 private:
  String FName;
  std::vector<TCast> FCasts;
  TMemberVisibility FVisibility = mvPublished;
};

/// A member that has a value. Instance is the object or record; an untyped address must point at the TObject of an
/// object, or at the beginning of a record.
class TRttiDataMember : public TRttiMember {
 public:
  using TRttiMember::TRttiMember;

  virtual bool IsReadable() const = 0;
  virtual bool IsWritable() const = 0;
  /// The value as a copy; for what cannot be copied a value that refers to the member. A call through a pointer; no
  /// allocation for numbers, dates, enumerations, sets, objects and short texts. EPropertyError where not readable.
  template <class T>
  TValue GetValue(T* Instance) const {
    return Read(Holder(detail::InstanceAddress(Instance)));
  }
  /// A value that refers to the member and is valid as long as the instance: nothing is copied. A property that is
  /// computed gives a copy.
  template <class T>
  TValue GetView(T* Instance) const {
    return View(Holder(detail::InstanceAddress(Instance)));
  }
  /// Stores the value, converted as TRttiType::Convert does. EInvalidCast where it does not convert, EPropertyError
  /// where the member is not writable. An owning pointer takes the object over.
  template <class T>
  void SetValue(T* Instance, const TValue& Value) const {
    static_assert(!std::is_const_v<T>, "the instance cannot be written to");
    Write(Holder(detail::InstanceAddress(Instance)), Value);
  }

 protected:
  virtual const TRttiType* DataType() const = 0;
  [[noreturn]] void RaiseNotReadable() const;
  [[noreturn]] void RaiseNotWritable() const;
  [[noreturn]] void RaiseInvalidCast(const TValue& Value) const;

 private:
  virtual TValue Read(void* Holder) const = 0;
  virtual TValue View(void* Holder) const = 0;
  virtual void Write(void* Holder, const TValue& Value) const = 0;
};

/// A member that is stored in the instance.
class TRttiField : public TRttiDataMember {
 public:
  using TRttiDataMember::TRttiDataMember;
  const TRttiType* GetFieldType() const { return DataType(); }
  bool IsReadable() const override { return true; }
};

/// A member behind a getter and a setter, either of which may be missing.
class TRttiProperty : public TRttiDataMember {
 public:
  using TRttiDataMember::TRttiDataMember;
  const TRttiType* GetPropertyType() const { return DataType(); }
};

/// A property with an index in front of its value.
class TRttiIndexedProperty : public TRttiMember {
 public:
  using TRttiMember::TRttiMember;
  virtual const TRttiType* GetPropertyType() const = 0;
  virtual bool IsWritable() const = 0;
  /// EInvalidCast where the index is not of the type that the getter takes.
  template <class T>
  TValue GetValue(T* Instance, const TValue& Index) const {
    return Read(Holder(detail::InstanceAddress(Instance)), Index);
  }
  template <class T>
  void SetValue(T* Instance, const TValue& Index, const TValue& Value) const {
    Write(Holder(detail::InstanceAddress(Instance)), Index, Value);
  }

 private:
  virtual TValue Read(void* Holder, const TValue& Index) const = 0;
  virtual void Write(void* Holder, const TValue& Index, const TValue& Value) const = 0;
};

class TRttiMethod : public TRttiMember {
 public:
  using TRttiMember::TRttiMember;
  virtual const std::vector<TRttiParameter>& GetParameters() const = 0;
  /// Nil where the method returns nothing.
  virtual const TRttiType* GetReturnType() const = 0;
  /// Calls the method. EInvalidCast where the arguments do not convert to the parameters or differ in number; what the
  /// method raises passes through. The result is empty where the method returns nothing.
  template <class T>
  TValue Invoke(T* Instance, std::span<const TValue> Arguments) const {
    return Call(Holder(detail::InstanceAddress(Instance)), Arguments);
  }
  template <class T>
  TValue Invoke(T* Instance, std::initializer_list<TValue> Arguments = {}) const {
    return Invoke(Instance, std::span<const TValue>(Arguments.begin(), Arguments.size()));
  }

 private:
  virtual TValue Call(void* Holder, std::span<const TValue> Arguments) const = 0;
};

namespace detail {

struct TNameHash {
  using is_transparent = void;
  std::size_t operator()(StringView Name) const;
};
struct TNameEqual {
  using is_transparent = void;
  bool operator()(StringView Left, StringView Right) const { return SameText(Left, Right); }
};
/// A table by name, case ignored.
template <class T>
using TByName = std::unordered_map<String, T, TNameHash, TNameEqual>;

/// The members of one kind, in order and by name: of two of one name the later takes the place of the other.
template <class T>
class TMemberList {
 public:
  T& Add(std::unique_ptr<T> Member) {
    T& added = *FOwned.emplace_back(std::move(Member));
    const T*& named = FByName[added.GetName()];
    std::erase(FList, named);
    FList.push_back(&added);
    named = &added;
    return added;
  }
  std::span<const T* const> All() const { return FList; }
  const T* Find(StringView Name) const {
    auto found = FByName.find(Name);
    return found == FByName.end() ? nullptr : found->second;
  }

 private:
  std::vector<std::unique_ptr<T>> FOwned;
  std::vector<const T*> FList;
  TByName<const T*> FByName;
};

/// What a class or record is described as.
struct TStructure {
  /// A described ancestor as a class, and the way to its place in the descendant.
  struct TBase {
    const TRttiInstanceType* (*Type)();
    TRttiMember::TCast Cast;
  };
  String Name;
  String QualifiedName;
  std::vector<TBase> Bases;
  TMemberList<TRttiField> Fields;
  TMemberList<TRttiProperty> Properties;
  TMemberList<TRttiIndexedProperty> IndexedProperties;
  TMemberList<TRttiMethod> Methods;
  TRttiObject::TAttributes Attributes;
};

}  // namespace detail

/// What has members: a record, or a class.
class TRttiStructuredType : public TRttiType {
 public:
  const TAttributes& GetAttributes() const override { return FStructure.Attributes; }
  const detail::TStructure& GetStructure() const { return FStructure; }

 protected:
  TRttiStructuredType(const detail::TStructure& Structure, TTypeKind Kind, const TTypeStorage& Storage)
      : TRttiType(Structure.Name, Structure.QualifiedName, Kind, Storage), FStructure(Structure) {}

 private:
  const TRttiStructuredType* AsStructured() const final { return this; }

  const detail::TStructure& FStructure;
};

/// A plain struct as a value.
class TRttiRecordType final : public TRttiStructuredType {
 public:
  TRttiRecordType(const detail::TStructure& Structure, TTypeKind Kind, const TTypeStorage& Storage)
      : TRttiStructuredType(Structure, Kind, Storage) {}
};

/// A class: its values are references to objects. A pointer to a described struct is a reference of this kind too.
class TRttiInstanceType final : public TRttiStructuredType {
 public:
  struct TClassOperations {
    const std::type_info* Native;
    const TClass* OwnClass;              ///< nil for a class without a descriptor of its own
    bool IsObject;                       ///< whether it descends from TObject
    void* (*Create)(TComponent* Owner);  ///< nil where the class has no constructor that needs nothing
    void (*Free)(void* Instance);
    bool (*IsInstance)(TObject* Object);  ///< nil for what is no TObject
  };
  TRttiInstanceType(const detail::TStructure& Structure, const TTypeStorage& Storage,
                    const TClassOperations& Operations);

  /// The class reference; nil for a struct that does not descend from TObject.
  const TClass* GetMetaclassType() const { return FClass; }
  /// The first ancestor that has a description, or nil.
  const TRttiInstanceType* GetBaseType() const;
  const std::type_info& GetNativeType() const { return *FOperations.Native; }
  bool InheritsFrom(const TRttiInstanceType* Other) const;
  /// Whether an object is of this class or of a descendant.
  bool IsInstance(TObject& Object) const { return FOperations.IsInstance && FOperations.IsInstance(&Object); }
  /// Whether CreateInstance can make one: the class has a constructor without arguments, or takes an owner.
  bool CanCreate() const { return FOperations.Create != nullptr; }
  /// A new object, owned by the caller, at the address that members are read from. Owner matters to components alone.
  /// ENotSupportedException where the class cannot be made so.
  void* CreateInstance(TComponent* Owner = nullptr) const;
  /// A new object of a class that descends from TObject. ENotSupportedException for any other, and as above.
  TZmOwner<TObject> CreateObject() const;
  /// Frees what CreateInstance made.
  void FreeInstance(void* Instance) const { FOperations.Free(Instance); }
  bool Convert(void* Target, const TValue& Source) const override;

 private:
  TClassOperations FOperations;
  TClass FMadeClass;  // of a class that has no descriptor of its own
  const TClass* FClass = nullptr;
};

}  // namespace zm
