#include "host/jobs/simulation_results.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "host/base/number_text.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt {

std::vector<NotedCorrelation> SimulationResults::Asked() const {
  std::vector<NotedCorrelation> correlations;
  for (const SimulatedPair& pair : pairs) {
    const double asked = pair.correlations.Number("asked"_column);
    if (asked != 0) correlations.push_back({pair.first, pair.second, asked});
  }
  return correlations;
}

std::vector<std::string> SimulationResults::Notes() const {
  constexpr double kShortfall = 0.05;
  const auto shortfall = [](const SimulatedPair& pair) {
    const double missing = std::abs(pair.correlations.Number("used"_column)) -
                           std::abs(pair.correlations.Number("pearson"_column));
    return std::isnan(missing) ? 0.0 : missing;
  };
  const auto lowered =
      std::ranges::count_if(pairs, [&](const SimulatedPair& pair) { return shortfall(pair) > kShortfall; });
  if (lowered == 0) return {};
  const SimulatedPair& most = *std::ranges::max_element(pairs, {}, shortfall);
  const auto number = [&most](const ResultColumn& column) {
    return FormatNumber("%.2f", most.correlations.Number(column));
  };
  return {"Pearson's correlation of " + std::to_string(lowered) + (lowered == 1 ? " pair" : " pairs") +
          " stays more than 0.05 nearer to 0 than the one used, most of all that of " + most.first + " and " +
          most.second + ": " + number("pearson"_column) + " for " + number("used"_column) +
          ". The samples follow it in normal scores; a discrete or skewed margin lowers that of the values."};
}

std::optional<MatrixRepair> SimulationResults::Repair() const {
  // A repair changes every entry, so one that stayed says that there was none.
  const auto change = [](const SimulatedPair& pair) {
    return std::abs(pair.correlations.Number("used"_column) - pair.correlations.Number("asked"_column));
  };
  const auto most = std::ranges::max_element(pairs, {}, change);
  if (most == pairs.end() || change(*most) == 0) return std::nullopt;
  const std::size_t k = variables.size();
  std::vector<double> asked(k * k, 1.0);
  auto pair = pairs.begin();
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i + 1; j < k; ++j, ++pair)
      asked[i * k + j] = asked[j * k + i] = pair->correlations.Number("asked"_column);
  }
  std::vector<double> eigenvalues(k, std::numeric_limits<double>::quiet_NaN());
  // If there is none, the value stays NaN.
  static_cast<void>(SymmetricEigen(asked, k, eigenvalues));
  return MatrixRepair{eigenvalues.front(), &*most};
}

SimulationResults ReadSimulationResults(const CAnalysisTableDoc& summary, const CAnalysisTableDoc* pairs,
                                        const CAnalysisTableDoc* output) {
  SimulationResults results;
  results.summary = ReadResultTable(summary.Table());
  if (pairs == nullptr || output == nullptr) return results;
  ResultTable table = ReadResultTable(pairs->Table());
  results.pairHeadings = std::move(table.headings);
  auto row = table.rows.begin();
  const Spreadsheet& data = output->Table();
  for (std::size_t i = 0; i < data.VariableCount(); ++i) {
    results.variables.push_back(data.VariableAt(i).Name());
    for (std::size_t j = i + 1; j < data.VariableCount(); ++j, ++row)
      results.pairs.push_back({data.VariableAt(i).Name(), data.VariableAt(j).Name(), std::move(*row)});
  }
  return results;
}

}  // namespace brenvolt
