#include "host/contract/module_contract.h"

#include <cassert>

#include "host/base/axis_scaling.h"
#include "host/numeric/random/random_stream.h"

namespace brenvolt {

std::unique_ptr<CKroProgressBar> CKroProgressBar::new_ProgressBar(ProgressPort& port,
                                                                  std::string_view caption,
                                                                  std::int64_t steps) {
  return std::make_unique<CKroProgressBar>(port, caption, steps);
}

bool KroOleRegisterTypeLib(InstanceHandle /*instance*/, const LibraryId& library,
                           [[maybe_unused]] const void* path, [[maybe_unused]] const void* help) {
  assert(path == nullptr && help == nullptr);
  RegisterTypeLibrary(library);
  return true;
}

double rnd_(std::int32_t seed) {
  if (seed != 0) SeedProcessStream(seed);
  return NextUniform();
}

double znormal_(double sd) {
  return NextNormal(sd);
}

void inirnd_(std::int32_t seed, [[maybe_unused]] std::int32_t reserved) {
  assert(reserved == 0);
  SeedProcessStream(seed);
}

double CRandomizer::GetDouble() {
  return NextUniform();
}

double scling_double_QUA(double& minimum, double& maximum, int mostSteps, int fewestSteps) {
  return RoundAxis(minimum, maximum, mostSteps, fewestSteps);
}

}  // namespace brenvolt
