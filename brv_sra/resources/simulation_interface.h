// The automation interface SRASimulationFromDistribution: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace simulation_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kFile{{{"sFileName", kText}}};

// Those from CorrelationMatrix on are younger than the members before, whose numbers stand in recorded macros.
inline constexpr std::array<MemberDescription, 19> kMembers{{
    Property("Variables", 0x60030000, kText, kVariant,
             "The variables to simulate: their numbers as a text (\"1-3 5\"). Takes such a text, a number or "
             "an array of numbers; each must have a saved distribution."),
    Property("MonteCarloMethod", 0x60030002, kInteger, kInteger,
             "Whether the samples are drawn by plain Monte Carlo sampling. Putting true chooses it; putting "
             "false changes nothing."),
    Property("LHSMethod", 0x60030004, kInteger, kInteger,
             "Whether the samples are drawn by Latin hypercube sampling. Putting true chooses it; putting "
             "false changes nothing."),
    Property("ImanConoverMethod", 0x60030006, kInteger, kInteger,
             "Whether the samples are drawn by Monte Carlo sampling with the rank correlations of Iman and "
             "Conover. Putting true chooses it; putting false changes nothing."),
    Property("LHSwithImanMethod", 0x60030008, kInteger, kInteger,
             "Whether the samples are drawn by Latin hypercube sampling with the rank correlations of Iman "
             "and Conover. Putting true chooses it; putting false changes nothing."),
    Property("NORTAMethod", 0x6003000a, kInteger, kInteger,
             "Whether the normal-to-anything method is chosen, which simulates nothing. Putting true chooses "
             "it; putting false changes nothing."),
    Property("NumberOfSamples", 0x6003000c, kInteger, kInteger,
             "How many cases are simulated; 1 or more when the simulation starts."),
    Property("IsSeedRandomNumber", 0x6003000e, kInteger, kInteger,
             "Whether the random numbers start at RandomSeedNumber; else at the time."),
    Property("RandomSeedNumber", 0x60030010, kInteger, kInteger,
             "Where the random numbers start when IsSeedRandomNumber is on: 0 or more. The same number gives "
             "the same samples."),
    Property("TruncateSimulationData", 0x60030012, kInteger, kInteger,
             "Whether each variable is kept between the 0.5 % and 99.5 % quantiles of its distribution."),
    Property("IsAutoUpdateSameSheet", 0x60030014, kInteger, kInteger,
             "Whether a further simulation refills the spreadsheet of the one before."),
    Property("SimulationResults", 0x60030016, kObject, kNone,
             "Simulates, shows and gives the simulated data, a spreadsheet; nothing for the method that "
             "simulates nothing."),
    Property("CorrelationMatrix", 0x60030017, kVariant, kVariant,
             "The correlation matrix file that correlated methods reach for, a spreadsheet; nothing where "
             "none was given. Putting nothing takes it away."),
    Property("SimulationFile", 0x60030019, kObject, kNone,
             "Simulates by a method without correlation into a file, in pieces and without the limit of a "
             "spreadsheet: NumPy arrays if the name ends in .npz, else separated values, nothing for an "
             "empty name. Gives the summary, a spreadsheet.",
             kFile),
    Property("SavedFits", 0x6003001a, kVariant, kNone,
             "The saved fits of the variables to simulate, best first, a spreadsheet: their parameters and "
             "bounds, and how far each reaches beyond its data."),
    Property("ExcludedVariables", 0x6003001b, kText, kVariant,
             "Those of the variables that take no part in the simulation. Read and put as Variables."),
    Property(
        "UseFittedDistributions", 0x6003001d, kInteger, kInteger,
        "Whether the distributions count as fitted ones, which have no bounds, and not as a person's own."),
    Property(
        "CorrelationMatrixName", 0x6003001f, kText, kText,
        "The matrix sheet beside the input that correlated methods follow, by its name; empty for that of "
        "the input."),
    Property(
        "NumberOfFileSamples", 0x60030021, kReal, kReal,
        "How many cases SimulationFile simulates, where these are more than NumberOfSamples takes; 0: as "
        "many as that."),
}};

}  // namespace simulation_interface

inline constexpr InterfaceDescription kSimulationFromDistributionInterface{
    "SRASimulationFromDistribution", "{C8A8EBAF-CDAC-4563-A355-F11DCE009620}",
    "Simulation from the distributions that are saved with the variables of the input.",
    simulation_interface::kMembers};

}  // namespace brenvolt::sra
