#include "host/jobs/base/job_recorder.h"

#include "host/jobs/base/job_fault.h"

namespace brenvolt {
namespace {

// What represents the one application of a macro among the recorder's objects.
constexpr char kApplication = 0;
constexpr const char* kApplicationName = "application";

}  // namespace

std::string DecimalCommaArgument(bool decimalComma) {
  return decimalComma ? "decimal_comma=True" : "";
}

std::string JobRecorder::NameOf(const void* object) const {
  return recorder_ != nullptr ? recorder_->NameOf(object) : std::string();
}

std::string JobRecorder::CallText(const void* object, std::string_view function, const Arguments& arguments) {
  if (object == nullptr && !recorder_->Knows(&kApplication))
    recorder_->Assign(kApplicationName, "Application()", &kApplication);
  std::string text;
  for (const std::string& argument : arguments) {
    if (!argument.empty()) text += (text.empty() ? "" : ", ") + argument;
  }
  return recorder_->NameOf(object != nullptr ? object : &kApplication) + "." + std::string(function) + "(" +
         text + ")";
}

void JobRecorder::Called(const void* object, std::string_view function, const Arguments& arguments) {
  if (recorder_ != nullptr) recorder_->Line(CallText(object, function, arguments));
}

void JobRecorder::Gave(std::string_view name, const void* object, std::string_view function,
                       const Arguments& arguments, const void* result) {
  if (recorder_ != nullptr) recorder_->Assign(name, CallText(object, function, arguments), result);
}

void JobRecorder::Opened(const std::filesystem::path& path, Arguments reading, const void* workbook) {
  reading.insert(reading.begin(), PythonPath(path));
  Gave("workbook", nullptr, "Open", reading, workbook);
}

void JobRecorder::Took(const void* workbook, const std::string& name, const void* sheet) {
  Gave("sheet", workbook, "Sheet", {name.empty() ? "" : PythonText(name)}, sheet);
}

void JobRecorder::Set(const void* object, std::string_view attribute,
                      const std::optional<std::string>& text) {
  if (recorder_ == nullptr) return;
  recorder_->Line(recorder_->NameOf(object) + "." + std::string(attribute) + " = " +
                  (text ? PythonText(*text) : "None"));
}

void JobRecorder::Started(const void* sheet, CAnalysisSupport& analysis) {
  if (recorder_ == nullptr) return;
  Gave("analysis", nullptr, "Analysis", {NameOf(sheet)}, &analysis);
  analysis.SetRecorder(recorder_);
}

void JobRecorder::Shown(CAnalysisSupport& analysis, std::size_t place, const void* document) {
  if (recorder_ == nullptr || recorder_->Knows(document)) return;
  recorder_->Know(document, recorder_->NameOf(&analysis) + ".Documents[" + std::to_string(place) + "]");
}

void RefuseRecording(const std::string& job, const JobRecorder& recorder) {
  if (recorder.IsRecording()) throw WrongJob("record", job + " cannot be recorded");
}

}  // namespace brenvolt
