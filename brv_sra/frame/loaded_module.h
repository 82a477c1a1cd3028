// The loaded library as a whole: its start-up and shut-down, and the state that exists once per process.
#pragma once

#include "brv_sra/resources/module_type_library.h"
#include "host/analysis/module_registration.h"

namespace brenvolt::sra {

// The module's type library.
inline constexpr LibraryId LIBID_BRVSRA{kTypeLibraryIdentifier, &ModuleTypeLibrary};

// Where the library is loaded, remembered at attach.
InstanceHandle ModuleInstance();
// The context handed to every analysis object: serves the module's resource strings.
const CAnalysisContext& ModuleContext();
// Counts the automation objects alive and holds the object map.
AutomationModule& ModuleAutomation();

}  // namespace brenvolt::sra
