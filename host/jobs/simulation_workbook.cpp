#include "host/jobs/simulation_workbook.h"

#include <algorithm>
#include <utility>

#include "host/jobs/base/result_workbook.h"
#include "host/jobs/base/row_sheet.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/notation/distribution_notation.h"

namespace brenvolt {
namespace {

Spreadsheet DrawnSheet(const DesignText& design) {
  RowSheet sheet;
  for (const NotedVariable& variable : design.variables) {
    sheet.BeginRow();
    sheet.Put("variable", variable.name);
    sheet.Put("drawn_from", NotationOf(variable.distribution));
  }
  return std::move(sheet).Made("Distributions");
}

// What each pair was asked for and reached; without correlation what the samples happen to have.
Spreadsheet PairsSheet(const SimulationFindings& found) {
  if (found.results.pairs.empty()) return PearsonSheet(found.output->Table(), found.design.Names());
  RowSheet sheet;
  for (const SimulatedPair& pair : found.results.pairs) {
    sheet.BeginRow();
    sheet.Put("variable", pair.first);
    sheet.Put("with", pair.second);
    sheet.Put(pair.correlations, result_columns::kCorrelations);
  }
  return std::move(sheet).Made("Correlations");
}

}  // namespace

Spreadsheet SimulationSheet(const SimulationResults& results) {
  RowSheet sheet;
  for (const ResultRow& row : results.summary.rows) {
    sheet.BeginRow();
    sheet.Put("variable", row.name);
    sheet.Put(row, result_columns::kMoments);
    for (const ResultTable::Heading& heading : results.summary.headings) {
      if (NumberIn(heading.identifier, "percentile"_column))
        sheet.Put(heading.identifier, row.numbers.at(heading.identifier));
    }
  }
  return std::move(sheet).Made("simulation");
}

void WriteSimulationWorkbook(const SimulateJob& job, const SimulationFindings& found,
                             const std::filesystem::path& path) {
  const Spreadsheet& samples = found.output->Table();
  ResultWorkbook workbook(samples);
  workbook.Add(DrawnSheet(found.design));
  Spreadsheet summaries = SimulationSheet(found.results);
  summaries.SetName("Summaries");
  workbook.Add(std::move(summaries));
  workbook.Add(PairsSheet(found));
  const std::vector<PlotPage> pages = DataPlots(samples, "histogram", job.Origin(found));
  for (std::size_t i = 0; i < std::min(kMostCharts, pages.size()); ++i)
    workbook.AddChart(pages[i].name, pages[i].page);
  std::move(workbook).Write(path);
}

}  // namespace brenvolt
