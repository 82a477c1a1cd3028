// What the profiler keeps in the analysis object beyond its dialog: the design, and the output of the last
// run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "brv_sra/profiler/profiler_design.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

// What a dependent is predicted by, as the output page shows it.
enum class ProfilerMode : std::uint8_t { kModels, kFormulas };

struct ProfilerState {
  ProfilerMode mode = ProfilerMode::kModels;
  ProfilerDesign design;
  std::size_t selected = 0;             // the dependent that is edited and shown; 0 also if there is none
  std::vector<std::string> modelFiles;  // all that were loaded, in order
  bool autoUpdate = false;              // the next output takes the place of the last one
  // The output of the last run and how many of its columns, the first ones, are predictors; null before.
  std::shared_ptr<CAnalysisTableDoc> output;
  std::size_t outputPredictors = 0;
  bool outputIndependent = true;  // its runs (profiler_run.h)
};

}  // namespace brenvolt::sra
