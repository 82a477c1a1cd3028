// The built-in functions over numbers, truth values and comparisons. Missing arguments make a missing result,
// except where a function's entry says otherwise.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>

#include "host/models/transformations/expression.h"
#include "host/numeric/vector/standard_normal.h"

namespace brenvolt::pmml {
namespace {

constexpr TypeInfo kDouble{DataType::kDouble};
constexpr TypeInfo kTruth{DataType::kBoolean};

double NormalDensity(double z) {
  return std::exp(-0.5 * z * z) / std::sqrt(2 * std::numbers::pi);
}

double Truth(bool holds) {
  return holds ? 1 : 0;
}

struct Unary {
  std::string_view name;
  double (*function)(double);
};
constexpr std::array<Unary, 26> kUnary{{
    {"log10", [](double x) { return std::log10(x); }},
    {"ln", [](double x) { return std::log(x); }},
    {"ln1p", [](double x) { return std::log1p(x); }},
    {"sqrt", [](double x) { return std::sqrt(x); }},
    {"abs", [](double x) { return std::fabs(x); }},
    {"exp", [](double x) { return std::exp(x); }},
    {"expm1", [](double x) { return std::expm1(x); }},
    {"floor", [](double x) { return std::floor(x); }},
    {"ceil", [](double x) { return std::ceil(x); }},
    {"round", [](double x) { return std::floor(x + 0.5); }},
    {"rint", [](double x) { return std::nearbyint(x); }},
    {"sin", [](double x) { return std::sin(x); }},
    {"asin", [](double x) { return std::asin(x); }},
    {"sinh", [](double x) { return std::sinh(x); }},
    {"cos", [](double x) { return std::cos(x); }},
    {"acos", [](double x) { return std::acos(x); }},
    {"cosh", [](double x) { return std::cosh(x); }},
    {"tan", [](double x) { return std::tan(x); }},
    {"atan", [](double x) { return std::atan(x); }},
    {"tanh", [](double x) { return std::tanh(x); }},
    {"erf", [](double x) { return std::erf(x); }},
    {"stdNormalCDF", StandardNormalCdf},
    {"stdNormalIDF", StandardNormalQuantile},
    {"stdNormalPDF", NormalDensity},
    {"-", [](double x) { return -x; }},
    {"+", [](double x) { return x; }},
}};

struct Binary {
  std::string_view name;
  double (*function)(double, double);
};
constexpr std::array<Binary, 9> kBinary{{
    {"+", [](double x, double y) { return x + y; }},
    {"-", [](double x, double y) { return x - y; }},
    {"*", [](double x, double y) { return x * y; }},
    {"/", [](double x, double y) { return y == 0 ? kMissing : x / y; }},
    {"pow", [](double x, double y) { return std::pow(x, y); }},
    {"threshold", [](double x, double y) { return Truth(x > y); }},
    {"modulo", [](double x, double y) { return y == 0 ? kMissing : x - y * std::floor(x / y); }},
    {"hypot", [](double x, double y) { return std::hypot(x, y); }},
    {"atan2", [](double x, double y) { return std::atan2(x, y); }},
}};

struct Ternary {
  std::string_view name;
  double (*function)(double, double, double);
};
constexpr std::array<Ternary, 3> kTernary{{
    {"normalCDF", [](double x, double mean, double sd) { return StandardNormalCdf((x - mean) / sd); }},
    {"normalPDF", [](double x, double mean, double sd) { return NormalDensity((x - mean) / sd) / sd; }},
    {"normalIDF", [](double p, double mean, double sd) { return mean + sd * StandardNormalQuantile(p); }},
}};

// Functions of any number of values, of which the missing ones do not count.
struct Aggregate {
  std::string_view name;
  double (*function)(std::span<double>);
};
constexpr std::array<Aggregate, 6> kAggregates{{
    {"min", [](std::span<double> x) { return *std::ranges::min_element(x); }},
    {"max", [](std::span<double> x) { return *std::ranges::max_element(x); }},
    {"sum", [](std::span<double> x) { return std::accumulate(x.begin(), x.end(), 0.0); }},
    {"product",
     [](std::span<double> x) { return std::accumulate(x.begin(), x.end(), 1.0, std::multiplies<>()); }},
    {"avg",
     [](std::span<double> x) {
       return std::accumulate(x.begin(), x.end(), 0.0) / static_cast<double>(x.size());
     }},
    {"median",
     [](std::span<double> x) {
       std::ranges::sort(x);
       const std::size_t middle = x.size() / 2;
       return x.size() % 2 == 1 ? x[middle] : (x[middle - 1] + x[middle]) / 2;
     }},
}};

// Comparisons of two values of one type.
struct Comparison {
  std::string_view name;
  bool (*holds)(double, double);
  bool needsOrder;
};
constexpr std::array<Comparison, 6> kComparisons{{
    {"equal", [](double x, double y) { return x == y; }, false},
    {"notEqual", [](double x, double y) { return x != y; }, false},
    {"lessThan", [](double x, double y) { return x < y; }, true},
    {"lessOrEqual", [](double x, double y) { return x <= y; }, true},
    {"greaterThan", [](double x, double y) { return x > y; }, true},
    {"greaterOrEqual", [](double x, double y) { return x >= y; }, true},
}};

class Call {
 public:
  Call(const std::string& name, std::span<const Operand> arguments, const Place& place, const Element& at)
      : name_(name), arguments_(arguments), place_(place), at_(at) {}

