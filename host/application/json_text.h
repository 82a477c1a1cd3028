// Reports for programs as text.
#pragma once

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "host/base/almost_equal.h"

namespace brenvolt {

// Null for what JSON has no number for.
inline nlohmann::ordered_json NumberOrNull(double value) {
  if (!std::isfinite(value)) return nullptr;
  return value;
}

// The same of what may be not set (almost_equal.h), which no measured value is.
inline nlohmann::ordered_json SetNumberOrNull(double value) {
  return IsNotSet(value) ? nlohmann::ordered_json(nullptr) : NumberOrNull(value);
}

// Bytes that are not text are replaced.
inline std::string JsonText(const nlohmann::ordered_json& report) {
  constexpr int kIndent = 2;
  return report.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace brenvolt
