// What the simulation dialogs share through the analysis object: the options, and the output of the last run.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "brv_sra/simulation/simulation_design.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

struct SimulationOptions {
  std::vector<std::int16_t> variables;  // numbers from 1, in the order of selection
  std::int32_t numberOfSamples = 0;
  bool seeded = false;
  double seed = kNotSet;
  bool truncate = false;
  SimulationMethod method = SimulationMethod::kMonteCarlo;
};

struct SimulationState {
  SimulationOptions options;
  std::shared_ptr<CAnalysisTableDoc> output;
};

}  // namespace brenvolt::sra
