#include <gtest/gtest.h>

#include "host/automation/variable_list.h"
#include "host/automation/variant.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

TEST(Variant, ConvertsOnlyWhereNothingIsLost) {
  EXPECT_EQ(Variant(3.0).ToInteger(), 3);
  EXPECT_EQ(Variant("42").ToInteger(), 42);
  EXPECT_EQ(Variant(std::int64_t{1000000}).ToText(), "1000000") << "no exponent";
  EXPECT_EQ(Variant(0.1).ToText(), "0.1");
  EXPECT_TRUE(Variant(2).ToBoolean());
  EXPECT_THROW(Variant(3.5).ToInteger(), Error);
  EXPECT_THROW(Variant(3e9).ToInteger(), Error);
  EXPECT_THROW(Variant("x").ToReal(), Error);
  EXPECT_THROW(Variant().ToReal(), Error);
  EXPECT_THROW(Variant(Variant::Array{Variant(1)}).ToText(), Error);
}

TEST(Variant, ReferencesReadThrough) {
  Variant target(7);
  const Variant reference = Variant::Reference(&target);
  target = Variant(8);
  EXPECT_EQ(reference.ToInteger(), 8);
  EXPECT_EQ(reference.ToArray().size(), 1U);
  EXPECT_EQ(reference.ToObject(), nullptr);
  EXPECT_THROW(Variant::Reference(nullptr).ToInteger(), Error);
}

TEST(VariableNumbers, ReadsEveryFormAndRefusesTheRest) {
  using List = std::vector<std::int16_t>;
  EXPECT_EQ(VariableNumbers("1-3 5", 5), (List{1, 2, 3, 5}));
  EXPECT_EQ(VariableNumbers(" 4, 2 ", 5), (List{4, 2}));
  EXPECT_EQ(VariableNumbers(2, 5), List{2});
  EXPECT_EQ(VariableNumbers(Variant::Array{Variant(1), Variant(5.0)}, 5), (List{1, 5}));
  EXPECT_EQ(VariableNumbers(Variant(), 5), List{});
  for (const char* text : {"0", "6", "3-1", "1-", "a", "1-2000000000", "1--2", "1-3 2", "4 4"}) {
    EXPECT_THROW(VariableNumbers(text, 5), Error) << text;
  }
}

}  // namespace
}  // namespace brenvolt
