// The automation interface SRASimulationProfiler: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace profiler_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};

inline constexpr std::array<MemberDescription, 28> kMembers{{
    Property("InputCorrMatrix", 0x60030000, kNone, kVariant, "Input correlation matrix"),
    Property("LoadModels", 0x60030001, kText, kVariant, "Load models"),
    Property(
        "UserDefinedDesignMatrixValues", 0x60030003, kVariant, kVariant,
        "The correlation matrix of the predictors: an array of its rows, each an array of numbers, or of "
        "its values row by row."),
    Property("UserDefinedDesignMatrixValuesY", 0x60030005, kVariant, kVariant,
             "Correlation values defined by the user"),
    Property("VariableDistributionParams", 0x60030007, kVariant, kVariant,
             "Distribution specification for the variables in correlation", kPlace),
    Property("NumberOfSamples", 0x60030009, kInteger, kInteger, "Number of Samples"),
    Property("DependentforResult", 0x6003000b, kInteger, kInteger, "Dependent variable for results"),
    Property("LSL", 0x6003000d, kText, kVariant, "Lower spec limit for selected dependent"),
    Property("USL", 0x6003000f, kText, kVariant, "Upper spec limit for selected dependent"),
    Property("Target", 0x60030011, kText, kVariant, "Target value for selected dependent"),
    Property("CapabilityStats", 0x60030013, kObject, kNone,
             "Process Capability stats for selected dependent"),
    Property("SummaryStats", 0x60030014, kObject, kNone, "Summary stats for selected dependent"),
    Property("SummaryGraph", 0x60030015, kObject, kNone, "Summary graphs for selected dependent"),
    Property("IsAutoUpdateSameSheet", 0x60030016, kInteger, kInteger,
             "Auto-update the simulated spreadsheet"),
    Property("SimulationResults", 0x60030018, kObject, kNone, "Simulation output"),
    Property("DefectProfile", 0x60030019, kObject, kNone, "Defect profile graph"),
    Property("IsEditCorrelation", 0x6003001a, kInteger, kInteger, "Whether the predictors are correlated."),
    Property("DependentNoise", 0x6003001c, kInteger, kInteger, "Whether noise is added to the responses."),
    Property(
        "FitBestDistributions", 0x6003001e, kInteger, kNone,
        "Fits the predictors from the input and takes the best distribution of each; gives 1 when it did."),
    Property("PredictionFormula", 0x6003001f, kText, kVariant,
             "The formula of the response, or \"name = formula\" for the response of that name, which is "
             "made if there is none. Takes a text or an array of texts."),
    Property("IsSeedRandomNumber", 0x60030021, kInteger, kInteger,
             "Whether the random numbers start at RandomSeedNumber; else at the time."),
    Property("RandomSeedNumber", 0x60030023, kInteger, kInteger,
             "Where the random numbers start when IsSeedRandomNumber is on: 1 or more. The same number gives "
             "the same samples."),
    Property("StdDevY", 0x60030025, kText, kVariant, "Standard deviations for multivariate dependent noise"),
    Property("Predictors", 0x60030027, kVariant, kNone, "The names of the predictors in their order."),
    Property("Dependents", 0x60030028, kVariant, kNone, "The names of the responses in their order."),
    Property("PredictorDistributions", 0x60030029, kVariant, kNone,
             "What each predictor is drawn from, in words."),
    Property(
        "NumberOfRuns", 0x6003002a, kInteger, kInteger,
        "The number of runs, 1 to 100000: as NumberOfSamples, but a program may ask for fewer than 100."),
    Property(
        "PredictorGaps", 0x6003002c, kVariant, kNone,
        "For each predictor an array of the gaps that its distribution leaves out, where one begins and ends "
        "in turn."),
}};

}  // namespace profiler_interface

inline constexpr InterfaceDescription kSimulationProfilerInterface{
    "SRASimulationProfiler", "{9BEEA5E0-2B9D-4EE2-B793-09181EE59BA3}", "Profiler startup dialog",
    profiler_interface::kMembers};

}  // namespace brenvolt::sra
