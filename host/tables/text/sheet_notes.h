// How what is told of one sheet of a workbook begins, by which it is known from what is told of others.
#pragma once

#include <string>

namespace brenvolt {

inline std::string AboutSheet(const std::string& name) {
  return "sheet " + name + ": ";
}

}  // namespace brenvolt
