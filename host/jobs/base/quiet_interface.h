// The user interface of a job that is run for another's sake: nothing is shown, and nobody stops it.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "host/analysis/ports/program_interface.h"

namespace brenvolt {

class QuietInterface : public ProgramInterface {
 public:
  void ShowProgress(std::string_view /*caption*/, std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void EndProgress() override {}
  bool IsExternallyCancelled() override { return false; }
  std::chrono::milliseconds PollInterval() const override { return std::chrono::seconds(1); }
};

}  // namespace brenvolt
