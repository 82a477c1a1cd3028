#include "host/formula/formula_name.h"

#include <gtest/gtest.h>

#include "host/formula/formula.h"

namespace brenvolt {
namespace {

// A name that is not the variable's in the formula that it is put into would name another one, or nothing.
TEST(FormulaName, EveryNameIsFoundAgainInTheFormulaThatItIsPutInto) {
  for (const std::string name :
       {"height", "x.1", "Größe", "_a", "wait time", "1x", "it's", "say \"hi\"", "it's \"so\"", "and", "NOT",
        "or", "a-b", "", ".5", "'quoted'", "v 1", "100%"}) {
    const std::string_view names[] = {name};
    const Formula formula(NameInFormula(name) + " + 1", names);
    ASSERT_EQ(formula.Used().size(), 1U) << name;
    EXPECT_EQ(formula.Used()[0], 0U) << name;
    const Formula quoted(QuotedInFormula(name), names);
    EXPECT_EQ(quoted.Used().size(), 1U) << name;
  }
  EXPECT_EQ(NameInFormula("x.1"), "x.1");
  EXPECT_EQ(NameInFormula("Größe"), "Größe");
  EXPECT_EQ(NameInFormula("1x"), "'1x'");
}

}  // namespace
}  // namespace brenvolt
