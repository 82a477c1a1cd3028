#include "host/jobs/dialog_words.h"

#include <algorithm>
#include <cctype>

namespace brenvolt {

const std::array<FittedType, 16> kFittedTypes{{
    {"normal", true, "IsNormalDistribution", ""},
    {"lognormal", true, "IsLogNormalDistribution", "LogNormalOffset"},
    {"foldednormal", true, "IsFoldedNormalDistribution", "FoldedNormalOffset"},
    {"halfnormal", true, "IsHalfNormalDistribution", "HalfNormalOffset"},
    {"rayleigh", true, "IsRayleighDistribution", "RayleighOffset"},
    {"weibull", true, "IsWeibullDistribution", "WeibullOffset"},
    {"gaussianmixture", true, "IsGaussianMixtureDistribution", ""},
    {"johnson", true, "IsJohnsonDistribution", ""},
    {"generalextremevalue", true, "IsGeneralizedExtremeValueDistribution", ""},
    {"generalpareto", true, "IsGeneralizedParetoDistribution", "GeneralizedParetoOffset"},
    {"triangular", true, "IsTriangularDistribution", ""},
    {"binomial", false, "IsBinomialDistribution", ""},
    {"poisson", false, "IsPoissonDistribution", ""},
    {"geometric", false, "IsGeometricDistribution", ""},
    {"bernoulli", false, "IsBernoulliDistribution", ""},
    {"histogram", false, "IsDiscreteDistribution", ""},
}};

namespace {

// Other names that people use.
const std::map<std::string_view, std::string_view> kOtherNames{
    {"gev", "generalextremevalue"},
    {"generalizedextremevalue", "generalextremevalue"},
    {"gpd", "generalpareto"},
    {"generalizedpareto", "generalpareto"},
};

}  // namespace

const FittedType* FindFittedType(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c != ' ' && c != '-') plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  const auto other = kOtherNames.find(plain);
  const auto found = std::ranges::find(
      kFittedTypes, other != kOtherNames.end() ? other->second : std::string_view(plain), &FittedType::name);
  return found != kFittedTypes.end() ? &*found : nullptr;
}

std::string FittedTypeNames() {
  std::string names;
  for (const FittedType& type : kFittedTypes) names += (names.empty() ? "" : ", ") + std::string(type.name);
  return names;
}

const Choices kCriteria{{"ks", "ContinuousKolmogorovSmirovTest"},
                        {"chi-square", "ContinuousChiSquareTest"},
                        {"anderson-darling", "ContinuousAndersonDarlingTest"}};
const Choices kDiscreteCriteria{{"ks", "DiscreteKolmogorovSmirovTest"},
                                {"chi-square", "DiscreteChiSquareTest"}};
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
