#include "host/formula/functions.h"

#include <cmath>
#include <numbers>
#include <string>

#include "host/base/lower_case.h"
#include "host/formula/kernels.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

// A zero to a negative power is a division by zero. C defines 1^NaN and NaN^0 as 1; here they are missing.
double PowerValues(double a, double b) {
  if (std::isnan(a) || std::isnan(b) || (a == 0 && b < 0)) return kMissingResult;
  return std::pow(a, b);
}
double Square(double a) {
  return a * a;
}

double BothTrue(double a, double b) {
  return kernels::Truth(a != 0 && b != 0, a, b);
}
double OneTrue(double a, double b) {
  return kernels::Truth(a != 0 || b != 0, a, b);
}
double Sign(double a) {
  if (std::isnan(a)) return a;
  return a > 0 ? 1 : (a < 0 ? -1 : 0);
}
double Smaller(double a, double b) {
  return std::isnan(a) || a < b ? a : b;
}
double Greater(double a, double b) {
  return std::isnan(a) || a > b ? a : b;
}
// The remainder has the sign of the divisor.
double Modulo(double a, double b) {
  if (b == 0) return kMissingResult;
  const double rest = std::fmod(a, b);
  return rest != 0 && (rest < 0) != (b < 0) ? rest + b : rest;
}
// Half away from zero.
double RoundAt(double a, double digits) {
  if (std::isnan(a) || std::isnan(digits)) return kMissingResult;
  const double unit = std::pow(10.0, std::abs(std::trunc(digits)));
  if (!std::isfinite(unit)) return digits > 0 ? a : 0;
  if (digits < 0) return std::round(a / unit) * unit;
  const double scaled = a * unit;
  return std::isfinite(scaled) ? std::round(scaled) / unit : a;
}

// The poles of the logarithms are missing like other divisions by zero.
double Log2(double a) {
  return a == 0 ? kMissingResult : std::log2(a);
}
double Log10(double a) {
  return a == 0 ? kMissingResult : std::log10(a);
}

// Squares, the commonest powers by far, need no logarithm.
void PowerKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  const bool square = arguments[1].constant && *arguments[1].values == 2;
  square ? UnaryKernel<Square>(arguments, out) : BinaryKernel<PowerValues>(arguments, out);
}

void ExpKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  elementary::Exp({arguments[0].values, out.size()}, out);
}

void LogKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  elementary::Log({arguments[0].values, out.size()}, out);
  for (double& value : out) value = std::isinf(value) && value < 0 ? kMissingResult : value;
}

// log(x) is natural, log(x, base) has the base given.
double LogOfBase(double a, double base) {
  return kernels::Divide(a == 0 ? kMissingResult : elementary::Log(a),
                         base == 0 ? kMissingResult : elementary::Log(base));
}
void AnyLogKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  arguments.size() == 1 ? LogKernel(arguments, out) : BinaryKernel<LogOfBase>(arguments, out);
}

void RoundKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  arguments.size() == 1 ? UnaryKernel<std::round>(arguments, out) : BinaryKernel<RoundAt>(arguments, out);
}

template <double (*kFunction)(double, double)>
void FoldKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    double value = arguments[0].At(i);
    for (const BlockArgument& argument : arguments.subspan(1)) value = kFunction(value, argument.At(i));
    out[i] = value;
  }
}

// The truth of a single value is also 0 or 1.
template <double (*kFunction)(double, double)>
void TruthKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  FoldKernel<kFunction>(arguments, out);
  for (double& value : out) value = kFunction(value, value);
}

void MeanKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  FoldKernel<kernels::Add>(arguments, out);
  for (double& value : out) value /= static_cast<double>(arguments.size());
}

