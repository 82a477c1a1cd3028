#include "host/jobs/base/range_check.h"

#include "host/base/number_text.h"
#include "host/base/quoted.h"

namespace brenvolt {

void CheckBetweenZeroAndOne(std::string_view field, double value, JobFaults& faults,
                            const std::string& what) {
  if (value > 0 && value < 1) return;
  faults.push_back(
      {std::string(field), "expected " + what + " between 0 and 1, got " + ShortestNumber(value)});
}

void CheckAscending(std::string_view field, const std::string& name, std::optional<double> lower,
                    std::optional<double> upper, JobFaults& faults, const std::string& word) {
  if (!lower || !upper || !(*lower >= *upper)) return;
  faults.push_back(
      {std::string(field), Quoted(name) + ": the lower " + word + " must be less than the upper one"});
}

}  // namespace brenvolt
