// The automation interface SRAStartup: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace startup_interface {

using enum AutomationType;

inline constexpr std::array<MemberDescription, 3> kMembers{{
    {"TypeOfAnalysis",
     0x60030000,
     MemberKind::kProperty,
     {},
     kEnumeration,
     kEnumeration,
     "SRAOptions",
     "The selected task, which OK starts."},
    Property(
        "AutoProfiler", 0x60030002, kNone, kInteger,
        "Checks or clears \"AutoProfiler\": whether the profiler works with formulas, and not with models. "
        "Refused unless the profiler is the selected task."),
    Method("SimulationStartup", 0x60030003, kInteger,
           "Opens the simulation startup dialog (SRASimulation) in place of this one. Gives 1 when it did."),
}};

}  // namespace startup_interface

inline constexpr InterfaceDescription kStartupInterface{
    "SRAStartup", "{2AE55290-8EAE-45B0-A487-560F2C412404}", "The startup dialog: the choice of a task.",
    startup_interface::kMembers};

}  // namespace brenvolt::sra
