#include "host/jobs/reports/fit_workbook.h"

#include <algorithm>
#include <vector>

#include "host/jobs/base/result_workbook.h"
#include "host/jobs/base/row_sheet.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_results.h"

namespace brenvolt {
namespace {

Spreadsheet RankedFits(const std::vector<FittedVariable>& variables) {
  RowSheet rows;
  for (const FittedVariable& variable : variables) {
    for (std::size_t rank = 0; rank < variable.fits.size(); ++rank) {
      const FittedDistribution& fit = variable.fits[rank];
      rows.BeginRow();
      rows.Put("variable", variable.name);
      rows.Put("rank", static_cast<double>(rank + 1));
      rows.Put("distribution", std::string(fit.identifier));
      rows.Put("description", fit.description);
      rows.Put(fit.statistics, result_columns::kTests);
      rows.Put(fit.statistics, result_columns::kLikelihood);
      rows.Put(fit.statistics, result_columns::kBootstrap);
      rows.Put("offset", fit.offset);
      for (std::size_t i = 0; i < fit.parameters.size(); ++i)
        rows.Put("parameter " + std::to_string(i + 1), fit.parameters[i]);
      for (std::size_t i = 0; i < fit.standardErrors.size(); ++i)
        rows.Put("standard error " + std::to_string(i + 1), fit.standardErrors[i]);
      rows.Put("note", fit.reason.empty() ? fit.note : fit.reason);
    }
  }
  return std::move(rows).Made("Ranked fits");
}

Spreadsheet Summaries(const std::vector<FittedVariable>& variables) {
  RowSheet rows;
  for (const FittedVariable& variable : variables) {
    rows.BeginRow();
    rows.Put("variable", variable.name);
    rows.Put("type", std::string(variable.isContinuous ? "continuous" : "discrete"));
    rows.Put(variable.moments, result_columns::kMoments);
    const FittedDistribution* best = variable.Best();
    rows.Put("best_fit", best != nullptr ? std::string(best->identifier) : std::string());
  }
  return std::move(rows).Made("Summaries");
}

}  // namespace

void WriteFitWorkbook(AnalysisSession& session, const ReportContext& context,
                      const std::filesystem::path& path) {
  AutomationObject& dialog = *session.Dialog();
  const std::vector<FittedVariable> variables = ReadFitResults(dialog, Covariances::kLeftOut);
  std::vector<std::string> continuous;
  for (const FittedVariable& variable : variables) {
    if (variable.isContinuous) continuous.push_back(variable.name);
  }
  ResultWorkbook workbook(context.sheet);
  workbook.Add(RankedFits(variables));
  workbook.Add(PearsonSheet(context.sheet, continuous));
  workbook.Add(Summaries(variables));
  Plot comparison;
  comparison.kind = std::string(kFitComparison);
  const ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  for (std::size_t i = 0; i < std::min(kMostCharts, summary.rows.size()); ++i)
    workbook.AddChart(summary.rows[i].name, FitPlotOf(dialog, summary, i, context.sheet, comparison).page);
  std::move(workbook).Write(path);
}

}  // namespace brenvolt
