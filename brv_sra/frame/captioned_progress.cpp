#include "brv_sra/frame/captioned_progress.h"

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

// In the order of the stages.
constexpr std::int32_t kCaptions[] = {kProgressComputing, kProgressContinuousVariables,
                                      kProgressDiscreteVariables, kProgressPreparingResults,
                                      kProgressAutoUpdating};

std::string_view CaptionOf(ProgressStage stage) {
  return ResourceString(kCaptions[static_cast<std::size_t>(stage)]);
}

}  // namespace

RunProgress CaptionedProgress(ProgressPort& port) {
  return {port, CaptionOf};
}

}  // namespace brenvolt::sra
