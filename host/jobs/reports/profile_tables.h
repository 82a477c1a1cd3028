// The tables of a profile for people: the command prints them, reports hold them.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/profile/profile_results.h"
#include "host/reporting/report.h"

namespace brenvolt {

// Classes, and no predictions at all, have a number and no moments.
ReportFacts MomentFacts(const ResultRow& statistics);
// The percentiles; few values say more one by one.
ReportTable ValuesTable(const ResponseResults& response);
ReportTable SensitivityTable(const ResponseResults& response);
// Without rows where there are no profiles.
ReportTable ProfilesTable(const ResponseResults& response);
// What the capability is measured against, a sentence without full stop for each.
std::vector<std::string> CapabilityTerms(const ResultTable& capability);
ReportTable CapabilityTable(const ResultTable& capability);
ReportTable DefectsTable(const ResultTable& defects);

}  // namespace brenvolt
