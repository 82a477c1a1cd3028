// The editor of the selection conditions.
#pragma once

#include <string>

#include "host/analysis/user_interface.h"
#include "host/tables/spreadsheet.h"

class QWidget;

namespace brenvolt::desktop {

// Changes the question; false, and it stays, when the person cancelled. The condition is tried on `input`, unless that
// is null, while it is typed.
bool AskForSelection(SelectionQuestion& question, const Spreadsheet* input, QWidget* owner);

// What a condition would do: how many cases of the sheet meet it, or what is wrong with it and where.
std::string VerdictOn(const std::string& condition, const Spreadsheet& input, bool& isValid);

// A variable as formulas name it: in quotes, unless it is a plain word.
std::string NameInFormulas(const std::string& name);

}  // namespace brenvolt::desktop
