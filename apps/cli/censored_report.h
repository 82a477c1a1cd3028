// Fits of censored values as a report for people.
#pragma once

#include <string>

#include "host/jobs/measured/censored_results.h"

namespace brenvolt::cli {

std::string CensoredText(const CensoredFindings& found);

}  // namespace brenvolt::cli
