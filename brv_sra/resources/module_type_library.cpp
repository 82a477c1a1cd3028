#include "brv_sra/resources/module_type_library.h"

#include <array>

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
constexpr Constants<16> kKeys{"scNormalDistr", "scLogNormal", "scFoldedNormal",    "scHalfNormal",
                              "scRayleigh",    "scWeibull",   "scGaussianMixture", "scJohnson",
                              "scGenExtreme",  "scGenPareto", "scTriangular",      "scBinomial",
                              "scPoisson",     "scGeometric", "scBernoulli",       "scDiscrete"};
constexpr Constants<11> kContinuous{"Normal",     "LogNormal", "FoldedNormal",    "HalfNormal",
                                    "Rayleigh",   "Weibull",   "GaussianMixture", "Johnson",
                                    "GenExtreme", "GenPareto", "Triangular"};
constexpr Constants<5> kDiscrete{"Binomial", "Poisson", "Geometric", "Bernoulli", "Discrete"};
constexpr Constants<16> kSupported{
    "DistrNormal",     "DistrLogNormal", "DistrFoldedNormal",    "DistrHalfNormal",
    "DistrRayleigh",   "DistrWeibull",   "DistrGaussianMixture", "DistrJohnson",
    "DistrGenExtreme", "DistrGenPareto", "DistrTriangular",      "DistrBinomial",
    "DistrPoisson",    "DistrGeometric", "DistrBernoulli",       "DistrDiscrete"};
constexpr Constants<5> kMethods{"MonteCarlo", "LHS", "ImanConover", "LHSwImanConover", "Norta"};
constexpr Constants<16> kBestFits{"iNormal",     "iLogNormal", "iFoldedNormal",    "iHalfNormal",
                                  "iRayleigh",   "iWeibull",   "iGaussianMixture", "iJohnson",
                                  "iGenExtreme", "iGenPareto", "iTriangular",      "iBinomial",
                                  "iPoisson",    "iGeometric", "iBernoulli",       "iDiscrete"};
constexpr Constants<3> kBins{"iEquiProbable", "iEqualIntervals", "iCustom"};

// The names are kept as recorded macros know them, odd spellings included.
constexpr std::array<EnumerationDescription, 9> kEnumerations{{
    {"SRAOptions", "The tasks of the startup dialog.", kOptions, true},
    {"OuptutType", "The outputs of the fit results.", kOutputs},
    {"SupportedDistributionsType", "The distribution types by their code.", kKeys},
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
