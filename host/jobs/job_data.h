// Where the data of a job are.
#pragma once

#include <filesystem>
#include <string>

#include "host/tables/csv.h"

namespace brenvolt {

struct JobData {
  std::filesystem::path file;
  std::string sheet;  // empty: the first data sheet
  bool decimalComma = false;

  CsvFormat Format() const { return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{}; }
};

}  // namespace brenvolt
