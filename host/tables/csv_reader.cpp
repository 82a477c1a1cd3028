// Reading: the text is cut into blocks of whole rows, each block is read as numbers on its own core, and
// columns that turn out to hold text are read again for their texts.
#include "host/tables/csv_reader.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/base/error.h"
#include "host/base/files/mapped_file.h"
#include "host/base/number_text.h"
#include "host/base/parallel.h"
#include "host/base/utf8.h"
#include "host/base/work_watch.h"
#include "host/tables/csv_cell.h"
#include "host/tables/csv_scan.h"

namespace brenvolt {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

// Codes of texts: 1, 2, … in the order in which they were met. Refers to the file's text if it can.
class TextCodes {
 public:
  double CodeOf(const CsvField& field) {
    const std::string_view text = CsvFieldText(field, buffer_);
    const auto found = codes_.find(text);
    if (found != codes_.end()) return found->second;
    return Add(field.hasDoubledQuotes ? std::string_view(made_.emplace_back(text)) : text);
  }
  // `text` must outlive this object.
  double CodeOf(std::string_view text) {
    const auto found = codes_.find(text);
    return found != codes_.end() ? found->second : Add(text);
  }
  // Texts by ascending code.
  const std::vector<std::string_view>& Texts() const { return texts_; }

 private:
  double Add(std::string_view text) {
    texts_.push_back(text);
    return codes_.emplace(text, static_cast<double>(texts_.size())).first->second;
  }

  std::unordered_map<std::string_view, double> codes_;
  std::vector<std::string_view> texts_;
  std::deque<std::string> made_;  // texts that are not in the file as they are meant
  std::string buffer_;
};

// What one core read from one block.
struct Block {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t firstRow = 0;
  std::size_t rows = 0;
  std::vector<double> cells;       // row by row
  std::vector<std::size_t> texts;  // by column: their number
  std::map<std::size_t, std::size_t>
      firstTooLarge;  // by column: the offset of the first number beyond the range
  std::optional<CsvFault> fault;
};

class Reader {
 public:
  Reader(std::string_view text, const CsvLayout& layout, const std::string& fileName)
      : text_(text), layout_(layout), fileName_(fileName) {}

  // After Read: the columns of texts most of whose values are numbers.
  std::vector<StrayTexts>& Mixed() { return mixed_; }

