#include "host/jobs/fit_cautions.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/base/number_text.h"
#include "host/base/p_value_text.h"

namespace brenvolt {
namespace {

using Kind = FitCaution::Kind;

// Smaller probabilities are not reported: one value of ten thousand.
constexpr double kMostBeyondZero = 1e-4;

struct Wording {
  const char* name;
  const char* saying;  // of the fit, whose name comes before it and a probability behind
  const char* ending;
};

Wording WordingOf(Kind kind) {
  switch (kind) {
    case Kind::kBelowZero:
      return {"below-zero", " lies below 0 with probability ", ", where no value of the data is"};
    case Kind::kAboveZero:
      return {"above-zero", " lies above 0 with probability ", ", where no value of the data is"};
    case Kind::kInfiniteMean:
      return {"infinite-mean", " has an infinite mean", ""};
    case Kind::kInfiniteVariance:
      return {"infinite-variance", " has an infinite variance", ""};
  }
  return {};
}

// Comparisons with NaN are false.
std::vector<FitCaution> CautionsAgainst(const FitReach& fit) {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  std::vector<FitCaution> cautions;
  const auto add = [&](Kind kind, double probability) {
    cautions.push_back({kind, fit.fit, fit.identifier, probability});
  };
  if (fit.belowZero > kMostBeyondZero) add(Kind::kBelowZero, fit.belowZero);
  if (fit.aboveZero > kMostBeyondZero) add(Kind::kAboveZero, fit.aboveZero);
  if (fit.infiniteMoment == 1) add(Kind::kInfiniteMean, kNone);
  if (fit.infiniteMoment == 2) add(Kind::kInfiniteVariance, kNone);
  return cautions;
}

}  // namespace

std::string FitCaution::Name() const {
  return WordingOf(kind).name;
}

std::string FitCaution::Text() const {
  const Wording wording = WordingOf(kind);
  const std::string number = std::isnan(probability) ? "" : FormatNumber("%.2g", probability);
  const std::string test = std::isnan(insteadKsPValue) ? "" : " (K-S p " + PValueText(insteadKsPValue) + ")";
  return fit + wording.saying + number + wording.ending +
         (instead.empty() ? "; no other fit avoids that"
                          : "; the best fit that does not is " + instead + test);
}

std::vector<FitCaution> CautionsAgainstFirst(std::span<const FitReach> fits) {
  if (fits.empty()) return {};
  std::vector<FitCaution> cautions = CautionsAgainst(fits.front());
  const auto harmless =
      std::ranges::find_if(fits, [](const FitReach& fit) { return CautionsAgainst(fit).empty(); });
  for (FitCaution& caution : cautions) {
    if (harmless == fits.end()) continue;
    caution.instead = harmless->fit;
    caution.insteadIdentifier = harmless->identifier;
    caution.insteadKsPValue = harmless->ksPValue;
  }
  return cautions;
}

}  // namespace brenvolt
