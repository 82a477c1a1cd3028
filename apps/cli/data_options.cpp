#include "apps/cli/data_options.h"

#include <cstring>
#include <map>

#include "host/base/error.h"

namespace brenvolt::cli {
namespace {

constexpr const char* kProjectEnding = ".bvw";

bool SameBits(std::span<const double> a, std::span<const double> b) {
  return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size_bytes()) == 0);
}

bool SameData(const Spreadsheet& a, const Spreadsheet& b) {
  if (a.VariableCount() != b.VariableCount() || a.CaseCount() != b.CaseCount()) return false;
  for (std::size_t i = 0; i < a.VariableCount(); ++i) {
    const Variable& left = a.VariableAt(i);
    const Variable& right = b.VariableAt(i);
    const bool same = left.Name() == right.Name() && left.Type() == right.Type() &&
                      left.Labels() == right.Labels() && SameBits(left.Values(), right.Values());
    if (!same) return false;
  }
  return true;
}

}  // namespace

void AddFormatOption(CLI::App& command, ReportFormat& format) {
  static const std::map<std::string, ReportFormat> kFormats{{"table", ReportFormat::kTable},
                                                            {"json", ReportFormat::kJson}};
  command.add_option("--format", format, "table for people (default), json for programs")
      ->transform(CLI::CheckedTransformer(kFormats).description(""))
      ->type_name("table|json");
}

void AddDecimalCommaOption(CLI::App& command, InputOptions& input) {
  command.add_flag("--decimal-comma", input.decimalComma,
                   "CSV with decimal commas, semicolons between the fields");
}

DataFile OpenProject(const std::filesystem::path& path) {
  DataFile file;
  file.path = path;
  file.isProject = true;
  file.workbook = Workbook::Open(path);
  return file;
}

std::string AddToProject(const std::filesystem::path& path, std::unique_ptr<Spreadsheet> sheet,
                         NameClash clash) {
  Workbook workbook;
  if (std::filesystem::exists(path)) workbook = Workbook::Open(path);
  const Spreadsheet* former = workbook.Find(sheet->Name());
  if (former != nullptr && clash == NameClash::kRefuse) {
    if (!SameData(*former, *sheet)) {
      throw Error("already has a sheet called " + sheet->Name() + " with other data", path.string());
    }
    workbook.Remove(sheet->Name());
  }
  const std::string name = workbook.Add(std::move(sheet)).Name();
  workbook.Save(path);
  return name;
}

bool HasProjectEnding(const std::filesystem::path& path) {
  return path.extension() == kProjectEnding;
}

}  // namespace brenvolt::cli
