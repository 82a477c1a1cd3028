// The built-in functions over numbers, truth values and comparisons. Missing arguments make a missing result,
// except where a function's entry says otherwise. What means the same in formulas is computed by their
// kernels.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "host/formula/kernels.h"
#include "host/models/transformations/expression_element.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::pmml {
namespace {

double Truth(bool holds) {
  return holds ? 1 : 0;
}

double Same(double x) {
  return x;
}
double RoundHalfUp(double x) {
  return std::floor(x + 0.5);
}
double NormalDensity(double z) {
  return std::exp(-0.5 * z * z) / std::sqrt(2 * std::numbers::pi);
}
// C defines 1^NaN and NaN^0 as 1, and the hypotenuse of an infinite side as infinite.
double Power(double x, double y) {
  return std::isnan(x) || std::isnan(y) ? kMissing : std::pow(x, y);
}
double Hypotenuse(double x, double y) {
  return std::isnan(x) || std::isnan(y) ? kMissing : std::hypot(x, y);
}
double Modulo(double x, double y) {
  return y == 0 ? kMissing : x - y * std::floor(x / y);
}
double NormalCdf(double x, double mean, double sd) {
  return StandardNormalCdf((x - mean) / sd);
}
double NormalPdf(double x, double mean, double sd) {
  return NormalDensity((x - mean) / sd) / sd;
}
double NormalIdf(double p, double mean, double sd) {
  return mean + sd * StandardNormalQuantile(p);
}
double IsThere(double x) {
  return Truth(!std::isnan(x));
}

template <double (*kFunction)(double, double, double)>
void TernaryKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = kFunction(arguments[0].At(i), arguments[1].At(i), arguments[2].At(i));
  }
}

double Least(std::span<double> x) {
  return *std::ranges::min_element(x);
}
double Greatest(std::span<double> x) {
  return *std::ranges::max_element(x);
}
double Sum(std::span<double> x) {
  return std::accumulate(x.begin(), x.end(), 0.0);
}
double Product(std::span<double> x) {
  return std::accumulate(x.begin(), x.end(), 1.0, std::multiplies<>());
}
double Mean(std::span<double> x) {
  return Sum(x) / static_cast<double>(x.size());
}
double Median(std::span<double> x) {
  std::ranges::sort(x);
  const std::size_t middle = x.size() / 2;
  return x.size() % 2 == 1 ? x[middle] : (x[middle - 1] + x[middle]) / 2;
}

// A function of any number of values; missing ones do not count.
template <double (*kFunction)(std::span<double>)>
void AggregateKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  std::vector<double> present(arguments.size());
  for (std::size_t i = 0; i < out.size(); ++i) {
    std::size_t count = 0;
    for (const BlockArgument& argument : arguments) {
      const double x = argument.At(i);
      if (!std::isnan(x)) present[count++] = x;
    }
    out[i] = count == 0 ? kMissing : kFunction(std::span(present).first(count));
  }
}

// Three-valued logic: a value that decides the result does so whatever is missing.
template <bool kDeciding>
void LogicKernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    double value = Truth(!kDeciding);
    for (const BlockArgument& argument : arguments) {
      const double x = argument.At(i);
      if (std::isnan(x)) {
        value = value == Truth(kDeciding) ? value : kMissing;
      } else if ((x != 0) == kDeciding) {
        value = Truth(kDeciding);
      }
    }
    out[i] = value;
  }
}

constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();

