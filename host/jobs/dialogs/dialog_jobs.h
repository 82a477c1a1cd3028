// What a person has chosen in open dialogs, as the jobs that ask for the same: reports say it, and repeat it.
#pragma once

#include "host/automation/automation_object.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt {

// What jobs do unasked, in a dialog that a person has opened: fits that give a value density 0 are ranked last, a seed is
// drawn, with which the same numbers come again, and the simulation of the input follows the correlations that are known.
void PrepareFit(AutomationObject& dialog);
void PrepareSeed(AutomationObject& dialog);
void PrepareMethod(AutomationObject& dialog, const JobInput& input);

// The files and reports of the jobs are not those of dialogs, and stay empty. All throw Error for a choice that no job has.

struct FitInDialog {
  FitJob job;
  bool isWhole = true;  // false: variables are treated in ways that the job cannot tell apart
};
// Of the fit specification over a sheet of no more variables than can be asked for one by one.
FitInDialog ReadFitJob(AutomationObject& dialog, const Spreadsheet& sheet);
// Of the simulation of a sheet. Its samples can be drawn again, or there is no job.
SimulateJob ReadSimulateJob(AutomationObject& dialog, const Spreadsheet& sheet);
// Of the profiler, which shows another response meanwhile; `selected` counts from 1, and is shown again. Every predictor has
// its distribution.
ProfileJob ReadProfileJob(AutomationObject& dialog, int selected);

}  // namespace brenvolt
