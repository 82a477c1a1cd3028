// What is said of a selection condition while it is typed.
#pragma once

#include <string>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct ConditionVerdict {
  bool isValid = true;
  std::string words;  // how many cases meet it, or what is wrong with it and where
};

// An empty condition admits every case; one that no case meets is refused, as by jobs.
ConditionVerdict VerdictOn(const std::string& condition, const Spreadsheet& input);

}  // namespace brenvolt
