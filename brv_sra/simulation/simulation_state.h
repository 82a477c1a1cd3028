// What the simulation dialogs share through the analysis object: the options, and the output of the last run.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/simulation/design_correlations.h"
#include "brv_sra/simulation/design_state.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

struct SimulationOptions {
  std::vector<std::int16_t> variables;  // numbers from 1, in the order of selection
  std::vector<std::int16_t> excluded;   // those of them that take no part
  std::string matrix;                   // the name of the correlation matrix; empty: that of the input
  std::int32_t numberOfSamples = 0;
  bool seeded = false;
  double seed = kNotSet;
  bool truncate = false;
  SimulationMethod method = SimulationMethod::kMonteCarlo;
  SimulationMethod previousMethod = SimulationMethod::kMonteCarlo;  // the one chosen before
  std::int64_t fileSamples = 0;  // into a file, in place of numberOfSamples; 0: as many as these
  bool autoUpdate = false;       // the next output takes the place of the last one
  ParameterSource source = ParameterSource::kUserSpecified;
};

struct SimulationState {
  SimulationOptions options;
  DesignState design;
  // The design's correlation matrix, if one was given.
  std::optional<MatrixFile> matrix;
  std::shared_ptr<CAnalysisTableDoc> output;
  std::optional<SimulatedCorrelations> correlations;  // of the output's run, where it induced any
};

}  // namespace brenvolt::sra
