// Reports as one HTML file: nothing of it is fetched from elsewhere, pictures are vectors in it, a small script sorts
// tables, and all can be read without it.
#pragma once

#include <string>

#include "host/reporting/report.h"

namespace brenvolt {

// Without pictures a note says which packages bring what draws them.
std::string HtmlOf(const Report& report, bool withPictures);

}  // namespace brenvolt
