// A fault of a formula's text.
#pragma once

#include <cstddef>
#include <string>

#include "host/base/error.h"

namespace brenvolt {

// what() says what is wrong, without the place; Where() also holds the place, after the name of the
// text ("formula, character 7").
class FormulaError : public Error {
 public:
  FormulaError(const std::string& what, const std::string& sourceName, std::size_t character)
      : Error(what, sourceName + ", character " + std::to_string(character)), character_(character) {}
  // From 1; one past the end if the text ends too soon. Bytes of one UTF-8 sequence are one character.
  std::size_t Character() const noexcept { return character_; }

 private:
  std::size_t character_;
};

}  // namespace brenvolt
