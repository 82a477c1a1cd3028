// Reports as files, whose endings say the format: one HTML file with its pictures, its style and its script; Markdown with
// the pictures in a folder beside it; PDF.
#pragma once

#include <filesystem>
#include <string>

#include "host/reporting/report.h"

namespace brenvolt {

// Whether a report can have a name of this ending.
bool IsReportName(const std::filesystem::path& file);
// Why no report of this name can be made here, and which packages bring what is missing; empty where one can be made.
// HTML and Markdown do without pictures where none can be drawn, and say so.
std::string WhyNoReport(const std::filesystem::path& file);

// Throws Error, naming the file, when it cannot be written.
void WriteReport(const Report& report, const std::filesystem::path& file);

// The folder of the pictures of a report in Markdown: "x_pictures" of x.md.
std::filesystem::path PictureFolder(const std::filesystem::path& file);

}  // namespace brenvolt
