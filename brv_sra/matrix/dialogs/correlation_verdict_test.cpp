#include "brv_sra/matrix/dialogs/correlation_verdict.h"

#include <gtest/gtest.h>

namespace brenvolt::sra {
namespace {

TEST(CorrelationVerdict, NoiseCannotFollowWhatASimulationWouldRepair) {
  const std::vector<std::string> names{"a", "b"};
  const struct {
    double correlation;
    bool isPositive;
  } cases[] = {{0, true}, {0.999, true}, {1, false}, {-1, false}};
  for (const auto& [correlation, isPositive] : cases) {
    const std::vector<double> matrix{1, correlation, correlation, 1};
    const MatrixVerdict noise = VerdictOnNoiseCorrelations(matrix);
    EXPECT_EQ(noise.text == "The correlation matrix is positive definite.", isPositive) << correlation;
    EXPECT_TRUE(noise.changes.empty());
    EXPECT_EQ(noise.eigenvalues, VerdictOnCorrelations(matrix, names).eigenvalues);
  }
}

TEST(CorrelationVerdict, ARepairIsToldPairByPair) {
  const std::vector<std::string> names{"a", "b", "c"};
  const MatrixVerdict verdict =
      VerdictOnCorrelations(std::vector<double>{1, 0.9, 0.9, 0.9, 1, -0.9, 0.9, -0.9, 1}, names);
  EXPECT_NEAR(verdict.eigenvalues.front(), -0.8, 1e-12);
  EXPECT_EQ(verdict.changes,
            (std::vector<std::string>{"a, b: 0.9 -> 0.5", "a, c: 0.9 -> 0.5", "b, c: -0.9 -> -0.5"}));
}

}  // namespace
}  // namespace brenvolt::sra
