// The pictures of a measured process: its control charts, and its values beside their limits.
#pragma once

#include <string_view>
#include <vector>

#include "host/jobs/base/plot.h"
#include "host/jobs/measured/capability_results.h"

namespace brenvolt {

// `kind` is one of kCapabilityPlotKinds.
std::vector<PlotPage> CapabilityPlots(const CapabilityFindings& found, std::string_view kind);

}  // namespace brenvolt
