// The report of a fit for programs. Its shape stands in docs/guide/fitting.md.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/jobs/fit_results.h"

namespace brenvolt::cli {

// What speaks against a fit that is simulated.
nlohmann::ordered_json CautionsJson(const std::vector<FitCaution>& cautions);

// One variable with its fits, ranked by the criterion of this name.
nlohmann::ordered_json VariableJson(const FittedVariable& variable, const std::string& rankedBy);

}  // namespace brenvolt::cli
