// The summary of simulated variables, and of their correlations.
#include <array>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/numeric/correlation.h"
#include "host/numeric/sorting.h"
#include "host/statistics/moments.h"
#include "host/statistics/percentiles.h"

namespace brenvolt::sra {
namespace {

constexpr std::array<int, 9> kPercents{1, 5, 10, 25, 50, 75, 90, 95, 99};
constexpr std::array<std::int32_t, 7> kMomentColumns{
    kColumnCount,   kColumnMean,   kColumnStandardDeviation, kColumnSkewness, kColumnKurtosis,
    kColumnMinimum, kColumnMaximum};

std::vector<double> SummaryOf(const Variable& variable) {
  MomentAccumulator accumulator;
  std::vector<double> valid;
  valid.reserve(variable.Size());
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (variable.IsMissing(i)) continue;
    accumulator.Add(variable.Values()[i], 1);
    valid.push_back(variable.Values()[i]);
  }
  SortAscending(valid);
  const Moments moments = accumulator.Finish();
  std::vector<double> summary{static_cast<double>(moments.count),
                              moments.mean,
                              moments.standardDeviation,
                              moments.skewness,
                              moments.kurtosis,
                              moments.minimum,
                              moments.maximum};
  for (const int percent : kPercents) summary.push_back(Percentile(valid, percent));
  return summary;
}

// All columns of an output, row-major.
std::vector<double> RowMajorValues(const Spreadsheet& output) {
  const std::size_t k = output.VariableCount();
  std::vector<double> matrix(output.CaseCount() * k);
  for (std::size_t j = 0; j < k; ++j) {
    const auto values = output.VariableAt(j).Values();
    for (std::size_t i = 0; i < values.size(); ++i) matrix[i * k + j] = values[i];
  }
  return matrix;
}

// Spearman's correlation is Pearson's of the ranks.
std::vector<double> RankMatrix(const Spreadsheet& output) {
  const std::size_t k = output.VariableCount();
  std::vector<double> matrix(output.CaseCount() * k);
  std::vector<double> ranks(output.CaseCount());
  for (std::size_t j = 0; j < k; ++j) {
    AverageRanks(output.VariableAt(j).Values(), ranks);
    for (std::size_t i = 0; i < ranks.size(); ++i) matrix[i * k + j] = ranks[i];
  }
  return matrix;
}

std::vector<double> Correlate(const std::vector<double>& data, std::size_t n, std::size_t k) {
  std::vector<double> correlation(k * k);
  PearsonCorrelation(data, n, k, correlation);
  return correlation;
}

}  // namespace

std::unique_ptr<Spreadsheet> SimulationSummary(const Spreadsheet& output) {
  std::vector<std::string> columns;
  for (const std::int32_t column : kMomentColumns) columns.emplace_back(ResourceString(column));
  for (const int percent : kPercents)
    columns.push_back(std::string(ResourceString(kColumnPercentile)) + std::to_string(percent));
  auto sheet =
      std::make_unique<Spreadsheet>(std::string(ResourceString(kSimulationSummary)), output.VariableCount());
  sheet->SetTitle(output.Title());
  std::vector<std::string> names;
  std::vector<std::vector<double>> rows;
  for (std::size_t i = 0; i < output.VariableCount(); ++i) {
    names.push_back(output.VariableAt(i).Name());
    rows.push_back(SummaryOf(output.VariableAt(i)));
  }
  for (std::size_t c = 0; c < columns.size(); ++c) {
    Variable column(columns[c], rows.size());
    const auto cells = column.MutableValues();
    for (std::size_t i = 0; i < rows.size(); ++i)
      cells[i] = IsNotSet(rows[i][c]) ? GetDefaultMDValue() : rows[i][c];
    sheet->AddVariable(std::move(column));
  }
  sheet->SetCaseNames(std::move(names));
  return sheet;
}

std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations) {
  const std::size_t k = output.VariableCount();
  const std::size_t n = output.CaseCount();
  const std::vector<double> pearson = Correlate(RowMajorValues(output), n, k);
  const std::vector<double> spearman = Correlate(RankMatrix(output), n, k);
  const struct {
    std::int32_t name;
    const std::vector<double>& matrix;
  } columns[] = {{kColumnCorrelationAsked, correlations.asked},
                 {kColumnCorrelationUsed, correlations.Used()},
                 {kColumnPearson, pearson},
                 {kColumnSpearman, spearman}};
  std::vector<std::string> names;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i + 1; j < k; ++j)
      names.push_back(output.VariableAt(i).Name() + ", " + output.VariableAt(j).Name());
  }
  auto sheet =
      std::make_unique<Spreadsheet>(std::string(ResourceString(kSimulationCorrelations)), names.size());
  sheet->SetTitle(output.Title());
  for (const auto& column : columns) {
    std::vector<double> values;
    for (std::size_t i = 0; i < k; ++i)
      for (std::size_t j = i + 1; j < k; ++j) values.push_back(column.matrix[i * k + j]);
    sheet->AddVariable(Variable(std::string(ResourceString(column.name)), names.size()))
        .AssignValues(std::move(values));
  }
  sheet->SetCaseNames(std::move(names));
  return sheet;
}

}  // namespace brenvolt::sra
