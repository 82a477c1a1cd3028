#include "brv_sra/module/sequence_table.h"

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"

namespace brenvolt::sra {
namespace {

template <std::int32_t (CSimulationAndRisk::*Entry)()>
std::int32_t Run(CAnalysisSupport& analysis) {
  return (static_cast<CSimulationAndRisk&>(analysis).*Entry)();
}

constexpr SequenceStep kSequence[] = {
    {step::kInit, Run<&CSimulationAndRisk::Init>, step::kStartup, 0},
    {step::kStartup, Run<&CSimulationAndRisk::StartAnalysis>, 0, 0},
    {step::kFit, Run<&CSimulationAndRisk::FitDistributionDialog>, 0, step::kStartup},
    {step::kFitResults, Run<&CSimulationAndRisk::FitDistributionResultsDialog>, 0, 0},
    {step::kSimulation, Run<&CSimulationAndRisk::SimulationFromDistributionDialog>, 0, 0},
    {step::kSimulationResults, Run<&CSimulationAndRisk::SimulationResultsDialog>, 0, 0},
    {step::kSimulationFromStartup, Run<&CSimulationAndRisk::SimulationFromDistributionDialog>, 0,
     step::kStartup},
    {step::kDesign, Run<&CSimulationAndRisk::DesignSimulationDialog>, 0, step::kStartup},
    {step::kProfiler, Run<&CSimulationAndRisk::SimulationProfilerDialog>, 0, step::kStartup},
    {0, nullptr, 0, 0},
};

}  // namespace

const SequenceStep* SequenceTable() {
  return kSequence;
}

}  // namespace brenvolt::sra
