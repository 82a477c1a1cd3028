#include "host/analysis/case_editors.h"

#include <optional>

#include "host/base/error.h"

namespace brenvolt {

bool EditSelectionConditions(CAnalysisSupport& analysis) {
  Spreadsheet* table = analysis.InputTable();
  if (table == nullptr) return false;
  SelectionQuestion question{table->Selection().enabled, table->Selection().condition};
  while (analysis.Interface().EditSelection(question)) {
    if (!question.enabled || question.condition.empty()) {
      analysis.Interface().Change([&] { table->SetSelection({false, question.condition, {}}); });
      return true;
    }
    try {
      analysis.Interface().Change([&] { analysis.Document()->ApplySelection(question.condition); });
      return true;
    } catch (const Error& error) {
      analysis.ShowMessage(error.what(), error.Where());
    }
  }
  return false;
}

bool EditCaseWeights(CAnalysisSupport& analysis) {
  Spreadsheet* table = analysis.InputTable();
  if (table == nullptr) return false;
  const ResultsLock lock(*analysis.Document());
  WeightQuestion question;
  for (std::size_t i = 0; i < table->VariableCount(); ++i) {
    question.names.push_back(table->VariableAt(i).Name());
  }
  if (const auto weights = table->WeightVariable()) {
    question.variable = *weights + 1;
  }
  while (analysis.Interface().EditWeights(question)) {
    if (question.variable <= table->VariableCount()) {
      const auto chosen = question.variable > 0 ? std::optional(question.variable - 1) : std::nullopt;
      analysis.Interface().Change([&] { table->SetWeightVariable(chosen); });
      return true;
    }
    analysis.ShowMessage("no variable " + std::to_string(question.variable), table->Name());
  }
  return false;
}

}  // namespace brenvolt
