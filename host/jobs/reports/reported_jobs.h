// Jobs with the reports that they ask for: what every front end runs, so that each writes the same reports of the same jobs.
#pragma once

#include "host/jobs/fit_job.h"
#include "host/jobs/measured/capability_job.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt {

// Each carries the job out and then writes the report that it asks for, if it does. Throws as Run, and Error naming the report.

// Over the file of the job.
FitRun RunReported(const FitJob& job, ProgramInterface& interface, JobRecorder& recorder);
SimulationRun RunReported(const SimulateJob& job, ProgramInterface& interface, JobRecorder& recorder);
ProfileRun RunReported(const ProfileJob& job, ProgramInterface& interface, JobRecorder& recorder);
CapabilityFindings RunReported(const CapabilityJob& job, const JobRecorder& recorder);
CensoredFindings RunReported(const CensoredFitJob& job, const JobRecorder& recorder);

// Over data that are open; `isFromFile` says whether a command that opens the file does the same.
SimulationFindings RunReported(const SimulateJob& job, JobInput input, JobRecorder& recorder,
                               bool isFromFile);
ProfileFindings RunReported(const ProfileJob& job, JobInput input, JobRecorder& recorder, bool isFromFile);
CapabilityFindings RunReported(const CapabilityJob& job, Spreadsheet& sheet, const JobRecorder& recorder);
CensoredFindings RunReported(const CensoredFitJob& job, Spreadsheet& sheet, const JobRecorder& recorder);

}  // namespace brenvolt
