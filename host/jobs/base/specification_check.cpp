#include "host/jobs/base/specification_check.h"

#include "host/base/quoted.h"
#include "host/jobs/base/range_check.h"

namespace brenvolt {

void CheckLimits(const std::string& response, const SpecificationLimits& limits, JobFaults& faults) {
  if (limits.IsValid()) return;
  const auto add = [&](const char* message) {
    faults.push_back({"specifications", Quoted(response) + ": " + message});
  };
  if (!limits.HasLower() && !limits.HasUpper()) {
    add("expected a lower or an upper limit");
  } else if (limits.lower >= limits.upper) {
    CheckAscending("specifications", response, limits.lower, limits.upper, faults, "limit");
  } else if (limits.target < limits.lower || limits.target > limits.upper) {
    add("the target lies outside the limits");
  } else {
    add("expected finite numbers");
  }
}

}  // namespace brenvolt
