#include "brv_sra/distributions/curve_formulas.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "brv_sra/distributions/catalogue.h"

namespace brenvolt::sra {
namespace {

using enum DistributionCode;

// A call of the curve of a distribution at x. The offset is 0 if there is none.
std::string CurveCall(const DistributionFacts& facts, CurveKind kind, std::span<const double> values,
                      double offset) {
  const bool isShifted = facts.offset == OffsetPlace::kWithX && offset != 0;
  const std::string_view density = isShifted ? facts.curves.shiftedDensity : facts.curves.density;
  std::string text(kind == CurveKind::kDensity ? density : facts.curves.cumulative);
  text += isShifted ? "(x-" + DecimalText(offset) : "(x";
  if (facts.offset == OffsetPlace::kFirst) text += "," + DecimalText(offset);
  for (std::size_t i = 0; i < facts.ParameterCount(); ++i)
    text += "," + DecimalText(i < values.size() ? values[i] : kNotSet);
  if (facts.offset == OffsetPlace::kLast) text += "," + DecimalText(offset);
  return text + (facts.isContinuous ? ")" : ")*(x>=0)");
}

using Terms = std::vector<std::string>;

// Each component's share of its normal curve; an incomplete last one is left out.
Terms MixtureTerms(std::span<const double> values, CurveKind kind) {
  Terms terms;
  for (; values.size() >= 3; values = values.subspan(3))
    terms.push_back(DecimalText(values[0]) + "*" + CurveCall(Facts(kNormal), kind, values.subspan(1, 2), 0));
  return terms;
}

// A step up to the probability of each class (cumulative: of all classes up to it).
Terms HistogramTerms(std::span<const double> values, CurveKind kind) {
  std::map<double, double> classes;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) classes[values[i]] += values[i + 1];
  double half = 0.5;
  for (auto next = classes.begin(), former = next; next != classes.end(); former = next++) {
    if (next != former) half = std::min(half, (next->first - former->first) / 2);
  }
  Terms terms;
  double total = 0;
  for (const auto& [code, proportion] : classes) {
    total += proportion;
    terms.push_back(DecimalText(kind == CurveKind::kDensity ? proportion : total) +
                    "*(x>=" + DecimalText(code - half) + " & x<=" + DecimalText(code + half) + ")");
  }
  return terms;
}

// Steps to the probability of 0, and to that of 1 or of both.
Terms BernoulliTerms(std::span<const double> values, CurveKind kind) {
  const double one = values.empty() ? kNotSet : values.front();
  return {DecimalText(1 - one) + "*(x>=-0.5 & x<=0.5)",
          DecimalText(kind == CurveKind::kDensity ? one : 1.0) + "*(x>0.5 & x<=1.5)"};
}

// A sum needs no parentheses unless a factor precedes it.
std::string SumText(const Terms& terms, bool afterFactor) {
  std::string sum;
  for (const std::string& term : terms) sum += (sum.empty() ? "" : " + ") + term;
  return afterFactor ? "*(" + sum + ")" : sum;
}

// What follows the factor.
std::string FunctionPart(const DistributionSpecification& specification, CurveKind kind, bool afterFactor) {
  switch (specification.code) {
    case kGaussianMixture:
      return SumText(MixtureTerms(specification.values, kind), afterFactor);
    case kBernoulli:
      return SumText(BernoulliTerms(specification.values, kind), afterFactor);
    case kHistogram:
      return SumText(HistogramTerms(specification.values, kind), afterFactor);
    default:
      break;
  }
  const bool hasNone = IsNotSet(specification.offset) || AlmostEqual(specification.offset, 0);
  const double offset = hasNone ? 0.0 : specification.offset;
  return "*" + CurveCall(Facts(specification.code), kind, specification.values, offset);
}

// Also false for a number that is not a code.
bool IsContinuousCode(DistributionCode code) {
  const auto number = static_cast<std::int32_t>(code);
  return number >= 0 && number < kContinuousCount;
}
bool IsDiscreteCode(DistributionCode code) {
  const auto number = static_cast<std::int32_t>(code);
  return number >= kContinuousCount && number < kDistributionCount;
}

std::string FactorText(CurveFactor factor) {
  return DecimalText(factor.cases) + "*" + DecimalText(factor.width);
}

}  // namespace

std::string ContinuousCurveFormula(const DistributionSpecification& specification, CurveKind kind,
                                   CurveFactor factor) {
  const std::string text = FactorText(factor);
  return IsContinuousCode(specification.code) ? text + FunctionPart(specification, kind, true) : text;
}

std::string DiscreteCurveFormula(const DistributionSpecification& specification, CurveKind kind,
                                 CurveFactor factor, DensityUnit unit) {
  std::string text;
  if (kind == CurveKind::kCumulative) {
    text = "=" + FactorText(factor);
  } else if (unit == DensityUnit::kCounts) {
    text = "*" + FactorText(factor);
  }
  const bool afterFactor = !text.empty();
  return IsDiscreteCode(specification.code) ? text + FunctionPart(specification, kind, afterFactor) : text;
}

std::string DecimalText(double x) {
  // The longest: sign, "0.", 323 zeros and 17 digits of a small number; 309 digits and a sign of a large one.
  std::array<char, 352> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, std::chars_format::fixed).ptr;
  return {buffer.data(), end};
}

}  // namespace brenvolt::sra
