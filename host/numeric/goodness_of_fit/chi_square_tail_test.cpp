#include "host/numeric/goodness_of_fit/chi_square_tail.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>

#include "host/base/almost_equal.h"

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(ChiSquareReference, AgreesWithHighPrecisionTable) {
  constexpr double kTailFrom = 1e-6;
  std::ifstream file(BRENVOLT_SOURCE_DIR "/host/numeric/reference/chi_square.csv");
  std::string line;
  std::getline(file, line);
  int rows = 0;
  std::map<std::string, double> worst;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    double statistic = 0.0, degreesOfFreedom = 0.0, tail = 0.0, complement = 0.0;
    char comma = 0;
    fields >> statistic >> comma >> degreesOfFreedom >> comma >> tail >> comma >> complement;
    const bool isBody = std::min(tail, complement) >= kTailFrom;
    const double error = std::abs(ChiSquareTail(statistic, degreesOfFreedom) - tail) / tail;
    EXPECT_TRUE(error <= (isBody ? 1e-13 : 1e-10)) << line << ": " << error;
    double& most = worst[isBody ? "Body" : "Tail"];
    most = std::max(most, error);
    ++rows;
  }
  EXPECT_GE(rows, 200);
  for (const auto& [place, error] : worst) {
    std::ostringstream text;
    text << error;
    RecordProperty(place, text.str());
  }
}

TEST(ChiSquare, EndsAndWrongCalls) {
  for (const double degreesOfFreedom : {0.5, 1.0, 7.0, 1e5}) {
    EXPECT_EQ(ChiSquareTail(0.0, degreesOfFreedom), 1.0);
    EXPECT_EQ(ChiSquareTail(kInfinity, degreesOfFreedom), 0.0);
    for (const double bad : {-1e-300, kNotSet, kNan})
      EXPECT_EQ(ChiSquareTail(bad, degreesOfFreedom), kNotSet);
  }
  for (const double bad : {0.0, -1.0, kNotSet, kInfinity, kNan}) EXPECT_EQ(ChiSquareTail(1.0, bad), kNotSet);
}

}  // namespace
}  // namespace brenvolt
