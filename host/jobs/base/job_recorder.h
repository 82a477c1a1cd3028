// What a front end does around the dialogs as lines of a macro: data opened, an analysis started, results
// saved. The command and the Python package record alike because they record here. Without a recorder nothing
// happens.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/analysis_support.h"
#include "host/automation/macro_recorder.h"

namespace brenvolt {

class JobRecorder {
 public:
  JobRecorder() = default;
  // `recorder` must outlive this and the analyses that are started; null records nothing.
  explicit JobRecorder(MacroRecorder* recorder) : recorder_(recorder) {}

  bool IsRecording() const { return recorder_ != nullptr; }
  MacroRecorder* Recorder() const { return recorder_; }

  // Objects are told apart by their addresses (macro_recorder.h).
  using Arguments = std::vector<std::string>;
  void Opened(const std::filesystem::path& path, Arguments reading, const void* workbook);
  // An empty name means the first data sheet.
  void Took(const void* workbook, const std::string& name, const void* sheet);
  // An attribute of an object got a text, or None.
  void Set(const void* object, std::string_view attribute, const std::optional<std::string>& text);
  // Names the analysis and records its dialogs from here on.
  void Started(const void* sheet, CAnalysisSupport& analysis);
  // An object is the document of an analysis that was shown after `place` others.
  void Shown(CAnalysisSupport& analysis, std::size_t place, const void* document);

  // A call of a function: a method of `object`, or of the application where that is null. Arguments are
  // Python text; those that are empty are left out.
  void Called(const void* object, std::string_view function, const Arguments& arguments);
  // The same, whose result is an object of the macro under a name.
  void Gave(std::string_view name, const void* object, std::string_view function, const Arguments& arguments,
            const void* result);
  // How arguments are written. An object that nothing leads to makes NameOf throw Error; while nothing is
  // recorded it has no name.
  std::string NameOf(const void* object) const;

 private:
  std::string CallText(const void* object, std::string_view function, const Arguments& arguments);

  MacroRecorder* recorder_ = nullptr;
};

// For a job that a macro has no lines for. Throws WrongJob
// about the field record while something is recorded.
void RefuseRecording(const std::string& job, const JobRecorder& recorder);

// "decimal_comma=True", or nothing if it is false.
std::string DecimalCommaArgument(bool decimalComma);

}  // namespace brenvolt
