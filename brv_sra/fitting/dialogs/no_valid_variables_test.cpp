#include "brv_sra/fitting/dialogs/no_valid_variables.h"

#include <gtest/gtest.h>

namespace brenvolt::sra {
namespace {

using brenvolt::Fault;

VariableFit Unfitted(const char* name, std::int64_t count, bool invalid = true) {
  VariableFit fit;
  fit.name = name;
  fit.moments.count = count;
  fit.invalid = invalid;
  return fit;
}

TEST(NoValidVariables, AreExplainedByVariable) {
  EXPECT_EQ(
      NoValidVariables({Unfitted("V1", 3), Unfitted("V2", 0), Unfitted("V3", 3), Unfitted("V4", 1)}).detail,
      "V1, V3: all values equal; V2: no valid values; V4: a single valid value");
  VariableFit one = Unfitted("V5", 3, false);
  one.fits.resize(1);
  one.fits[0].specification.code = DistributionCode::kLogNormal;
  one.fits[0].fault = Fault{EstimationFault::kUndefinedLogarithm, "-1", "0"};
  EXPECT_EQ(NoValidVariables({one}).detail, "V5: Log Normal cannot be fitted: the value -1 is not above 0");
  one.fits.resize(2);
  one.fits[1].specification.code = DistributionCode::kPoisson;
  one.fits[1].fault = Fault{EstimationFault::kNegativeCount, "-1"};
  one.fits[1].faultyCase = 4;
  EXPECT_EQ(NoValidVariables({one}).detail,
            "V5: Log Normal cannot be fitted: the value -1 is not above 0, "
            "Poisson cannot be fitted: a count is below 0: -1 in case 4");
  EXPECT_EQ(NoValidVariables(std::vector(10, Unfitted("V", 3))).detail,
            "V, V, V, V, V, V, V, V: all values equal; and 2 more");
}

}  // namespace
}  // namespace brenvolt::sra
