#include "brv_sra/simulation/saved_fits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"

namespace brenvolt::sra {
namespace {

// P(X < 0) of a normal distribution of mean 2 and deviation 1, within -10 and 10, and within its own tails.
TEST(SavedFits, ReachIsThatOfTheBoundsAndOfTheSelectedCases) {
  Spreadsheet sheet("Data", 3, 3);
  const std::vector<double> values[] = {{1, 2, 4}, {-1, 2, 4}, {0, 0, 0}};
  for (std::size_t v = 0; v < 3; ++v) sheet.VariableAt(v).AssignValues(values[v]);
  for (std::size_t i = 0; i < 3; ++i) sheet.VariableAt(2).MutableValues()[i] = GetDefaultMDValue();
  SheetPropertyStore store(sheet, SpacedKey);
  using enum DistributionCode;
  for (const int number : {1, 2, 3}) {
    WriteDistributionProperties(&store, {number, {{kNormal, {2, 1}}, {kWeibull, {2, 2}}}, {}});
  }
  const double below = std::erfc(2 / std::sqrt(2.0)) / 2;
  const std::int16_t numbers[] = {1, 2, 3};
  auto fits = *SavedFits(store, numbers, false);
  ASSERT_EQ(fits.size(), 6U);
  EXPECT_EQ(fits[1].variableNumber, 1);
  EXPECT_EQ(fits[1].place, 2U);
  EXPECT_EQ(fits[1].specification.code, kWeibull);
  EXPECT_NEAR(fits[0].reach.belowZero, below, 1e-15);
  EXPECT_EQ(fits[1].reach.belowZero, 0);
  // Reference: scipy.stats.ks_1samp([1, 2, 4], norm(2, 1).cdf, method="exact").
  EXPECT_NEAR(fits[0].ksPValue, 0.8569218495666879, 1e-12);
  EXPECT_TRUE(IsNotSet(fits[4].ksPValue)) << "there are no values";
  EXPECT_TRUE(IsNotSet(fits[2].reach.belowZero)) << "a value is below 0";
  EXPECT_TRUE(IsNotSet(fits[4].reach.belowZero)) << "there are no values";
  EXPECT_NEAR((*SavedFits(store, numbers, true))[0].reach.belowZero, (below - 0.005) / 0.99, 1e-12);
  sheet.SetSelection({true, "x > 0", {0, 1, 1}});
  EXPECT_NEAR((*SavedFits(store, numbers, false))[2].reach.belowZero, below, 1e-15);
  WriteDistributionProperties(&store, {1, {{kNormal, {2, 1}}}, {.below = true, .minimum = 0}});
  EXPECT_EQ((*SavedFits(store, numbers, true))[0].reach.belowZero, 0);
}

}  // namespace
}  // namespace brenvolt::sra
