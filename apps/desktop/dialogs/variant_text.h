// Values of automation as a person writes them: numbers and texts plainly, true and false, lists in brackets.
#pragma once

#include <QString>

#include "host/automation/type_library.h"
#include "host/automation/variant.h"

namespace brenvolt::desktop {

QString TextOf(const Variant& value);
// The value that a text means for a member's type. Throws Error for one that means none.
Variant ValueOf(const QString& text, AutomationType type);

}  // namespace brenvolt::desktop
