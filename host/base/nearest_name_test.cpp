#include "host/base/nearest_name.h"

#include <gtest/gtest.h>

namespace brenvolt {
namespace {

TEST(NearestName, ForgivesSlipsAndGuessesNothingElse) {
  const std::vector<std::string> names{"normal", "lognormal", "halfnormal", "poisson", "weibull", "x"};
  const struct {
    const char* written;
    const char* nearest;
  } rows[] = {
      {"nomral", "normal"},
      {"Weibul", "weibull"},
      {"poison", "poisson"},
      {"LogNormal", "lognormal"},
      {"lognorma", "lognormal"},
      {"cauchy", ""},
      {"", ""},
      {"wbl", ""},
      {"y", ""},
      {"X", "x"},
  };
  for (const auto& row : rows) EXPECT_EQ(NearestName(row.written, names), row.nearest) << row.written;
  EXPECT_EQ(NearestName(std::string(1000, 'n'), names), "");
}

}  // namespace
}  // namespace brenvolt
