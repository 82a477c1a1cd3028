// A fault of a formula's text.
#pragma once

#include <cstddef>
#include <string>

#include "host/base/error.h"

namespace brenvolt {

// what() says what is wrong, without the place; Where() is the name of the text with the place ("formula,
// character 7"), which counts from 1: one past the end if the text ends too soon. Bytes of one UTF-8 sequence
// are one character.
class FormulaError : public Error {
 public:
  FormulaError(const std::string& what, const std::string& sourceName, std::size_t character)
      : Error(what, sourceName + ", character " + std::to_string(character)) {}
};

}  // namespace brenvolt