constexpr FormulaOperator kOperators[] = {
    {"<=", OperatorLevel::kComparison, BinaryKernel<kernels::IsLessEqual>},
    {">=", OperatorLevel::kComparison, BinaryKernel<kernels::IsGreaterEqual>},
    {"<>", OperatorLevel::kComparison, BinaryKernel<kernels::IsNotEqual>},
    {"!=", OperatorLevel::kComparison, BinaryKernel<kernels::IsNotEqual>},
    {"==", OperatorLevel::kComparison, BinaryKernel<kernels::IsEqual>},
    {"&&", OperatorLevel::kAnd, BinaryKernel<BothTrue>},
    {"||", OperatorLevel::kOr, BinaryKernel<OneTrue>},
    {"<", OperatorLevel::kComparison, BinaryKernel<kernels::IsLess>},
    {">", OperatorLevel::kComparison, BinaryKernel<kernels::IsGreater>},
    {"=", OperatorLevel::kComparison, BinaryKernel<kernels::IsEqual>},
    {"&", OperatorLevel::kAnd, BinaryKernel<BothTrue>},
    {"|", OperatorLevel::kOr, BinaryKernel<OneTrue>},
    {"+", OperatorLevel::kSum, BinaryKernel<kernels::Add>},
    {"-", OperatorLevel::kSum, BinaryKernel<kernels::Subtract>},
    {"*", OperatorLevel::kProduct, BinaryKernel<kernels::Multiply>},
    {"/", OperatorLevel::kProduct, BinaryKernel<kernels::Divide>},
    {"^", OperatorLevel::kPower, PowerKernel},
    {"and", OperatorLevel::kAnd, BinaryKernel<BothTrue>},
    {"or", OperatorLevel::kOr, BinaryKernel<OneTrue>},
};

constexpr NamedKernel kFunctions[] = {
    {"abs", UnaryKernel<std::abs>, 1, 1},
    {"acos", UnaryKernel<std::acos>, 1, 1},
    {"acosh", UnaryKernel<std::acosh>, 1, 1},
    {"and", TruthKernel<BothTrue>, 1, kMostArguments},
    {"asin", UnaryKernel<std::asin>, 1, 1},
    {"asinh", UnaryKernel<std::asinh>, 1, 1},
    {"atan", UnaryKernel<std::atan>, 1, 1},
    {"atan2", BinaryKernel<std::atan2>, 2, 2},
    {"atanh", UnaryKernel<std::atanh>, 1, 1},
    {"avg", MeanKernel, 1, kMostArguments},
    {"ceil", UnaryKernel<std::ceil>, 1, 1},
    {"cos", UnaryKernel<std::cos>, 1, 1},
    {"cosh", UnaryKernel<std::cosh>, 1, 1},
    {"exp", ExpKernel, 1, 1},
    {"floor", UnaryKernel<std::floor>, 1, 1},
    {"if", IfKernel, 3, 3},
    {"ismissing", UnaryKernel<kernels::IsMissing>, 1, 1},
    {"ln", LogKernel, 1, 1},
    {"log", AnyLogKernel, 1, 2},
    {"log10", UnaryKernel<Log10>, 1, 1},
    {"log2", UnaryKernel<Log2>, 1, 1},
    {"max", FoldKernel<Greater>, 1, kMostArguments},
    {"mean", MeanKernel, 1, kMostArguments},
    {"min", FoldKernel<Smaller>, 1, kMostArguments},
    {"mod", BinaryKernel<Modulo>, 2, 2},
    {"not", UnaryKernel<kernels::NotTrue>, 1, 1},
    {"or", TruthKernel<OneTrue>, 1, kMostArguments},
    {"power", PowerKernel, 2, 2},
    {"rint", UnaryKernel<std::rint>, 1, 1},
    {"round", RoundKernel, 1, 2},
    {"sign", UnaryKernel<Sign>, 1, 1},
    {"sin", UnaryKernel<std::sin>, 1, 1},
    {"sinh", UnaryKernel<std::sinh>, 1, 1},
    {"sqrt", UnaryKernel<std::sqrt>, 1, 1},
    {"sum", FoldKernel<kernels::Add>, 1, kMostArguments},
    {"tan", UnaryKernel<std::tan>, 1, 1},
    {"tanh", UnaryKernel<std::tanh>, 1, 1},
    {"trunc", UnaryKernel<std::trunc>, 1, 1},
};

}  // namespace

std::span<const NamedKernel> MathematicalFunctions() {
  return kFunctions;
}

std::optional<double> FormulaConstant(std::string_view name) {
  const std::string lower = LowerCase(name);
  if (lower == "pi") return std::numbers::pi;
  if (lower == "euler") return std::numbers::e;
  if (lower == "missing") return kMissingResult;
  return std::nullopt;
}

std::span<const FormulaOperator> BinaryOperators() {
  return kOperators;
}

}  // namespace brenvolt
