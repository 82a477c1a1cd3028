// Designs for programs.
#pragma once

#include <nlohmann/json.hpp>

#include "host/jobs/notation/design_text.h"

namespace brenvolt {

// {"variables": [{"name", "distribution"}], "correlations": [{"first", "second", "value"}]}
nlohmann::ordered_json DesignJson(const DesignText& design);

}  // namespace brenvolt
