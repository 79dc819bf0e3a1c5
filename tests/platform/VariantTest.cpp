#include <gtest/gtest.h>

#include "tests/support/Raised.h"
#include "zamrit/platform/Variant.h"

namespace {

TEST(Variant, HoldsOneTypeAtATime) {
  EXPECT_TRUE(zm::Variant().IsEmpty());
  EXPECT_FALSE(zm::Variant().IsNull());
  EXPECT_TRUE(zm::Null().IsNull());
  EXPECT_FALSE(zm::Null().IsEmpty());
  EXPECT_TRUE(zm::Variant(true).AsBoolean());
  EXPECT_EQ(zm::Variant(7u).AsInteger(), 7);
  EXPECT_EQ(zm::Variant(INT64_MIN).AsInteger(), INT64_MIN);
  EXPECT_EQ(zm::Variant(7).AsDouble(), 7.0);
  EXPECT_EQ(zm::Variant(0.5).AsDouble(), 0.5);
  EXPECT_EQ(zm::Variant(u"text").AsString(), u"text");
  const zm::Variant values[] = {{}, zm::Null(), true, false, 1, 2, 1.0, u"1", u""};
  for (const auto& left : values)
    for (const auto& right : values) EXPECT_EQ(left == right, &left == &right);
}

TEST(Variant, RefusesAnotherType) {
  const auto text = [](auto get) { return Raised<zm::EVariantTypeCastError>(get); };
  EXPECT_EQ(text([] { zm::Variant().AsString(); }),
            "Could not convert variant of type (Unassigned) into type (String)");
  EXPECT_EQ(text([] { zm::Null().AsInteger(); }), "Could not convert variant of type (Null) into type (Int64)");
  EXPECT_EQ(text([] { zm::Variant(1).AsBoolean(); }), "Could not convert variant of type (Int64) into type (Boolean)");
  EXPECT_EQ(text([] { zm::Variant(true).AsDouble(); }),
            "Could not convert variant of type (Boolean) into type (Double)");
  EXPECT_EQ(text([] { zm::Variant(u"1").AsDouble(); }),
            "Could not convert variant of type (String) into type (Double)");
  EXPECT_EQ(text([] { zm::Variant(1.5).AsInteger(); }), "Could not convert variant of type (Double) into type (Int64)");
}

}  // namespace
