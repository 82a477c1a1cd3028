#include "host/jobs/profile_results.h"

#include <sstream>
#include <utility>

#include "host/base/error.h"

namespace brenvolt {

ResponseResults ReadResponseResults(const std::string& name,
                                    std::span<const std::shared_ptr<CAnalysisTableDoc>> summary) {
  enum Place : std::size_t { kStatistics, kCorrelations, kPercentiles, kFrequencies, kSensitivity, kPlaces };
  if (summary.size() != kPlaces) throw Error("the analysis returned no summary", name);
  const auto rows = [&](Place place) { return ReadResultTable(summary[place]->Table()).rows; };
  ResponseResults results{name,
                          rows(kStatistics).front(),
                          rows(kCorrelations),
                          rows(kPercentiles),
                          rows(kFrequencies),
                          rows(kSensitivity),
                          {},
                          {}};
  results.allPredictors = std::move(results.sensitivity.back());
  results.sensitivity.pop_back();
  return results;
}

void TakeDefects(const CAnalysisTableDoc& document, ProfileResults& results) {
  results.defects = ReadResultTable(document.Table());
  std::istringstream lines(std::exchange(results.defects->title, {}));
  std::getline(lines, results.defects->title);
  for (std::string note; std::getline(lines, note);) results.notes.push_back(note);
  for (ResultRow& row : results.defects->rows) row.name = row.Text("response"_column);
}

}  // namespace brenvolt
