#include "brv_sra/simulation/design_state.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "brv_sra/distributions/specified_distribution.h"

namespace brenvolt::sra {
namespace {

std::optional<std::size_t> PlaceOf(std::span<const std::string> names, const std::string& name) {
  const auto found = std::ranges::find(names, name);
  if (found == names.end()) return std::nullopt;
  return static_cast<std::size_t>(found - names.begin());
}

double FiniteOr(double value, double otherwise) {
  return std::isfinite(value) ? value : otherwise;
}

// What stands behind the first distribution of a variable: the other fitted ones.
void AppendOthers(const std::vector<DistributionSpecification>& fitted, DistributionCode first,
                  std::vector<DistributionSpecification>& ranked) {
  for (const DistributionSpecification& other : fitted) {
    if (other.code != first) ranked.push_back(other);
  }
}

}  // namespace

std::vector<std::string> DesignState::Names() const {
  std::vector<std::string> names;
  for (const DesignedVariable& variable : variables) names.push_back(variable.name);
  return names;
}

const DistributionSpecification* SimulatedFrom(const DesignedVariable& variable, ParameterSource source) {
  const DistributionSpecification* best = variable.fitted.empty() ? nullptr : &variable.fitted.front();
  if (source == ParameterSource::kFitted && best != nullptr) return best;
  return variable.own ? &*variable.own : best;
}

bool TakesPart(const DesignedVariable& variable, ParameterSource source) {
  return !variable.isLeftOut && SimulatedFrom(variable, source) != nullptr;
}

void SetDesignVariables(DesignState& design, std::span<const std::string> names) {
  const std::vector<std::string> former = design.Names();
  const std::size_t k = names.size();
  std::vector<std::optional<std::size_t>> places;
  std::vector<DesignedVariable> variables;
  for (const std::string& name : names) {
    places.push_back(PlaceOf(former, name));
    variables.push_back(places.back() ? design.variables[*places.back()] : DesignedVariable());
    variables.back().name = name;
  }
  std::vector<double> correlations(k * k, 0.0);
  for (std::size_t i = 0; i < k; ++i) {
    correlations[i * k + i] = 1.0;
    for (std::size_t j = 0; j < k; ++j) {
      if (i != j && places[i] && places[j])
        correlations[i * k + j] = design.correlations[*places[i] * former.size() + *places[j]];
    }
  }
  design.variables = std::move(variables);
  design.correlations = std::move(correlations);
}

Result<std::vector<DistributionSpecification>> SavedDistributions(const VariablePropertyStore& store,
                                                                  int variableNumber) {
  if (!HasStoredOrder(store, variableNumber)) return std::vector<DistributionSpecification>();
  auto read = ReadDistributionProperties(store, std::span(&variableNumber, 1));
  if (!read) return read.Reason();
  return std::move(read->front().ranked);
}

void SaveDesign(VariablePropertyStore& store, std::span<const std::string> sheetVariables,
                const DesignState& design) {
  for (const DesignedVariable& variable : design.variables) {
    const DistributionSpecification* first = SimulatedFrom(variable, design.source);
    const auto place = PlaceOf(sheetVariables, variable.name);
    if (!TakesPart(variable, design.source) || !place) continue;
    VariableDistributions saved;
    saved.variableNumber = static_cast<int>(*place) + 1;
    saved.ranked.push_back(*first);
    AppendOthers(variable.fitted, first->code, saved.ranked);
    saved.truncation = {first->truncateBelow, first->truncateAbove, first->truncationMinimum,
                        first->truncationMaximum};
    WriteDistributionProperties(&store, saved);
  }
}

MatrixFile MatrixOf(const DesignState& design) {
  std::vector<std::size_t> places;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < design.variables.size(); ++i) {
    if (!TakesPart(design.variables[i], design.source)) continue;
    places.push_back(i);
    names.push_back(design.variables[i].name);
  }
  MatrixFile file = MatrixFile::Identity(std::move(names));
  for (std::size_t i = 0; i < places.size(); ++i) {
    const DesignedVariable& variable = design.variables[places[i]];
    for (std::size_t j = 0; j < places.size(); ++j)
      file.correlations[i][j] = design.correlations[places[i] * design.variables.size() + places[j]];
    const SpecifiedDistribution distribution(*SimulatedFrom(variable, design.source));
    file.means[i] = IsNotSet(variable.mean) ? FiniteOr(distribution.Mean(), 0.0) : variable.mean;
    file.standardDeviations[i] = IsNotSet(variable.standardDeviation)
                                     ? FiniteOr(std::sqrt(distribution.Variance()), 1.0)
                                     : variable.standardDeviation;
  }
  return file;
}

void TakeCorrelations(const MatrixFile& file, DesignState& design) {
  const std::size_t k = design.variables.size();
  std::vector<std::optional<std::size_t>> places;
  for (const DesignedVariable& variable : design.variables)
    places.push_back(PlaceOf(file.variables, variable.name));
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (!places[i] || !places[j]) continue;
      design.correlations[i * k + j] = file.correlations[*places[i]][*places[j]];
      design.correlations[j * k + i] = design.correlations[i * k + j];
    }
  }
}

void TakeMatrix(const MatrixFile& file, DesignState& design) {
  TakeCorrelations(file, design);
  for (DesignedVariable& variable : design.variables) {
    const auto place = PlaceOf(file.variables, variable.name);
    if (!place) continue;
    variable.mean = file.means[*place];
    variable.standardDeviation = file.standardDeviations[*place];
  }
}

}  // namespace brenvolt::sra
