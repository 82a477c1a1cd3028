#include "host/jobs/json/profile_json.h"

#include <cmath>
#include <string>
#include <utility>
#include <variant>

#include "host/base/number_text.h"
#include "host/jobs/json/design_json.h"
#include "host/jobs/json/result_json.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

Json PercentilesJson(std::span<const ResultRow> rows) {
  Json list = RowsJson(rows, "percent", kEstimates);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const auto percent = NumberIn(rows[i].identifier, "percentile"_column);
    list[i]["percent"] = NumberJson(ParseNumber(percent.value_or("")).value_or(std::nan("")));
  }
  return list;
}

// The values of some rows; a value that may have confidence limits is an object of the three, whether or not these
// runs give any.
void AddEstimates(const ResultTable& table, std::span<const ResultColumn> statistics, Json& json) {
  for (const ResultColumn& statistic : statistics) {
    const ResultRow& row = table.Row(statistic);
    Json& place = PlaceOf(statistic, json);
    if (!statistic.hasLimits || std::isnan(row.Number("value"_column))) {
      place = NumberJson(row.Number("value"_column));
    } else {
      AddNumbers(row, kEstimates, place);
    }
  }
}

Json CapabilityJson(const ResultTable& table) {
  Json json;
  AddEstimates(table, kCapability, json);
  json["percentiles"] = nullptr;
  const ResultRow& first = table.Row("low_point"_column);
  if (!std::isnan(first.Number("value"_column))) {
    json["percentiles"] = {{"distribution", first.Text("description"_column)}};
    AddEstimates(table, kCapabilityByPercentiles, json);
  }
  AddEstimates(table, kObserved, json);
  return json;
}

Json UnpredictedJson(const std::vector<UnpredictedRuns>& unpredicted) {
  Json list = Json::array();
  for (const UnpredictedRuns& one : unpredicted) {
    Json entry;
    TakeFields(one, [&entry](const char* name, const auto& value) {
      entry[name] = value;
      if (entry[name] == "") entry[name] = nullptr;
    });
    list.push_back(std::move(entry));
  }
  return list;
}

Json ProfilesJson(const std::vector<PredictedProfile>& profiles) {
  Json list = Json::array();
  for (const PredictedProfile& profile : profiles) {
    const Json values = profile.names.empty() ? Json(profile.values) : Json(profile.names);
    list.push_back({{"predictor", profile.predictor}, {"values", values}, {"means", profile.means}});
  }
  return list;
}

Json ResponseJson(const ResponseResults& response) {
  Json statistics;
  AddNumbers(response.statistics, kMoments, statistics);
  return {{"name", response.name},
          {"statistics", statistics},
          {"unpredicted", UnpredictedJson(response.unpredicted)},
          {"percentiles", PercentilesJson(response.percentiles)},
          {"frequencies", RowsJson(response.frequencies, "class", kFrequencies)},
          {"correlations", RowsJson(response.correlations, "predictor", kCorrelations)},
          {"sensitivity", RowsJson(response.sensitivity, "predictor", kSensitivity)},
          {"rSquared", NumberJson(response.allPredictors.Number("linear_contribution"_column))},
          {"profiles", ProfilesJson(response.profiles)},
          {"capability", response.capability ? CapabilityJson(*response.capability) : Json(nullptr)}};
}

Json FixedJson(const std::vector<PredictorUse>& predictors) {
  Json list = Json::array();
  for (const PredictorUse& one : predictors) {
    if (!one.fixed) continue;
    Json entry = {{"predictor", one.name}, {"value", nullptr}};
    std::visit([&entry](const auto& value) { entry["value"] = value; }, *one.fixed);
    list.push_back(std::move(entry));
  }
  return list;
}

// What the runs are repeated from, beside the predictors' distributions.
Json DrawnJson(const ProfileJob& job, const ProfileFindings& run) {
  Json drawn = DesignJson({{}, run.results.correlations});
  drawn.erase("variables");
  drawn["method"] = run.results.method;
  drawn["fixed"] = FixedJson(run.results.predictors);
  drawn["noise"] = Json::array();
  for (const ProfileJob::Noise& one : job.noise)
    drawn["noise"].push_back({{"response", one.response}, {"standardDeviation", one.standardDeviation}});
  drawn["noiseCorrelations"] = job.noiseCorrelations;
  drawn["models"] = Json::array();
  for (const auto& model : job.models) drawn["models"].push_back(model.string());
  drawn["formulas"] = job.formulas;
  return drawn;
}

}  // namespace

Json ProfileJson(const ProfileJob& job, const ProfileFindings& run) {
  const ProfileResults& results = run.results;
  Json report = {{"runs", results.runs},
                 {"predictors", Json::array()},
                 {"responses", Json::array()},
                 {"defects", Json::array()}};
  for (const PredictorUse& one : results.predictors)
    report["predictors"].push_back({{"name", one.name}, {"distribution", one.distribution}});
  for (const ResponseResults& response : results.responses) {
    report["responses"].push_back(ResponseJson(response));
  }
  if (results.defects) report["defects"] = RowsJson(results.defects->rows, "response", kDefects);
  for (const std::string& note : results.notes) report["notes"].push_back(note);
  report["seed"] = run.seed;
  report["drawn"] = DrawnJson(job, run);
  if (!job.output.empty()) report["output"] = {{"file", job.output.string()}};
  if (!run.outputSheet.empty()) report["output"]["sheet"] = run.outputSheet;
  if (!job.graphs.empty()) report["graphs"] = job.graphs.string();
  return report;
}

}  // namespace brenvolt
