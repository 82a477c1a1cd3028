#include "host/jobs/json/design_json.h"

namespace brenvolt {

nlohmann::ordered_json DesignJson(const DesignText& design) {
  using Json = nlohmann::ordered_json;
  Json variables = Json::array();
  for (const NotedVariable& variable : design.variables)
    variables.push_back({{"name", variable.name}, {"distribution", NotationOf(variable.distribution)}});
  Json correlations = Json::array();
  for (const NotedCorrelation& correlation : design.correlations) {
    correlations.push_back(
        {{"first", correlation.first}, {"second", correlation.second}, {"value", correlation.value}});
  }
  return {{"variables", variables}, {"correlations", correlations}};
}

}  // namespace brenvolt
