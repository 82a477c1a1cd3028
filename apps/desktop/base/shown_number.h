// Numbers with the decimal separator of the person.
#pragma once

#include <QString>

namespace brenvolt::desktop {

// Six digits, as pictures and tables show them.
QString ShownNumber(double value);

// As many digits as it takes to read it back.
QString ShownInFull(double value);

}  // namespace brenvolt::desktop
