// The automation interface of the fit specification: numbers, names and types that recorded macros rely on.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "brv_sra/fitting/dialogs/fit_support_dialog_test.h"
#include "brv_sra/fitting/dialogs/fit_variable_inputs_dialog.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;
using Indexes = std::vector<Variant>;

// Name, number and access as recorded macros know them; the values are put one after the other.
TEST_F(FitDialog, EveryMemberKeepsItsNumberAndGivesBackWhatWasPut) {
  struct Row {
    const char* name;
    DispatchId id;
    bool indexed;
    std::vector<Variant> values;
    std::vector<std::string> read;
  };
  const std::vector<Variant> onOff{true, false};
  const std::vector<std::string> oneZero{"1", "0"};
  const std::vector<Variant> reals{-444.0, 0.25, -1e300};
  const std::vector<std::string> realTexts{"-444", "0.25", "-1e+300"};
  const std::vector<Variant> counts{-444, 7};
  const std::vector<std::string> countTexts{"-444", "7"};
  const Row rows[] = {
      {"Variables", 0x60030000, false, {"1-2 | 3 5", "2 1|3-4"}, {"1-2 | 3 5", "2 1 | 3-4"}},
      {"ContinuousKolmogorovSmirovTest", 0x60030002, false, {true}, {"1"}},
      {"ContinuousChiSquareTest", 0x60030004, false, {true}, {"1"}},
      {"ContinuousAndersonDarlingTest", 0x60030006, false, {true, false}, {"1", "1"}},
      {"DiscreteKolmogorovSmirovTest", 0x60030008, false, {true}, {"1"}},
      {"DiscreteChiSquareTest", 0x6003000a, false, {true}, {"1"}},
      {"EqualProbability", 0x6003000c, false, {true}, {"1"}},
      {"EqualInterval", 0x6003000e, false, {true}, {"1"}},
      {"IsPairwise", 0x60030010, false, {true}, {"1"}},
      {"IsCasewise", 0x60030012, false, {true, false}, {"1", "1"}},
      {"ContinuousVariable", 0x60030014, false, {"", "5", "1-2"}, {"", "5", "1-2"}},
      {"IsNormalDistribution", 0x60030016, true, onOff, oneZero},
      {"IsLogNormalDistribution", 0x60030018, true, onOff, oneZero},
      {"IsFoldedNormalDistribution", 0x6003001a, true, onOff, oneZero},
      {"IsHalfNormalDistribution", 0x6003001c, true, onOff, oneZero},
      {"IsRayleighDistribution", 0x6003001e, true, onOff, oneZero},
      {"IsWeibullDistribution", 0x60030020, true, onOff, oneZero},
      {"IsGaussianMixtureDistribution", 0x60030022, true, onOff, oneZero},
      {"NumberOfMixtures", 0x60030024, true, counts, countTexts},
      {"IsJohnsonDistribution", 0x60030026, true, onOff, oneZero},
      {"IsGeneralizedExtremeValueDistribution", 0x60030028, true, onOff, oneZero},
      {"IsGeneralizedParetoDistribution", 0x6003002a, true, onOff, oneZero},
      {"IsTriangularDistribution", 0x6003002c, true, onOff, oneZero},
      {"LogNormalOffset", 0x6003002e, true, reals, realTexts},
      {"FoldedNormalOffset", 0x60030030, true, reals, realTexts},
      {"HalfNormalOffset", 0x60030032, true, reals, realTexts},
      {"RayleighOffset", 0x60030034, true, reals, realTexts},
      {"WeibullOffset", 0x60030036, true, reals, realTexts},
      {"GeneralizedParetoOffset", 0x60030038, true, reals, realTexts},
      {"DiscreteVariable", 0x6003003a, false, {4, "", "3-4"}, {"4", "", "3-4"}},
      {"IsBinomialDistribution", 0x6003003c, true, onOff, oneZero},
      {"NumberOfTrials", 0x60030040, true, counts, countTexts},
      {"IsNumberOfTrials", 0x6003003e, true, onOff, oneZero},
      {"IsPoissonDistribution", 0x60030042, true, onOff, oneZero},
      {"IsGeometricDistribution", 0x60030044, true, onOff, oneZero},
      {"IsBernoulliDistribution", 0x60030046, true, onOff, oneZero},
      {"IsDiscreteDistribution", 0x60030048, true, onOff, oneZero},
      {"FitJohnsonByPercentile", 0x6003004a, true, onOff, oneZero},
      {"BootstrapSamples", 0x6003004c, false, {0, 999}, {"0", "999"}},
      {"BootstrapSeed", 0x6003004e, false, {0, 2147483647}, {"0", "2147483647"}},
      {"ContinuousAkaikeCriterion", 0x60030050, false, {1}, {"1"}},
      {"ContinuousBayesCriterion", 0x60030052, false, {1}, {"1"}},
      {"DiscreteAkaikeCriterion", 0x60030054, false, {1}, {"1"}},
      {"DiscreteBayesCriterion", 0x60030056, false, {1}, {"1"}},
      {"ContradictedFitsLast", 0x60030058, false, {true, false}, {"1", "0"}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Automation().FindMember(row.name), row.id) << row.name;
    const Indexes first = row.indexed ? Indexes{1} : Indexes{};
    const Indexes second{2};
    for (std::size_t i = 0; i < row.values.size(); ++i) {
      const Variant other = row.indexed ? Automation().Get(row.name, second) : Variant(0);
      Automation().Put(row.name, row.values[i], first);
      EXPECT_EQ(Automation().Get(row.name, first).ToText(), row.read[i]) << row.name;
      if (!row.indexed) continue;
      EXPECT_EQ(Automation().Get(row.name, second).ToText(), other.ToText()) << row.name << " of another";
      EXPECT_EQ(Automation().Get(row.name, first).ToText(), row.read[i]) << row.name << " when shown again";
    }
  }
  EXPECT_EQ(Said(), std::vector<std::string>{});
  // A choice takes its place from the one before.
  for (const char* former : {"ContinuousKolmogorovSmirovTest", "ContinuousChiSquareTest",
                             "DiscreteKolmogorovSmirovTest", "EqualProbability", "IsPairwise"}) {
    EXPECT_EQ(Automation().Get(former).ToInteger(), 0) << former;
  }
}

