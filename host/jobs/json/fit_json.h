// The report of a fit for programs. Its shape stands in docs/guide/fitting.md.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"

namespace brenvolt {

// What speaks against a fit that is simulated.
nlohmann::ordered_json CautionsJson(const std::vector<FitCaution>& cautions);

// What was read off a fit; null if nothing was.
nlohmann::ordered_json QuantilesJson(const std::optional<FitQuantiles>& found);

// One variable with its fits, ranked by the criterion of this name.
nlohmann::ordered_json VariableJson(const FittedVariable& variable, const std::string& rankedBy);

}  // namespace brenvolt
