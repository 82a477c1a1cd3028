#include "brv_sra/simulation/design_correlations.h"

#include <algorithm>
#include <limits>

#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

bool IsShared(const SimulationDesign& design, const MatrixFile& file, const std::string& name) {
  const auto isNamed = [&](std::size_t j) { return Trim(design.variables[j].name) == name; };
  return std::ranges::count_if(design.ActiveVariables(), isNamed) > 1 ||
         std::ranges::count(file.variables, name) > 1;
}

}  // namespace

DesignCorrelations CorrelationsByName(const SimulationDesign& design, const MatrixFile& file) {
  const std::size_t k = design.variables.size();
  DesignCorrelations result;
  std::vector<std::optional<std::size_t>> places(k);
  for (std::size_t j = 0; j < k; ++j) {
    const std::string name(Trim(design.variables[j].name));
    const auto found = std::ranges::find(file.variables, name);
    if (!design.IsExcluded(j) && IsShared(design, file, name)) {
      result.ambiguous.push_back(design.variables[j].name);
    } else if (found != file.variables.end()) {
      places[j] = static_cast<std::size_t>(found - file.variables.begin());
    } else if (!design.IsExcluded(j)) {
      result.missing.push_back(design.variables[j].name);
    }
  }
  result.matrix.assign(k * k, kNaN);
  for (std::size_t i = 0; i < k; ++i) {
    result.matrix[i * k + i] = 1;
    for (std::size_t j = 0; j < i; ++j) {
      if (!places[i] || !places[j]) continue;
      const auto [column, row] = std::minmax(*places[i], *places[j]);
      result.matrix[i * k + j] = result.matrix[j * k + i] = file.correlations[row][column];
    }
  }
  return result;
}

std::vector<double> ActiveCorrelations(const SimulationDesign& design) {
  const std::size_t k = design.variables.size();
  const std::vector<std::size_t> active = design.ActiveVariables();
  std::vector<double> matrix;
  matrix.reserve(active.size() * active.size());
  for (const std::size_t i : active) {
    for (const std::size_t j : active) {
      const double given = design.correlations.empty() ? kNaN : design.correlations[i * k + j];
      matrix.push_back(i == j ? 1.0 : given);
    }
  }
  return matrix;
}

}  // namespace brenvolt::sra
