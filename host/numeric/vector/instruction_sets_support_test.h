// What tests of vectorised code share: the same job under each instruction set that the machine offers.
#pragma once

#include <gtest/gtest.h>
#include <hwy/highway.h>

#include <cstdint>

namespace brenvolt {

// Calls job() once under every instruction set that the code is compiled for and the machine has; then the
// choice is the usual one again.
template <class Job>
void UnderEveryInstructionSet(const Job& job) {
  const auto choose = [](std::int64_t target) {
    hwy::SetSupportedTargetsForTest(target);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  };
  for (const auto target : hwy::SupportedAndGeneratedTargets()) {
    SCOPED_TRACE(hwy::TargetName(target));
    choose(target);
    job();
    choose(0);
  }
}

}  // namespace brenvolt
