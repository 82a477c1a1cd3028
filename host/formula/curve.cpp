#include "host/formula/curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "host/formula/compiler.h"

namespace brenvolt {

struct Curve::Compiled {
  Program program;
  Program::Workspace workspace;
};

Curve::Curve(std::string_view formula, std::string_view sourceName)
    : compiled_(std::make_unique<Compiled>()) {
  const std::size_t first = formula.find_first_not_of(" \t");
  const bool continues = first != std::string_view::npos && formula[first] == '*';
  compiled_->program = Compile(
      formula,
      [](std::string_view name, bool) { return name == "x" ? std::optional<std::size_t>(0) : std::nullopt; },
      sourceName, continues ? first + 1 : 0);
  compiled_->workspace = compiled_->program.MakeWorkspace();
}

Curve::~Curve() = default;
Curve::Curve(Curve&&) noexcept = default;
Curve& Curve::operator=(Curve&&) noexcept = default;

double Curve::At(double x) {
  double y = 0;
  Evaluate({&x, 1}, {&y, 1});
  return y;
}

void Curve::Evaluate(std::span<const double> x, std::span<double> out) {
  for (std::size_t done = 0; done < x.size(); done += Program::kBlock) {
    const auto block = x.subspan(done, std::min(Program::kBlock, x.size() - done));
    const double* column = block.data();
    std::array<bool, Program::kBlock> missing{};
    std::ranges::transform(block, missing.begin(), [](double value) { return std::isnan(value); });
    const auto results = out.subspan(done, block.size());
    compiled_->program.Run({&column, compiled_->program.Variables().size()}, compiled_->workspace, results);
    // Not every formula needs its variable.
    for (std::size_t i = 0; i < results.size(); ++i) results[i] = missing[i] ? kMissingResult : results[i];
  }
}

}  // namespace brenvolt
