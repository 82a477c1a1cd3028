// Every distribution against its table of high-precision values, reference/<name>.csv: one test for all.
// The largest relative errors are recorded as properties of the test, per function and region.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "host/numeric/reference/distribution_references.h"

namespace brenvolt::references {
namespace {

const std::string kFolder = BRENVOLT_SOURCE_DIR "/host/numeric/reference/distributions";

std::vector<BoundDistribution> DistributionsThatAre(bool isDiscrete) {
  std::vector<BoundDistribution> distributions = BoundDistributions();
  std::erase_if(distributions,
                [&](const BoundDistribution& bound) { return bound.isDiscrete != isDiscrete; });
  return distributions;
}

class DistributionReference : public testing::TestWithParam<BoundDistribution> {};
class ContinuousReference : public testing::TestWithParam<BoundDistribution> {};
class DiscreteReference : public testing::TestWithParam<BoundDistribution> {};

TEST_P(DistributionReference, AgreesWithTableInBodyAndTails) {
  constexpr int kFewestRows = 200;
  const BoundDistribution& bound = GetParam();
  std::map<std::string, int> counts;
  std::map<std::string, double> worst;
  for (const Row& row : ReadTable(kFolder, bound)) {
    const double computed = bound.functions.at(row.function)(row.argument, row.parameters);
    const double error = RelativeError(bound, row, computed);
    ++counts[row.function];
    double& most = worst[row.function + (row.isTail ? "Tail" : "Body")];
    most = std::max(most, error);
    // Written so that NaN fails.
    EXPECT_TRUE(error <= (row.isTail ? kTailTolerance : kBodyTolerance))
        << row.function << " at " << row.argument << " with " << testing::PrintToString(row.parameters)
        << ": " << computed << " for " << row.value << ", relative error " << error;
  }
  ASSERT_EQ(counts.size(), bound.functions.size());
  for (const auto& [function, count] : counts) EXPECT_GE(count, kFewestRows) << function;
  for (const auto& [place, error] : worst) {
    std::ostringstream text;
    text << error;
    RecordProperty(place, text.str());
  }
}

// Tables hold many parameters, so each row goes into an array of its own, long enough for whole vectors and a
// rest.
TEST_P(DistributionReference, ArrayFormsGiveTheBitsOfTheScalarForms) {
  constexpr std::size_t kLength = 19;
  const BoundDistribution& bound = GetParam();
  for (const Row& row : ReadTable(kFolder, bound)) {
    const auto array = bound.arrays.find(row.function);
    if (array == bound.arrays.end()) continue;
    std::vector<double> values(kLength, row.argument);
    array->second(values, row.parameters, values);
    const double expected = bound.functions.at(row.function)(row.argument, row.parameters);
    for (const double value : values) {
      ASSERT_EQ(value, expected) << row.function << " at " << row.argument << " with "
                                 << testing::PrintToString(row.parameters);
    }
  }
}

TEST_P(ContinuousReference, QuantileOfProbabilityReturnsTheValue) {
  constexpr double kFewUlps = 1e-14;  // of the probability, where that is all it can be held to
  const BoundDistribution& bound = GetParam();
  for (const Row& row : ReadTable(kFolder, bound)) {
    if (!IsForRoundTrip(row)) continue;
    const RoundTrip trip = GoRound(bound, row.argument, row.parameters);
    const double tolerance = row.isTail ? kTailTolerance : kFewUlps;
    EXPECT_TRUE(trip.isConditioned ? trip.error <= kRoundTripTolerance : trip.probability <= tolerance)
        << row.argument << " with " << testing::PrintToString(row.parameters) << ": error " << trip.error
        << ", of the probability " << trip.probability;
  }
}

// So the value comes back wherever doubles tell its probability from that of the value before it; elsewhere a
// lesser value with the same probability does. (0 and 1 give the ends of the support.)
TEST_P(DiscreteReference, QuantileOfProbabilityIsTheSmallestValueThatReachesIt) {
  constexpr int kFewestReturns = 50;
  const BoundDistribution& bound = GetParam();
  std::map<std::string, int> returns;
  for (const Row& row : ReadTable(kFolder, bound)) {
    if (row.function != "Cdf" && row.function != "Complement") continue;
    const Function& probability = bound.functions.at(row.function);
    const double p = probability(row.argument, row.parameters);
    if (p == 0.0 || p == 1.0) continue;
    SCOPED_TRACE(testing::Message() << row.function << " at " << row.argument << " with "
                                    << testing::PrintToString(row.parameters));
    const std::string quantile = row.function == "Cdf" ? "Quantile" : "ComplementQuantile";
    const double back = bound.functions.at(quantile)(p, row.parameters);
    EXPECT_LE(back, row.argument);
    EXPECT_EQ(probability(back, row.parameters), p);
    EXPECT_NE(probability(std::nextafter(back, -1e300), row.parameters), p);
    returns[quantile] += back == row.argument;
  }
  for (const auto& [quantile, count] : returns) EXPECT_GE(count, kFewestReturns) << quantile;
  EXPECT_EQ(returns.size(), 2U);
}

TEST_P(DistributionReference, MeanAndVarianceAgreeWithTable) {
  constexpr int kFewestSets = 20;
  const BoundDistribution& bound = GetParam();
  const std::vector<MomentRow> rows = ReadMoments(kFolder, bound);
  EXPECT_GE(std::ssize(rows), 2 * kFewestSets);
  for (const MomentRow& row : rows) {
    const double computed = bound.moments.at(row.function)(row.parameters);
    const double error = RelativeError(bound, row, computed);
    EXPECT_TRUE(error <= kBodyTolerance) << row.function << " with " << testing::PrintToString(row.parameters)
                                         << ": " << computed << " for " << row.value;
  }
}

const auto kNameOfType = [](const auto& info) { return info.param.name; };
INSTANTIATE_TEST_SUITE_P(BoundDistributions, DistributionReference, testing::ValuesIn(BoundDistributions()),
                         kNameOfType);
INSTANTIATE_TEST_SUITE_P(ContinuousTypes, ContinuousReference, testing::ValuesIn(DistributionsThatAre(false)),
                         kNameOfType);
INSTANTIATE_TEST_SUITE_P(DiscreteTypes, DiscreteReference, testing::ValuesIn(DistributionsThatAre(true)),
                         kNameOfType);

}  // namespace
}  // namespace brenvolt::references
