#include "host/jobs/reports/reported_jobs.h"

#include <utility>
#include <vector>

#include "host/jobs/reports/fit_report.h"
#include "host/jobs/reports/measured_reports.h"
#include "host/jobs/reports/profile_report.h"
#include "host/jobs/reports/simulation_report.h"
#include "host/reporting/report_file.h"
#include "host/rounds/crew.h"

namespace brenvolt {
namespace {

Report ReportOf(const SimulateJob& job, const SimulationFindings& found, const ReportContext& context) {
  return SimulationReport(job, found, context);
}

Report ReportOf(const ProfileJob& job, const ProfileFindings& found, const ReportContext& context) {
  return ProfileReport(job, found, context);
}

std::string ObstacleOf(bool isFromFile) {
  return isFromFile ? std::string() : kFromProgram;
}

// By rank 0, if several processes share the job.
template <class Job, class Findings>
void WriteAsked(const Job& job, const std::filesystem::path& report, const Findings& found,
                const ReportContext& context) {
  if (!report.empty() && TheCrew().Rank() == 0) WriteReport(ReportOf(job, found, context), report);
}

template <class Job>
auto RunFile(const Job& job, ProgramInterface& interface, JobRecorder& recorder) {
  auto run = job.Run(interface, recorder);
  WriteAsked(job, job.report, run, {*run.sheet, interface.Messages()});
  return run;
}

// What the run says is heard by the interface of its analysis, which it starts itself.
template <class Job>
auto RunInput(const Job& job, JobInput input, JobRecorder& recorder, bool isFromFile) {
  AnalysisSession* session = nullptr;
  input.start = [&session, start = std::move(input.start)]() -> AnalysisSession& {
    session = &start();
    return *session;
  };
  auto found = job.Run(input, recorder);
  WriteAsked(job, job.report, found, {input.sheet, session->Interface().Messages(), ObstacleOf(isFromFile)});
  return found;
}

template <class Job>
auto RunSheet(const Job& job, const JobData& data, const std::filesystem::path& report, Spreadsheet& sheet,
              const JobRecorder& recorder) {
  auto found = job.Run(sheet, recorder);
  const std::vector<Message> none;
  WriteAsked(job, report, found, {sheet, none, ObstacleOf(!data.file.empty())});
  return found;
}

// What is wrong with the call is said before the file is opened.
template <class Job>
auto RunOpened(const Job& job, const JobData& data, const JobRecorder& recorder) {
  RequireNone(job.Check());
  DataFile file = OpenJobData(data);
  return RunReported(job, file.Sheet(data.sheet), recorder);
}

}  // namespace

FitRun RunReported(const FitJob& job, ProgramInterface& interface, JobRecorder& recorder) {
  FitRun run = job.Run(interface, recorder);
  if (!job.report.empty()) WriteReportOfFit(job, *run.session, {*run.sheet, interface.Messages()});
  return run;
}

SimulationRun RunReported(const SimulateJob& job, ProgramInterface& interface, JobRecorder& recorder) {
  return RunFile(job, interface, recorder);
}

ProfileRun RunReported(const ProfileJob& job, ProgramInterface& interface, JobRecorder& recorder) {
  return RunFile(job, interface, recorder);
}

SimulationFindings RunReported(const SimulateJob& job, JobInput input, JobRecorder& recorder,
                               bool isFromFile) {
  return RunInput(job, std::move(input), recorder, isFromFile);
}

ProfileFindings RunReported(const ProfileJob& job, JobInput input, JobRecorder& recorder, bool isFromFile) {
  return RunInput(job, std::move(input), recorder, isFromFile);
}

CapabilityFindings RunReported(const CapabilityJob& job, Spreadsheet& sheet, const JobRecorder& recorder) {
  return RunSheet(job, job.data, job.report, sheet, recorder);
}

CensoredFindings RunReported(const CensoredFitJob& job, Spreadsheet& sheet, const JobRecorder& recorder) {
  return RunSheet(job, job.fit.data, job.fit.report, sheet, recorder);
}

CapabilityFindings RunReported(const CapabilityJob& job, const JobRecorder& recorder) {
  return RunOpened(job, job.data, recorder);
}

CensoredFindings RunReported(const CensoredFitJob& job, const JobRecorder& recorder) {
  return RunOpened(job, job.fit.data, recorder);
}

}  // namespace brenvolt
