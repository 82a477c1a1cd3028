// Arbitrary bytes as a file of separated values. Whatever is accepted must come out the same when it is
// written and read again, and no outcome may depend on where blocks end.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/csv.h"
#include "host/tables/csv_reader.h"

namespace brenvolt {
namespace {

constexpr std::size_t kShortBlock = 7;

struct Outcome {
  std::optional<Spreadsheet> sheet;
  std::string error;
};

Outcome Read(std::string_view text, const CsvFormat& format, std::size_t blockBytes) {
  try {
    return {.sheet = ReadCsvBlocks(text, "sheet", "file", format, blockBytes), .error = {}};
  } catch (const Error& error) {
    return {.sheet = {}, .error = std::string(error.what()) + error.Where()};
  }
}

void Require(bool holds) {
  if (!holds) std::abort();
}

void RequireEqual(const Variable& a, const Variable& b) {
  Require(a.Name() == b.Name() && a.Type() == b.Type() && a.Labels() == b.Labels() && a.Size() == b.Size());
  for (std::size_t row = 0; row < a.Size(); ++row) {
    const double x = a.Values()[row];
    const double y = b.Values()[row];
    Require(std::isnan(x) ? std::isnan(y)
                          : std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y));
  }
}

void RequireEqual(const Spreadsheet& a, const Spreadsheet& b) {
  Require(a.VariableCount() == b.VariableCount() && a.CaseCount() == b.CaseCount() && a.CaseCount() > 0);
  for (std::size_t c = 0; c < a.VariableCount(); ++c) RequireEqual(a.VariableAt(c), b.VariableAt(c));
}

void Check(std::string_view text, const CsvFormat& format) {
  const Outcome whole = Read(text, format, text.size() + 1);
  const Outcome pieces = Read(text, format, kShortBlock);
  Require(whole.error == pieces.error && whole.sheet.has_value() == pieces.sheet.has_value());
  if (!whole.sheet) return;
  RequireEqual(*whole.sheet, *pieces.sheet);
  RequireEqual(*whole.sheet, ReadCsvText(CsvText(*whole.sheet, format), "again", format));
}

}  // namespace
}  // namespace brenvolt

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  brenvolt::Check(text, {});
  brenvolt::Check(text, brenvolt::CsvFormat::DecimalComma());
  return 0;
}
