// Rows of result tables in JSON, each number at the place that its column names.
#pragma once

#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "host/analysis/result_table.h"

namespace brenvolt {

// Null for a value that does not exist; a count is a whole number.
nlohmann::ordered_json NumberJson(double value, Quantity quantity = Quantity::kMeasure);

// A text, or null for an empty one.
nlohmann::ordered_json TextOrNull(std::string_view text);

// Where the number of a column stands in the object of a row.
nlohmann::ordered_json& PlaceOf(const ResultColumn& column, nlohmann::ordered_json& json);

// Those of the columns that the row has.
void AddNumbers(const ResultRow& row, std::span<const ResultColumn> columns, nlohmann::ordered_json& json);

// An object for each row, its name under `nameKey`.
nlohmann::ordered_json RowsJson(std::span<const ResultRow> rows, const char* nameKey,
                                std::span<const ResultColumn> columns);

// The numbers of one row of a table whose columns are these, in their order.
template <std::size_t N>
nlohmann::ordered_json NumbersJson(const ResultColumn (&columns)[N], const double (&numbers)[N]) {
  nlohmann::ordered_json json;
  for (std::size_t i = 0; i < N; ++i) PlaceOf(columns[i], json) = NumberJson(numbers[i], columns[i].quantity);
  return json;
}

}  // namespace brenvolt