  Spreadsheet Read(const std::string& sheetName, std::size_t blockBytes) {
    const std::size_t body = ReadHeader();
    SplitBody(body, blockBytes);
    // Read, gathered, and read again for texts.
    WatchedSteps steps(3 * std::ssize(blocks_));
    ParallelFor(blocks_.size(), [&](std::size_t i) {
      ReadBlock(blocks_[i]);
      steps.Done();
    });
    NumberRows();
    FindTextColumns();
    ThrowOnTooLargeNumber();
    GatherColumns(steps);
    ReadTexts(steps);

    Spreadsheet sheet(sheetName);
    for (std::size_t c = 0; c < names_.size(); ++c) sheet.AddVariable(MakeVariable(c));
    return sheet;
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const { throw Error(what, fileName_); }
  [[noreturn]] void Fail(const CsvFault& fault) const;
  std::size_t LineOf(std::size_t offset) const;
  static CsvFault TooLong(const CsvField& field, std::size_t offset, std::size_t column);

  CsvScanner ScannerOf(std::size_t begin, std::size_t end) const {
    return {text_, begin, end, layout_.separator, layout_.comment};
  }
  std::vector<std::string> ReadLine(CsvScanner& scanner) const;
  std::size_t ReadHeader();
  void SplitBody(std::size_t body, std::size_t blockBytes);
  void ReadBlock(Block& block) const;
  void ReadRow(CsvScanner& scanner, Block& block) const;
  void ReadCell(const CsvField& field, std::size_t column, std::size_t offset, Block& block) const;
  void NumberRows();
  void FindTextColumns();
  std::size_t CountTexts(std::size_t column) const;
  std::size_t CountValues(std::size_t column) const;
  void JudgeTexts(std::size_t column, std::vector<StrayTexts>& stray);
  std::vector<StrayTexts::Cell> FirstTexts(std::size_t column) const;
  void ThrowOnTooLargeNumber() const;
  void GatherColumns(WatchedSteps& steps);
  void ReadTexts(WatchedSteps& steps);
  void ReadBlockTexts(const Block& block, std::vector<TextCodes>& codes);
  void UniteCodes(std::size_t place);
  Variable MakeVariable(std::size_t column);

  // Lines without text are missing values if there is but one column.
  bool SkipLine(CsvScanner& scanner) const {
    return scanner.SkipComment() || (names_.size() > 1 && scanner.SkipBlankLine());
  }
  bool IsTextColumn(std::size_t column) const { return placeOfText_[column] != kNoText; }

  static constexpr std::size_t kNoText = static_cast<std::size_t>(-1);

  std::string_view text_;
  const CsvLayout& layout_;
  const std::string& fileName_;
  std::vector<std::string> names_;
  std::vector<std::string> units_;  // by column, or none at all
  std::vector<Block> blocks_;
  std::size_t rows_ = 0;
  std::vector<std::vector<double>> columns_;
  std::vector<std::size_t> textColumns_;            // the numbers of the columns that hold text
  std::vector<std::size_t> placeOfText_;            // by column: its place in textColumns_, or kNoText
  std::vector<std::vector<TextCodes>> blockCodes_;  // by block and place
  std::vector<TextCodes> codes_;                    // by place
  std::vector<StrayTexts> mixed_;
};

std::size_t Reader::LineOf(std::size_t offset) const {
  return 1 + static_cast<std::size_t>(
                 std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

CsvFault Reader::TooLong(const CsvField& field, std::size_t offset, std::size_t column) {
  return {"the field holds a text of " + std::to_string(field.text.size()) + " bytes, more than " +
              std::to_string(kMostTextBytes),
          offset, column};
}

void Reader::Fail(const CsvFault& fault) const {
  throw Error(fault.what, fileName_ + ", line " + std::to_string(LineOf(fault.offset)) + ", column " +
                              std::to_string(fault.column));
}

// The texts of the next line that is neither blank nor a comment.
std::vector<std::string> Reader::ReadLine(CsvScanner& scanner) const {
  while (!scanner.AtEnd() && (scanner.SkipComment() || scanner.SkipBlankLine())) {
  }
  std::vector<std::string> cells;
  if (scanner.AtEnd()) return cells;
  CsvField field;
  std::string buffer;
  CsvFieldEnd end = CsvFieldEnd::kSeparator;
  try {
    while (end == CsvFieldEnd::kSeparator) {
      const std::size_t offset = scanner.Offset();
      end = scanner.Next(field);
      if (field.text.size() > kMostTextBytes) throw TooLong(field, offset, cells.size() + 1);
      cells.emplace_back(CsvFieldText(field, buffer));
    }
  } catch (const CsvFault& fault) {
    Fail(fault);
  }
  return cells;
}

// Returns where the data begin.
std::size_t Reader::ReadHeader() {
  const std::size_t mark = text_.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  const std::size_t begin = std::max(mark, layout_.begin);
  CsvScanner scanner = ScannerOf(begin, text_.size());
  std::vector<std::string> cells = ReadLine(scanner);
  if (cells.empty()) Fail("the file is empty");
  if (layout_.headerLacksFirst) cells.insert(cells.begin(), std::string());
  if (!layout_.hasHeader) {
    names_ = ColumnNames(std::vector<std::string>(cells.size()));
    return begin;
  }
  names_ = ColumnNames(std::move(cells));
  if (!layout_.hasUnits) return scanner.Offset();
  units_ = ReadLine(scanner);
  units_.resize(names_.size());
  return scanner.Offset();
}

void Reader::SplitBody(std::size_t body, std::size_t blockBytes) {
  const std::vector<std::size_t> starts = SplitIntoRowBlocks(text_, body, blockBytes);
  blocks_.resize(starts.size() - 1);
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    blocks_[i].begin = starts[i];
    blocks_[i].end = starts[i + 1];
  }
}

void Reader::ReadBlock(Block& block) const {
  const std::string_view text = text_.substr(block.begin, block.end - block.begin);
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  block.cells.reserve(names_.size() * std::min(lines, text.size() / names_.size() + 1));
  block.texts.assign(names_.size(), 0);
  CsvScanner scanner = ScannerOf(block.begin, block.end);
  try {
    while (!scanner.AtEnd()) {
      if (!SkipLine(scanner)) ReadRow(scanner, block);
    }
  } catch (const CsvFault& fault) {
    block.fault = fault;
  }
}

void Reader::ReadRow(CsvScanner& scanner, Block& block) const {
  const std::size_t begin = scanner.Offset();
  const std::size_t columns = names_.size();
  block.cells.resize(block.cells.size() + columns, kMissing);
  CsvField field;
  for (std::size_t column = 0; column < columns; ++column) {
    const std::size_t offset = scanner.Offset();
    const CsvFieldEnd end = scanner.Next(field);
    ReadCell(field, column, offset, block);
    const bool last = column + 1 == columns;
    if (end == CsvFieldEnd::kRow && !last) {
      throw CsvFault{"the line has " + std::to_string(column + 1) + (column == 0 ? " field" : " fields") +
                         ", the header has " + std::to_string(columns),
                     begin, column + 2};
    }
    if (end == CsvFieldEnd::kSeparator && last) {
      const bool semicolons = columns == 1 && names_[0].find(';') != std::string::npos;
      throw CsvFault{"the line has more fields than the header, which has " + std::to_string(columns) +
                         (semicolons ? "; fields separated by semicolons are another format" : ""),
                     begin, columns + 1};
    }
  }
  ++block.rows;
}

// The cell is the one of this column in the last row of block.cells, where it is missing so far.
void Reader::ReadCell(const CsvField& field, std::size_t column, std::size_t offset, Block& block) const {
  double& value = block.cells[block.cells.size() - names_.size() + column];
  switch (ReadCsvCell(field, layout_, value)) {
    case CsvCellKind::kMissing:
    case CsvCellKind::kNumber:
      return;
    case CsvCellKind::kTooLarge:
      block.firstTooLarge.try_emplace(column, offset);
      break;
    case CsvCellKind::kText:
      if (field.text.size() > kMostTextBytes) throw TooLong(field, offset, column + 1);
      ++block.texts[column];
      break;
  }
  value = 0;  // present; a code will take its place
}

// Throws the first fault; otherwise tells every block which rows it holds.
void Reader::NumberRows() {
  for (Block& block : blocks_) {
    if (block.fault) Fail(*block.fault);
    block.firstRow = rows_;
    rows_ += block.rows;
  }
  if (rows_ == 0) Fail("the file has no data lines");
}

void Reader::FindTextColumns() {
  placeOfText_.assign(names_.size(), kNoText);
  std::vector<StrayTexts> stray;
  for (std::size_t c = 0; c < names_.size(); ++c) {
    const bool given = std::ranges::find(layout_.textColumns, names_[c]) != layout_.textColumns.end();
    if (!given && CountTexts(c) == 0) continue;
    if (!given) JudgeTexts(c, stray);
    placeOfText_[c] = textColumns_.size();
    textColumns_.push_back(c);
  }
  if (!stray.empty()) throw StrayTextsError(std::move(stray), fileName_);
}

std::size_t Reader::CountTexts(std::size_t column) const {
  std::size_t texts = 0;
  for (const Block& block : blocks_) texts += block.texts[column];
  return texts;
}

std::size_t Reader::CountValues(std::size_t column) const {
  std::size_t values = 0;
  for (const Block& block : blocks_) {
    for (std::size_t i = column; i < block.cells.size(); i += names_.size())
      values += std::isnan(block.cells[i]) ? 0 : 1;
  }
  return values;
}

void Reader::JudgeTexts(std::size_t column, std::vector<StrayTexts>& stray) {
  constexpr std::size_t kStrayPercent = 1;
  constexpr std::size_t kMixedPercent = 50;
  if (!layout_.refusesStrayTexts) return;
  const std::size_t texts = CountTexts(column);
  const std::size_t values = CountValues(column);
  if (texts * 100 > values * kMixedPercent) return;
  StrayTexts found{names_[column], texts, values, FirstTexts(column)};
  (texts * 100 <= values * kStrayPercent ? stray : mixed_).push_back(std::move(found));
}

std::vector<StrayTexts::Cell> Reader::FirstTexts(std::size_t column) const {
  constexpr std::size_t kShown = 3;
  std::vector<StrayTexts::Cell> found;
  CsvField field;
  std::string buffer;
  double ignored = 0;
  for (const Block& block : blocks_) {
    if (block.texts[column] == 0) continue;
    CsvScanner scanner = ScannerOf(block.begin, block.end);
    while (!scanner.AtEnd()) {
      if (SkipLine(scanner)) continue;
      for (std::size_t c = 0; c < names_.size(); ++c) {
        const std::size_t offset = scanner.Offset();
        scanner.Next(field);
        if (c != column || ReadCsvCell(field, layout_, ignored) != CsvCellKind::kText) continue;
        found.push_back({std::string(CsvFieldText(field, buffer)), LineOf(offset)});
        if (found.size() == kShown) return found;
      }
    }
  }
  return found;
}

// In a column of texts, what looks like such a number is a text.
void Reader::ThrowOnTooLargeNumber() const {
  for (const Block& block : blocks_) {
    std::optional<CsvFault> first;
    for (const auto& [column, offset] : block.firstTooLarge) {
      if (IsTextColumn(column) || (first && first->offset < offset)) continue;
      first = CsvFault{"the field is a number too large for a double", offset, column + 1};
    }
    if (first) Fail(*first);
  }
}

void Reader::GatherColumns(WatchedSteps& steps) {
  const std::size_t width = names_.size();
  columns_.resize(width);
  ParallelFor(width, [&](std::size_t c) { columns_[c].resize(rows_); });
  ParallelFor(blocks_.size(), [&](std::size_t i) {
    Block& block = blocks_[i];
    for (std::size_t c = 0; c < width; ++c) {
      double* const column = columns_[c].data() + block.firstRow;
      for (std::size_t row = 0; row < block.rows; ++row) column[row] = block.cells[row * width + c];
    }
    std::vector<double>().swap(block.cells);
    steps.Done();
  });
}

void Reader::ReadTexts(WatchedSteps& steps) {
  if (textColumns_.empty()) return;
  blockCodes_.resize(blocks_.size());
  ParallelFor(blocks_.size(), [&](std::size_t i) {
    blockCodes_[i].resize(textColumns_.size());
    ReadBlockTexts(blocks_[i], blockCodes_[i]);
    steps.Done();
  });
  codes_.resize(textColumns_.size());
  ParallelFor(textColumns_.size(), [&](std::size_t place) { UniteCodes(place); });
}

// Puts codes of this block into the text columns.
void Reader::ReadBlockTexts(const Block& block, std::vector<TextCodes>& codes) {
  CsvScanner scanner = ScannerOf(block.begin, block.end);
  CsvField field;
  for (std::size_t row = block.firstRow; row < block.firstRow + block.rows; ++row) {
    while (SkipLine(scanner)) {
    }
    for (std::size_t c = 0; c < names_.size(); ++c) {
      scanner.Next(field);
      if (!IsTextColumn(c)) continue;
      double& value = columns_[c][row];
      if (!std::isnan(value)) value = codes[placeOfText_[c]].CodeOf(field);
    }
  }
}

// Makes the codes of all blocks the codes of the whole column.
void Reader::UniteCodes(std::size_t place) {
  std::vector<double>& column = columns_[textColumns_[place]];
  std::vector<double> codeInColumn;
  for (std::size_t i = 0; i < blocks_.size(); ++i) {
    codeInColumn.clear();
    for (const std::string_view text : blockCodes_[i][place].Texts())
      codeInColumn.push_back(codes_[place].CodeOf(text));
    double* const values = column.data() + blocks_[i].firstRow;
    for (std::size_t row = 0; row < blocks_[i].rows; ++row) {
      if (!std::isnan(values[row])) values[row] = codeInColumn[static_cast<std::size_t>(values[row]) - 1];
    }
  }
}

Variable Reader::MakeVariable(std::size_t column) {
  Variable variable(names_[column], 0);
  variable.AssignValues(std::move(columns_[column]));
  if (!units_.empty() && !units_[column].empty()) variable.SetProperty(kUnitProperty, units_[column]);
  if (!IsTextColumn(column)) return variable;
  variable.SetType(VariableType::kText);
  double code = 0;
  for (const std::string_view text : codes_[placeOfText_[column]].Texts())
    variable.SetLabel(++code, std::string(text));
  return variable;
}

}  // namespace

std::vector<std::string> ColumnNames(std::vector<std::string> cells, std::unordered_set<std::string> inUse) {
  const std::unordered_set<std::string> reserved(cells.begin(), cells.end());
  std::unordered_set<std::string> taken = std::move(inUse);
  std::unordered_map<std::string, std::size_t> lastNumber;
  for (std::size_t c = 0; c < cells.size(); ++c) {
    const bool unnamed = Trim(cells[c]).empty();
    if (unnamed) cells[c] = "Var" + std::to_string(c + 1);
    // An unnamed column yields to one that bears its name by right, also when that comes later.
    const bool yields = unnamed && reserved.contains(cells[c]);
    if (!yields && taken.insert(cells[c]).second) continue;
    std::size_t& number = lastNumber.try_emplace(cells[c], 1).first->second;
    std::string name;
    do {
      name = cells[c] + "_" + std::to_string(++number);
    } while (reserved.contains(name) || taken.contains(name));
    taken.insert(name);
    cells[c] = std::move(name);
  }
  return cells;
}

Spreadsheet ReadCsvBlocks(std::string_view text, const std::string& sheetName, const std::string& fileName,
                          const CsvLayout& layout, std::size_t blockBytes, std::vector<StrayTexts>* mixed) {
  Reader reader(text, layout, fileName);
  Spreadsheet sheet = reader.Read(sheetName, blockBytes);
  if (mixed != nullptr) *mixed = std::move(reader.Mixed());
  return sheet;
}

Spreadsheet ReadCsvBlocks(std::string_view text, const std::string& sheetName, const std::string& fileName,
                          const CsvFormat& format, std::size_t blockBytes) {
  CheckCsvFormat(format);
  return ReadCsvBlocks(text, sheetName, fileName, CsvLayout(format), blockBytes, nullptr);
}

Spreadsheet ReadCsvText(std::string_view text, const std::string& name, const CsvFormat& format) {
  return ReadCsvBlocks(text, name, name, format);
}

Spreadsheet ReadCsv(const std::filesystem::path& path, const CsvFormat& format) {
  const MappedFile file(path);
  return file.Use([&](std::string_view text) {
    return ReadCsvBlocks(text, path.stem().string(), path.string(), format);
  });
}

}  // namespace brenvolt
