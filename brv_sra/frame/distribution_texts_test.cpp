#include "brv_sra/frame/distribution_texts.h"

#include <gtest/gtest.h>

#include <string>

#include "brv_sra/base/spaced_keys.h"
#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::sra {
namespace {

TEST(DistributionTexts, NamesAndSpacedKeysAreThoseThatTranslatorsKnow) {
  std::int32_t spaced = 10238;
  for (const DistributionEntry* entry : DistributionTable()) {
    const DistributionCode code = entry->facts.code;
    EXPECT_EQ(ResourceString(10036 + static_cast<std::int32_t>(code)), DisplayName(code));
    EXPECT_EQ(DisplayName(code), SpacedKey(code)) << "this module is not translated";
    EXPECT_EQ(CodeFromDisplayName(DisplayName(code)), code);
    if (SpacedKey(code) == CompactKey(code)) continue;
    EXPECT_EQ(ResourceString(spaced++), std::string(kDontTranslate) + std::string(SpacedKey(code)));
  }
  EXPECT_EQ(spaced, 10244);
}

TEST(DistributionTexts, NamesAreComparedAsWholeTexts) {
  for (const std::string_view name : {"Log", "Log Normal2", "LogNormal", ""}) {
    EXPECT_FALSE(CodeFromDisplayName(name)) << name;
  }
}

TEST(DistributionTexts, EveryParameterHasAHeadingAndAWord) {
  for (const DistributionEntry* entry : DistributionTable()) {
    for (std::size_t i = 0; i < entry->facts.ParameterCount(); ++i) {
      const ParameterTexts& texts = TextsOf(entry->facts.code, i);
      EXPECT_NE(ResourceString(texts.heading), "") << entry->facts.name << i;
      EXPECT_NE(ResourceString(texts.word), "") << entry->facts.name << i;
    }
  }
}

TEST(DistributionTexts, ParametersOfOneNameDifferBetweenDistributions) {
  using enum DistributionCode;
  const struct {
    DistributionCode code;
    std::size_t place;
    std::string_view heading, label, word;
  } rows[] = {{kGaussianMixture, 3, "Mixing coef. ", "", "mixing coefficient"},
              {kGaussianMixture, 1, "Mean ", "", "mean"},
              {kPoisson, 0, "Lambda", "Mean:", "mean"},
              {kHistogram, 1, "Proportion", "", "code and/or proportion"},
              {kBernoulli, 0, "Proportion", "Proportion:", "proportion"},
              {kJohnson, 2, "Delta", "Delta:", "shape 2"}};
  for (const auto& row : rows) {
    const ParameterTexts& texts = TextsOf(row.code, row.place);
    EXPECT_EQ(ResourceString(texts.heading), row.heading);
    EXPECT_EQ(ResourceString(texts.label), row.label);
    EXPECT_EQ(ParameterWord(row.code, row.place), row.word);
  }
}

}  // namespace
}  // namespace brenvolt::sra
