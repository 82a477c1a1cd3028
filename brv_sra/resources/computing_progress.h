// The progress bar of computations: "Computing...".
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/controls/progress_bar.h"

namespace brenvolt::sra {

// A bar of `steps` steps on `port`, which must outlive it.
inline std::unique_ptr<CKroProgressBar> Computing(ProgressPort& port, std::size_t steps) {
  return CKroProgressBar::new_ProgressBar(port, ResourceString(kProgressComputing),
                                          static_cast<std::int64_t>(steps));
}

}  // namespace brenvolt::sra
