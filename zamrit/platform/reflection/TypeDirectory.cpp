#include "zamrit/platform/reflection/TypeDirectory.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <shared_mutex>
#include <typeindex>
#include <unordered_map>
#include <vector>

namespace zm {

namespace {

/// Everything that is known by name or by object. Never destroyed: objects may be asked for their class to the last.
class TTypeDirectory {
 public:
  static TTypeDirectory& Instance() {
    static auto* const instance = new TTypeDirectory;
    return *instance;
  }

  void AddThunk(detail::TTypeThunk Type) {
    const std::lock_guard lock(FThunkMutex);
    FThunks.push_back(Type);
    FHasThunks.store(true, std::memory_order_release);
  }

  /// Makes the descriptors that have been registered. A second thread waits for the first.
  void MakeRegistered() {
    if (!FHasThunks.load(std::memory_order_acquire)) return;
    const std::lock_guard making(FMakingMutex);
    while (detail::TTypeThunk next = TakeThunk()) next();  // one that raises is not asked again; the others wait
  }

  /// The next type to be made, nil when there is none.
  detail::TTypeThunk TakeThunk() {
    const std::lock_guard lock(FThunkMutex);
    FHasThunks.store(FThunks.size() > 1, std::memory_order_release);
    if (FThunks.empty()) return nullptr;
    detail::TTypeThunk next = FThunks.front();
    FThunks.pop_front();
    return next;
  }

  void Add(const TRttiType* Type) {
    const std::unique_lock lock(FMutex);
    FTypes.push_back(Type);
    if (const auto* instance = dynamic_cast<const TRttiInstanceType*>(Type)) {
      FByNative.emplace(instance->GetNativeType(), instance);
      FNearest.clear();
      if (const TClass* metaclass = instance->GetMetaclassType()) FByClass.emplace(metaclass, instance);
    }
  }

  const TRttiType* At(std::size_t Index) {
    MakeRegistered();
    const std::shared_lock lock(FMutex);
    return Index < FTypes.size() ? FTypes[Index] : nullptr;
  }

  const TRttiInstanceType* Find(const std::type_info& Native) {
    MakeRegistered();
    const std::shared_lock lock(FMutex);
    auto found = FByNative.find(Native);
    return found == FByNative.end() ? nullptr : found->second;
  }

  /// The type of an object, or of its nearest ancestor that has one.
  const TRttiInstanceType* FindNearest(const TObject& Object) {
    if (const TRttiInstanceType* own = Find(typeid(Object))) return own;
    const std::unique_lock lock(FMutex);
    auto [known, isNew] = FNearest.emplace(typeid(Object), nullptr);
    if (isNew)
      for (const auto& [native, type] : FByNative)
        if (type->IsInstance(const_cast<TObject&>(Object)) && (!known->second || type->InheritsFrom(known->second)))
          known->second = type;
    return known->second;
  }

  const TRttiInstanceType* Find(const TClass* Class) {
    MakeRegistered();
    const std::shared_lock lock(FMutex);
    auto found = FByClass.find(Class);
    return found == FByClass.end() ? nullptr : found->second;
  }

  void AddClass(const TClass* Class) {
    const std::unique_lock lock(FMutex);
    FClasses.emplace(Class->Name, Class);
  }

  const TClass* FindClass(StringView Name) {
    const std::shared_lock lock(FMutex);
    auto found = FClasses.find(Name);
    return found == FClasses.end() ? nullptr : found->second;
  }

 private:
  std::mutex FThunkMutex;
  std::deque<detail::TTypeThunk> FThunks;
  std::atomic<bool> FHasThunks = false;
  std::recursive_mutex FMakingMutex;  // a description may look types up

  std::shared_mutex FMutex;
  std::deque<const TRttiType*> FTypes;
  std::unordered_map<std::type_index, const TRttiInstanceType*> FByNative;
  std::unordered_map<std::type_index, const TRttiInstanceType*> FNearest;  // of classes without a type of their own
  std::unordered_map<const TClass*, const TRttiInstanceType*> FByClass;
  detail::TByName<const TClass*> FClasses;
};

}  // namespace

const TRttiInstanceType* TypeOfObject(const TObject* Object) {
  return Object ? TTypeDirectory::Instance().FindNearest(*Object) : nullptr;
}

const TRttiInstanceType* ClassInfo(const TClass* Class) { return TTypeDirectory::Instance().Find(Class); }

void RegisterClass(const TClass* Class) { TTypeDirectory::Instance().AddClass(Class); }

const TClass* GetClass(StringView Name) { return TTypeDirectory::Instance().FindClass(Name); }

bool detail::RegisterType(TTypeThunk Type) {
  TTypeDirectory::Instance().AddThunk(Type);
  return true;
}

const TRttiType* detail::Publish(const TRttiType* Type) {
  TTypeDirectory::Instance().Add(Type);
  return Type;
}

const TRttiType* detail::TypeAt(std::size_t Index) { return TTypeDirectory::Instance().At(Index); }

const TClass* detail::ClassOfDescribed(const TObject& Object, const TClass* Nearest) {
  const TRttiInstanceType* type = TTypeDirectory::Instance().FindNearest(Object);
  return type && type->GetMetaclassType()->InheritsFrom(Nearest) ? type->GetMetaclassType() : Nearest;
}

const TClass* TObject::ClassType() const {
  return typeid(*this) == typeid(TObject) ? StaticClass() : detail::ClassOfDescribed(*this, StaticClass());
}

}  // namespace zm
