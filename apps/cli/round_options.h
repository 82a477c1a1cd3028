// The options by which a long job keeps its work.
#pragma once

#include <CLI/CLI.hpp>

#include "host/jobs/base/job_rounds.h"

namespace brenvolt::cli {

inline void AddRoundOptions(CLI::App& command, JobRounds& rounds) {
  command
      .add_option("--checkpoint", rounds.checkpoint,
                  "Keep the work in this file, and go on from it if it is there: the same call after it was "
                  "killed has the "
                  "same result")
      ->type_name("FILE");
  command.add_option("--every", rounds.every, "How often the checkpoint is written (default 60s)")
      ->type_name("TIME");
}

}  // namespace brenvolt::cli
