// Arbitrary bytes as a formula. It is refused with a place inside the text, or the compiled form gives the
// same value in every form of evaluation, and the same again when it is asked again.
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/formula/curve.h"
#include "host/formula/formula.h"

namespace brenvolt {
namespace {

// A long text may ask for many functions that take their time; the ways to read one are in the short ones.
constexpr std::size_t kLongestText = 400;
constexpr std::string_view kSource = "fuzz";

void Require(bool holds) {
  if (!holds) std::abort();
}

bool Same(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void RequirePlaceIn(std::string_view text, const Error& error) {
  constexpr std::string_view kBefore = "fuzz, character ";
  Require(error.Where().starts_with(kBefore));
  const auto place = ParseInteger(std::string_view(error.Where()).substr(kBefore.size()));
  Require(place && *place >= 1 && static_cast<std::size_t>(*place) <= text.size() + 1);
}

void CheckCurve(std::string_view text) {
  constexpr std::array<double, 3> kX{0.75, -2, std::numeric_limits<double>::quiet_NaN()};
  std::array<double, 3> y{};
  Curve curve(text, kSource);
  curve.Evaluate(kX, y);
  for (std::size_t i = 0; i < kX.size(); ++i) Require(Same(curve.At(kX[i]), y[i]));
}

// Over columns, with a variable that is missing, and case by case. An assignment is split first.
void CheckFormula(std::string_view text) {
  const std::array<std::string_view, 2> names{"x", "wait time"};
  const std::array<double, 3> x{0.75, -2, 0};
  const std::array<double, 3> wait{4, -9, 0.5};
  const Formula formula(text, names, kSource, SplitAssignment(text, kSource).begin);
  const std::vector<double> y = formula.Evaluate(std::array<FormulaColumn, 2>{{{x}, {wait, -9}}}, x.size());
  for (std::size_t i = 0; i < y.size(); ++i) {
    double single = 0;
    const std::array<FormulaColumn, 2> columns{{{{&x[i], 1}}, {{&wait[i], 1}, -9}}};
    formula.Evaluate(columns, {&single, 1}, i + 1);
    Require(Same(single, y[i]));
    Require(std::isfinite(y[i]) || std::isnan(y[i]));
  }
}

}  // namespace
}  // namespace brenvolt

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace brenvolt;
  if (size > kLongestText) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  for (const auto check : {CheckCurve, CheckFormula}) {
    try {
      check(text);
    } catch (const Error& error) {
      RequirePlaceIn(text, error);
    }
  }
  return 0;
}
