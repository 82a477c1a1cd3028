#include "host/jobs/json/simulation_json.h"

#include "host/jobs/json/design_json.h"
#include "host/jobs/json/fit_json.h"
#include "host/jobs/json/result_json.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

Json Names(const SimulatedPair& pair) {
  return {pair.first, pair.second};
}

Json SummaryJson(const ResultTable& summary) {
  Json variables = RowsJson(summary.rows, "name", kMoments);
  for (std::size_t i = 0; i < summary.rows.size(); ++i) {
    Json percentiles = Json::object();
    for (const ResultTable::Heading& column : summary.headings) {
      if (const auto percent = NumberIn(column.identifier, "percentile"_column))
        percentiles[std::string(*percent)] = NumberJson(summary.rows[i].numbers.at(column.identifier));
    }
    variables[i]["percentiles"] = percentiles;
  }
  return variables;
}

Json CorrelationsJson(const SimulationResults& results) {
  Json list = Json::array();
  for (const SimulatedPair& pair : results.pairs) {
    Json json = {{"variables", Names(pair)}};
    AddNumbers(pair.correlations, kCorrelations, json);
    list.push_back(std::move(json));
  }
  return list;
}

Json RepairJson(const MatrixRepair& repair) {
  const SimulatedPair& pair = *repair.mostChanged;
  return {{"smallestEigenvalue", NumberJson(repair.smallestEigenvalue)},
          {"largestChange",
           {{"variables", Names(pair)},
            {"from", pair.correlations.Number("asked"_column)},
            {"to", pair.correlations.Number("used"_column)}}}};
}

Json MatrixJson(const Spreadsheet& matrix) {
  const std::size_t m = matrix.VariableCount();
  Json names = Json::array();
  Json rows = Json::array();
  for (std::size_t i = 0; i < m; ++i) {
    names.push_back(matrix.VariableAt(i).Name());
    Json row = Json::array();
    for (std::size_t j = 0; j < m; ++j) row.push_back(NumberJson(matrix.VariableAt(j).Values()[i]));
    rows.push_back(row);
  }
  return {{"variables", names}, {"correlations", rows}};
}

Json SavedCautionsJson(const std::vector<VariableCautions>& variables) {
  Json list = Json::array();
  for (const auto& [variable, cautions] : variables) {
    for (Json& caution : CautionsJson(cautions)) {
      Json entry = {{"variable", variable}};
      entry.update(caution);
      list.push_back(std::move(entry));
    }
  }
  return list;
}

// What the job is repeated from.
Json DrawnJson(const SimulateJob& job, const SimulationFindings& run) {
  Json drawn = {{"method", run.method}, {"truncate", job.truncate}};
  drawn.update(DesignJson(run.design));
  return drawn;
}

}  // namespace

Json SimulationJson(const SimulateJob& job, const SimulationFindings& run) {
  Json report = {{"method", run.results.summary.title},
                 {"samples", static_cast<std::int64_t>(job.samples)},
                 {"seed", run.seed},
                 {"drawn", DrawnJson(job, run)},
                 {"variables", SummaryJson(run.results.summary)},
                 {"cautions", SavedCautionsJson(run.cautions)},
                 {"notes", run.Notes()}};
  if (!run.results.pairs.empty()) report["correlations"] = CorrelationsJson(run.results);
  if (const auto repair = run.results.Repair()) report["repair"] = RepairJson(*repair);
  if (run.repairedMatrix != nullptr) {
    report["repairedMatrix"] = MatrixJson(run.repairedMatrix->Table());
  }
  if (run.file.empty()) return report;
  report["output"] = {{"file", run.file.string()}};
  if (!run.outputSheet.empty()) report["output"]["sheet"] = run.outputSheet;
  if (!run.matrixFile.empty()) report["output"]["matrixFile"] = run.matrixFile.string();
  if (!run.matrixSheet.empty()) report["output"]["matrixSheet"] = run.matrixSheet;
  return report;
}

}  // namespace brenvolt
