#include "brv_sra/profiler/dialogs/unpredicted_document.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"
#include "host/application/no_prediction_text.h"

namespace brenvolt::sra {
namespace {

struct UnpredictedRow {
  const ProfilerDependent& dependent;
  UnpredictedReason reason;
};

std::string ReasonText(const UnpredictedRow& row) {
  const bool isFormula = row.reason.reason == NoPrediction::kNoResult && !row.dependent.formula.empty();
  return std::string(isFormula ? ResourceString(kUnpredictedFormula) : NoPredictionText(row.reason.reason));
}

}  // namespace

std::unique_ptr<Spreadsheet> UnpredictedDocument(const ProfilerDesign& design,
                                                 std::span<const UnpredictedCases> unpredicted) {
  std::vector<UnpredictedRow> rows;
  std::vector<std::string> identifiers;
  for (std::size_t k = 0; k < unpredicted.size(); ++k) {
    for (UnpredictedReason& reason : unpredicted[k].Reasons()) {
      identifiers.emplace_back(NoPredictionName(reason.reason));
      rows.push_back({design.dependents[k], std::move(reason)});
    }
  }
  if (rows.empty()) return nullptr;
  std::vector<std::string> names;
  for (const UnpredictedRow& row : rows) names.push_back(row.dependent.name);
  auto sheet = NewResultSheet(std::string(ResourceString(kUnpredictedTitle)), std::move(names));
  sheet->SetCaseIdentifiers(std::move(identifiers));
  AddTextColumn(*sheet, "reason"_column, [&](std::size_t i) { return ReasonText(rows[i]); });
  AddTextColumn(*sheet, "field"_column, [&](std::size_t i) { return rows[i].reason.field; });
  AddTextColumn(*sheet, "field_value"_column, [&](std::size_t i) { return rows[i].reason.Values(); });
  AddColumn(*sheet, "defect_runs"_column,
            [&](std::size_t i) { return static_cast<double>(rows[i].reason.cases); });
  return sheet;
}

}  // namespace brenvolt::sra
