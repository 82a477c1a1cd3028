#include "host/jobs/reports/repeated_reports.h"

#include <memory>
#include <utility>

#include "host/jobs/base/project_files.h"
#include "host/jobs/base/quiet_interface.h"
#include "host/jobs/reports/profile_report.h"
#include "host/jobs/reports/simulation_report.h"

namespace brenvolt {
namespace {

// An analysis of a copy of the sheet.
class Repetition {
 public:
  Repetition(const Spreadsheet& sheet, DataFile& home) : sheet_(sheet), home_(home) {}

  JobInput Input() {
    return {sheet_, &home_, &sheet_, [this]() -> AnalysisSession& {
              session_ = std::make_unique<AnalysisSession>(interface_, sheet_);
              OfferMatrices(session_->Input(), home_.workbook);
              return *session_;
            }};
  }
  ReportContext Context(std::string obstacle) const {
    return {sheet_, interface_.Messages(), std::move(obstacle)};
  }

 private:
  QuietInterface interface_;
  Spreadsheet sheet_;
  DataFile& home_;
  std::unique_ptr<AnalysisSession> session_;
};

}  // namespace

Report RepeatedReport(SimulateJob job, const Spreadsheet& sheet, DataFile& home, std::string obstacle) {
  Repetition again(sheet, home);
  JobRecorder none;
  job.keepsTable = true;
  const SimulationFindings found = job.Run(again.Input(), none);
  return SimulationReport(job, found, again.Context(std::move(obstacle)));
}

Report RepeatedReport(ProfileJob job, const Spreadsheet& sheet, DataFile& home, std::string obstacle) {
  Repetition again(sheet, home);
  JobRecorder none;
  job.keepsGraphs = true;
  const ProfileFindings found = job.Run(again.Input(), none);
  return ProfileReport(job, found, again.Context(std::move(obstacle)));
}

}  // namespace brenvolt
