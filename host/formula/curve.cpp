#include "host/formula/curve.h"

#include <muParser.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "host/formula/translation.h"

namespace brenvolt {
namespace {

// The formula with a blank in the place of its leading sign, so that places in it stay what they were.
std::string WithoutLeadingSign(std::string_view formula) {
  std::string text(formula);
  const auto first = text.find_first_not_of(" \t");
  if (first != std::string::npos && (text[first] == '=' || text[first] == '*')) text[first] = ' ';
  return text;
}

}  // namespace

struct Curve::Compiled {
  double x = 0;  // where the parser finds its variable
  std::unique_ptr<mu::Parser> parser;
};

Curve::Curve(std::string_view formula, std::string_view sourceName)
    : compiled_(std::make_unique<Compiled>()) {
  const std::string text = WithoutLeadingSign(formula);
  const Translation translation(
      text, [](std::string_view name) { return name == "x" ? std::optional<std::size_t>(0) : std::nullopt; },
      sourceName);
  compiled_->parser = translation.MakeParser([this](std::size_t) { return &compiled_->x; });
  // The first evaluation parses; those that follow run what it made of the text.
  translation.Checked([this] { compiled_->parser->Eval(); });
}

Curve::~Curve() = default;
Curve::Curve(Curve&&) noexcept = default;
Curve& Curve::operator=(Curve&&) noexcept = default;

double Curve::At(double x) {
  // A comparison would take NaN for a number.
  if (std::isnan(x)) return std::numeric_limits<double>::quiet_NaN();
  compiled_->x = x;
  return compiled_->parser->Eval();
}

void Curve::Evaluate(std::span<const double> x, std::span<double> out) {
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = At(x[i]);
}

}  // namespace brenvolt
