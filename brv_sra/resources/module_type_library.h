// The module's type library: every interface and enumeration that its dialogs offer to automation.
#pragma once

#include "host/automation/type_library.h"

namespace brenvolt::sra {

inline constexpr std::string_view kTypeLibraryIdentifier = "{6C1E4F0A-93B7-4D58-9E21-5B0F7A2D8C34}";

// Called "BrvSRA"; it lives as long as the module.
const TypeLibrary& ModuleTypeLibrary();

// Interfaces without members of their own.
inline constexpr InterfaceDescription kSimulationStartupInterface{
    "SRASimulation",
    "{6050CA31-7C2D-4E26-BB94-B9B10FF7EF2D}",
    "The simulation startup dialog: OK opens the simulation from distributions.",
    {}};
inline constexpr InterfaceDescription kSimulationResultsInterface{
    "SRASimulationResults",
    "{0D66CFB6-FCF5-469F-AF21-CD9BD2237321}",
    "The results of a simulation: OK shows the summary of the simulated data.",
    {}};

}  // namespace brenvolt::sra
