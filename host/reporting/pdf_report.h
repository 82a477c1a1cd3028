// Reports as PDF, laid out by the library that draws pictures (host/graphs/picture.h).
#pragma once

#include <string>

#include "host/reporting/report.h"

namespace brenvolt {

// The bytes of the file. Throws Error where the library is not there.
std::string PdfOf(const Report& report);

// What the library does, and the name of its function that returns this one.
using ReportFunction = std::string(const Report& report);
inline constexpr const char* kReportSymbol = "BrenvoltReport";

}  // namespace brenvolt
