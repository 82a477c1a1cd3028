// The automation interface SRASimulationProfiler: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace profiler_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};

inline constexpr std::array<MemberDescription, 25> kMembers{{
    Property("InputCorrMatrix", 0x60030000, kNone, kVariant,
             "The correlation matrix of the predictors: a spreadsheet that is a correlation matrix file, or "
             "an array of its rows."),
    Property(
        "LoadModels", 0x60030001, kText, kVariant,
        "Loads prediction models from files: a text of names separated by |, or an array of names. Gives "
        "the names of all that were loaded."),
    Property(
        "UserDefinedDesignMatrixValues", 0x60030003, kVariant, kVariant,
        "The correlation matrix of the predictors: an array of its rows, each an array of numbers, or of "
        "its values row by row."),
    Property("UserDefinedDesignMatrixValuesY", 0x60030005, kVariant, kVariant,
             "The correlation matrix of the noise of the responses: an array of its rows, each an array of "
             "numbers, or of its values row by row."),
    Property("VariableDistributionParams", 0x60030007, kVariant, kVariant,
             "The distribution that the predictor at place iID is simulated from: an array of its key, its "
             "parameters and its truncation; or of \"Fixed\" and a value.",
             kPlace),
    Property("NumberOfSamples", 0x60030009, kInteger, kInteger,
             "How many cases are simulated, 100 to 100000."),
    Property("DependentforResult", 0x6003000b, kInteger, kInteger,
             "The response that results are shown of: its place among the responses, from 1."),
    Property("LSL", 0x6003000d, kText, kVariant,
             "The lower specification limit of the response; empty for none. An array puts those of all "
             "responses."),
    Property("USL", 0x6003000f, kText, kVariant,
             "The upper specification limit of the response; empty for none. An array puts those of all "
             "responses."),
    Property("Target", 0x60030011, kText, kVariant,
             "The target of the response; empty for none. An array puts those of all responses."),
    Property("CapabilityStats", 0x60030013, kObject, kNone,
             "Shows and gives the process capability of the response, a spreadsheet."),
    Property("SummaryStats", 0x60030014, kObject, kNone,
             "Shows the summary tables of the simulated response and gives the first, its statistics, a "
             "spreadsheet."),
    Property("SummaryGraph", 0x60030015, kObject, kNone,
             "Shows and gives the summary graph of the simulated response."),
    Property("IsAutoUpdateSameSheet", 0x60030016, kInteger, kInteger,
             "Whether a further simulation refills the spreadsheet of the one before."),
    Property("SimulationResults", 0x60030018, kObject, kNone,
             "Simulates, shows and gives the simulated predictors and responses, a spreadsheet."),
    Property("DefectProfile", 0x60030019, kObject, kNone,
             "Shows the table of defect rates and shows and gives the graph of the rates over the ranges of "
             "the predictors."),
    Property("IsEditCorrelation", 0x6003001a, kInteger, kInteger, "Whether the predictors are correlated."),
    Property("DependentNoise", 0x6003001c, kInteger, kInteger, "Whether noise is added to the responses."),
    Property(
        "FitBestDistributions", 0x6003001e, kInteger, kNone,
        "Fits the predictors from the input and takes the best distribution of each; gives 1 when it did."),
    Property("PredictionFormula", 0x6003001f, kText, kVariant,
             "The formula of the response, or \"name = formula\" for the response of that name, which is "
             "made where there is none. Takes a text or an array of texts."),
    Property("IsSeedRandomNumber", 0x60030021, kInteger, kInteger,
             "Whether the random numbers start at RandomSeedNumber; else at the time."),
    Property("RandomSeedNumber", 0x60030023, kInteger, kInteger,
             "Where the random numbers start when IsSeedRandomNumber is on: 1 or more. The same number gives "
             "the same samples."),
    Property("StdDevY", 0x60030025, kText, kVariant,
             "The standard deviation of the noise of the response. An array puts those of all responses."),
    Property("Predictors", 0x60030027, kVariant, kNone, "The names of the predictors in their order."),
    Property("Dependents", 0x60030028, kVariant, kNone, "The names of the responses in their order."),
}};

}  // namespace profiler_interface

inline constexpr InterfaceDescription kSimulationProfilerInterface{
    "SRASimulationProfiler", "{9BEEA5E0-2B9D-4EE2-B793-09181EE59BA3}",
    "The profiler: simulated predictors through prediction models, with the defect rates of the responses.",
    profiler_interface::kMembers};

}  // namespace brenvolt::sra
