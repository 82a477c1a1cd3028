#include "host/jobs/json/preview_json.h"

#include <nlohmann/json.hpp>

namespace brenvolt {

nlohmann::ordered_json PreviewJson(const FilePreview& preview) {
  using Json = nlohmann::ordered_json;
  Json json{{"readAs", preview.readAs}, {"doubts", Json::array()}, {"sheets", Json::array()}};
  for (const ReadingNote& doubt : preview.doubts)
    json["doubts"].push_back({{"option", doubt.field}, {"message", doubt.message}});
  for (const PreviewedSheet& sheet : preview.sheets) {
    Json variables = Json::array();
    for (const PreviewedVariable& variable : sheet.variables) {
      variables.push_back({{"name", variable.name},
                           {"type", variable.type},
                           {"unit", variable.unit},
                           {"missing", variable.missing},
                           {"first", variable.first}});
    }
    json["sheets"].push_back(
        {{"name", sheet.name}, {"kind", sheet.kind}, {"cases", sheet.cases}, {"variables", variables}});
  }
  return json;
}

}  // namespace brenvolt
