// Reading separated values: the text is cut into blocks at row ends, the blocks are parsed in parallel into their
// places of the columns; columns that turned out not to be numeric are read again as text.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <set>
#include <unordered_map>

#include "host/base/error.h"
#include "host/base/mapped_file.h"
#include "host/base/number_text.h"
#include "host/base/parallel.h"
#include "host/base/utf8.h"
#include "host/tables/csv.h"
#include "host/tables/csv_scan.h"

namespace brenvolt {
namespace {

constexpr std::size_t kBlockSize = std::size_t{1} << 20U;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kMissingText = "NA";

struct Block {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t firstRow = 0;
  std::size_t rows = 0;
  std::vector<std::uint8_t> isText;  // per column: a cell that is no number was met
  std::optional<CsvFault> fault;
};

// What a cell is to a numeric column.
struct Cell {
  enum class Kind : std::uint8_t { kNumber, kMissing, kText, kOutOfRange } kind;
  double value;
};

bool EqualsIgnoringCase(std::string_view text, std::string_view lower) {
  return std::ranges::equal(text, lower, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

// Words for what is no number: nan is missing, infinities are numbers.
Cell WordCell(std::string_view text) {
  const bool negative = text.starts_with('-');
  const std::string_view word = negative || text.starts_with('+') ? text.substr(1) : text;
  if (EqualsIgnoringCase(word, "inf") || EqualsIgnoringCase(word, "infinity")) {
    const double infinity = std::numeric_limits<double>::infinity();
    return {Cell::Kind::kNumber, negative ? -infinity : infinity};
  }
  return {EqualsIgnoringCase(word, "nan") ? Cell::Kind::kMissing : Cell::Kind::kText, 0};
}

bool LooksLikeNumber(std::string_view text, char decimalSeparator) {
  bool digit = false;
  for (const char c : text) {
    digit = digit || (c >= '0' && c <= '9');
    const bool allowed = (c >= '0' && c <= '9') || c == '+' || c == '-' || c == 'e' || c == 'E' || c == decimalSeparator;
    if (!allowed) return false;
  }
  const char first = text.front();
  return digit && first != 'e' && first != 'E';
}

Cell ClassifyCell(const CsvField& field, char decimalSeparator) {
  const std::string_view trimmed = Trim(field.raw);
  if (trimmed.empty() || (!field.quoted && trimmed == kMissingText)) return {Cell::Kind::kMissing, 0};
  if (field.escaped) return {Cell::Kind::kText, 0};
  if (const auto number = ParseNumber(trimmed, {decimalSeparator})) return {Cell::Kind::kNumber, *number};
  if (!LooksLikeNumber(trimmed, decimalSeparator)) return WordCell(trimmed);
  // A well-formed number is refused only when no double reaches that far; anything else is text.
  std::string pointed(trimmed.starts_with('+') ? trimmed.substr(1) : trimmed);
  std::ranges::replace(pointed, decimalSeparator, '.');
  double ignored = 0;
  const auto [end, error] = std::from_chars(pointed.data(), pointed.data() + pointed.size(), ignored);
  const bool whole = end == pointed.data() + pointed.size();
  return {whole && error == std::errc::result_out_of_range ? Cell::Kind::kOutOfRange : Cell::Kind::kText, 0};
}

class Reader {
 public:
  Reader(std::string_view text, const std::string& name, const std::string& file, const CsvFormat& format)
      : text_(text), name_(name), file_(file), format_(format) {}

  Spreadsheet Read() {
    try {
      return ReadRows();
    } catch (const CsvFault& fault) {
      const auto line = std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(fault.rowOffset), '\n') + 1;
      throw Error(fault.what, file_ + ", line " + std::to_string(line) + ", column " + std::to_string(fault.field));
    }
  }

 private:
  Spreadsheet ReadRows() {
    while (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
    if (Trim(text_).empty()) throw Error("is empty", file_);
    ReadHeader();
    CutIntoBlocks();
    ParallelFor(blocks_.size(), [&](std::size_t i) { CountRows(blocks_[i]); });
    PlaceRows();
    ParallelFor(blocks_.size(), [&](std::size_t i) { ParseBlock(blocks_[i]); });
    ThrowFirstFault();
    return BuildSheet();
  }

  void ReadHeader() {
    CsvScanner scanner(text_, 0, format_.separator);
    while (scanner.SkipBlankLine()) continue;
    if (scanner.AtEnd()) throw Error("is empty", file_);
    scanner.BeginRow();
    do {
      const CsvField field = scanner.NextField();
      const std::string name = field.quoted ? field.Text() : std::string(Trim(field.raw));
      if (!IsText(name)) scanner.Fail("the file is not UTF-8 text");
      names_.push_back(name.empty() ? "Var" + std::to_string(names_.size() + 1) : name);
    } while (!scanner.AtRowEnd());
    bodyStart_ = scanner.Position();
    MakeNamesUnique();
  }

  void MakeNamesUnique() {
    std::set<std::string> given(names_.begin(), names_.end());
    std::set<std::string> taken;
    for (std::string& name : names_) {
      if (taken.insert(name).second) continue;
      int number = 2;
      while (given.contains(name + "_" + std::to_string(number))) ++number;
      name += "_" + std::to_string(number);
      given.insert(name);
      taken.insert(name);
    }
  }

  // Every block begins at the start of a row: whether a line end lies within quotes follows from the number of quotes
  // before it.
  void CutIntoBlocks() {
    bool insideQuotes = false;
    std::size_t counted = bodyStart_;
    for (std::size_t begin = bodyStart_; begin < text_.size();) {
      const std::size_t aim = std::min(begin + kBlockSize, text_.size());
      const auto from = text_.begin() + static_cast<std::ptrdiff_t>(counted);
      const auto to = text_.begin() + static_cast<std::ptrdiff_t>(aim);
      insideQuotes = insideQuotes != (std::count(from, to, '"') % 2 == 1);
      const std::size_t end = NextRowStart(text_, aim, insideQuotes);
      insideQuotes = false;
      counted = end;
      Block block;
      block.begin = begin;
      block.end = end;
      block.isText.resize(names_.size());
      blocks_.push_back(std::move(block));
      begin = end;
    }
  }

  CsvScanner ScannerOf(const Block& block) const {
    return {text_.substr(block.begin, block.end - block.begin), block.begin, format_.separator};
  }

  // In a file of one column an empty line is a missing value, else nothing.
  bool SkipsBlankLines() const { return names_.size() > 1; }

  void CountRows(Block& block) const {
    const std::string_view text = text_.substr(block.begin, block.end - block.begin);
    for (std::size_t start = 0; start < text.size();) {
      const std::size_t next = NextRowStart(text, start, false);
      const std::string_view line = text.substr(start, next - start);
      const bool blank = line == "\n" || line == "\r\n" || line == "\r";
      if (!blank || !SkipsBlankLines()) ++block.rows;
      start = next;
    }
  }

  void PlaceRows() {
    for (Block& block : blocks_) {
      block.firstRow = rows_;
      rows_ += block.rows;
    }
    if (rows_ == 0) throw Error("has no lines of data below the header", file_);
    columns_.assign(names_.size(), {});
    ParallelFor(columns_.size(), [&](std::size_t i) { columns_[i].resize(rows_); });
  }

  void ParseBlock(Block& block) {
    CsvScanner scanner = ScannerOf(block);
    std::size_t row = block.firstRow;
    try {
      while (!scanner.AtEnd()) {
        if (SkipsBlankLines() && scanner.SkipBlankLine()) continue;
        ParseRow(scanner, row++, block);
      }
    } catch (CsvFault& fault) {
      block.fault = std::move(fault);
    }
  }

  void ParseRow(CsvScanner& scanner, std::size_t row, Block& block) {
    scanner.BeginRow();
    for (std::size_t column = 0; column < names_.size(); ++column) {
      columns_[column][row] = ParseCell(scanner, block.isText[column]);
      const bool last = column + 1 == names_.size();
      if (scanner.AtRowEnd() == last) continue;
      scanner.Fail(last ? "the line has more fields than the header (" + std::to_string(names_.size()) + ")"
                        : "the line has " + std::to_string(column + 1) + " fields, the header " +
                              std::to_string(names_.size()));
    }
  }

  double ParseCell(CsvScanner& scanner, std::uint8_t& isText) const {
    const std::string_view rest = scanner.Rest();
    const bool plain = !rest.empty() && ((rest.front() >= '0' && rest.front() <= '9') || rest.front() == '-');
    if (plain && format_.decimalSeparator == '.') {
      double value = 0;
      const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
      const bool parsed = error == std::errc() && std::isfinite(value);
      if (parsed && scanner.TakePlain(static_cast<std::size_t>(end - rest.data()))) return value;
    }
    const Cell cell = ClassifyCell(scanner.NextField(), format_.decimalSeparator);
    if (cell.kind == Cell::Kind::kOutOfRange) scanner.Fail("the number is beyond the range of real numbers");
    if (cell.kind == Cell::Kind::kText) isText = 1;
    return cell.kind == Cell::Kind::kNumber ? cell.value : GetDefaultMDValue();
  }

  void ThrowFirstFault() const {
    for (const Block& block : blocks_) {
      if (block.fault) throw CsvFault(*block.fault);
    }
  }

  Spreadsheet BuildSheet() {
    std::vector<std::uint8_t> isText(names_.size());
    for (const Block& block : blocks_) {
      for (std::size_t c = 0; c < names_.size(); ++c) isText[c] |= block.isText[c];
    }
    std::vector<Variable> variables;
    for (std::size_t c = 0; c < names_.size(); ++c) {
      Variable& variable = variables.emplace_back(names_[c], 0);
      if (isText[c] != 0) variable.SetType(VariableType::kText);
    }
    if (std::ranges::find(isText, 1) != isText.end()) ReadTexts(isText, variables);
    Spreadsheet sheet(name_);
    for (std::size_t c = 0; c < names_.size(); ++c) {
      variables[c].AssignValues(std::move(columns_[c]));
      sheet.AddVariable(std::move(variables[c]));
    }
    return sheet;
  }

  // One more pass over the rows, for the columns of text.
  void ReadTexts(const std::vector<std::uint8_t>& isText, std::vector<Variable>& variables) {
    std::vector<std::unordered_map<std::string, double>> codes(names_.size());
    for (const Block& block : blocks_) {
      CsvScanner scanner = ScannerOf(block);
      for (std::size_t row = block.firstRow; !scanner.AtEnd();) {
        if (SkipsBlankLines() && scanner.SkipBlankLine()) continue;
        scanner.BeginRow();
        for (std::size_t c = 0; c < names_.size(); ++c) {
          const CsvField field = scanner.NextField();
          if (isText[c] == 0) continue;
          const bool missing = ClassifyCell(field, format_.decimalSeparator).kind == Cell::Kind::kMissing;
          columns_[c][row] = missing ? GetDefaultMDValue() : CodeOf(field, codes[c], variables[c], scanner);
        }
        ++row;
      }
    }
  }

  static double CodeOf(const CsvField& field, std::unordered_map<std::string, double>& codes, Variable& variable,
                       const CsvScanner& scanner) {
    std::string text = field.Text();
    const auto found = codes.find(text);
    if (found != codes.end()) return found->second;
    if (!IsText(text)) scanner.Fail("the file is not UTF-8 text");
    const auto code = static_cast<double>(codes.size() + 1);
    variable.SetLabel(code, text);
    codes.emplace(std::move(text), code);
    return code;
  }

  std::string_view text_;
  const std::string& name_;
  const std::string& file_;
  CsvFormat format_;
  std::vector<std::string> names_;
  std::size_t bodyStart_ = 0;
  std::vector<Block> blocks_;
  std::size_t rows_ = 0;
  std::vector<std::vector<double>> columns_;
};

}  // namespace

Spreadsheet ReadCsv(const std::filesystem::path& path, const CsvFormat& format) {
  const MappedFile file(path);
  return Reader(file.Text(), path.stem().string(), path.string(), format).Read();
}

Spreadsheet ReadCsvText(std::string_view text, const std::string& name, const CsvFormat& format) {
  return Reader(text, name, name, format).Read();
}

}  // namespace brenvolt
