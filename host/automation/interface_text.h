// A type library as interface description text (IDL), as the compilers of such texts take it.
#pragma once

#include <string>

#include "host/automation/type_library.h"

namespace brenvolt {

// The whole library: enumerations, then interfaces, each derived from the first one and that from IDispatch.
// The text imports oaidl.idl and stdole2.tlb, which come with every compiler.
std::string InterfaceText(const TypeLibrary& library);

// The name of a type as the text writes it; "" for kNone.
std::string_view InterfaceTypeName(AutomationType type, std::string_view enumeration = {});

}  // namespace brenvolt
