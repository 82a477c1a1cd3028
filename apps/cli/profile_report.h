// What a run of the profiler reports: for each response its summary, percentiles, sensitivity and capability,
// then the defects of all.
#pragma once

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::cli {

using Table = std::shared_ptr<CAnalysisTableDoc>;

// The documents of one response, as the profiler shows them.
struct ResponseResults {
  std::string name;
  Table statistics;
  Table correlations;
  Table percentiles;
  Table frequencies;
  Table sensitivity;
  Table capability;  // null without a specification
};

struct ProfileResults {
  std::int64_t runs = 0;
  std::vector<ResponseResults> responses;
  Table defects;  // null where no response has a specification
};

std::string ProfileText(const ProfileResults& results);
// Correlations are for programs alone, and the frequencies of a response of many values.
nlohmann::ordered_json ProfileJson(const ProfileResults& results);

}  // namespace brenvolt::cli
