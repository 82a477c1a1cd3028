// The published life data to which tests hold what is computed of censored values.
#pragma once

#include <fstream>
#include <limits>
#include <map>
#include <sstream>
#include <string>

#include "host/numeric/censored/censored_sample.h"

namespace brenvolt {

// Those of reference/sets.csv by their names; reference/make_censored_tables.R names the sources.
inline std::map<std::string, CensoredSample> ReadCensoredSets(const std::string& path) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  std::map<std::string, CensoredSample> found;
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    std::istringstream cells(line);
    std::string set;
    std::string lower;
    std::string upper;
    std::getline(cells, set, ',');
    std::getline(cells, lower, ',');
    std::getline(cells, upper, ',');
    found[set].Add(
        {lower.empty() ? -infinity : std::stod(lower), upper.empty() ? infinity : std::stod(upper)});
  }
  return found;
}

}  // namespace brenvolt
