// The loaded library as a whole: its start-up and shut-down, and the state of which there is one per process.
#pragma once

#include "host/analysis/module_registration.h"

namespace brenvolt::sra {

// The identity of the module's type library.
inline constexpr LibraryId LIBID_BRVSRA{"{6C1E4F0A-93B7-4D58-9E21-5B0F7A2D8C34}"};

// Where the library is loaded, remembered at attach.
InstanceHandle ModuleInstance();
// The context handed to every analysis object: serves the module's resource strings.
const CAnalysisContext& ModuleContext();
// Counts the automation objects alive and holds the object map.
AutomationModule& ModuleAutomation();

}  // namespace brenvolt::sra
