#include "host/application/application.h"

#include "host/analysis/result_request.h"
#include "host/application/application_automation.h"
#include "host/base/error.h"
#include "host/base/nearest_name.h"
#include "host/base/process/environment.h"

namespace brenvolt {
namespace {

constexpr const char* kModuleFile = "libbrv_sra.so";
constexpr const char* kModuleVariable = "BRENVOLT_MODULE";
constexpr const char* kFactoryName = "Kro6NewAnalysis";
constexpr std::int32_t kFirstStep = 100;

using Factory = CAnalysisSupport*();

}  // namespace

std::filesystem::path Application::DefaultModulePath() {
  if (const std::string path = EnvironmentText(kModuleVariable); !path.empty()) return path;
  return LibraryFileOf(reinterpret_cast<const void*>(&Application::DefaultModulePath)).parent_path() /
         kModuleFile;
}

DynamicLibrary& Application::Module() {
  if (module_ == nullptr) module_ = std::make_unique<DynamicLibrary>(DefaultModulePath());
  return *module_;
}

std::unique_ptr<CAnalysisSupport> Application::NewAnalysis(CAnalysisDoc& document) {
  std::unique_ptr<CAnalysisSupport> analysis(Module().Symbol<Factory>(kFactoryName)());
  if (analysis == nullptr) throw Error("the module made no analysis", DefaultModulePath().string());
  document.SetSelectionApplier(ApplySelection);
  document.SetApplication(std::make_shared<ApplicationAutomation>(DefaultModulePath().string()));
  analysis->AttachDocument(&document);
  if (!analysis->RunSequenceStep(kFirstStep)) {
    throw Error("the analysis did not start", DefaultModulePath().string());
  }
  return analysis;
}

Spreadsheet& DataFile::Sheet(const std::string& name) {
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    Spreadsheet& sheet = workbook.SheetAt(i);
    if (name.empty() ? sheet.Kind() == SheetKind::kData : sheet.Name() == name) return sheet;
  }
  if (name.empty()) throw Error("the file has no data sheet", path.string());
  std::vector<std::string> names;
  std::string list;
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    names.push_back(workbook.SheetAt(i).Name());
    list += (list.empty() ? "" : ", ") + names.back();
  }
  const std::string hint = NearestNameHint(name, names);
  throw Error("the file has no sheet called " + name + hint + (hint.empty() ? "; its " : " Its ") +
                  (names.size() == 1 ? "sheet is " : "sheets are ") + list,
              path.string());
}

DataFile OpenDataFile(const std::filesystem::path& path, const TextOptions& options) {
  DataFile file;
  file.path = path;
  // Only a regular file can be read twice.
  std::error_code ignored;
  file.isProject = std::filesystem::is_regular_file(path, ignored) && Workbook::IsWorkbookFile(path);
  if (file.isProject) {
    file.workbook = Workbook::Open(path);
  } else {
    DataRead read = ReadDataFile(path, options);
    for (auto& sheet : read.sheets) file.workbook.Add(std::move(sheet));
    file.readAs = std::move(read.readAs);
    file.doubts = std::move(read.doubts);
  }
  return file;
}

void ApplySelection(Spreadsheet& sheet, const std::string& condition) {
  CaseSelection selection{true, condition, CasesMeeting(condition, sheet, "selection condition")};
  sheet.SetSelection(std::move(selection));
}

}  // namespace brenvolt
