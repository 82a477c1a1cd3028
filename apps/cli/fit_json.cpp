#include "apps/cli/fit_json.h"

#include <vector>

#include "apps/cli/result_json.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_columns;

template <class T>
Json ListOrNull(const std::vector<T>& values) {
  return values.empty() ? Json(nullptr) : Json(values);
}

Json FitJson(const FittedDistribution& fit, std::size_t rank) {
  Json json = {{"rank", rank},
               {"code", fit.code},
               {"distribution", fit.name},
               {"description", fit.description},
               {"parameters", ListOrNull(fit.parameters)},
               {"reason", fit.parameters.empty() ? Json(fit.reason) : Json(nullptr)},
               {"offset", NumberJson(fit.offset)},
               {"standardErrors", ListOrNull(fit.standardErrors)},
               {"covariance", ListOrNull(fit.covariance)}};
  AddNumbers(fit.statistics, kLikelihood, json);
  AddNumbers(fit.statistics, kTests, json);
  json["bootstrap"] = nullptr;
  if (!fit.IsBootstrapped()) return json;
  PlaceOf("bootstrap_samples"_column, json) = 0;  // the first of the bootstrap's numbers
  AddNumbers(fit.statistics, kBootstrap, json);
  return json;
}

}  // namespace

Json VariableJson(const FittedVariable& variable, const std::string& rankedBy) {
  Json json = {{"name", variable.name}, {"kind", variable.isContinuous ? "continuous" : "discrete"}};
  AddNumbers(variable.moments, kMoments, json);
  json["rankedBy"] = rankedBy;
  json["fits"] = Json::array();
  for (const FittedDistribution& fit : variable.fits) {
    json["fits"].push_back(FitJson(fit, json["fits"].size() + 1));
  }
  return json;
}

}  // namespace brenvolt::cli
