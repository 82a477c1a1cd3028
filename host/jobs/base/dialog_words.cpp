#include "host/jobs/base/dialog_words.h"

#include <algorithm>
#include <array>

#include "host/base/lower_case.h"
#include "host/base/nearest_name.h"
#include "host/base/quoted.h"
#include "host/numeric/distributions/distribution_types.h"

namespace brenvolt {

namespace {

std::vector<FittedType> TypesFromFacts() {
  std::vector<FittedType> types;
  for (const DistributionType* type : DistributionTypes()) {
    const DistributionFacts& facts = type->facts;
    const std::string longName(facts.longName);
    types.push_back({LowerCase(facts.name), facts.isContinuous, "Is" + longName + "Distribution",
                     facts.HasOffset() ? longName + "Offset" : ""});
  }
  return types;
}

// What people call distributions beside the names of their facts, as statistics packages have taught them.
struct OtherName {
  std::string_view name;
  DistributionCode code;
};
constexpr std::array<OtherName, 6> kOtherNames{{{"lnorm", DistributionCode::kLogNormal},
                                                {"foldnorm", DistributionCode::kFoldedNormal},
                                                {"halfnorm", DistributionCode::kHalfNormal},
                                                {"genextreme", DistributionCode::kGeneralExtremeValue},
                                                {"genpareto", DistributionCode::kGeneralPareto},
                                                {"tri", DistributionCode::kTriangular}}};

// A distribution with an abbreviation also goes by its long name.
bool IsCalled(const DistributionFacts& facts, std::string_view lowerCase) {
  if (lowerCase == LowerCase(facts.name)) return true;
  if (facts.shortName.empty()) return false;
  return lowerCase == LowerCase(facts.shortName) || lowerCase == LowerCase(facts.longName);
}

}  // namespace

const std::vector<FittedType> kFittedTypes = TypesFromFacts();

const FittedType* FindFittedType(std::string_view name) {
  std::string plain = LowerCase(name);
  std::erase_if(plain, [](char c) { return c == ' ' || c == '-' || c == '_'; });
  const auto other = std::ranges::find(kOtherNames, plain, &OtherName::name);
  if (other != kOtherNames.end()) return &kFittedTypes[static_cast<std::size_t>(other->code)];
  for (const DistributionType* type : DistributionTypes()) {
    if (IsCalled(type->facts, plain)) return &kFittedTypes[static_cast<std::size_t>(type->facts.code)];
  }
  return nullptr;
}

std::string FittedTypeNames() {
  std::string names;
  for (const FittedType& type : kFittedTypes) names += (names.empty() ? "" : ", ") + type.name;
  return names;
}

std::string NoSuchType(std::string_view name) {
  std::vector<std::string> names;
  for (const FittedType& type : kFittedTypes) names.push_back(type.name);
  const std::string hint = NearestNameHint(name, names);
  return "no distribution called " + Quoted(name) + hint +
         (hint.empty() ? "; the distributions are " : " The distributions are ") + FittedTypeNames();
}

const Choices kCriteria{{"ks", "ContinuousKolmogorovSmirovTest"},
                        {"chi-square", "ContinuousChiSquareTest"},
                        {"anderson-darling", "ContinuousAndersonDarlingTest"},
                        {"aic", "ContinuousAkaikeCriterion"},
                        {"bic", "ContinuousBayesCriterion"}};
const Choices kDiscreteCriteria{{"ks", "DiscreteKolmogorovSmirovTest"},
                                {"chi-square", "DiscreteChiSquareTest"},
                                {"aic", "DiscreteAkaikeCriterion"},
                                {"bic", "DiscreteBayesCriterion"}};
const Choices kBinnings{{"equal-probability", "EqualProbability"}, {"equal-interval", "EqualInterval"}};
const Choices kDeletions{{"pairwise", "IsPairwise"}, {"casewise", "IsCasewise"}};
const Choices kSimulationMethods{{"monte-carlo", "MonteCarloMethod"},
                                 {"latin-hypercube", "LHSMethod"},
                                 {"iman-conover", "ImanConoverMethod"},
                                 {"latin-hypercube-iman-conover", "LHSwithImanMethod"},
                                 {"norta", "NORTAMethod"}};

bool InducesCorrelation(const std::string& method) {
  return method == "iman-conover" || method == "latin-hypercube-iman-conover";
}

}  // namespace brenvolt
