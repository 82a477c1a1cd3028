// Why cases, or runs, have no prediction, as a person reads it.
#pragma once

#include <string>
#include <string_view>

#include "host/models/unpredicted_cases.h"

namespace brenvolt::cli {

// "No prediction for 3 of 10 cases" and a line for each reason, the most frequent ones; nothing if all
// have one. `cases` says what is counted.
std::string UnpredictedText(const UnpredictedCases& unpredicted, std::size_t total, std::string_view cases);

}  // namespace brenvolt::cli
