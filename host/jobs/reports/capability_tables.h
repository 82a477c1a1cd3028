// The tables of a capability for people: the command prints them, reports hold them.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/measured/capability_results.h"
#include "host/reporting/report.h"

namespace brenvolt {

// "n 125 of 125 cases, 25 subgroups of 5".
std::string MeasuredText(const CapabilityFindings& found);
// "LSL 5.49, target 5.64, USL 5.79".
std::string LimitsText(const CapabilityFindings& found);
// The limits and signals of both charts.
ReportTable ChartTable(const CapabilityFindings& found);
// The signals one by one, of many the first and how many more there are; without any, that there is none.
std::vector<std::string> SignalTexts(const CapabilityFindings& found);
// The deviations that there are, and the one that the indices rest on.
std::string DeviationsText(const CapabilityFindings& found);
// The p-value of the test for normality.
std::string NormalityText(const CapabilityFindings& found);
// The points between which a process by a fitted distribution lies.
std::string PercentilesText(const FittedCapability& fitted, double deviation);
// The indices and the parts per million, with their intervals.
ReportTable FigureTable(const CapabilityFindings& found);
// "Intervals have a confidence of 95 %".
std::string ConfidenceText(const CapabilityFindings& found);

}  // namespace brenvolt
