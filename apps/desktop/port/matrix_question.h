// The editor of a correlation matrix as a grid.
#pragma once

#include "host/analysis/user_interface.h"

class QWidget;

namespace brenvolt::desktop {

// Changes the cells; false, and they stay, when the person cancelled.
bool AskForMatrix(MatrixQuestion& question, QWidget* owner);

}  // namespace brenvolt::desktop
