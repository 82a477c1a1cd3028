#include "host/jobs/json/result_json.h"

#include <cstdint>
#include <string>
#include <utility>

#include "host/application/json_text.h"

namespace brenvolt {

using Json = nlohmann::ordered_json;

Json NumberJson(double value, Quantity quantity) {
  Json number = NumberOrNull(value);
  if (quantity == Quantity::kCount && !number.is_null()) number = static_cast<std::int64_t>(value);
  return number;
}

Json TextOrNull(std::string_view text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

Json& PlaceOf(const ResultColumn& column, Json& json) {
  return json[Json::json_pointer(std::string(column.json))];
}

void AddNumbers(const ResultRow& row, std::span<const ResultColumn> columns, Json& json) {
  for (const ResultColumn& column : columns) {
    if (row.Has(column)) PlaceOf(column, json) = NumberJson(row.Number(column), column.quantity);
  }
}

Json RowsJson(std::span<const ResultRow> rows, const char* nameKey, std::span<const ResultColumn> columns) {
  Json list = Json::array();
  for (const ResultRow& row : rows) {
    Json json = {{nameKey, row.name}};
    AddNumbers(row, columns, json);
    list.push_back(std::move(json));
  }
  return list;
}

}  // namespace brenvolt
