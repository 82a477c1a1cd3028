// How far a job in rounds has come, in a file from which it goes on after its processes were killed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/rounds/crew.h"

namespace brenvolt {

// The contribution of a range of parts.
struct Piece {
  PartRange range;
  std::string bytes;
};

struct Checkpoint {
  struct Finished {
    std::uint64_t label = 0;  // of the round
    std::string told;         // what all went on with
  };
  std::vector<Finished> rounds;
  std::uint64_t label = 0;    // of the round that is under way
  std::vector<Piece> pieces;  // of it, ascending

  // Replaces the file as a whole. Throws Error naming it.
  void Save(const std::filesystem::path& path) const;
  // Nothing was done where there is no file. Throws Error for one that is no checkpoint, is damaged, or was written by
  // another version.
  static Checkpoint Load(const std::filesystem::path& path);
};

}  // namespace brenvolt
