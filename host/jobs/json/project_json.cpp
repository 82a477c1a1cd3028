#include "host/jobs/json/project_json.h"

#include "host/application/json_text.h"
#include "host/jobs/json/design_json.h"
#include "host/jobs/sheet_words.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {

using Json = nlohmann::ordered_json;

Json ProjectJson(const Workbook& workbook) {
  Json sheets = Json::array();
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    sheets.push_back({{"name", sheet.Name()},
                      {"kind", KindName(sheet.Kind())},
                      {"cases", sheet.CaseCount()},
                      {"variables", sheet.VariableCount()},
                      {"title", sheet.Title()}});
  }
  return Json{{"sheets", sheets}};
}

Json SheetJson(const Spreadsheet& sheet, const DesignText& design) {
  Json variables = Json::array();
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    Json properties = Json::object();
    for (const auto& [key, value] : variable.Properties()) properties[key] = value;
    variables.push_back({{"name", variable.Name()},
                         {"type", TypeName(variable.Type())},
                         {"missing", CountMissing(variable)},
                         {"properties", properties}});
  }
  return {{"name", sheet.Name()},
          {"kind", KindName(sheet.Kind())},
          {"cases", sheet.CaseCount()},
          {"variables", variables},
          {"design", DesignJson(design)}};
}

Json MatrixJson(const Spreadsheet& matrix) {
  const std::size_t size = matrix.VariableCount();
  const MatrixSummaryRows rows(matrix.CaseCount());
  Json variables = Json::array();
  for (std::size_t row = 0; row < size; ++row) {
    Json correlations = Json::array();
    for (std::size_t c = 0; c < size; ++c)
      correlations.push_back(NumberOrNull(matrix.VariableAt(c).Values()[row]));
    const Variable& variable = matrix.VariableAt(row);
    variables.push_back({{"name", variable.Name()},
                         {"mean", NumberOrNull(variable.Values()[rows.means])},
                         {"standardDeviation", NumberOrNull(variable.Values()[rows.standardDeviations])},
                         {"correlations", correlations}});
  }
  return {{"name", matrix.Name()},
          {"kind", KindName(matrix.Kind())},
          {"validCases", NumberOrNull(ValidCases(matrix))},
          {"variables", variables}};
}

}  // namespace brenvolt
