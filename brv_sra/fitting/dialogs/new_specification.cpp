#include "brv_sra/fitting/dialogs/new_specification.h"

namespace brenvolt::sra {

ContinuousSpecification NewContinuousSpecification() {
  ContinuousSpecification specification;
  for (const DistributionCode code :
       {DistributionCode::kNormal, DistributionCode::kJohnson, DistributionCode::kGeneralExtremeValue,
        DistributionCode::kTriangular}) {
    specification.fit[PlaceInKind(code)] = true;
  }
  return specification;
}

DiscreteSpecification NewDiscreteSpecification() {
  DiscreteSpecification specification;
  specification.fit.fill(true);
  return specification;
}

}  // namespace brenvolt::sra
