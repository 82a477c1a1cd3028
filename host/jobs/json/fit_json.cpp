#include "host/jobs/json/fit_json.h"

#include <cmath>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/jobs/json/result_json.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

template <class T>
Json ListOrNull(const std::vector<T>& values) {
  return values.empty() ? Json(nullptr) : Json(values);
}

Json RowsOf(const std::vector<FitQuantiles::Row>& rows) {
  const auto end = [](double limit) { return IsNotSet(limit) ? std::nan("") : limit; };
  Json list = Json::array();
  for (const FitQuantiles::Row& row : rows) {
    list.push_back(NumbersJson(
        kReadOff, {row.probability, row.value, row.returnPeriod.value_or(std::nan("")),
                   end(row.byCovariance.lower), end(row.byCovariance.upper), end(row.byProfile.lower),
                   end(row.byProfile.upper), end(row.byBootstrap.lower), end(row.byBootstrap.upper)}));
  }
  return list;
}

Json FitJson(const FittedDistribution& fit, std::size_t rank) {
  Json json = {{"rank", rank},
               {"code", fit.code},
               {"identifier", fit.identifier},
               {"distribution", fit.name},
               {"description", fit.description},
               {"parameters", ListOrNull(fit.parameters)},
               {"reason", TextOrNull(fit.reason)},
               {"origin", TextOrNull(fit.origin)},
               {"note", TextOrNull(fit.note)},
               {"offset", NumberJson(fit.offset)},
               {"standardErrors", ListOrNull(fit.standardErrors)},
               {"covariance", ListOrNull(fit.covariance)}};
  AddNumbers(fit.statistics, kLikelihood, json);
  AddNumbers(fit.statistics, kReservations, json);
  AddNumbers(fit.statistics, kTests, json);
  json["bootstrap"] = nullptr;
  if (!fit.IsBootstrapped()) return json;
  PlaceOf("bootstrap_samples"_column, json) = 0;  // the first of the bootstrap's numbers
  AddNumbers(fit.statistics, kBootstrap, json);
  return json;
}

}  // namespace

Json CautionsJson(const std::vector<FitCaution>& cautions) {
  Json list = Json::array();
  for (const FitCaution& caution : cautions) {
    list.push_back({{"kind", caution.Name()},
                    {"distribution", caution.fit},
                    {"identifier", caution.identifier},
                    {"probability", NumberJson(caution.probability)},
                    {"instead", TextOrNull(caution.instead)},
                    {"insteadIdentifier", TextOrNull(caution.insteadIdentifier)},
                    {"insteadKsPValue", NumberJson(caution.insteadKsPValue)},
                    {"message", caution.Text()}});
  }
  return list;
}

Json QuantilesJson(const std::optional<FitQuantiles>& found) {
  if (!found) return nullptr;
  return {{"distribution", found->distribution},       {"confidence", found->confidence},
          {"bootstrapSamples", found->samples},        {"quantiles", RowsOf(found->quantiles)},
          {"exceedances", RowsOf(found->exceedances)}, {"note", TextOrNull(found->note)}};
}

Json VariableJson(const FittedVariable& variable, const std::string& rankedBy) {
  Json json = {{"name", variable.name}, {"kind", variable.isContinuous ? "continuous" : "discrete"}};
  AddNumbers(variable.moments, kMoments, json);
  json["reason"] = TextOrNull(variable.reason);
  json["rankedBy"] = rankedBy;
  json["fits"] = Json::array();
  for (const FittedDistribution& fit : variable.Shown()) {
    json["fits"].push_back(FitJson(fit, json["fits"].size() + 1));
  }
  const FittedDistribution* best = variable.Best();
  json["best"] = best != nullptr ? Json(best->name) : Json(nullptr);
  json["bestIdentifier"] = best != nullptr ? Json(best->identifier) : Json(nullptr);
  json["cautions"] = CautionsJson(variable.Cautions());
  json["notes"] = variable.Notes();
  return json;
}

}  // namespace brenvolt
