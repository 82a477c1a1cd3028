#include "host/jobs/base/report_target.h"

#include <string>

#include "host/jobs/base/output_files.h"
#include "host/reporting/report_file.h"
#include "host/tables/formats/workbook_file.h"

namespace brenvolt {

void CheckReport(const std::filesystem::path& path, JobFaults& faults, ReportKinds kinds) {
  if (path.empty()) return;
  const bool takesWorkbook = kinds == ReportKinds::kDocumentsAndWorkbook;
  if (!IsReportName(path) && !(takesWorkbook && IsWorkbookName(path))) {
    const std::string endings = takesWorkbook ? ".html, .md, .pdf or .xlsx" : ".html, .md or .pdf";
    faults.push_back({"report", "expected a file ending in " + endings + ", got " + path.string()});
    return;
  }
  CheckFolder("report", path, faults);
  if (const std::string why = WhyNoReport(path); !why.empty()) faults.push_back({"report", why});
}

void RefuseRecordedReport(const std::filesystem::path& path, const JobRecorder& recorder) {
  if (!path.empty() && recorder.IsRecording()) throw WrongJob("report", "reports cannot be recorded");
}

}  // namespace brenvolt
