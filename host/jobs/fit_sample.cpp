#include "host/jobs/fit_sample.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "host/analysis/result_request.h"

namespace brenvolt {
namespace {

// Whether each case counts; empty for all of them.
std::vector<std::uint8_t> Selected(const FitJob& job, const Spreadsheet& sheet) {
  if (job.select) {
    if (job.select->empty()) return {};
    return CasesMeeting(*job.select, sheet, "selection condition");
  }
  return sheet.Selection().enabled ? sheet.Selection().accepted : std::vector<std::uint8_t>();
}

const Variable* WeightsOf(const FitJob& job, const Spreadsheet& sheet) {
  const auto place = job.weights ? sheet.FindVariable(*job.weights) : sheet.WeightVariable();
  return place ? &sheet.VariableAt(*place) : nullptr;
}

}  // namespace

std::vector<double> FittedSample(const FitJob& job, const Spreadsheet& sheet, const std::string& variable,
                                 const std::vector<std::string>& fitted) {
  std::vector<const Variable*> needed;
  for (const std::string& name : job.missing == "casewise" ? fitted : std::vector<std::string>{variable}) {
    if (const auto place = sheet.FindVariable(name)) needed.push_back(&sheet.VariableAt(*place));
  }
  const auto place = sheet.FindVariable(variable);
  if (!place) return {};
  const Variable& read = sheet.VariableAt(*place);
  const Variable* weights = WeightsOf(job, sheet);
  const auto selected = Selected(job, sheet);
  std::vector<double> values;
  for (std::size_t i = 0; i < read.Size(); ++i) {
    if (!selected.empty() && selected[i] == 0) continue;
    if (std::ranges::any_of(needed, [i](const Variable* one) { return one->IsMissing(i); })) continue;
    const double copies = weights == nullptr ? 1 : weights->Values()[i];
    if (copies > 0) values.insert(values.end(), static_cast<std::size_t>(copies), read.Values()[i]);
  }
  std::ranges::sort(values);
  return values;
}

}  // namespace brenvolt
