#include "host/jobs/base/dialog_words.h"

#include <algorithm>
#include <array>

#include "host/base/lower_case.h"
#include "host/base/nearest_name.h"
#include "host/base/quoted.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {

namespace {

std::vector<NamedDistribution> DistributionsFromFacts() {
  std::vector<NamedDistribution> distributions;
  for (const DistributionEntry* entry : DistributionTable()) {
    const DistributionFacts& facts = entry->facts;
    const std::string longName(facts.longName);
    distributions.push_back({LowerCase(facts.name), facts.isContinuous, "Is" + longName + "Distribution",
                             facts.HasOffset() ? longName + "Offset" : ""});
  }
  return distributions;
}

// A distribution with an abbreviation also goes by its long name.
bool IsCalled(const DistributionFacts& facts, std::string_view lowerCase) {
  if (lowerCase == LowerCase(facts.name)) return true;
  if (!facts.otherName.empty() && lowerCase == facts.otherName) return true;
  if (facts.shortName.empty()) return false;
  return lowerCase == LowerCase(facts.shortName) || lowerCase == LowerCase(facts.longName);
}

}  // namespace

const std::vector<NamedDistribution> kNamedDistributions = DistributionsFromFacts();

const NamedDistribution* FindDistribution(std::string_view name) {
  std::string plain = LowerCase(name);
  std::erase_if(plain, [](char c) { return c == ' ' || c == '-' || c == '_'; });
  for (const DistributionEntry* entry : DistributionTable()) {
    if (IsCalled(entry->facts, plain))
      return &kNamedDistributions[static_cast<std::size_t>(entry->facts.code)];
  }
  return nullptr;
}

std::string AllDistributionNames() {
  std::string names;
  for (const NamedDistribution& distribution : kNamedDistributions)
    names += (names.empty() ? "" : ", ") + distribution.name;
  return names;
}

std::string NoSuchDistribution(std::string_view name) {
  std::vector<std::string> names;
  for (const NamedDistribution& distribution : kNamedDistributions) names.push_back(distribution.name);
  const std::string hint = NearestNameHint(name, names);
  return "no distribution called " + Quoted(name) + hint +
         (hint.empty() ? "; the distributions are " : " The distributions are ") + AllDistributionNames();
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
