#include "brv_sra/simulation/simulation_summary.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <utility>

#include "brv_sra/resources/computing_progress.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/controls/polled_loop.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/vector/sorting.h"
#include "host/statistics/percentiles.h"

namespace brenvolt::sra {
namespace {

constexpr std::array<int, 9> kPercents{1, 5, 10, 25, 50, 75, 90, 95, 99};
constexpr std::array<std::int32_t, 7> kMomentColumns{
    kColumnCount,   kColumnMean,   kColumnStandardDeviation, kColumnSkewness, kColumnKurtosis,
    kColumnMinimum, kColumnMaximum};

std::vector<double> SummaryOf(const Variable& variable) {
  std::vector<double> valid;
  valid.reserve(variable.Size());
  for (std::size_t i = 0; i < variable.Size(); ++i)
    if (!variable.IsMissing(i)) valid.push_back(variable.Values()[i]);
  SampleSummary summary(valid.size());
  while (!summary.IsDone()) {
    summary.Add(valid);
    summary.EndPass();
  }
  return summary.Values();
}

// Pearson's correlations of the columns of an output, or of their ranks: Spearman's.
std::vector<double> Correlate(const Spreadsheet& output, bool ofRanks, CKroProgressBar& progress) {
  const std::size_t n = output.CaseCount();
  const std::size_t k = output.VariableCount();
  std::vector<double> matrix(n * k);
  PolledParallelFor(k, progress, [&](std::size_t j, const Cancellation& cancelled) {
    cancelled.Poll();
    const std::span<const double> values = output.VariableAt(j).Values();
    std::vector<double> ranks(ofRanks ? n : 0);
    if (ofRanks) AverageRanks(values, ranks);
    const std::span<const double> column = ofRanks ? std::span<const double>(ranks) : values;
    for (std::size_t i = 0; i < n; ++i) matrix[i * k + j] = column[i];
  });
  std::vector<double> correlation(k * k);
  PolledParallelFor(1, progress,
                    [&](std::size_t, const Cancellation&) { PearsonCorrelation(matrix, n, k, correlation); });
  return correlation;
}

}  // namespace

SampleSummary::SampleSummary(std::uint64_t count) : count_(count) {
  if (count == 0) return;
  std::vector<std::uint64_t> ranks;
  for (const int percent : kPercents) {
    const std::uint64_t below = PlaceOfPercentile(count, percent).below;
    ranks.push_back(below);
    ranks.push_back(std::min(below + 1, count - 1));
  }
  search_.emplace(ranks);
}

void SampleSummary::Add(std::span<const double> values) {
  if (isFirstPass_) {
    for (std::size_t from = 0; from < values.size(); from += kBlock)
      moments_.Add(values.subspan(from, std::min(kBlock, values.size() - from)));
  }
  search_->Add(values);
}

void SampleSummary::EndPass() {
  isFirstPass_ = false;
  search_->EndPass();
}

std::vector<double> SampleSummary::Values() const {
  const Moments moments = moments_.Finish();
  std::vector<double> values{static_cast<double>(moments.count),
                             moments.mean,
                             moments.standardDeviation,
                             moments.skewness,
                             moments.kurtosis,
                             moments.minimum,
                             moments.maximum};
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    if (!search_) {
      values.push_back(kNotSet);
      continue;
    }
    const double fraction = PlaceOfPercentile(count_, kPercents[i]).fraction;
    values.push_back(std::lerp(search_->Value(2 * i), search_->Value(2 * i + 1), fraction));
  }
  return values;
}

std::unique_ptr<Spreadsheet> SummarySheet(const std::string& title, std::vector<std::string> names,
                                          std::span<const std::vector<double>> values) {
  std::vector<std::string> columns;
  for (const std::int32_t column : kMomentColumns) columns.emplace_back(ResourceString(column));
  for (const int percent : kPercents)
    columns.push_back(std::string(ResourceString(kColumnPercentile)) + std::to_string(percent));
  auto sheet = std::make_unique<Spreadsheet>(std::string(ResourceString(kSimulationSummary)), names.size());
  sheet->SetTitle(title);
  for (std::size_t c = 0; c < columns.size(); ++c) {
    Variable column(columns[c], values.size());
    const auto cells = column.MutableValues();
    for (std::size_t i = 0; i < values.size(); ++i)
      cells[i] = IsNotSet(values[i][c]) ? GetDefaultMDValue() : values[i][c];
    sheet->AddVariable(std::move(column));
  }
  sheet->SetCaseNames(std::move(names));
  return sheet;
}

std::unique_ptr<Spreadsheet> SimulationSummary(const Spreadsheet& output, ProgressPort& port) {
  const std::size_t k = output.VariableCount();
  const auto progress = Computing(port, k + 1);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < k; ++i) names.push_back(output.VariableAt(i).Name());
  std::vector<std::vector<double>> values(k);
  PolledParallelFor(k, *progress, [&](std::size_t i, const Cancellation& cancelled) {
    cancelled.Poll();
    values[i] = SummaryOf(output.VariableAt(i));
  });
  return SummarySheet(output.Title(), std::move(names), values);
}

std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations,
                                                ProgressPort& port) {
  const std::size_t k = output.VariableCount();
  const auto progress = Computing(port, 2 * k + 1);
  const std::vector<double> pearson = Correlate(output, false, *progress);
  const std::vector<double> spearman = Correlate(output, true, *progress);
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
