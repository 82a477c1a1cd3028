#include "host/jobs/exchange/preview_job.h"

#include <algorithm>

#include "host/base/number_text.h"
#include "host/tables/csv_layout.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr std::size_t kFirstValues = 5;

std::string ValueText(const Variable& variable, std::size_t row) {
  if (variable.IsMissing(row)) return {};
  const double value = variable.Values()[row];
  const auto label = variable.Label(value);
  return label ? std::string(*label) : ShortestNumber(value);
}

std::string_view TypeOf(const Variable& variable) {
  if (variable.Type() == VariableType::kText) return "text";
  return variable.Labels().empty() ? "number" : "labelled number";
}

PreviewedVariable PreviewOf(const Variable& variable) {
  PreviewedVariable preview{.name = variable.Name(),
                            .type = TypeOf(variable),
                            .unit = variable.Property(kUnitProperty).value_or("")};
  for (std::size_t row = 0; row < variable.Size(); ++row) preview.missing += variable.IsMissing(row) ? 1 : 0;
  for (std::size_t row = 0; row < std::min(kFirstValues, variable.Size()); ++row)
    preview.first.push_back(ValueText(variable, row));
  return preview;
}

PreviewedSheet PreviewOf(const Spreadsheet& sheet) {
  const bool isMatrix = sheet.Kind() == SheetKind::kMatrix || LooksLikeMatrixTable(sheet);
  PreviewedSheet preview{
      .name = sheet.Name(), .kind = isMatrix ? "matrix" : "data", .cases = sheet.CaseCount()};
  for (std::size_t v = 0; v < sheet.VariableCount(); ++v)
    preview.variables.push_back(PreviewOf(sheet.VariableAt(v)));
  return preview;
}

}  // namespace

JobFaults PreviewJob::Check() const {
  JobFaults faults;
  CheckReading(data, faults);
  return faults;
}

FilePreview PreviewJob::Run() const {
  RequireNone(Check());
  JobData whole = data;
  whole.tell = {};
  DataFile file = OpenJobData(whole);
  // None is left out here.
  std::erase_if(file.doubts, [](const ReadingNote& doubt) { return doubt.field == "sheet"; });
  if (data.tell) data.tell(file);
  FilePreview preview{.readAs = ReadAsText(file), .doubts = file.doubts};
  if (!data.sheet.empty()) {
    preview.sheets.push_back(PreviewOf(file.Sheet(data.sheet)));
    return preview;
  }
  for (std::size_t i = 0; i < file.workbook.SheetCount(); ++i)
    preview.sheets.push_back(PreviewOf(file.workbook.SheetAt(i)));
  return preview;
}

}  // namespace brenvolt