  std::optional<Operand> Compile() const {
    for (const auto& compile : {&Call::Numeric, &Call::Aggregated, &Call::Compared, &Call::Membership,
                                &Call::Logic, &Call::Presence, &Call::Choice}) {
      if (auto result = (this->*compile)()) return result;
    }
    return std::nullopt;
  }

 private:
  Slot NumberAt(std::size_t i) const { return NumberSlot(arguments_[i], place_, at_); }
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

  template <class Function>
  Operand Over1(Function function, TypeInfo type) const {
    const Operand result = NewResult(type);
    AddStep(place_.program, [a = NumberAt(0), out = result.slot, function](Frame& frame) {
      const double* x = frame.In(a);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = function(x[i]);
    });
    return result;
  }

  template <class Function>
  Operand Over2(Slot a, Slot b, Function function, TypeInfo type) const {
    const Operand result = NewResult(type);
    AddStep(place_.program, [a, b, out = result.slot, function](Frame& frame) {
      const double* x = frame.In(a);
      const double* z = frame.In(b);
      double* y = frame.Out(out);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        y[i] = std::isnan(x[i]) || std::isnan(z[i]) ? kMissing : function(x[i], z[i]);
      }
    });
    return result;
  }

  std::optional<Operand> Numeric() const {
    for (const Unary& entry : kUnary) {
      if (entry.name != name_ || Count() != 1) continue;
      return Over1([f = entry.function](double x) { return std::isnan(x) ? x : f(x); }, kDouble);
    }
    for (const Binary& entry : kBinary) {
      if (entry.name != name_) continue;
      Want(Count() == 2);
      return Over2(NumberAt(0), NumberAt(1), entry.function, kDouble);
    }
    for (const Ternary& entry : kTernary) {
      if (entry.name != name_) continue;
      Want(Count() == 3);
      const Operand result = NewResult(kDouble);
      AddStep(place_.program, [a = NumberAt(0), b = NumberAt(1), c = NumberAt(2), out = result.slot,
                               f = entry.function](Frame& frame) {
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          frame.Out(out)[i] = f(frame.In(a)[i], frame.In(b)[i], frame.In(c)[i]);
        }
      });
      return result;
    }
    for (const Unary& entry : kUnary) {
      if (entry.name == name_) Want(false);
    }
    return std::nullopt;
  }

