// Reports of jobs that are run once more to be reported: those that a person did in dialogs, which have numbers alone.
#pragma once

#include "host/jobs/profile/profile_job.h"
#include "host/jobs/simulate_job.h"
#include "host/reporting/report.h"

namespace brenvolt {

// Of a sheet that is open, in the workbook `home`; neither is changed. `obstacle` says why no command repeats the
// job, and is empty where one does. Throw WrongJob, JobFailed and Error.
Report RepeatedReport(SimulateJob job, const Spreadsheet& sheet, DataFile& home, std::string obstacle);
Report RepeatedReport(ProfileJob job, const Spreadsheet& sheet, DataFile& home, std::string obstacle);

}  // namespace brenvolt