// A member and its control may agree and still both be another distribution's.
TEST_F(FitDialog, MembersCheckBoxesAndFlagsMeanTheSameDistribution) {
  struct Row {
    const char* member;
    const char* label;
    const char* offset;  // the member of its offset, or null
  };
  const Row continuous[] = {
      {"IsNormalDistribution", "Nor&mal", nullptr},
      {"IsLogNormalDistribution", "&Log-Normal", "LogNormalOffset"},
      {"IsFoldedNormalDistribution", "Folded normal", "FoldedNormalOffset"},
      {"IsHalfNormalDistribution", "Half normal ", "HalfNormalOffset"},
      {"IsRayleighDistribution", "&Rayleigh", "RayleighOffset"},
      {"IsWeibullDistribution", "Weib&ull", "WeibullOffset"},
      {"IsGaussianMixtureDistribution", "&Gaussian mixture", nullptr},
      {"IsJohnsonDistribution", "&Johnson distribution (general non-normal, single mode)", nullptr},
      {"FitJohnsonByPercentile", "&Percentile fit", nullptr},
      {"IsGeneralizedExtremeValueDistribution", "Generalized Extreme Value", nullptr},
      {"IsGeneralizedParetoDistribution", "Generalized Pareto", "GeneralizedParetoOffset"},
      {"IsTriangularDistribution", "Triangular", nullptr},
  };
  const Row discrete[] = {{"IsBinomialDistribution", "Binomial", nullptr},
                          {"IsPoissonDistribution", "Poisson", nullptr},
                          {"IsGeometricDistribution", "Geometric", nullptr},
                          {"IsBernoulliDistribution", "Bernoulli", nullptr},
                          {"IsDiscreteDistribution", "Histogram", nullptr}};
  Automation().Put("Variables", "1-2 | 3-4");
  constexpr std::size_t kPercentiles = 8;  // the place of the option of the Johnson fit
  for (std::size_t flag = 0; flag <= kContinuousCount; ++flag) {
    EXPECT_EQ(Dialog().Controls().At(ContinuousChecks()[flag]).caption, continuous[flag].label);
    Dialog().Press(kContinuousClearAll);
    Automation().Put(continuous[flag].member, 1, true);
    if (continuous[flag].offset != nullptr) Automation().Put(continuous[flag].offset, 1, 2.5);
    Dialog().Press(kContinuousNext);
    const ContinuousSpecification& read = Specification().continuousSpecifications[0];
    const std::size_t place = flag < kPercentiles ? flag : flag - 1;
    std::array<bool, kContinuousCount> only{};
    only[place] = flag != kPercentiles;
    EXPECT_EQ(read.fit, only) << continuous[flag].member;
    EXPECT_EQ(read.johnsonByPercentiles, flag == kPercentiles);
    if (continuous[flag].offset != nullptr) {
      EXPECT_EQ(read.offsets[place], 2.5) << continuous[flag].offset;
    }
    Dialog().Press(kContinuousPrevious);
  }
  for (std::size_t flag = 0; flag < kDiscreteCount; ++flag) {
    EXPECT_EQ(Dialog().Controls().At(DiscreteChecks()[flag]).caption, discrete[flag].label);
    Dialog().Press(kDiscreteClearAll);
    Automation().Put(discrete[flag].member, 1, true);
    Dialog().Press(kDiscreteNext);
    std::array<bool, kDiscreteCount> only{};
    only[flag] = true;
    EXPECT_EQ(Specification().discreteSpecifications[0].fit, only) << discrete[flag].member;
    Dialog().Press(kDiscretePrevious);
  }
}