  std::optional<Operand> Aggregated() const {
    for (const Aggregate& entry : kAggregates) {
      if (entry.name != name_) continue;
      Want(Count() >= 1);
      std::vector<Slot> slots;
      for (std::size_t i = 0; i < Count(); ++i) slots.push_back(NumberAt(i));
      const Operand result = NewResult(kDouble);
      AddStep(place_.program, [slots, out = result.slot, f = entry.function](Frame& frame) {
        std::vector<double> present(slots.size());
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          std::size_t count = 0;
          for (const Slot slot : slots) {
            const double x = frame.In(slot)[i];
            if (!std::isnan(x)) present[count++] = x;
          }
          frame.Out(out)[i] = count == 0 ? kMissing : f(std::span(present).first(count));
        }
      });
      return result;
    }
    return std::nullopt;
  }

  // The two operands as values of one type: a text that is a number is one beside numbers.
  std::pair<Operand, Operand> Alike(const Operand& a, const Operand& b) const {
    if (a.type.IsText() == b.type.IsText()) {
      if (a.literal && !b.type.IsText() && a.type.type != b.type.type)
        return {Cast(a, b.type, place_, at_), b};
      return {a,
              b.literal && !a.type.IsText() && b.type.type != a.type.type ? Operand{Reparsed(b, a.type)} : b};
    }
    const bool textIsLiteral = a.type.IsText() ? a.literal.has_value() : b.literal.has_value();
    const TypeInfo number = a.type.IsText() ? b.type : a.type;
    const TypeInfo wanted = textIsLiteral && !(a.literal && b.literal) ? number : TypeInfo{DataType::kText};
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
      if (!entry.needsOrder || !a.type.IsText())
        return Over2(
            a.slot, b.slot, [f = entry.holds](double x, double y) { return Truth(f(x, y)); }, kTruth);
      const Operand result = NewResult(kTruth);
      AddStep(place_.program, [a = a.slot, b = b.slot, out = result.slot, f = entry.holds](Frame& frame) {
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          const double x = frame.In(a)[i];
          const double y = frame.In(b)[i];
          double& r = frame.Out(out)[i];
          r = kMissing;
          if (std::isnan(x) || std::isnan(y)) continue;
          r = Truth(f(frame.Pool().Text(x).compare(frame.Pool().Text(y)), 0));
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

  // Three-valued logic: what decides the result decides it whatever is missing.
  std::optional<Operand> Logic() const {
    if (name_ == "not") {
      Want(Count() == 1);
      return Over1([](double x) { return std::isnan(x) ? x : Truth(x == 0); }, kTruth);
    }
    if (name_ != "and" && name_ != "or") return std::nullopt;
    Want(Count() >= 1);
    std::vector<Slot> slots;
    for (std::size_t i = 0; i < Count(); ++i) slots.push_back(NumberAt(i));
    const Operand result = NewResult(kTruth);
    AddStep(place_.program, [slots, out = result.slot, deciding = Truth(name_ == "or")](Frame& frame) {
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        double value = 1 - deciding;
        for (const Slot slot : slots) {
          const double x = frame.In(slot)[i];
          if (std::isnan(x)) {
            value = value == deciding ? value : kMissing;
          } else if (Truth(x != 0) == deciding) {
            value = deciding;
          }
        }
        frame.Out(out)[i] = value;
      }
    });
    return result;
  }

  std::optional<Operand> Presence() const {
    const bool negated = name_ == "isNotMissing" || name_ == "isNotValid";
    if (name_ == "isMissing" || name_ == "isNotMissing") {
      Want(Count() == 1);
      return OverAny([negated](double x) { return Truth(std::isnan(x) != negated); });
    }
    if (name_ != "isValid" && name_ != "isNotValid") return std::nullopt;
    Want(Count() == 1);
    const Field* field = arguments_[0].field;
    return OverAny([negated, domain = field != nullptr ? field->domain : Domain()](double x) {
      return Truth((!std::isnan(x) && domain.IsValid(x)) != negated);
    });
  }

  template <class Function>
  Operand OverAny(Function function) const {
    const Operand result = NewResult(kTruth);
    AddStep(place_.program, [a = arguments_[0].slot, out = result.slot, function](Frame& frame) {
      for (std::size_t i = 0; i < frame.Rows(); ++i) frame.Out(out)[i] = function(frame.In(a)[i]);
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
    Operand result = NewResult(yes.type);
    result.opType = yes.opType;
    AddStep(place_.program,
            [test = NumberAt(0), yes = yes.slot, no = no.slot, out = result.slot](Frame& frame) {
              for (std::size_t i = 0; i < frame.Rows(); ++i) {
                const double condition = frame.In(test)[i];
                const double chosen = frame.In(condition != 0 ? yes : no)[i];
                frame.Out(out)[i] = std::isnan(condition) ? kMissing : chosen;
              }
            });
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
