#include "bindings/python/recording.h"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <set>
#include <vector>

#include "bindings/python/errors.h"
#include "bindings/python/host_call.h"
#include "bindings/python/module.h"
#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/jobs/base/output_files.h"

namespace py = pybind11;

namespace brenvolt::python {
namespace {

struct Recording {
  MacroRecorder recorder;
  JobRecorder job{&recorder};
  std::vector<std::shared_ptr<void>> kept;
  std::set<AnalysisRef*> analyses;
};

std::unique_ptr<Recording>& Current() {
  static std::unique_ptr<Recording> recording;
  return recording;
}

// The folder of the file must be there before anything is done.
void StartRecording(const std::filesystem::path& file) {
  if (Current() != nullptr) throw Error("a macro is being recorded already");
  RequireValue("path", file.string());
  JobFaults faults;
  CheckFolder("path", file, faults);
  RequireNone(std::move(faults));
  Current() = std::make_unique<Recording>();
}

// Ends the recording; writes it if a file is named.
void EndRecording(const std::optional<std::filesystem::path>& file, const std::string& origin) {
  const std::unique_ptr<Recording> ended = std::move(Current());
  if (ended == nullptr) throw Error("no macro is being recorded");
  for (AnalysisRef* analysis : ended->analyses) analysis->Analysis().SetRecorder(nullptr);
  if (!file) return;
  OutputFile output(*file);
  output.Write(ended->recorder.Text(origin));
  output.Commit();
}

}  // namespace

void Keep(const std::shared_ptr<void>& object) {
  if (Current() != nullptr) Current()->kept.push_back(object);
}

JobRecorder& TheJob() {
  static JobRecorder none;
  return Current() != nullptr ? Current()->job : none;
}

void RecordOpened(const std::shared_ptr<WorkbookRef>& workbook, const std::filesystem::path& path,
                  JobRecorder::Arguments reading) {
  Keep(workbook);
  TheJob().Opened(path, std::move(reading), workbook.get());
}

void RecordMade(const std::shared_ptr<WorkbookRef>& workbook) {
  Keep(workbook);
  TheJob().Gave("workbook", nullptr, "NewWorkbook", {}, workbook.get());
}

std::shared_ptr<SheetRef> Recorded(const std::shared_ptr<SheetRef>& sheet, const std::string& name) {
  MacroRecorder* recorder = TheJob().Recorder();
  const WorkbookRef* workbook = sheet->Workbook().get();
  if (recorder == nullptr || recorder->Knows(sheet.get()) || !recorder->Knows(workbook)) return sheet;
  Keep(sheet);
  TheJob().Took(workbook, name, sheet.get());
  return sheet;
}

void RecordGiven(std::string_view name, const void* object, std::string_view function,
                 const JobRecorder::Arguments& arguments, const std::shared_ptr<SheetRef>& sheet) {
  if (sheet == nullptr) return;
  Keep(sheet);
  TheJob().Gave(name, object, function, arguments, sheet.get());
}

std::string RecordedName(const std::shared_ptr<SheetRef>& sheet) {
  if (sheet->Document() != nullptr) {
    const std::string document = TheJob().NameOf(sheet->Document().get());
    return document.empty() ? document : document + ".sheet";
  }
  return TheJob().NameOf(sheet.get());
}

void RecordCall(const std::shared_ptr<SheetRef>& sheet, std::string_view function,
                const JobRecorder::Arguments& arguments) {
  if (!TheJob().IsRecording()) return;
  if (sheet->Document() != nullptr) {
    TheJob().Called(sheet->Document().get(), "sheet." + std::string(function), arguments);
  } else {
    TheJob().Called(sheet.get(), function, arguments);
  }
}

void RecordAttribute(const std::shared_ptr<SheetRef>& sheet, std::string_view attribute,
                     const std::optional<std::string>& text) {
  MacroRecorder* recorder = TheJob().Recorder();
  if (recorder == nullptr) return;
  const bool isDocument = sheet->Document() != nullptr;
  const void* object = isDocument ? static_cast<const void*>(sheet->Document().get()) : sheet.get();
  if (recorder->Knows(object))
    TheJob().Set(object, isDocument ? "sheet." + std::string(attribute) : std::string(attribute), text);
}

void RefuseRecordedChange(const std::shared_ptr<SheetRef>& sheet) {
  const MacroRecorder* recorder = TheJob().Recorder();
  if (recorder == nullptr || !recorder->Knows(sheet.get())) return;
  throw Error("a change of data cannot be recorded", "sheet " + sheet->Sheet().Name());
}

void RecordAsInput(const std::shared_ptr<SheetRef>& sheet) {
  if (Current() == nullptr || sheet == nullptr) return;
  Keep(sheet);
  MacroRecorder& recorder = Current()->recorder;
  if (sheet->Document() != nullptr && !recorder.Knows(sheet.get()))
    recorder.Know(sheet.get(), RecordedName(sheet));
}

void RecordStarted(AnalysisRef& analysis) {
  if (Current() == nullptr) return;
  const std::shared_ptr<SheetRef> sheet = analysis.Input();
  RecordAsInput(sheet);
  TheJob().Started(sheet.get(), analysis.Analysis());
  Current()->analyses.insert(&analysis);
}

void RecordShown(AnalysisRef& analysis, std::size_t place, const Variant::Object& document) {
  if (Current() == nullptr || !Current()->analyses.contains(&analysis)) return;
  Keep(document);
  TheJob().Shown(analysis.Analysis(), place, document.get());
}

void RecordPassed(const std::shared_ptr<SheetRef>& sheet, const Variant::Object& document) {
  MacroRecorder* recorder = TheJob().Recorder();
  if (recorder == nullptr || !recorder->Knows(sheet.get())) return;
  Keep(document);
  recorder->Know(document.get(), recorder->NameOf(sheet.get()));
}

void ForgetAnalysis(AnalysisRef& analysis) {
  if (Current() != nullptr) Current()->analyses.erase(&analysis);
}

void BindRecording(py::module_& module) {
  module.def("_start_recording", &StartRecording, py::call_guard<HostCall>(), py::arg("path"));
  module.def("_end_recording", &EndRecording, py::call_guard<HostCall>(), py::arg("path"), py::arg("origin"));
}

}  // namespace brenvolt::python