constexpr NamedKernel kNumbers[] = {
    {"+", UnaryKernel<Same>, 1, 1},
    {"+", BinaryKernel<kernels::Add>, 2, 2},
    {"-", UnaryKernel<kernels::Negate>, 1, 1},
    {"-", BinaryKernel<kernels::Subtract>, 2, 2},
    {"*", BinaryKernel<kernels::Multiply>, 2, 2},
    {"/", BinaryKernel<kernels::Divide>, 2, 2},
    {"abs", UnaryKernel<std::abs>, 1, 1},
    {"acos", UnaryKernel<std::acos>, 1, 1},
    {"asin", UnaryKernel<std::asin>, 1, 1},
    {"atan", UnaryKernel<std::atan>, 1, 1},
    {"atan2", BinaryKernel<std::atan2>, 2, 2},
    {"avg", AggregateKernel<Mean>, 1, kAnyNumber},
    {"ceil", UnaryKernel<std::ceil>, 1, 1},
    {"cos", UnaryKernel<std::cos>, 1, 1},
    {"cosh", UnaryKernel<std::cosh>, 1, 1},
    {"erf", UnaryKernel<std::erf>, 1, 1},
    {"exp", UnaryKernel<std::exp>, 1, 1},
    {"expm1", UnaryKernel<std::expm1>, 1, 1},
    {"floor", UnaryKernel<std::floor>, 1, 1},
    {"hypot", BinaryKernel<Hypotenuse>, 2, 2},
    {"ln", UnaryKernel<std::log>, 1, 1},
    {"ln1p", UnaryKernel<std::log1p>, 1, 1},
    {"log10", UnaryKernel<std::log10>, 1, 1},
    {"max", AggregateKernel<Greatest>, 1, kAnyNumber},
    {"median", AggregateKernel<Median>, 1, kAnyNumber},
    {"min", AggregateKernel<Least>, 1, kAnyNumber},
    {"modulo", BinaryKernel<Modulo>, 2, 2},
    {"normalCDF", TernaryKernel<NormalCdf>, 3, 3},
    {"normalIDF", TernaryKernel<NormalIdf>, 3, 3},
    {"normalPDF", TernaryKernel<NormalPdf>, 3, 3},
    {"pow", BinaryKernel<Power>, 2, 2},
    {"product", AggregateKernel<Product>, 1, kAnyNumber},
    {"rint", UnaryKernel<std::rint>, 1, 1},
    {"round", UnaryKernel<RoundHalfUp>, 1, 1},
    {"sin", UnaryKernel<std::sin>, 1, 1},
    {"sinh", UnaryKernel<std::sinh>, 1, 1},
    {"sqrt", UnaryKernel<std::sqrt>, 1, 1},
    {"stdNormalCDF", UnaryKernel<StandardNormalCdf>, 1, 1},
    {"stdNormalIDF", UnaryKernel<StandardNormalQuantile>, 1, 1},
    {"stdNormalPDF", UnaryKernel<NormalDensity>, 1, 1},
    {"sum", AggregateKernel<Sum>, 1, kAnyNumber},
    {"tan", UnaryKernel<std::tan>, 1, 1},
    {"tanh", UnaryKernel<std::tanh>, 1, 1},
    {"threshold", BinaryKernel<kernels::IsGreater>, 2, 2},
};

constexpr NamedKernel kTruths[] = {
    {"and", LogicKernel<false>, 1, kAnyNumber},
    {"not", UnaryKernel<kernels::NotTrue>, 1, 1},
    {"or", LogicKernel<true>, 1, kAnyNumber},
};

// Comparisons of two values of one type. Texts are equal where their numbers in the pool are; `follows` says
// what the order of two texts means, where that counts.
struct Comparison {
  std::string_view name;
  BlockKernel kernel;
  bool (*follows)(int order);
};
constexpr Comparison kComparisons[] = {
    {"equal", BinaryKernel<kernels::IsEqual>, nullptr},
    {"notEqual", BinaryKernel<kernels::IsNotEqual>, nullptr},
    {"lessThan", BinaryKernel<kernels::IsLess>, [](int order) { return order < 0; }},
    {"lessOrEqual", BinaryKernel<kernels::IsLessEqual>, [](int order) { return order <= 0; }},
    {"greaterThan", BinaryKernel<kernels::IsGreater>, [](int order) { return order > 0; }},
    {"greaterOrEqual", BinaryKernel<kernels::IsGreaterEqual>, [](int order) { return order >= 0; }},
};

class Call {
 public:
  Call(const std::string& name, std::span<const Operand> arguments, const Place& place, const Element& at)
      : name_(name), arguments_(arguments), place_(place), at_(at) {}

  std::optional<Operand> Compile() const {
    if (auto result = Named(kNumbers, kDouble)) return result;
    if (auto result = Named(kTruths, kTruth)) return result;
    for (const auto& compile : {&Call::Compared, &Call::Membership, &Call::Presence, &Call::Choice}) {
      if (auto result = (this->*compile)()) return result;
    }
    return std::nullopt;
  }

 private:
  std::size_t Count() const { return arguments_.size(); }
  void Want(bool holds) const {
    if (!holds) at_.Fail("the function " + name_ + " has the wrong number of arguments");
  }
  Operand NewResult(TypeInfo type) const {
    Operand result;
    result.type = type;
    result.opType = type.type == DataType::kDouble ? OpType::kContinuous : OpType::kCategorical;
    result.slot = place_.Build().NewSlot(at_);
    return result;
  }

  Operand Run(BlockKernel kernel, std::vector<Slot> slots, TypeInfo type) const {
    const Operand result = NewResult(type);
    AddStep(place_.program, [kernel, slots = std::move(slots), out = result.slot](Frame& frame) {
      std::vector<BlockArgument> arguments;
      for (const Slot slot : slots) arguments.push_back({frame.In(slot), false});
      kernel(arguments, {frame.Out(out), frame.Rows()});
    });
    return result;
  }

  // A function of numbers by its name in a table.
  std::optional<Operand> Named(std::span<const NamedKernel> table, TypeInfo type) const {
    bool isKnown = false;
    for (const NamedKernel& entry : table) {
      if (entry.name != name_) continue;
      isKnown = true;
      if (Count() < entry.fewestArguments || Count() > entry.mostArguments) continue;
      std::vector<Slot> slots;
      for (const Operand& argument : arguments_) slots.push_back(NumberSlot(argument, place_, at_));
      return Run(entry.kernel, std::move(slots), type);
    }
    Want(!isKnown);
    return std::nullopt;
  }

