#include "host/jobs/reports/show_job.h"

#include "host/jobs/base/output_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/reports/project_report.h"
#include "host/reporting/report_file.h"

namespace brenvolt {
namespace {

// What the matrix of that name asks for.
DataOrigin OriginOf(const std::string& matrix, const Workbook& workbook) {
  DataOrigin origin;
  if (!matrix.empty()) TakeAsked(*NamedMatrix(matrix, workbook, "matrix " + matrix), origin);
  return origin;
}

}  // namespace

JobFaults ShowJob::Check() const {
  JobFaults faults;
  CheckPlot(plot, kDataPlotKinds, faults);
  if (!plotMatrix.empty() && !plot.IsAsked())
    faults.push_back({"plotMatrix", "this affects only a picture; give the file of the picture as well"});
  CheckReport(report, faults);
  CheckTargetsApart({{"project", project}}, {{"plot", plot.file}, {"report", report}}, faults);
  return faults;
}

void ShowJob::Run(DataFile& open, ProgramInterface& interface, const JobRecorder& recorder) const {
  RequireNone(Check());
  RefuseRecordedPlot(plot, recorder);
  RefuseRecordedReport(report, recorder);
  if (plot.IsAsked()) {
    const Spreadsheet& drawn = open.Sheet(sheet);
    WritePlot(plot, drawn.Name(), DataPlots(drawn, plot.Kind(), OriginOf(plotMatrix, open.workbook)));
  }
  if (!report.empty()) WriteReport(ProjectReport(project, open, sheet, report, interface), report);
}

DataFile ShowJob::Run(ProgramInterface& interface, const JobRecorder& recorder) const {
  RequireNone(Check());
  DataFile open = OpenProject(project);
  Run(open, interface, recorder);
  return open;
}

}  // namespace brenvolt
