#include "brv_sra/resources/module_type_library.h"

#include <array>
#include <span>

#include "brv_sra/base/distribution_constants.h"
#include "brv_sra/resources/design_interface.h"
#include "brv_sra/resources/fit_distribution_interface.h"
#include "brv_sra/resources/fit_results_interface.h"
#include "brv_sra/resources/profiler_interface.h"
#include "brv_sra/resources/simulation_interface.h"
#include "brv_sra/resources/startup_interface.h"
#include "host/automation/dialog_interface.h"

namespace brenvolt::sra {
namespace {

template <std::size_t Count>
using Constants = std::array<std::string_view, Count>;

constexpr Constants<4> kOptions{"scSRAFitDistribution", "scSRARunSimulation", "scSRADesignSimulation",
                                "scSRASimulationProfiler"};
constexpr Constants<8> kOutputs{"scHistogram", "scCumulativeHistogram", "scEmpiricalCDF", "scQQ",
                                "scPP",        "scQuickDistrSummary",   "scSummaryStats", "scSummaryGraph"};
constexpr std::string_view kNoPrefix;
constexpr std::string_view kSupportedPrefix = "Distr";
constexpr std::string_view kBestFitPrefix = "i";
constexpr auto kNames = ConstantsOf<kNoPrefix>(AllDistributions());
constexpr auto kSupported = ConstantsOf<kSupportedPrefix>(AllDistributions());
constexpr auto kBestFits = ConstantsOf<kBestFitPrefix>(AllDistributions());
constexpr std::span<const std::string_view> kContinuous = std::span(kNames).first(kContinuousCount);
constexpr std::span<const std::string_view> kDiscrete = std::span(kNames).last(kDiscreteCount);
constexpr Constants<5> kMethods{"MonteCarlo", "LHS", "ImanConover", "LHSwImanConover", "Norta"};
constexpr Constants<3> kBins{"iEquiProbable", "iEqualIntervals", "iCustom"};

// The names are kept as recorded macros know them, odd spellings included.
constexpr std::array<EnumerationDescription, 9> kEnumerations{{
    {"SRAOptions", "The tasks of the startup dialog.", kOptions, true},
    {"OuptutType", "The outputs of the fit results.", kOutputs},
    {"SupportedDistributionsType", "The distribution types by their code.", kDistributionKeys},
    {"Distributions", "The continuous distribution types.", kContinuous},
    {"DiscreteDistributions", "The discrete distribution types.", kDiscrete},
    {"BrenvoltSupportedDistributions", "The distribution types by their code.", kSupported},
    {"SimulationMethods", "The methods of simulation.", kMethods},
    {"BestFit", "The distribution types by their code, as best fits.", kBestFits},
    {"ChiSqBinType", "The classes of the chi-square test.", kBins},
}};

constexpr std::array<InterfaceDescription, 9> kInterfaces{kDialogInterface,
                                                          kStartupInterface,
                                                          kSimulationStartupInterface,
                                                          kFitDistributionInterface,
                                                          kFitDistributionResultsInterface,
                                                          kDesignSimulationInterface,
                                                          kSimulationFromDistributionInterface,
                                                          kSimulationProfilerInterface,
                                                          kSimulationResultsInterface};

constexpr TypeLibrary kLibrary{"BrvSRA",      kTypeLibraryIdentifier,
                               {1, 0},        "Distributions & Simulation analysis",
                               kEnumerations, kInterfaces};

}  // namespace

const TypeLibrary& ModuleTypeLibrary() {
  return kLibrary;
}

}  // namespace brenvolt::sra
