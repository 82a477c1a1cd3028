// The report of the profiler for programs.
#include <array>
#include <cmath>
#include <span>
#include <sstream>
#include <string_view>

#include "apps/cli/profile_report.h"
#include "host/analysis/response_columns.h"
#include "host/analysis/result_columns.h"
#include "host/application/result_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
namespace rows = response_table;

// A name in JSON and the row or column that it is taken from.
struct Key {
  const char* key;
  std::string_view name;
};

Json Number(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json Count(double value) {
  return static_cast<std::int64_t>(value);
}

// Some columns of a row.
void AddColumns(const ResultTable& table, std::size_t row, std::span<const Key> keys, Json& json) {
  for (const Key& key : keys) json[key.key] = Number(table.Number(key.name, row));
}

constexpr std::array<Key, 6> kMoments{{{"mean", result_column::kMean},
                                       {"standardDeviation", result_column::kStandardDeviation},
                                       {"skewness", result_column::kSkewness},
                                       {"kurtosis", result_column::kKurtosis},
                                       {"minimum", result_column::kMinimum},
                                       {"maximum", result_column::kMaximum}}};
constexpr std::array<Key, 4> kPercentileKeys{{{"value", result_column::kValue},
                                              {"lower", rows::kLowerConfidence},
                                              {"upper", rows::kUpperConfidence},
                                              {"coverage", rows::kCoverage}}};
constexpr std::array<Key, 4> kCorrelationKeys{{{"pearson", rows::kPearson},
                                               {"pearsonPValue", rows::kPearsonPValue},
                                               {"spearman", rows::kSpearman},
                                               {"spearmanPValue", rows::kSpearmanPValue}}};
constexpr std::array<Key, 6> kFrequencyKeys{{{"from", rows::kClassFrom},
                                             {"to", rows::kClassTo},
                                             {"count", rows::kClassCount},
                                             {"cumulativeCount", rows::kClassCumulativeCount},
                                             {"percent", rows::kClassPercent},
                                             {"cumulativePercent", rows::kClassCumulativePercent}}};
constexpr std::array<Key, 5> kSensitivityKeys{{{"rankCorrelation", rows::kSpearman},
                                               {"contributionToVariance", rows::kRankContribution},
                                               {"standardizedCoefficient", rows::kStandardizedCoefficient},
                                               {"linearContribution", rows::kLinearContribution},
                                               {"firstOrder", rows::kFirstOrder}}};

Json StatisticsJson(const ResultTable& table) {
  Json json = {{"n", Count(table.Number(result_column::kCount, 0))},
               {"missing", Count(table.Number(result_column::kMissing, 0))}};
  AddColumns(table, 0, kMoments, json);
  return json;
}

// One object for each of the first `count` rows, the row's name under `nameKey`.
Json RowsJson(const ResultTable& table, std::size_t count, const char* nameKey, std::span<const Key> keys) {
  Json list = Json::array();
  for (std::size_t row = 0; row < count; ++row) {
    Json json = {{nameKey, table.RowName(row)}};
    AddColumns(table, row, keys, json);
    list.push_back(std::move(json));
  }
  return list;
}

Json PercentilesJson(const ResultTable& table) {
  Json list = RowsJson(table, table.RowCount(), "percent", kPercentileKeys);
  for (Json& one : list) {
    const std::string name = one["percent"];
    one["percent"] =
        Number(ParseNumber(name.substr(result_column::kPercentile.size())).value_or(std::nan("")));
  }
  return list;
}

constexpr std::array<Key, 3> kLimitKeys{
    {{"lower", rows::kLowerLimit}, {"target", rows::kTarget}, {"upper", rows::kUpperLimit}}};
constexpr std::array<Key, 5> kWithinKeys{{{"standardDeviation", rows::kWithinDeviation},
                                          {"cp", rows::kCp},
                                          {"cpl", rows::kCpl},
                                          {"cpu", rows::kCpu},
                                          {"cpk", rows::kCpk}}};
constexpr std::array<Key, 6> kOverallKeys{{{"standardDeviation", result_column::kStandardDeviation},
                                           {"pp", rows::kPp},
                                           {"ppl", rows::kPpl},
                                           {"ppu", rows::kPpu},
                                           {"ppk", rows::kPpk},
                                           {"cpm", rows::kCpm}}};
constexpr std::array<Key, 7> kPercentileIndexKeys{{{"p0.135", rows::kLowPoint},
                                                   {"p50", rows::kMedianPoint},
                                                   {"p99.865", rows::kHighPoint},
                                                   {"pp", rows::kPercentilePp},
                                                   {"ppl", rows::kPercentilePpl},
                                                   {"ppu", rows::kPercentilePpu},
                                                   {"ppk", rows::kPercentilePpk}}};
using PartsKeys = std::array<Key, 3>;
constexpr PartsKeys kObservedParts{
    {{"below", rows::kObservedBelow}, {"above", rows::kObservedAbove}, {"total", rows::kObservedTotal}}};
constexpr PartsKeys kWithinParts{
    {{"below", rows::kWithinBelow}, {"above", rows::kWithinAbove}, {"total", rows::kWithinTotal}}};
constexpr PartsKeys kOverallParts{
    {{"below", rows::kOverallBelow}, {"above", rows::kOverallAbove}, {"total", rows::kOverallTotal}}};
constexpr PartsKeys kPercentileParts{{{"below", rows::kPercentileBelow},
                                      {"above", rows::kPercentileAbove},
                                      {"total", rows::kPercentileTotal}}};

// The values of some rows; a value with confidence limits is an object of the three.
Json ValuesJson(const ResultTable& table, std::span<const Key> keys) {
  Json json = Json::object();
  for (const Key& key : keys) {
    const std::size_t row = table.RowNamed(key.name);
    const double value = table.Number(result_column::kValue, row);
    const double lower = table.Number(rows::kLowerConfidence, row);
    if (std::isnan(lower)) {
      json[key.key] = Number(value);
    } else {
      json[key.key] = {
          {"value", value}, {"lower", lower}, {"upper", Number(table.Number(rows::kUpperConfidence, row))}};
    }
  }
  return json;
}

Json FamilyJson(const ResultTable& table, std::span<const Key> keys, const PartsKeys& parts) {
  Json json = ValuesJson(table, keys);
  json["expectedPpm"] = ValuesJson(table, parts);
  return json;
}

Json CapabilityJson(const ResultTable& table) {
  Json json = {
      {"specification", ValuesJson(table, kLimitKeys)},
      {"normalPValue", Number(table.Number(result_column::kValue, table.RowNamed(rows::kNormalPValue)))},
      {"within", FamilyJson(table, kWithinKeys, kWithinParts)},
      {"overall", FamilyJson(table, kOverallKeys, kOverallParts)},
      {"percentiles", nullptr},
      {"observedPpm", ValuesJson(table, kObservedParts)}};
  const std::size_t first = table.RowNamed(rows::kLowPoint);
  if (std::isnan(table.Number(result_column::kValue, first))) return json;
  json["percentiles"] = {{"distribution", table.Text(result_column::kDescription, first)}};
  json["percentiles"].update(FamilyJson(table, kPercentileIndexKeys, kPercentileParts));
  return json;
}

Json ResponseJson(const ResponseResults& response) {
  const ResultTable correlations(response.correlations->Table());
  const ResultTable frequencies(response.frequencies->Table());
  const ResultTable sensitivity(response.sensitivity->Table());
  // The last row is that of all predictors together.
  const std::size_t predictors = sensitivity.RowCount() - 1;
  Json json = {
      {"name", response.name},
      {"statistics", StatisticsJson(ResultTable(response.statistics->Table()))},
      {"percentiles", PercentilesJson(ResultTable(response.percentiles->Table()))},
      {"frequencies", RowsJson(frequencies, frequencies.RowCount(), "class", kFrequencyKeys)},
      {"correlations", RowsJson(correlations, correlations.RowCount(), "predictor", kCorrelationKeys)},
      {"sensitivity", RowsJson(sensitivity, predictors, "predictor", kSensitivityKeys)},
      {"rSquared", Number(sensitivity.Number(rows::kLinearContribution, predictors))},
      {"capability", nullptr}};
  if (response.capability != nullptr) {
    json["capability"] = CapabilityJson(ResultTable(response.capability->Table()));
  }
  return json;
}

// The columns by their places: response, rate, parts per million, both limits.
Json DefectsJson(const Spreadsheet& defects) {
  constexpr std::array<const char*, 4> kKeys{"rate", "ppm", "lower", "upper"};
  Json list = Json::array();
  const Variable& names = defects.VariableAt(0);
  for (std::size_t row = 0; row < defects.CaseCount(); ++row) {
    Json json = {{"response", names.Label(names.Values()[row]).value_or("")}};
    for (std::size_t k = 0; k < kKeys.size(); ++k) {
      json[kKeys[k]] = Number(defects.VariableAt(k + 1).Values()[row]);
    }
    list.push_back(std::move(json));
  }
  return list;
}

}  // namespace

Json ProfileJson(const ProfileResults& results) {
  Json report = {{"runs", results.runs}, {"responses", Json::array()}, {"defects", Json::array()}};
  for (const ResponseResults& response : results.responses) {
    report["responses"].push_back(ResponseJson(response));
  }
  if (results.defects == nullptr) return report;
  report["defects"] = DefectsJson(results.defects->Table());
  std::istringstream title(results.defects->Table().Title());
  std::string note;
  std::getline(title, note);
  while (std::getline(title, note)) report["notes"].push_back(note);
  return report;
}

}  // namespace brenvolt::cli
