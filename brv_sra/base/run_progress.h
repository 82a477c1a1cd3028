// How engines show progress: they say what a bar counts, and the caption is the dialog's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "host/controls/progress_bar.h"

namespace brenvolt::sra {

enum class ProgressStage : std::uint8_t {
  kComputing,
  kContinuousVariables,
  kDiscreteVariables,
  kPreparingResults,
  kUpdatingResults  // of a sheet that was there before
};

class RunProgress {
 public:
  using Caption = std::string_view (*)(ProgressStage stage);

  // `port` must outlive it. Bars are without a caption if there is none to ask for: a dialog's progress is
  // frame/captioned_progress.h.
  RunProgress(ProgressPort& port, Caption caption = nullptr) : port_(port), caption_(caption) {}

  // A bar of `steps` steps.
  std::unique_ptr<ProgressBar> Bar(ProgressStage stage, std::size_t steps) const {
    return std::make_unique<ProgressBar>(port_, caption_ != nullptr ? caption_(stage) : std::string_view(),
                                         static_cast<std::int64_t>(steps));
  }

 private:
  ProgressPort& port_;
  Caption caption_;
};

// A bar of a computation.
inline std::unique_ptr<ProgressBar> Computing(const RunProgress& progress, std::size_t steps) {
  return progress.Bar(ProgressStage::kComputing, steps);
}

}  // namespace brenvolt::sra
