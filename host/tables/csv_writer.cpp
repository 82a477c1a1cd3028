// Writing: rows are formatted in blocks on all cores, a wave of blocks at a time, while the wave before goes
// to the file.
#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include "host/base/parallel.h"
#include "host/tables/csv.h"
#include "host/tables/csv_cell.h"

namespace brenvolt {
namespace {

constexpr std::size_t kCellsPerBlock = std::size_t{1} << 15;
// Bounds what is in memory at a time: two waves of this many blocks.
constexpr std::size_t kBlocksPerWave = 16;
constexpr std::size_t kLikelyCellBytes = 20;

using Sink = std::function<void(std::string_view)>;

void AppendHeader(std::string& out, const Spreadsheet& sheet, const CsvFormat& format) {
  const std::size_t begin = out.size();
  if (sheet.HasCaseNames()) {
    AppendCsvText(out, sheet.Header(), format.separator);
    if (sheet.VariableCount() > 0) out += format.separator;
  }
  for (std::size_t c = 0; c < sheet.VariableCount(); ++c) {
    if (c > 0) out += format.separator;
    AppendCsvText(out, sheet.VariableAt(c).Name(), format.separator);
  }
  // An empty line would not count as a header.
  if (out.size() == begin) out += "\"\"";
  out += '\n';
}

void AppendCell(std::string& out, const Variable& variable, std::size_t row, const CsvFormat& format) {
  if (variable.IsMissing(row)) return;
  const double value = variable.Values()[row];
  if (variable.Type() == VariableType::kText) {
    if (const auto label = variable.Label(value)) {
      AppendCsvText(out, *label, format.separator);
      return;
    }
  }
  AppendCsvNumber(out, value, format.decimalSeparator);
}

// `precedingCases` come before the sheet's own if its cases are numbered.
void AppendRows(std::string& out, const Spreadsheet& sheet, std::uint64_t precedingCases, std::size_t begin,
                std::size_t end, const CsvFormat& format) {
  const std::size_t columns = sheet.VariableCount();
  for (std::size_t row = begin; row < end; ++row) {
    if (sheet.HasCaseNames()) {
      if (sheet.AreCasesNumbered()) {
        out += std::to_string(precedingCases + row + 1);
      } else {
        AppendCsvText(out, sheet.CaseName(row), format.separator);
      }
      if (columns > 0) out += format.separator;
    }
    for (std::size_t c = 0; c < columns; ++c) {
      if (c > 0) out += format.separator;
      AppendCell(out, sheet.VariableAt(c), row, format);
    }
    out += '\n';
  }
}

void WriteHeader(const Spreadsheet& sheet, const CsvFormat& format, const Sink& sink) {
  std::string header;
  AppendHeader(header, sheet, format);
  sink(header);
}

void WriteRows(const Spreadsheet& sheet, std::uint64_t precedingCases, const CsvFormat& format,
               const Sink& sink) {
  const std::size_t columns = std::max<std::size_t>(1, sheet.VariableCount());
  const std::size_t rowsPerBlock = std::max<std::size_t>(1, kCellsPerBlock / columns);
  const std::size_t blocks = (sheet.CaseCount() + rowsPerBlock - 1) / rowsPerBlock;
  std::array<std::string, kBlocksPerWave> ready;
  std::array<std::string, kBlocksPerWave> coming;
  std::size_t readyCount = 0;
  const auto writeReady = [&] {
    for (std::size_t i = 0; i < readyCount; ++i) sink(ready[i]);
  };
  for (std::size_t first = 0; first < blocks; first += kBlocksPerWave) {
    const std::size_t count = std::min(kBlocksPerWave, blocks - first);
    ParallelFor(count + 1, [&](std::size_t task) {
      if (task == 0) {
        writeReady();
        return;
      }
      std::string& out = coming[task - 1];
      out.clear();
      out.reserve(rowsPerBlock * columns * kLikelyCellBytes);
      const std::size_t begin = (first + task - 1) * rowsPerBlock;
      AppendRows(out, sheet, precedingCases, begin, std::min(begin + rowsPerBlock, sheet.CaseCount()),
                 format);
    });
    std::swap(ready, coming);
    readyCount = count;
  }
  writeReady();
}

}  // namespace

CsvPieces::CsvPieces(const std::filesystem::path& path, const CsvFormat& format)
    : format_(format), file_((CheckCsvFormat(format), path)) {}

void CsvPieces::Append(const Spreadsheet& piece) {
  const Sink sink = [this](std::string_view bytes) { file_.Write(bytes); };
  if (!std::exchange(hasHeader_, true)) WriteHeader(piece, format_, sink);
  WriteRows(piece, cases_, format_, sink);
  cases_ += piece.CaseCount();
}

void WriteCsv(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format) {
  CsvPieces pieces(path, format);
  pieces.Append(sheet);
  pieces.Commit();
}

std::string CsvText(const Spreadsheet& sheet, const CsvFormat& format) {
  CheckCsvFormat(format);
  std::string text;
  const Sink sink = [&text](std::string_view bytes) { text += bytes; };
  WriteHeader(sheet, format, sink);
  WriteRows(sheet, 0, format, sink);
  return text;
}

}  // namespace brenvolt
