// What would be read from a data file, for programs.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/jobs/exchange/preview_job.h"

namespace brenvolt {

nlohmann::ordered_json PreviewJson(const FilePreview& preview);

}  // namespace brenvolt
