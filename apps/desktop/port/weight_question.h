// The choice of the variable that weights the cases.
#pragma once

#include "host/analysis/user_interface.h"
#include "host/tables/spreadsheet.h"

class QWidget;

namespace brenvolt::desktop {

// Changes the question; false, and it stays, when the person cancelled.
bool AskForWeights(WeightQuestion& question, const Spreadsheet* input, QWidget* owner);

}  // namespace brenvolt::desktop
