#include <gtest/gtest.h>

#include <string>

#include "tests/support/Raised.h"
#include "zamrit/platform/Components.h"

namespace {

// Logs what it is told and when it ends.
struct TPart : zm::TComponent {
  TPart(zm::TComponent* Owner, zm::StringView Name, std::string& ALog) : TComponent(Owner), Log(ALog) { SetName(Name); }
  ~TPart() override { Log += '~' + zm::ToUTF8(GetName()); }
  void Notification(zm::TComponent* Component, zm::TOperation Operation) override {
    if (Refuses) throw zm::EInvalidPointer(u"no");
    Log += Operation == zm::opInsert ? '+' : '-';
    Log += zm::ToUTF8(Component->GetName());
  }
  std::string& Log;
  bool Refuses = false;
};

TEST(Components, EndWithTheirOwnerLastFirst) {
  std::string log;
  {
    TPart root(nullptr, u"root", log);
    auto* a = new TPart(&root, u"a", log);
    new TPart(a, u"b", log);
    auto* c = new TPart(&root, u"c", log);
    new TPart(&root, u"d", log);
    log.clear();
    EXPECT_EQ(root.GetComponentCount(), 3);
    EXPECT_EQ(root.FindComponent(u"C"), c);
    EXPECT_EQ(root.FindComponent(u"b"), nullptr);
    c->Free();
    EXPECT_EQ(log, "~c-c");
    EXPECT_EQ(root.FindComponent(u"c"), nullptr);
  }
  EXPECT_EQ(log, "~c-c~root~d~a~b");
}

}  // namespace
