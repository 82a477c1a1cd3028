#include "host/jobs/dialogs/variable_design.h"

#include <gtest/gtest.h>

#include "host/jobs/notation/distribution_notation.h"

namespace brenvolt {
namespace {

using Properties = std::vector<std::pair<std::string, std::string>>;

Variable With(const Properties& properties) {
  Variable variable("cost", 3);
  for (const auto& [key, value] : properties) variable.SetProperty(key, value);
  return variable;
}

TEST(VariableDesign, ADistributionInPlainNotationReadsBackFromItsProperties) {
  EXPECT_EQ(DistributionOf(With({})), "");
  for (const auto& [text, read] :
       {std::pair("normal(10, 2)", "normal(location=10, scale=2)"),
        std::pair("triangular(100, 180, 120) in [, 170]",
                  "triangular(min=100, max=180, mode=120) in [, 170]"),
        std::pair("weibull(scale=2, shape=3, offset=1)", "weibull(scale=2, shape=3, offset=1)"),
        std::pair("poisson(4)", "poisson(4)")}) {
    const auto properties = PropertiesWith(With({}), text);
    EXPECT_FALSE(properties.empty());
    EXPECT_EQ(DistributionOf(With(properties)), read);
    // Another one takes its place.
    EXPECT_EQ(DistributionOf(With(PropertiesWith(With(properties), "normal(1, 1)"))),
              "normal(location=1, scale=1)");
  }
}

TEST(VariableDesign, WhatIsNoDistributionIsRefusedAtItsCharacter) {
  try {
    PropertiesWith(With({}), "normal(10, -2)");
    ADD_FAILURE() << "not refused";
  } catch (const NotationError& error) {
    EXPECT_EQ(error.Place(), 11U) << error.Where() << ": " << error.what();
  }
  EXPECT_THROW(PropertiesWith(With({}), "histogram(clear:0.7, rain:0.3)"), Error);
}

// Other properties stay, also ones that share their letters with a distribution.
TEST(VariableDesign, AnEmptyTextTakesAwayTheDistributionAndWhatBelongsToIt) {
  auto properties =
      PropertiesWith(With({{"source", "gauge 7"}, {"Normality", "checked"}}), "normal(10, 2) in [5, ]");
  EXPECT_GT(properties.size(), 3U);
  properties.emplace_back("InvalidFit", "0");
  EXPECT_EQ(PropertiesWith(With(properties), " "),
            (Properties{{"source", "gauge 7"}, {"Normality", "checked"}}));
  EXPECT_TRUE(DistributionOf(With(PropertiesWith(With(properties), ""))).empty());
}

}  // namespace
}  // namespace brenvolt
