// The names of the variables of a design that has no data.
#pragma once

#include "host/analysis/user_interface.h"

class QWidget;

namespace brenvolt::desktop {

// Changes the question, whose first list then has all names; false, and it stays, when the person cancelled.
bool AskForNames(VariableQuestion& question, QWidget* owner);

}  // namespace brenvolt::desktop
