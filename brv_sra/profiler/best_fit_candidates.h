// The distributions among which the profiler looks for the best, of a predictor's data and of a response.
#pragma once

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// All continuous distributions but the Gaussian mixture, whose number of components is a person's to say;
// those that have an offset start at 0.
inline ContinuousSpecification BestFitCandidates() {
  ContinuousSpecification specification;
  specification.fit.fill(true);
  specification.fit[PlaceInKind(DistributionCode::kGaussianMixture)] = false;
  specification.offsets.fill(0.0);
  return specification;
}

}  // namespace brenvolt::sra
