// The report of a fit for programs. Its shape stands in docs/guide/fitting.md.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "host/jobs/fit_results.h"

namespace brenvolt::cli {

// One variable with its fits, ranked by the criterion of this name.
nlohmann::ordered_json VariableJson(const FittedVariable& variable, const std::string& rankedBy);

}  // namespace brenvolt::cli
