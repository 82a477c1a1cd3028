#include "host/jobs/json/score_json.h"

#include <string>
#include <utility>

#include "host/application/no_prediction_text.h"
#include "host/jobs/json/result_json.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

// An object for each reason.
Json UnpredictedJson(const UnpredictedCases& unpredicted) {
  Json list = Json::array();
  for (const UnpredictedReason& reason : unpredicted.Reasons()) {
    Json entry = {{"field", reason.field},
                  {"reason", NoPredictionName(reason.reason)},
                  {"value", reason.value},
                  {"lowest", NumberJson(reason.lowest)},
                  {"highest", NumberJson(reason.highest)},
                  {"count", reason.cases}};
    if (reason.field.empty()) entry["field"] = nullptr;
    if (reason.value.empty()) entry["value"] = nullptr;
    list.push_back(std::move(entry));
  }
  return list;
}

// Columns of the predictions from a first to before a last: texts, numbers, and null if there is none.
Json ColumnsJson(const Spreadsheet& predictions, std::size_t first, std::size_t last) {
  Json columns = Json::object();
  for (std::size_t k = first; k < last; ++k) {
    const Variable& variable = predictions.VariableAt(k);
    auto values = Json::array();
    for (std::size_t i = 0; i < variable.Size(); ++i) {
      const double value = variable.Values()[i];
      const auto label = variable.IsMissing(i) ? std::nullopt : variable.Label(value);
      values.push_back(label ? Json(std::string(*label)) : NumberJson(value));
    }
    columns[variable.Name()] = std::move(values);
  }
  return columns;
}

}  // namespace

Json ScoreJson(const ScoreJob& job, const ScoreRun& run) {
  Json report = {{"cases", run.predictions.CaseCount()}, {"unpredicted", UnpredictedJson(run.unpredicted)}};
  const bool isNumbered = run.predictions.AreCasesNumbered();
  auto& names = report[isNumbered ? "caseNumbers" : "caseNames"] = Json::array();
  for (std::size_t i = 0; i < run.predictions.CaseCount(); ++i)
    names.push_back(isNumbered ? Json(i + 1) : Json(run.predictions.CaseName(i)));
  auto unavailable = Json::array();
  for (const UnavailableOutput& output : run.unavailable)
    unavailable.push_back({{"name", output.name}, {"reason", output.reason}});
  report["unavailableOutputs"] = std::move(unavailable);
  if (job.output.empty()) {
    report["kept"] = ColumnsJson(run.predictions, 0, run.kept);
    report["predictions"] = ColumnsJson(run.predictions, run.kept, run.predictions.VariableCount());
  } else {
    report["output"] = {{"file", job.output.string()}};
  }
  return report;
}

}  // namespace brenvolt
