// The progress of an engine as a dialog shows it.
#pragma once

#include "brv_sra/base/run_progress.h"

namespace brenvolt::sra {

// Bars on `port`, which must outlive it, with the captions of their stages.
RunProgress CaptionedProgress(ProgressPort& port);

}  // namespace brenvolt::sra
