// The table of a preview for people.
#pragma once

#include "host/jobs/exchange/preview_job.h"
#include "host/reporting/report.h"

namespace brenvolt {

// A row for each variable. A title says what the sheet holds.
ReportTable PreviewTable(const PreviewedSheet& sheet);
// A row for each variable of all sheets, for programs that take tables.
Spreadsheet PreviewSheet(const FilePreview& preview);

}  // namespace brenvolt
