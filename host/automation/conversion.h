// Values as a type library describes them.
#pragma once

#include <string_view>

#include "host/automation/type_library.h"
#include "host/automation/variant.h"

namespace brenvolt {

// The value as the type: numbers, booleans and texts convert if nothing is lost, an enumeration takes its
// constants by value or by name, an object may be absent. kVariant and kNone leave the value as it is.
// Throws Error for anything else.
Variant ConvertTo(AutomationType type, const Variant& value, std::string_view enumeration = {});

}  // namespace brenvolt
