#include "host/jobs/dialogs/condition_verdict.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "host/analysis/result_request.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"

namespace brenvolt {

ConditionVerdict VerdictOn(const std::string& condition, const Spreadsheet& input) {
  if (Trim(condition).empty()) return {true, "An empty condition admits every case."};
  try {
    const std::vector<std::uint8_t> accepted = CasesMeeting(condition, input, "condition");
    const auto count = std::ranges::count_if(accepted, [](std::uint8_t flag) { return flag != 0; });
    if (count == 0 && !accepted.empty()) return {false, "no case meets the condition " + Quoted(condition)};
    return {true, std::to_string(count) + " of " + std::to_string(input.CaseCount()) +
                      " cases meet the condition."};
  } catch (const Error& error) {
    return {false, error.Where() + ": " + error.what()};
  }
}

}  // namespace brenvolt
