// The selection of variables, in one list or two.
#pragma once

#include "host/analysis/user_interface.h"
#include "host/tables/spreadsheet.h"

class QWidget;

namespace brenvolt::desktop {

// Fills the lists of the question; false, and they stay, when the person cancelled. Variables of `input`, unless it is
// null, are shown with their types and numbers of valid values.
bool AskForVariables(VariableQuestion& question, const Spreadsheet* input, QWidget* owner);

}  // namespace brenvolt::desktop
