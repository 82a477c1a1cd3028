// The report of a simulation.
#pragma once

#include "host/jobs/reports/report_parts.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt {

// The findings have the document of the data.
Report SimulationReport(const SimulateJob& job, const SimulationFindings& found,
                        const ReportContext& context);

}  // namespace brenvolt
