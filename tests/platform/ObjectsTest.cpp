#include <gtest/gtest.h>

#include <stdexcept>

#include "zamrit/common/ZmObject.h"

namespace {

struct INumber : virtual zm::IZmInterface {
  virtual int Number() const = 0;
};
struct IUnused : virtual zm::IZmInterface {
  virtual void Unused() = 0;
};

// Writes down what happens to it.
class TThing : public zm::TZmObject, public INumber {
  ZM_OBJECT(TThing, zm::TZmObject)
 public:
  explicit TThing(std::string& Log, int Number = 7) : FLog(Log), FNumber(Number) { FLog += "made "; }
  ~TThing() override { FLog += "gone "; }

  int Number() const override { return FNumber; }
  void AfterConstruction() override {
    TZmObject::AfterConstruction();
    FLog += "after ";
  }
  void BeforeDestruction() override {
    const zm::TZmIntf<INumber> self(this);  // taken and given back on the way out
    FLog += "before ";
  }

 private:
  std::string& FLog;
  int FNumber;
};

class TBigThing : public TThing {
  ZM_OBJECT(TBigThing, TThing)
 public:
  TBigThing(std::string& Log, int Number) : TThing(Log, Number * 1000) {}
};

TEST(Objects, OwnerIsAHold) {
  for (const bool autoDestroy : {true, false}) {
    std::string log;
    auto owner = zm::Create<TThing>(log);
    EXPECT_TRUE(owner->GetAutoDestroy());
    owner->SetAutoDestroy(autoDestroy);
    EXPECT_EQ(owner->_AddRef(), 2);
    EXPECT_EQ(owner->_Release(), 1);
    zm::TZmIntf<INumber> handle(owner);
    handle = nullptr;
    EXPECT_EQ(log, "made after ") << "the owner is left";
    handle = zm::TZmIntf<INumber>(owner);
    owner.reset();
    EXPECT_EQ(log, "made after ") << "the handle is left";
    EXPECT_EQ(handle->Number(), 7);
    handle = nullptr;
    EXPECT_EQ(log, "made after before gone ");
  }
}

TEST(Objects, AutoDestroyDecidesWhatACountOfZeroMeans) {
  std::string log;
  EXPECT_EQ(zm::Create<TThing>(log).release()->_Release(), 0);
  EXPECT_EQ(log, "made after before gone ");

  log.clear();
  TThing* const thing = zm::Create<TThing>(log).release();
  thing->SetAutoDestroy(false);
  EXPECT_EQ(thing->_Release(), 0);
  { const zm::TZmIntf<INumber> handle(thing); }
  EXPECT_EQ(log, "made after ");
  thing->Free();
  EXPECT_EQ(log, "made after before gone ");
}

TEST(Objects, OnTheStackEndWithTheirScope) {
  std::string log;
  zm::TZmIntf<INumber> survivor;
  {
    TThing thing(log);
    survivor = zm::TZmIntf<INumber>(&thing);
    EXPECT_EQ(survivor->_AddRef(), -1);
    EXPECT_EQ(survivor->_Release(), -1);
  }
  EXPECT_EQ(log, "made gone ");
}

TEST(Objects, AreAskedForTheirInterfaces) {
  std::string log;
  auto owner = zm::Create<TThing>(log);
  const auto object = zm::Supports<zm::IZmObject>(owner.get());
  ASSERT_TRUE(object);
  EXPECT_EQ(object->Implementor(), owner.get());
  const auto number = zm::Supports<INumber>(object.Get());
  ASSERT_TRUE(number);
  EXPECT_FALSE(zm::Supports<IUnused>(number.Get()));
  EXPECT_FALSE(zm::Supports<INumber>(static_cast<TThing*>(nullptr)));
  owner.reset();
  EXPECT_EQ(number->Number(), 7) << "each answer is a hold";
}

template <class Base>
struct TStubborn : Base {
  void BeforeDestruction() override {
    if (Refuses) throw std::runtime_error("no");
  }
  bool Refuses = true;
};

template <class Base>
void RefuseToGoOnce() {
  const auto thing = zm::Create<TStubborn<Base>>().release();
  EXPECT_THROW(thing->Free(), std::runtime_error);
  thing->Refuses = false;
  thing->Free();
}

TEST(Objects, MayRefuseToGo) {
  RefuseToGoOnce<zm::TObject>();
  RefuseToGoOnce<zm::TZmObject>();
}

TEST(Classes, HaveADescriptorThatBuilds) {
  EXPECT_TRUE(TBigThing::StaticClass()->InheritsFrom(zm::TObject::StaticClass()));
  EXPECT_TRUE(TThing::StaticClass()->InheritsFrom(TThing::StaticClass()));
  EXPECT_FALSE(TThing::StaticClass()->InheritsFrom(TBigThing::StaticClass()));
  EXPECT_EQ(zm::TObject::StaticClass()->Parent, nullptr);

  using TThingClass = zm::TClassOf<TThing, std::string&, int>;
  const auto reference = TThingClass::Of<TBigThing>();
  std::string log;
  const zm::TZmOwner<TThing> thing = reference.Create(log, 3);
  EXPECT_EQ(thing->Number(), 3000);
  EXPECT_EQ(log, "made after ");
  EXPECT_EQ(thing->ClassName(), u"TBigThing");
  EXPECT_EQ(thing->ClassType(), reference.Class);
  EXPECT_EQ(thing->ClassType()->Parent, TThing::StaticClass());
}

}  // namespace
