#include <gtest/gtest.h>

#include <vector>

#include "tests/support/Raised.h"
#include "zamrit/platform/Variant.h"

namespace {

TEST(Variant, HoldsOneTypeAtATime) {
  EXPECT_TRUE(zm::Variant().IsEmpty() && !zm::Variant().IsNull());
  EXPECT_TRUE(zm::Null().IsNull() && !zm::Null().IsEmpty());
  EXPECT_TRUE(zm::Variant(true).AsBoolean());
  EXPECT_EQ(zm::Variant(7u).AsInteger(), 7);
  EXPECT_EQ(zm::Variant(INT64_MIN).AsInteger(), INT64_MIN);
  EXPECT_EQ(zm::Variant(7).AsDouble(), 7.0);
  EXPECT_EQ(zm::Variant(u"text").AsString(), u"text");
  const std::vector<zm::Variant> values = {{}, zm::Null(), true, false, 1, 2, 1.0, u"1", u""};
  for (const auto& left : values)
    for (const auto& right : values) EXPECT_EQ(left == right, &left == &right);
}

TEST(Variant, RefusesAnotherType) {
  const auto raised = [](auto get) { return Raised<zm::EVariantTypeCastError>(get); };
  const std::string text = "Could not convert variant of type (";
  EXPECT_EQ(raised([] { zm::Variant().AsString(); }), text + "Unassigned) into type (String)");
  EXPECT_EQ(raised([] { zm::Null().AsInteger(); }), text + "Null) into type (Int64)");
  EXPECT_EQ(raised([] { zm::Variant(1).AsBoolean(); }), text + "Int64) into type (Boolean)");
  EXPECT_EQ(raised([] { zm::Variant(u"1").AsDouble(); }), text + "String) into type (Double)");
  EXPECT_EQ(raised([] { zm::Variant(1.5).AsInteger(); }), text + "Double) into type (Int64)");
}

}  // namespace
