// The automation interface SRADesignSimulation: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace design_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};

inline constexpr std::array<MemberDescription, 10> kMembers{{
    Property("UserDefinedDesignMatrixVariableNames", 0x60030000, kVariant, kVariant,
             "The names of the variables of the design: an array of texts."),
    Property("UserDefinedDesignMatrixValues", 0x60030002, kVariant, kVariant,
             "The correlations of the variables of the design: an array of the rows of the matrix, each an "
             "array of "
             "numbers, or a matrix file."),
    Property("UserDefinedDesignMatrixMean", 0x60030004, kVariant, kVariant,
             "The means of the variables of the design: an array of numbers; an empty one is that of the "
             "distribution."),
    Property("UserDefinedDesignMatrixStdDeviation", 0x60030006, kVariant, kVariant,
             "The standard deviations of the variables of the design: an array of numbers; an empty one is "
             "that of the "
             "distribution."),
    Property("CustomDistributionSpecification", 0x60030008, kVariant, kVariant,
             "The person's own distribution of the variable iID: its key, its parameters and its truncation; "
             "empty: "
             "none.",
             kPlace),
    Property("SimulationSpecificationOfVariable", 0x6003000a, kVariant, kVariant,
             "The distribution that the variable iID is simulated from: its key, its parameters and its "
             "truncation. Its key alone chooses a fitted one; empty leaves the variable out.",
             kPlace),
    Method("SaveDistributionToInput", 0x6003000c, kNone,
           "Saves the distributions of the design as properties of the variables of the input."),
    Property("CorrelationMatrix", 0x6003000d, kObject, kNone,
             "Makes, shows and gives the correlation matrix file of the design, a spreadsheet."),
    Property("UseFittedDistributions", 0x6003000e, kInteger, kInteger,
             "Whether the best fitted distributions are simulated, without truncation, in place of a "
             "person's own."),
    Property("IsVariableLeftOut", 0x60030010, kInteger, kBoolean,
             "Whether the variable iID takes no part in the simulation.", kPlace),
}};

}  // namespace design_interface

inline constexpr InterfaceDescription kDesignSimulationInterface{
    "SRADesignSimulation", "{B3E71923-EB26-40B4-99C5-1235670634C0}",
    "The design of a simulation: distributions and correlations.", design_interface::kMembers};

}  // namespace brenvolt::sra
