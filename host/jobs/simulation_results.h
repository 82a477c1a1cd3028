// What a simulation told, as numbers: read once from the documents that its results show.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/result_table.h"
#include "host/jobs/notation/design_text.h"

namespace brenvolt {

// Numbers are by the columns of result_columns.h.
struct SimulatedPair {
  std::string first;
  std::string second;
  ResultRow correlations;
};

// What a repair did to the correlations asked for.
struct MatrixRepair {
  double smallestEigenvalue;  // that they had; NaN where there is none
  const SimulatedPair* mostChanged;
};

struct SimulationResults {
  ResultTable summary;  // a row per variable; its title names the method, for people
  std::vector<ResultTable::Heading> pairHeadings;  // of the correlations
  std::vector<std::string> variables;              // that are correlated; none without correlation
  std::vector<SimulatedPair> pairs;                // of these: (1, 2), (1, 3), …, (2, 3), …

  // The correlations that were asked for, but for those of 0.
  std::vector<NotedCorrelation> Asked() const;
  // What is to be known of the correlations that were reached, for people.
  std::vector<std::string> Notes() const;
  // Nothing if every correlation was used as it was asked for. It points into the pairs.
  std::optional<MatrixRepair> Repair() const;
};

// From the document of the summary and, where there is correlation, that of the pairs and the simulated data.
SimulationResults ReadSimulationResults(const CAnalysisTableDoc& summary, const CAnalysisTableDoc* pairs,
                                        const CAnalysisTableDoc* output);

}  // namespace brenvolt
