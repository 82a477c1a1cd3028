#include "apps/cli/simulation_report.h"

#include "apps/cli/result_json.h"
#include "apps/cli/text_table.h"
#include "host/jobs/reports/simulation_tables.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

Json Names(const SimulatedPair& pair) {
  return {pair.first, pair.second};
}

}  // namespace

std::string SummaryText(const ResultTable& summary) {
  const SummaryTables tables = TablesOf(summary);
  return TextOf(tables.moments) + "\n" + TextOf(tables.percentiles);
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

std::string CorrelationsText(const SimulationResults& results) {
  const ReportTable table = CorrelationTable(results, kMostPairsShown);
  std::string text = TextOf(table);
  for (const std::string& note : table.notes) text += "  " + note + "\n";
  for (const std::string& note : results.Notes()) text += "  " + note + "\n";
  return text;
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

}  // namespace brenvolt::cli