  // The two operands as values of one type: a text that spells a number is one if the other is a number.
  std::pair<Operand, Operand> Alike(const Operand& a, const Operand& b) const {
    if (a.type.IsText() == b.type.IsText()) {
      if (a.literal && !b.type.IsText() && a.type.type != b.type.type)
        return {Cast(a, b.type, place_, at_), b};
      return {a,
              b.literal && !a.type.IsText() && b.type.type != a.type.type ? Operand{Reparsed(b, a.type)} : b};
    }
    const bool textIsLiteral = a.type.IsText() ? a.literal.has_value() : b.literal.has_value();
    const TypeInfo number = a.type.IsText() ? b.type : a.type;
    const TypeInfo wanted = textIsLiteral && !(a.literal && b.literal) ? number : kText;
    return {Cast(a, wanted, place_, at_), Cast(b, wanted, place_, at_)};
  }

  // A number written as a constant where a value of another type, such as a date or truth value, is meant.
  Operand Reparsed(const Operand& constant, TypeInfo type) const {
    const auto value = ParseValue(type, *constant.literal);
    if (!value) return constant;
    Operand result = constant;
    result.type = type;
    result.slot = place_.Build().Constant(*value);
    return result;
  }

  std::optional<Operand> Compared() const {
    for (const Comparison& entry : kComparisons) {
      if (entry.name != name_) continue;
      Want(Count() == 2);
      const auto [a, b] = Alike(arguments_[0], arguments_[1]);
      if (entry.follows == nullptr || !a.type.IsText()) return Run(entry.kernel, {a.slot, b.slot}, kTruth);
      const Operand result = NewResult(kTruth);
      AddStep(place_.program, [a = a.slot, b = b.slot, out = result.slot, f = entry.follows](Frame& frame) {
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          const double x = frame.In(a)[i];
          const double y = frame.In(b)[i];
          double& r = frame.Out(out)[i];
          r = kMissing;
          if (std::isnan(x) || std::isnan(y)) continue;
          r = Truth(f(frame.Pool().Text(x).compare(frame.Pool().Text(y))));
        }
      });
      return result;
    }
    return std::nullopt;
  }

  std::optional<Operand> Membership() const {
    if (name_ != "isIn" && name_ != "isNotIn") return std::nullopt;
    Want(Count() >= 2);
    std::vector<std::pair<Slot, Slot>> pairs;
    for (std::size_t i = 1; i < Count(); ++i) {
      const auto [a, b] = Alike(arguments_[0], arguments_[i]);
      pairs.emplace_back(a.slot, b.slot);
    }
    const Operand result = NewResult(kTruth);
    AddStep(place_.program,
            [first = arguments_[0].slot, pairs, out = result.slot, wanted = name_ == "isIn"](Frame& frame) {
              for (std::size_t i = 0; i < frame.Rows(); ++i) {
                const bool isIn = std::ranges::any_of(pairs, [&](const auto& pair) {
                  return frame.In(pair.first)[i] == frame.In(pair.second)[i];
                });
                frame.Out(out)[i] = std::isnan(frame.In(first)[i]) ? kMissing : Truth(isIn == wanted);
              }
            });
    return result;
  }

  std::optional<Operand> Presence() const {
    const bool negated = name_ == "isNotMissing" || name_ == "isNotValid";
    if (name_ == "isMissing" || name_ == "isNotMissing") {
      Want(Count() == 1);
      return Run(negated ? UnaryKernel<IsThere> : UnaryKernel<kernels::IsMissing>, {arguments_[0].slot},
                 kTruth);
    }
    if (name_ != "isValid" && name_ != "isNotValid") return std::nullopt;
    Want(Count() == 1);
    const Field* field = arguments_[0].field;
    const Operand result = NewResult(kTruth);
    AddStep(place_.program, [a = arguments_[0].slot, out = result.slot, negated,
                             domain = field != nullptr ? field->domain : Domain()](Frame& frame) {
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const double x = frame.In(a)[i];
        frame.Out(out)[i] = Truth((!std::isnan(x) && domain.IsValid(x)) != negated);
      }
    });
    return result;
  }

  std::optional<Operand> Choice() const {
    if (name_ != "if") return std::nullopt;
    Want(Count() == 2 || Count() == 3);
    Operand yes = arguments_[1];
    Operand no = arguments_[1];
    no.slot = place_.Build().Constant(kMissing);
    if (Count() == 3) std::tie(yes, no) = Alike(arguments_[1], arguments_[2]);
    Operand result = Run(IfKernel, {NumberSlot(arguments_[0], place_, at_), yes.slot, no.slot}, yes.type);
    result.opType = yes.opType;
    return result;
  }

  const std::string& name_;
  std::span<const Operand> arguments_;
  const Place& place_;
  const Element& at_;
};

}  // namespace

std::optional<Operand> CompileBuiltIn(const std::string& name, std::span<const Operand> arguments,
                                      const Place& place, const Element& at) {
  return Call(name, arguments, place, at).Compile();
}

}  // namespace brenvolt::pmml
