#include "brv_sra/simulation/dialogs/simulation_documents.h"

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kTitleLength = 80;
constexpr std::size_t kHeaderLength = 12;

// By method code.
constexpr std::array<std::int32_t, 5> kTitles{kMethodMonteCarlo, kMethodLatinHypercube, kMethodImanConover,
                                              kMethodLatinHypercubeImanConover, 0};

// In the order of a summary's values.
constexpr std::array<std::int32_t, 7> kMomentColumns{
    kColumnCount,   kColumnMean,   kColumnStandardDeviation, kColumnSkewness, kColumnKurtosis,
    kColumnMinimum, kColumnMaximum};

}  // namespace

std::string MethodTitle(SimulationMethod method) {
  return std::string(ResourceString(kTitles[static_cast<std::size_t>(method)]));
}

void TitleOutput(Spreadsheet& output, SimulationMethod method) {
  const std::string name = MethodTitle(method).substr(0, kTitleLength);
  output.SetName(name);
  output.SetTitle(name);
  output.SetHeader(std::string(ResourceString(kHeadingSample).substr(0, kHeaderLength)));
}

std::unique_ptr<Spreadsheet> SummarySheet(const std::string& title, SampleSummaries summaries) {
  std::vector<std::string>& names = summaries.names;
  const std::vector<std::vector<double>>& values = summaries.values;
  std::vector<std::string> columns;
  for (const std::int32_t column : kMomentColumns) columns.emplace_back(ResourceString(column));
  for (const int percent : kSummaryPercents)
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

std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations,
                                                const ReachedCorrelations& reached) {
  const std::size_t k = output.VariableCount();
  const struct {
    std::int32_t name;
    const std::vector<double>& matrix;
  } columns[] = {{kColumnCorrelationAsked, correlations.asked},
                 {kColumnCorrelationUsed, correlations.Used()},
                 {kColumnPearson, reached.pearson},
                 {kColumnSpearman, reached.spearman}};
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
