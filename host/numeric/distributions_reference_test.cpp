// Every distribution type against its table of high-precision values, reference/<type>.csv: one test for all.
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

const std::string kFolder = BRENVOLT_SOURCE_DIR "/host/numeric/reference";

class DistributionReference : public testing::TestWithParam<Type> {};

TEST_P(DistributionReference, AgreesWithTableInBodyAndTails) {
  constexpr int kFewestRows = 200;
  const Type& type = GetParam();
  std::map<std::string, int> counts;
  std::map<std::string, double> worst;
  for (const Row& row : ReadTable(kFolder, type)) {
    const double computed = type.functions.at(row.function)(row.argument, row.parameters);
    const double error = RelativeError(type, row, computed);
    ++counts[row.function];
    double& most = worst[row.function + (row.isTail ? "Tail" : "Body")];
    most = std::max(most, error);
    // Written so that NaN fails.
    EXPECT_TRUE(error <= (row.isTail ? kTailTolerance : kBodyTolerance))
        << row.function << " at " << row.argument << " with " << testing::PrintToString(row.parameters)
        << ": " << computed << " for " << row.value << ", relative error " << error;
  }
  ASSERT_EQ(counts.size(), type.functions.size());
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
  const Type& type = GetParam();
  for (const Row& row : ReadTable(kFolder, type)) {
    const auto array = type.arrays.find(row.function);
    if (array == type.arrays.end()) continue;
    std::vector<double> values(kLength, row.argument);
    array->second(values, row.parameters, values);
    const double expected = type.functions.at(row.function)(row.argument, row.parameters);
    for (const double value : values) {
      ASSERT_EQ(value, expected) << row.function << " at " << row.argument << " with "
                                 << testing::PrintToString(row.parameters);
    }
  }
}

TEST_P(DistributionReference, QuantileOfProbabilityReturnsTheValue) {
  constexpr double kFewUlps = 1e-14;  // of the probability, where that is all it can be held to
  const Type& type = GetParam();
  if (type.isDiscrete) GTEST_SKIP() << "steps: see the tests of exact jumps";
  for (const Row& row : ReadTable(kFolder, type)) {
    if (!IsForRoundTrip(row)) continue;
    const RoundTrip trip = GoRound(type, row.argument, row.parameters);
    const double tolerance = row.isTail ? kTailTolerance : kFewUlps;
    EXPECT_TRUE(trip.isConditioned ? trip.error <= kRoundTripTolerance : trip.probability <= tolerance)
        << row.argument << " with " << testing::PrintToString(row.parameters) << ": error " << trip.error
        << ", of the probability " << trip.probability;
  }
}

TEST_P(DistributionReference, MeanAndVarianceAgreeWithTable) {
  constexpr int kFewestSets = 20;
  const Type& type = GetParam();
  const std::vector<MomentRow> rows = ReadMoments(kFolder, type);
  if (type.moments.empty()) GTEST_SKIP() << "no mean and variance";
  EXPECT_GE(std::ssize(rows), 2 * kFewestSets);
  for (const MomentRow& row : rows) {
    const double computed = type.moments.at(row.function)(row.parameters);
    const double error = RelativeError(type, row, computed);
    EXPECT_TRUE(error <= kBodyTolerance) << row.function << " with " << testing::PrintToString(row.parameters)
                                         << ": " << computed << " for " << row.value;
  }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, DistributionReference, testing::ValuesIn(AllTypes()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace brenvolt::references
