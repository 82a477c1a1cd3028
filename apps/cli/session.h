// One analysis as a command drives it: the dialogs of the sequence through their automation objects.
#pragma once

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/analysis/terminal_user_interface.h"
#include "host/application/application.h"
#include "host/application/result_table.h"
#include "host/base/error.h"
#include "host/jobs/job_recorder.h"

namespace brenvolt::cli {

// The name that begins every line on standard error.
inline constexpr const char* kProgram = "brenvolt";

// A call that makes no sense: exit status 2.
class WrongCall : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A job that failed after its message was already shown: exit status 1.
class JobFailed : public std::exception {};

// The tasks of the startup dialog.
enum class Task : std::int32_t { kFit = 0, kSimulate = 1, kProfile = 3 };

class Session {
 public:
  // Starts an analysis over a sheet, which must outlive the session, as must what records it, and moves to
  // the dialog of a task.
  Session(Spreadsheet& sheet, Task task, JobRecorder& job);

  CAnalysisSupport& Analysis() { return *analysis_; }

  // The automation object of the open dialog.
  std::shared_ptr<AutomationObject> Dialog();
  // OK on the open dialog. Throws JobFailed when the dialog refuses: it has then said why; and when the
  // person pressed Ctrl-C meanwhile.
  void Ok();
  // The object that a member of the open dialog, with an index, makes; null where it makes none. Throws
  // JobFailed when the dialog refuses and has said why.
  Variant::Object Produce(std::string_view member, const Variant& index);
  // Carries an automation call out. Throws JobFailed where it fails after the dialog has said why.
  template <class Call>
  auto Attempt(const Call& call) {
    const int messages = userInterface_.MessageCount();
    try {
      return call();
    } catch (const AutomationError&) {
      if (userInterface_.MessageCount() > messages) throw JobFailed();
      throw;
    }
  }
  // Documents shown so far, oldest first.
  std::vector<std::shared_ptr<CAnalysisTableDoc>>& Documents() { return userInterface_.Documents(); }
  std::vector<std::shared_ptr<CAnalysisGraphDoc>>& Graphs() { return userInterface_.Graphs(); }

 private:
  TerminalUserInterface userInterface_{kProgram};
  Application application_{userInterface_};
  CAnalysisDoc document_;
  std::unique_ptr<CAnalysisSupport> analysis_;
};

// The numbers (from 1) of variables by name. Throws Error for a name that the sheet does not have.
std::vector<std::int16_t> NumbersOf(const Spreadsheet& sheet, const std::vector<std::string>& names);
Variant AsVariant(std::span<const std::int16_t> numbers);

}  // namespace brenvolt::cli
