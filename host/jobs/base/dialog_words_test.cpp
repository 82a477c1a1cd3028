#include "host/jobs/base/dialog_words.h"

#include <gtest/gtest.h>

namespace brenvolt {
namespace {

TEST(DialogWords, DistributionsAreFoundAsPeopleWriteThem) {
  const std::pair<const char*, const char*> names[] = {{"weibull", "weibull"},
                                                       {"Log-Normal", "lognormal"},
                                                       {"General Extreme Value", "generalextremevalue"},
                                                       {"GEV", "generalextremevalue"},
                                                       {"mixture", "gaussianmixture"},
                                                       {"Discrete", "histogram"},
                                                       {"lnorm", "lognormal"},
                                                       {"log_normal", "lognormal"},
                                                       {"tri", "triangular"},
                                                       {"GenExtreme", "generalextremevalue"},
                                                       {"Generalized Pareto", "generalpareto"}};
  for (const auto& [written, name] : names) {
    const FittedType* type = FindFittedType(written);
    ASSERT_NE(type, nullptr) << written;
    EXPECT_EQ(type->name, name) << written;
    // Callers take the place in the table for the code.
    EXPECT_LT(static_cast<std::size_t>(type - kFittedTypes.data()), kFittedTypes.size()) << written;
  }
  EXPECT_EQ(FindFittedType("weibul"), nullptr);
  EXPECT_EQ(FindFittedType(""), nullptr);
}

}  // namespace
}  // namespace brenvolt
