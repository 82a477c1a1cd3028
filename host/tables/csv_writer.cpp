// Writing separated values: blocks of rows are formatted in parallel and written in order.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <functional>

#include "host/base/number_text.h"
#include "host/base/output_file.h"
#include "host/base/parallel.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

constexpr std::size_t kBlockRows = 4096;
// Blocks formatted before they are written: bounds the memory, whatever the size of the sheet.
constexpr std::size_t kBlocksAtOnce = 16;

class Writer {
 public:
  Writer(const Spreadsheet& sheet, const CsvFormat& format) : sheet_(sheet), format_(format) {}

  void Write(const std::function<void(std::string_view)>& sink) const {
    sink(HeaderLine());
    const std::size_t rowsAtOnce = kBlockRows * kBlocksAtOnce;
    for (std::size_t start = 0; start < sheet_.CaseCount(); start += rowsAtOnce) {
      const std::size_t rows = std::min(rowsAtOnce, sheet_.CaseCount() - start);
      std::array<std::string, kBlocksAtOnce> texts;
      ParallelBlocks(rows, kBlockRows, [&](std::size_t begin, std::size_t end) {
        texts[begin / kBlockRows] = Rows(start + begin, start + end);
      });
      for (const std::string& text : texts) sink(text);
    }
  }

 private:
  std::string HeaderLine() const {
    std::string line;
    if (sheet_.HasCaseNames()) AppendText(line, sheet_.Header());
    for (std::size_t c = 0; c < sheet_.VariableCount(); ++c) {
      if (c > 0 || sheet_.HasCaseNames()) line += format_.separator;
      AppendText(line, sheet_.VariableAt(c).Name());
    }
    return line + '\n';
  }

  std::string Rows(std::size_t begin, std::size_t end) const {
    std::string text;
    for (std::size_t row = begin; row < end; ++row) {
      if (sheet_.HasCaseNames()) AppendText(text, sheet_.CaseName(row));
      for (std::size_t c = 0; c < sheet_.VariableCount(); ++c) {
        if (c > 0 || sheet_.HasCaseNames()) text += format_.separator;
        AppendCell(text, sheet_.VariableAt(c), row);
      }
      text += '\n';
    }
    return text;
  }

  void AppendCell(std::string& text, const Variable& variable, std::size_t row) const {
    if (variable.IsMissing(row)) return;
    const double value = variable.Values()[row];
    if (variable.Type() == VariableType::kText) {
      if (const auto label = variable.Label(value)) return AppendText(text, *label);
    }
    std::array<char, 32> buffer;
    char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    if (format_.decimalSeparator != '.') std::replace(buffer.data(), end, '.', format_.decimalSeparator);
    text.append(buffer.data(), end);
  }

  // Quotes a text that would otherwise be read as something else.
  void AppendText(std::string& out, std::string_view text) const {
    const auto special = [&](char c) { return c == format_.separator || c == '"' || c == '\n' || c == '\r'; };
    const bool quoted = std::ranges::any_of(text, special) || Trim(text) != text || text == "NA" ||
                        text.starts_with('\xEF') || text.empty();
    if (!quoted) {
      out += text;
      return;
    }
    out += '"';
    for (const char c : text) {
      out += c;
      if (c == '"') out += c;
    }
    out += '"';
  }

  const Spreadsheet& sheet_;
  CsvFormat format_;
};

}  // namespace

void WriteCsv(const Spreadsheet& sheet, const std::filesystem::path& path, const CsvFormat& format) {
  OutputFile file(path);
  Writer(sheet, format).Write([&](std::string_view text) { file.Write(text); });
  file.Commit();
}

std::string CsvText(const Spreadsheet& sheet, const CsvFormat& format) {
  std::string text;
  Writer(sheet, format).Write([&](std::string_view piece) { text += piece; });
  return text;
}

}  // namespace brenvolt
