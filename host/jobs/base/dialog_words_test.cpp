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
    const NamedDistribution* distribution = FindDistribution(written);
    ASSERT_NE(distribution, nullptr) << written;
    EXPECT_EQ(distribution->name, name) << written;
    // Callers take the place in the table for the code.
    EXPECT_LT(static_cast<std::size_t>(distribution - kNamedDistributions.data()), kNamedDistributions.size())
        << written;
  }
  EXPECT_EQ(FindDistribution("weibul"), nullptr);
  EXPECT_EQ(FindDistribution(""), nullptr);
}

}  // namespace
}  // namespace brenvolt
