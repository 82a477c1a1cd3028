#include "brv_sra/simulation/dialogs/simulation_documents.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kTitleLength = 80;
constexpr std::size_t kHeaderLength = 12;

// By method code.
constexpr std::array<std::int32_t, 5> kTitles{kMethodMonteCarlo, kMethodLatinHypercube, kMethodImanConover,
                                              kMethodLatinHypercubeImanConover, 0};

// In the order of a summary's values.
const ResultColumn* const kMomentColumns[] = {
    &"n"_column,       &"mean"_column,   &"standard_deviation"_column, &"skewness"_column, &"kurtosis"_column,
    &"minimum"_column, &"maximum"_column};

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
  auto sheet = NewResultSheet(std::string(ResourceString(kSimulationSummary)), std::move(summaries.names));
  sheet->SetTitle(title);
  const std::vector<std::vector<double>>& values = summaries.values;
  const auto column = [&values](std::size_t c) {
    return [&values, c](std::size_t i) { return OrMissing(values[i][c]); };
  };
  std::size_t c = 0;
  for (const ResultColumn* moment : kMomentColumns) AddColumn(*sheet, *moment, column(c++));
  for (const int percent : kSummaryPercents)
    AddColumn(*sheet, "percentile"_column, column(c++), std::to_string(percent));
  return sheet;
}

std::unique_ptr<Spreadsheet> SavedFitsSheet(std::span<const SavedFit> fits) {
  std::vector<std::string> names;
  for (const SavedFit& fit : fits) names.emplace_back(DisplayName(fit.specification.code));
  auto sheet = NewResultSheet(std::string(ResourceString(kTitleSavedFits)), std::move(names));
  const auto add = [&](const ResultColumn& column, auto value) {
    AddColumn(*sheet, column, [&](std::size_t i) { return OrMissing(static_cast<double>(value(fits[i]))); });
  };
  add("variable_number"_column, [](const SavedFit& fit) { return fit.variableNumber; });
  add("saved_place"_column, [](const SavedFit& fit) { return fit.place; });
  add("below_zero"_column, [](const SavedFit& fit) { return fit.reach.belowZero; });
  add("above_zero"_column, [](const SavedFit& fit) { return fit.reach.aboveZero; });
  add("infinite_moment"_column, [](const SavedFit& fit) { return fit.reach.infiniteMoment; });
  add("ks_p"_column, [](const SavedFit& fit) { return fit.ksPValue; });
  add("code"_column, [](const SavedFit& fit) { return fit.specification.code; });
  add("offset"_column, [](const SavedFit& fit) { return fit.specification.offset; });
  add("minimum"_column, [](const SavedFit& fit) {
    return fit.specification.truncateBelow ? fit.specification.truncationMinimum : kNotSet;
  });
  add("maximum"_column, [](const SavedFit& fit) {
    return fit.specification.truncateAbove ? fit.specification.truncationMaximum : kNotSet;
  });
  std::size_t most = 0;
  for (const SavedFit& fit : fits) most = std::max(most, fit.specification.values.size());
  for (std::size_t p = 0; p < most; ++p) {
    const auto value = [&fits, p](std::size_t i) {
      const std::vector<double>& values = fits[i].specification.values;
      return p < values.size() ? values[p] : OrMissing(kNotSet);
    };
    AddColumn(*sheet, "parameter"_column, value, std::to_string(p + 1));
  }
  return sheet;
}

std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations,
                                                const ReachedCorrelations& reached) {
  const std::size_t k = output.VariableCount();
  std::vector<std::string> names;
  std::vector<std::size_t> places;  // of the pairs in the matrices
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = i + 1; j < k; ++j) {
      names.push_back(output.VariableAt(i).Name() + ", " + output.VariableAt(j).Name());
      places.push_back(i * k + j);
    }
  }
  auto sheet = NewResultSheet(std::string(ResourceString(kSimulationCorrelations)), std::move(names));
  sheet->SetTitle(output.Title());
  const auto add = [&](const ResultColumn& column, const std::vector<double>& matrix) {
    AddColumn(*sheet, column, [&](std::size_t pair) { return matrix[places[pair]]; });
  };
  add("asked"_column, correlations.asked);
  add("used"_column, correlations.Used());
  add("pearson"_column, reached.pearson);
  add("spearman"_column, reached.spearman);
  return sheet;
}

}  // namespace brenvolt::sra
