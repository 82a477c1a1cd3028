// The pictures of censored values and their fits.
#pragma once

#include <string_view>
#include <vector>

#include "host/jobs/base/plot.h"
#include "host/jobs/measured/censored_results.h"

namespace brenvolt {

// `kind` is one of kCensoredPlotKinds.
std::vector<PlotPage> CensoredPlots(const CensoredFindings& found, std::string_view kind);

}  // namespace brenvolt