TEST_F(FitDialog, AutomationSaysWhatItRefusesAndChangesNothing) {
  sheet.VariableAt(4).SetType(VariableType::kText);
  Automation().Put("Variables", Variant::Array{Variant::Array{1, 2}, 3});
  Automation().Put("WeibullOffset", 1, kNotSet);
  Automation().Put("IsWeibullDistribution", 1, true);
  Automation().Put("WeibullOffset", 1, kNotSet);
  struct Row {
    const char* member;
    Indexes indexes;
    Variant value;
    const char* reason;
  };
  const Row rows[] = {
      {"IsNormalDistribution", {0}, true, "no variable 0 in the list"},
      {"IsNormalDistribution", {3}, true, "no variable 3 in the list"},
      {"IsPoissonDistribution", {2}, true, "no variable 2 in the list"},
      {"IsNormalDistribution", {}, true, "wrong number of arguments"},
      {"NumberOfMixtures", {1}, 2.5, "type mismatch: not a 32-bit integer"},
      {"BootstrapSamples", {}, -1, "less than 0: -1"},
      {"Variables",
       {},
       "|",
       "Too few variables selected. Select at least one variable from one of the two "
       "variable lists to continue."},
      {"Variables", {}, Variant::Array{1, 2, 3}, "not a list of continuous and a list of discrete variables"},
      {"Variables", {}, "1-6", "no variable 6"},
      {"DiscreteVariable",
       {},
       5,
       "One or more text variables selected. To proceed, please remove these "
       "variable(s): Var5."},
      {"IsNormalDistribution", {2}, false, kOffsetsText},
  };
  const std::string before = Automation().Get("Variables").ToText();
  for (const Row& row : rows) {
    try {
      Automation().Put(row.member, row.value, row.indexes);
      ADD_FAILURE() << row.member << " took it";
    } catch (const AutomationError& error) {
      EXPECT_EQ(error.Reason(), row.reason) << row.member;
      EXPECT_EQ(std::string(error.what()),
                "Exception in automation method [CFitDistribution::put_" + std::string(row.member) + "]");
    }
  }
  EXPECT_EQ(Automation().Get("Variables").ToText(), before);
  EXPECT_EQ(Said(), std::vector<std::string>{}) << "the caller has the text, no box is shown";
  Automation().Put("WeibullOffset", 1, 0.5);
  EXPECT_EQ(Automation().Get("IsNormalDistribution", Indexes{2}).ToInteger(), 1);
}

}  // namespace
}  // namespace brenvolt::sra
