// Ranges that several jobs hold numbers to, and what is said of those outside.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/jobs/base/job_fault.h"

namespace brenvolt {

// Adds a fault unless the number lies between 0 and 1, neither of them included; `what` it is: "a probability".
void CheckBetweenZeroAndOne(std::string_view field, double value, JobFaults& faults,
                            const std::string& what = "a number");
// Adds a fault about the name unless the lower bound, where there are both, is less than the upper one; `word` is what they are:
// "bound".
void CheckAscending(std::string_view field, const std::string& name, std::optional<double> lower,
                    std::optional<double> upper, JobFaults& faults, const std::string& word = "bound");

}  // namespace brenvolt
