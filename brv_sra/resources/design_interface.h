// The automation interface SRADesignSimulation: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace design_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};

// The design dialog is not built: calls of these members fail with the "not available" error.
inline constexpr std::array<MemberDescription, 8> kMembers{{
    Property("UserDefinedDesignMatrixVariableNames", 0x60030000, kVariant, kVariant,
             "The names of the variables of the design: an array of texts."),
    Property("UserDefinedDesignMatrixValues", 0x60030002, kVariant, kVariant,
             "The correlation or covariance matrix of the design: an array of its rows, each an array of "
             "numbers."),
    Property("UserDefinedDesignMatrixMean", 0x60030004, kVariant, kVariant,
             "The means of the variables of the design: an array of numbers."),
    Property("UserDefinedDesignMatrixStdDeviation", 0x60030006, kVariant, kVariant,
             "The standard deviations of the variables of the design: an array of numbers."),
    Property("CustomDistributionSpecification", 0x60030008, kVariant, kVariant,
             "The person's own distribution of the variable iID: its key, its parameters and its truncation.",
             kPlace),
    Property("SimulationSpecificationOfVariable", 0x6003000a, kVariant, kVariant,
             "The distribution that the variable iID is simulated from: its key, its parameters and its "
             "truncation.",
             kPlace),
    Method("SaveDistributionToInput", 0x6003000c, kNone,
           "Saves the distributions of the design as properties of the variables of the input."),
    Property("CorrelationMatrix", 0x6003000d, kObject, kNone,
             "Makes, shows and gives the correlation matrix file of the design, a spreadsheet."),
}};

}  // namespace design_interface

inline constexpr InterfaceDescription kDesignSimulationInterface{
    "SRADesignSimulation", "{B3E71923-EB26-40B4-99C5-1235670634C0}",
    "The design of a simulation: distributions and correlations.", design_interface::kMembers};

}  // namespace brenvolt::sra
