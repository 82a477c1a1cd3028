// The editor of the selection conditions.
#pragma once

#include <functional>
#include <string>

#include "host/analysis/user_interface.h"
#include "host/jobs/dialogs/condition_verdict.h"
#include "host/tables/spreadsheet.h"

class QWidget;

namespace brenvolt::desktop {

// Says what a condition does; the window may handle its events meanwhile.
using JudgeCondition = std::function<ConditionVerdict(const std::string& condition)>;

// Changes the question; false, and it stays, when the person cancelled. The condition is tried on `input`, unless that
// is null, while it is typed.
bool AskForSelection(SelectionQuestion& question, const Spreadsheet* input, const JudgeCondition& judge,
                     QWidget* owner);

}  // namespace brenvolt::desktop
