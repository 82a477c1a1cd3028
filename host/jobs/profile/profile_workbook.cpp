#include "host/jobs/profile/profile_workbook.h"

#include <algorithm>
#include <string>
#include <utility>

#include "host/jobs/base/result_workbook.h"
#include "host/jobs/base/row_sheet.h"

namespace brenvolt {
namespace {

using namespace result_columns;

Spreadsheet PredictorSheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const PredictorUse& predictor : results.predictors) {
    sheet.BeginRow();
    sheet.Put("predictor", predictor.name);
    sheet.Put("drawn_from", predictor.distribution);
  }
  return std::move(sheet).Made("Predictors");
}

Spreadsheet SummarySheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const ResponseResults& response : results.responses) {
    sheet.BeginRow();
    sheet.Put("response", response.name);
    sheet.Put(response.statistics, kMoments);
    for (const ResultRow& percentile : response.percentiles) {
      if (percentile.Has("value"_column)) sheet.Put(percentile.identifier, percentile.Number("value"_column));
    }
  }
  return std::move(sheet).Made("Summaries");
}

// How strongly each response goes with each predictor.
Spreadsheet SensitivitySheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const ResponseResults& response : results.responses) {
    for (const ResultRow& predictor : response.sensitivity) {
      sheet.BeginRow();
      sheet.Put("response", response.name);
      sheet.Put("predictor", predictor.name);
      sheet.Put(predictor, kSensitivity);
      const auto pair = std::ranges::find(response.correlations, predictor.name, &ResultRow::name);
      if (pair != response.correlations.end()) sheet.Put(*pair, std::span(kCorrelations));
    }
  }
  return std::move(sheet).Made("Correlations");
}

// The limits, indices and parts per million of each response that has a specification.
Spreadsheet CapabilitiesSheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const ResponseResults& response : results.responses) {
    if (!response.capability) continue;
    for (const ResultRow& figure : response.capability->rows) {
      sheet.BeginRow();
      sheet.Put("response", response.name);
      sheet.Put("figure", figure.identifier);
      sheet.Put(figure, kEstimates);
    }
  }
  return std::move(sheet).Made("Limits");
}

Spreadsheet DefectsSheet(const ProfileResults& results) {
  RowSheet sheet;
  if (results.defects) {
    for (const ResultRow& response : results.defects->rows) {
      sheet.BeginRow();
      sheet.Put("response", response.name);
      sheet.Put(response, kDefects);
    }
  }
  return std::move(sheet).Made("Defect rates");
}

}  // namespace

Spreadsheet ProfileSheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const ResponseResults& response : results.responses) {
    sheet.BeginRow();
    sheet.Put("response", response.name);
    sheet.Put(response.statistics, result_columns::kMoments);
    if (!response.capability) continue;
    for (const ResultRow& row : response.capability->rows) {
      if (row.Has("value"_column)) sheet.Put(row.identifier, row.Number("value"_column));
    }
  }
  return std::move(sheet).Made("responses");
}

void WriteProfileWorkbook(const ProfileFindings& found, const std::filesystem::path& path) {
  ResultWorkbook workbook(found.simulated->Table());
  workbook.Add(PredictorSheet(found.results));
  workbook.Add(SummarySheet(found.results));
  workbook.Add(SensitivitySheet(found.results));
  workbook.Add(CapabilitiesSheet(found.results));
  workbook.Add(DefectsSheet(found.results));
  for (std::size_t i = 0; i < std::min(kMostCharts, found.graphs.size()); ++i) {
    const ResponseGraphs& response = found.graphs[i];
    if (!response.graphs.empty()) workbook.AddChart(response.name, response.graphs.front());
    for (const Graph& profile : response.profiles)
      workbook.AddChart(response.name + " by " + profile.xTitle, profile);
  }
  std::move(workbook).Write(path);
}

}  // namespace brenvolt
