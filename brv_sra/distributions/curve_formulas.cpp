#include "brv_sra/distributions/curve_formulas.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <span>
#include <string_view>
#include <vector>

namespace brenvolt::sra {
namespace {

using Values = std::vector<double>;

// What the text of a curve is made of. In a pattern, a digit in braces is the place of an argument and "{o}"
// the offset.
struct CurveForm {
  std::string_view plain;
  std::string_view shifted;  // with an offset that is not zero; empty: as without one
};

struct CurveRow {
  CurveForm density;
  CurveForm cumulative;
  // 0: the pattern stands once. Else it stands for each group of that many arguments, as a sum.
  std::size_t groupSize;
  // The arguments where they are not the distribution's values.
  Values (*arguments)(std::span<const double> values, CurveKind kind);
};

// Groups of the probability of a class (cumulative: of all classes up to it) and its bounds.
Values HistogramSteps(std::span<const double> values, CurveKind kind) {
  std::map<double, double> classes;
  for (std::size_t i = 0; i + 1 < values.size(); i += 2) classes[values[i]] += values[i + 1];
  double half = 0.5;
  for (auto next = classes.begin(), former = next; next != classes.end(); former = next++) {
    if (next != former) half = std::min(half, (next->first - former->first) / 2);
  }
  Values steps;
  double total = 0;
  for (const auto& [code, proportion] : classes) {
    total += proportion;
    steps.insert(steps.end(), {kind == CurveKind::kDensity ? proportion : total, code - half, code + half});
  }
  return steps;
}

// The probability of 0, and that of 1 or of both.
Values BernoulliSteps(std::span<const double> values, CurveKind kind) {
  const double one = values.empty() ? kNotSet : values.front();
  return {1 - one, kind == CurveKind::kDensity ? one : 1.0};
}

constexpr std::string_view kBernoulliSteps = "{0}*(x>=-0.5 & x<=0.5) + {1}*(x>0.5 & x<=1.5)";
constexpr std::string_view kHistogramStep = "{0}*(x>={1} & x<={2})";

// By code. The spellings are fixed, "FoldeNormal" of the shifted density included.
constexpr std::array<CurveRow, kDistributionCount> kCurves{{
    {{"*Normal(x,{0},{1})", {}}, {"*iNormal(x,{0},{1})", {}}, 0, nullptr},
    {{"*Lognorm(x,{0},{1})", "*Lognorm(x-{o},{0},{1})"},
     {"*iLognorm(x,{0},{1})", "*iLognorm(x-{o},{0},{1})"},
     0,
     nullptr},
    {{"*FoldedNormal(x,{0},{1})", "*FoldeNormal(x-{o},{0},{1})"},
     {"*iFoldedNormal(x,{0},{1})", "*iFoldedNormal(x-{o},{0},{1})"},
     0,
     nullptr},
    {{"*HalfNormal(x,{0})", "*HalfNormal(x-{o},{0})"},
     {"*iHalfNormal(x,{0})", "*iHalfNormal(x-{o},{0})"},
     0,
     nullptr},
    {{"*Rayl(x,{0})", "*Rayl(x-{o},{0})"}, {"*IRayl(x,{0})", "*IRayl(x-{o},{0})"}, 0, nullptr},
    {{"*weibull(x,{0},{1},{o})", {}}, {"*iWeibull(x,{0},{1},{o})", {}}, 0, nullptr},
    {{"{0}*Normal(x,{1},{2})", {}}, {"{0}*iNormal(x,{1},{2})", {}}, 3, nullptr},
    {{"*Johnson(x,{0},{1},{2},{3},{4})", {}}, {"*iJohnson(x,{0},{1},{2},{3},{4})", {}}, 0, nullptr},
    {{"*GEV(x,{0},{1},{2})", {}}, {"*IGEV(x,{0},{1},{2})", {}}, 0, nullptr},
    {{"*GPD(x,{o},{0},{1})", {}}, {"*IGPD(x,{o},{0},{1})", {}}, 0, nullptr},
    {{"*Triangular(x,{0},{1},{2})", {}}, {"*iTriangular(x,{0},{1},{2})", {}}, 0, nullptr},
    {{"*Binom(x,{0},{1})*(x>=0)", {}}, {"*iBinom(x,{0},{1})*(x>=0)", {}}, 0, nullptr},
    {{"*Poisson(x,{0})*(x>=0)", {}}, {"*iPoisson(x,{0})*(x>=0)", {}}, 0, nullptr},
    {{"*Geom(x,{0})*(x>=0)", {}}, {"*iGeom(x,{0})*(x>=0)", {}}, 0, nullptr},
    {{kBernoulliSteps, {}}, {kBernoulliSteps, {}}, 2, BernoulliSteps},
    {{kHistogramStep, {}}, {kHistogramStep, {}}, 3, HistogramSteps},
}};

std::string Fill(std::string_view pattern, std::span<const double> arguments, double offset) {
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '{') {
      text += pattern[i];
      continue;
    }
    const char place = pattern[i + 1];
    const auto index = static_cast<std::size_t>(place - '0');
    if (place == 'o') {
      text += DecimalText(offset);
    } else {
      text += DecimalText(index < arguments.size() ? arguments[index] : kNotSet);
    }
    i += 2;
  }
  return text;
}

// An incomplete last group is left out.
std::string FillGroups(std::string_view pattern, std::span<const double> arguments, std::size_t groupSize) {
  std::string text;
  for (std::size_t i = 0; i + groupSize <= arguments.size(); i += groupSize) {
    if (i > 0) text += " + ";
    text += Fill(pattern, arguments.subspan(i, groupSize), 0);
  }
  return text;
}

// What follows the factor; without one, a sum needs no parentheses.
std::string FunctionPart(const DistributionSpecification& specification, CurveKind kind, bool afterFactor) {
  const CurveRow& row = kCurves[static_cast<std::size_t>(specification.code)];
  const CurveForm& form = kind == CurveKind::kDensity ? row.density : row.cumulative;
  const Values arguments =
      row.arguments != nullptr ? row.arguments(specification.values, kind) : specification.values;
  if (row.groupSize > 0) {
    const std::string sum = FillGroups(form.plain, arguments, row.groupSize);
    return afterFactor ? "*(" + sum + ")" : sum;
  }
  const bool none = IsNotSet(specification.offset) || AlmostEqual(specification.offset, 0);
  const bool plain = form.shifted.empty() || none;
  return Fill(plain ? form.plain : form.shifted, arguments, none ? 0.0 : specification.offset);
}

// False for a number that is no code at all, too.
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

CurveFactor EffectiveFactor(CurveFactor asked, CurveFactor own) {
  return {asked.cases < 0 ? own.cases : asked.cases, asked.width < 0 ? own.width : asked.width};
}

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
