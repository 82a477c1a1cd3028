// Reports for programs as text.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace brenvolt {

// Bytes that are not text are replaced.
inline std::string JsonText(const nlohmann::ordered_json& report) {
  constexpr int kIndent = 2;
  return report.dump(kIndent, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace brenvolt
