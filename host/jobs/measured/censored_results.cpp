#include "host/jobs/measured/censored_results.h"

#include <cmath>
#include <nlohmann/json.hpp>

#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

Json Finite(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json FitJson(const CensoredFit& fit, std::size_t rank) {
  Json json = {{"rank", rank},
               {"code", static_cast<int>(fit.values.code)},
               {"distribution", fit.name},
               {"reason", fit.IsValid() ? Json(nullptr) : Json(fit.reason)}};
  for (const char* key : {"description", "parameters", "offset", "standardErrors", "covariance",
                          "logLikelihood", "aic", "bic", "iterations", "gradient", "distance"})
    json[key] = nullptr;
  if (!fit.IsValid()) return json;
  json["description"] = fit.notation;
  json["parameters"] = fit.values.values;
  if (EntryOf(fit.values.code).facts.HasOffset()) json["offset"] = fit.values.offset;
  json["standardErrors"] = fit.standardErrors;
  const std::size_t n = fit.values.values.size();
  Json covariance = Json::array();
  for (std::size_t i = 0; i < n; ++i)
    covariance.push_back(
        std::vector<double>(fit.values.covariance.begin() + static_cast<std::ptrdiff_t>(i * n),
                            fit.values.covariance.begin() + static_cast<std::ptrdiff_t>((i + 1) * n)));
  json["covariance"] = std::move(covariance);
  json["logLikelihood"] = fit.logLikelihood;
  json["aic"] = fit.aic;
  json["bic"] = fit.bic;
  json["iterations"] = fit.iterations;
  json["gradient"] = fit.gradient;
  json["distance"] = fit.distance;
  return json;
}

Json CurveJson(const CensoredVariable& variable) {
  Json steps = Json::array();
  for (const SurvivalStep& step : variable.curve) {
    steps.push_back({{"from", Finite(step.from)},
                     {"to", Finite(step.to)},
                     {"before", step.before},
                     {"after", step.after}});
  }
  Json positions = Json::array();
  for (const PlottingPosition& one : PlottingPositions(variable.curve))
    positions.push_back({{"value", one.value}, {"probability", one.probability}});
  return {{"estimator", variable.isKaplanMeier ? "kaplan-meier" : "turnbull"},
          {"steps", std::move(steps)},
          {"plottingPositions", std::move(positions)}};
}

}  // namespace

Json CensoredJson(const CensoredFindings& found) {
  Json report = {{"variables", Json::array()}};
  for (const CensoredVariable& variable : found.variables) {
    Json json = {{"name", variable.name},
                 {"n", variable.Count()},
                 {"missing", variable.missing},
                 {"censoring",
                  {{"exact", variable.exact},
                   {"right", variable.right},
                   {"left", variable.left},
                   {"interval", variable.interval},
                   {"reading", variable.reading}}},
                 {"rankedBy", variable.rankedBy},
                 {"fits", Json::array()}};
    for (const CensoredFit& fit : variable.fits)
      json["fits"].push_back(FitJson(fit, json["fits"].size() + 1));
    json["curve"] = CurveJson(variable);
    json["quantiles"] = QuantilesJson(variable.quantiles);
    report["variables"].push_back(std::move(json));
  }
  return report;
}

}  // namespace brenvolt
