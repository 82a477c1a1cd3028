#include "host/jobs/base/report_target.h"

#include <string>

#include "host/jobs/base/output_files.h"
#include "host/reporting/report_file.h"

namespace brenvolt {

void CheckReport(const std::filesystem::path& path, JobFaults& faults) {
  if (path.empty()) return;
  if (!IsReportName(path)) {
    faults.push_back({"report", "expected a file ending in .html, .md or .pdf, got " + path.string()});
    return;
  }
  CheckFolder("report", path, faults);
  if (const std::string why = WhyNoReport(path); !why.empty()) faults.push_back({"report", why});
}

void RefuseRecordedReport(const std::filesystem::path& path, const JobRecorder& recorder) {
  if (!path.empty() && recorder.IsRecording()) throw WrongJob("report", "reports cannot be recorded");
}

}  // namespace brenvolt
