#include "host/jobs/fit_cautions.h"

#include <gtest/gtest.h>

#include <limits>

namespace brenvolt {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

std::vector<std::string> Texts(const std::vector<FitReach>& fits) {
  std::vector<std::string> texts;
  for (const FitCaution& caution : CautionsAgainstFirst(fits))
    texts.push_back(caution.Name() + ": " + caution.Text());
  return texts;
}

TEST(FitCautions, BestFitIsNotTrustedWhereItLeavesTheDataAndTheNextBestIsNamed) {
  const FitReach normal{"Normal", 0.0312, kNone, kNone};
  const FitReach heavy{"General Pareto", 0, kNone, 2};
  const FitReach weibull{"Weibull", 0, kNone, kNone};
  const FitReach refused{"Log Normal", 0, kNone, kNone, 1e-5};
  const FitReach edge{"Gamma", 1e-4, kNone, kNone};
  const FitReach negative{"Normal", kNone, 0.25, 1};
  const std::string below =
      "below-zero: Normal lies below 0 with probability 0.031, where no value of the data is";
  const struct {
    std::vector<FitReach> fits;
    std::vector<std::string> texts;
  } cases[] = {
      {{}, {}},
      {{weibull, normal}, {}},
      {{edge, normal}, {}},
      {{normal, heavy, weibull, edge}, {below + "; the best fit that does not is Weibull"}},
      {{normal, heavy}, {below + "; no other fit avoids that"}},
      {{heavy, weibull},
       {"infinite-variance: General Pareto has an infinite variance; the best fit that does not is Weibull"}},
      {{heavy, refused},
       {"infinite-variance: General Pareto has an infinite variance; the best fit that does not is Log "
        "Normal "
        "(K-S p <0.0001)"}},
      {{negative},
       {"above-zero: Normal lies above 0 with probability 0.25, where no value of the data is; no other fit "
        "avoids that",
        "infinite-mean: Normal has an infinite mean; no other fit avoids that"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(Texts(c.fits), c.texts);
  }
}

}  // namespace
}  // namespace brenvolt
