// One analysis as jobs drive it: the dialogs of the sequence through their automation objects.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/ports/program_interface.h"
#include "host/application/application.h"
#include "host/base/error.h"
#include "host/jobs/base/job_fault.h"

namespace brenvolt {

using Table = std::shared_ptr<CAnalysisTableDoc>;

// The tasks of the startup dialog.
enum class Task : std::int32_t { kFit = 0, kSimulate = 1, kDesign = 2, kProfile = 3 };

// A job that ended because a dialog refused, and has said why, or because the person cancelled it.
class JobFailed : public std::exception {
 public:
  // What refused: "CFitDistribution::OK".
  explicit JobFailed(std::string method) : method_(std::move(method)) {}

  const std::string& Method() const noexcept { return method_; }
  const char* what() const noexcept override { return "the dialog refused"; }

 private:
  std::string method_;
};

class AnalysisSession {
 public:
  // Starts an analysis over a sheet: its startup dialog is open. Both must outlive the session. Throws Error.
  AnalysisSession(ProgramInterface& interface, Spreadsheet& sheet);

  ProgramInterface& Interface() { return interface_; }
  CAnalysisDoc& Input() { return input_; }
  CAnalysisSupport& Analysis() { return *analysis_; }

  // The automation object of the open dialog. Throws Error if none is open.
  std::shared_ptr<AutomationObject> Dialog();
  // From the startup dialog to the dialog of a task.
  void Begin(Task task);
  // OK on the open dialog. Throws JobFailed, and WrongJob where it asks a question that nobody has answered.
  void Ok();
  // Carries an automation call out. Throws JobFailed if it fails after the dialog has said why.
  template <class Call>
  auto Attempt(const Call& call) {
    const std::size_t messages = interface_.Messages().size();
    try {
      return call();
    } catch (const AutomationError& error) {
      if (interface_.Messages().size() > messages) throw JobFailed(error.what());
      throw;
    }
  }

  // The tables and graphs among what was shown since a number of documents, oldest first.
  struct Shown {
    std::vector<Table> tables;
    std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs;
  };
  Shown ShownSince(std::size_t count) const;

 private:
  ProgramInterface& interface_;
  Application application_{interface_};
  CAnalysisDoc input_;
  std::unique_ptr<CAnalysisSupport> analysis_;
};

// The numbers (from 1) of variables by name, as dialogs take them. A name that the sheet does not have is a fault of
// the job's field that gives it: throws WrongJob.
std::vector<std::int16_t> NumbersOf(const Spreadsheet& sheet, std::span<const std::string> names,
                                    const std::string& field);
Variant AsVariant(std::span<const std::int16_t> numbers);
// A number that has been checked to be whole.
inline std::int32_t AsInteger(double whole) {
  return static_cast<std::int32_t>(whole);
}

}  // namespace brenvolt
