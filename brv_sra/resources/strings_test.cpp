#include "brv_sra/resources/strings.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "host/analysis/result_columns.h"

namespace brenvolt::sra {
namespace {

TEST(Strings, NumbersBesideThoseOfTheTableHaveNoText) {
  for (const std::int32_t absent : {-1, 0, 1003, 1006, 9999, 10005, 10155, 10300, 19999, 20016, 30000}) {
    EXPECT_EQ(ResourceString(absent), "") << absent;
  }
}

TEST(Strings, OwnNumbersStayOutOfTheRangesThatMacrosKnow) {
  for (std::int32_t number = 0; number < 20000; ++number) {
    const bool isKnown = (number >= 1004 && number <= 1298) || (number >= 10000 && number <= 10300);
    EXPECT_TRUE(isKnown || ResourceString(number).empty()) << number;
  }
}

TEST(Strings, OddTextsKeepTheirBlanksSpellingsAndLineEnds) {
  const struct {
    std::int32_t number;
    std::string_view text;
  } rows[] = {
      {kAnalysisName, " Simulation and Risk Analysis and Variable Screening"},
      {kOffsetCaption, " Offset "},
      {kHeadingMixtureMean, "Mean "},
      {kMsgInvalidParameter, "Invalid %s parameter entry for %s distribution. "},
      {kMsgSimulationFailedDistributions,
       "Simulation failed.  Please review best fitting distributions for appropriate parameters."},
      {"chi_square_p"_column.heading, " Chi-square \n p-value "},
      {kFitLabelTrials, "  Number of trials:"},
      {FitCheckResource(DistributionCode::kHalfNormal), "Half normal "},
      {kProfilerButtonSetFormula, "Set Forumula"},
      {kProfilerOpenModelsFilter, "XML files (*.xml)|*.xml|All files (*.*)|*.*||"},
      {kMsgProfilerCheckFormula, "Please check the formula for "},
  };
  for (const auto& row : rows) EXPECT_EQ(ResourceString(row.number), row.text);
}

TEST(Strings, TextsThatShareARunOfNumbersStandInItsOrder) {
  const struct {
    std::int32_t first;
    std::vector<std::string_view> texts;
  } rows[] = {
      {10064, {"Min", "Max", "Mode"}},
      {10103, {"Minimum:", "Maximum:", "Mode:", "Scale:", "Shape:", "Location:", "Shape 1:", "Shape 2:"}},
      {10160, {"Type:", "Gamma:", "Delta:", "Lambda:", "xi:", "scale:"}},
      {10174, {"min", "max", "mode"}},
      {10181,
       {"Johnson SL", "Johnson SU", "Johnson SB", "Johnson SN", "Gamma", "Delta", "Xi", "Lambda", "type"}},
      {10238,
       {"DontTranslate!!Log Normal", "DontTranslate!!Folded Normal", "DontTranslate!!Half Normal",
        "DontTranslate!!Gaussian Mixture", "DontTranslate!!General Extreme Value",
        "DontTranslate!!General Pareto"}},
  };
  for (const auto& row : rows) {
    std::int32_t number = row.first;
    for (const std::string_view text : row.texts) EXPECT_EQ(ResourceString(number++), text);
  }
}

TEST(Strings, ConversionsTakeTheirArgumentsInOrderAndArgumentsAreNotReadAgain) {
  EXPECT_EQ(FormatResource(kTitleHistogramOf, "100%s yield"), "Histogram of 100%s yield");
  EXPECT_EQ(FormatResource(kMsgPropertyValueMissing, "Weibull", "Life"),
            "Weibull distribution property exists for variable Life but its value is missing.");
  EXPECT_EQ(
      FormatResource(kMsgStoredMeanInvalid, "Poisson", 12),
      "Invalid mean value for Poisson distribution of variable 12. Please check the variable's properties to "
      "have a valid mean value.");
  EXPECT_EQ(FormatResource(NameResource(DistributionCode::kNormal), "unused"), "Normal");
}

}  // namespace
}  // namespace brenvolt::sra
