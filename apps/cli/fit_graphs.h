// The graphs of a fit for programs.
#pragma once

#include <filesystem>

#include "host/automation/automation_object.h"

namespace brenvolt::cli {

// Writes the data of the graphs that the fit results dialog behind `dialog` makes of each variable with the
// fit that is saved first, as one JSON object: histogram, cumulative histogram, P-P, Q-Q, empirical
// distribution and box plot. A variable without a fit has none. See docs/fitting.md for its shape. Throws
// Error, naming the file, when it cannot be written.
void WriteFitGraphs(AutomationObject& dialog, const std::filesystem::path& path);

}  // namespace brenvolt::cli
