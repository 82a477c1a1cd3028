// The commit that the programs were built from.
#pragma once

#include <string>

namespace brenvolt {

// "1a2b3c4d5e6f (2026-11-22)", with words behind it where that is not all; what is known instead, where it is unknown.
std::string BuildCommit();

}  // namespace brenvolt
