// What reading a data file gives: its sheets, and what was found by looking at it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/tables/spreadsheet.h"
#include "host/tables/text/text_options.h"

namespace brenvolt {

struct DataRead {
  std::vector<std::unique_ptr<Spreadsheet>> sheets;  // one at least
  std::string readAs;  // what was found that is not as usual: "fields separated by tabs"; may be empty
  std::vector<ReadingNote> doubts;  // what could be otherwise
};

// An option that the file shows to be wrong.
class OptionError : public Error {
 public:
  OptionError(ReadingNote note, const std::string& where)
      : Error(note.message, where), field_(std::move(note.field)) {}
  const std::string& Field() const noexcept { return field_; }

 private:
  std::string field_;
};

}  // namespace brenvolt
