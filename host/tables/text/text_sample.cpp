#include "host/tables/text/text_sample.h"

#include <algorithm>
#include <array>

#include "host/base/number_text.h"
#include "host/tables/csv_layout.h"
#include "host/tables/text/text_options.h"

namespace brenvolt {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

// Takes one row apart.
class RowSplitter {
 public:
  RowSplitter(std::string_view text, char delimiter) : text_(text), delimiter_(delimiter) {}

  // The cells of the row that begins at `offset`, which is then where the next one begins.
  std::vector<SampleCell> Split(std::size_t& offset) {
    std::vector<SampleCell> cells;
    next_ = offset;
    if (delimiter_ == kBlanks) SkipBlanks();
    for (;;) {
      cells.push_back(Cell());
      if (next_ < text_.size() && IsDelimiter(text_[next_])) {
        ++next_;
        if (delimiter_ != kBlanks) continue;
        SkipBlanks();
        if (!AtLineEnd()) continue;
      }
      break;
    }
    next_ = std::min(text_.find('\n', next_), text_.size());
    offset = std::min(next_ + 1, text_.size());
    return cells;
  }

 private:
  bool IsDelimiter(char c) const { return c == delimiter_ || (delimiter_ == kBlanks && c == '\t'); }
  bool AtLineEnd() const { return next_ >= text_.size() || text_[next_] == '\n'; }
  void SkipBlanks() {
    while (next_ < text_.size() && IsBlank(text_[next_])) ++next_;
  }

  SampleCell Cell() {
    const std::size_t begin = next_;
    while (next_ < text_.size() && (text_[next_] == ' ' || text_[next_] == '\t') &&
           !IsDelimiter(text_[next_]))
      ++next_;
    if (next_ < text_.size() && text_[next_] == '"') {
      SampleCell cell;
      if (Quoted(cell)) return cell;
    }
    next_ = begin;
    while (!AtLineEnd() && !IsDelimiter(text_[next_])) ++next_;
    std::string_view cell = text_.substr(begin, next_ - begin);
    while (!cell.empty() && IsBlank(cell.back())) cell.remove_suffix(1);
    return {std::string(Trim(cell)), false};
  }

  // A cell in quotes; false, and nothing moved, if there is none.
  bool Quoted(SampleCell& cell) {
    std::size_t i = next_ + 1;
    for (;; ++i) {
      if (i >= text_.size()) return false;
      if (text_[i] != '"') {
        cell.text += text_[i];
      } else if (i + 1 < text_.size() && text_[i + 1] == '"') {
        cell.text += text_[i++];
      } else {
        break;
      }
    }
    ++i;
    while (i < text_.size() && IsBlank(text_[i]) && !IsDelimiter(text_[i])) ++i;
    if (i < text_.size() && text_[i] != '\n' && !IsDelimiter(text_[i])) return false;
    next_ = i;
    cell.quoted = true;
    return true;
  }

  std::string_view text_;
  char delimiter_;
  std::size_t next_ = 0;
};

bool IsBlankLine(std::string_view line) {
  return std::ranges::all_of(line, IsBlank);
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower;
}

}  // namespace

std::vector<SampleRow> SampleRows(std::string_view text, char delimiter, char comment) {
  std::vector<SampleRow> rows;
  RowSplitter splitter(text, delimiter);
  std::size_t line = 1;
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t begin = offset;
    const std::size_t lineEnd = std::min(text.find('\n', offset), text.size());
    const std::string_view whole = text.substr(offset, lineEnd - offset);
    const std::string_view trimmed = TrimLeft(whole);
    if (IsBlankLine(whole) || (comment != 0 && trimmed.starts_with(comment))) {
      offset = std::min(lineEnd + 1, text.size());
    } else {
      SampleRow row{begin, line, splitter.Split(offset)};
      rows.push_back(std::move(row));
    }
    line += static_cast<std::size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(begin),
                                                text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
  }
  return rows;
}

const std::vector<NumberForm> kNumberForms{{'.', 0},   {',', 0},   {'.', ','},  {',', '.'},
                                           {'.', ' '}, {',', ' '}, {'.', '\''}, {',', '\''}};

bool IsNumberOf(std::string_view text, const NumberForm& form) {
  double ignored = 0;
  if (ReadNumber(text, {form.decimal}, ignored) != NumberReading::kNoNumber) return true;
  return form.thousands != 0 && ReadGroupedNumber(text, form.decimal, form.thousands, ignored);
}

bool IsNumberOfAnyForm(std::string_view text) {
  if (text.empty() || text.size() > 64) return false;
  return std::ranges::any_of(kNumberForms, [text](const NumberForm& form) { return IsNumberOf(text, form); });
}

bool IsNumberOfTwoMeanings(std::string_view text, char mark) {
  return text.find(mark) != std::string_view::npos && IsNumberOf(text, {mark, 0}) &&
         IsNumberOf(text, {mark == ',' ? '.' : ',', mark});
}

bool LooksMissing(std::string_view text) {
  static constexpr std::array<std::string_view, 19> kWords{
      "-",    "--",   "---",     ".",    "?",  "*",      "n/a",     "#n/a",    "na",  "nan",
      "null", "none", "missing", "n.a.", "nd", "#null!", "#div/0!", "#value!", "<na>"};
  return text.empty() || std::ranges::find(kWords, Lower(text)) != kWords.end();
}

bool LooksLikeDate(std::string_view text) {
  if (text.size() < 5 || text.size() > 35 || text[0] < '0' || text[0] > '9') return false;
  constexpr std::string_view kMarks = "-/.: T+Z,";
  std::size_t digits = 0;
  std::size_t marks = 0;
  for (const char c : text) {
    if (c >= '0' && c <= '9') {
      ++digits;
    } else if (kMarks.find(c) != std::string_view::npos) {
      marks += c == '-' || c == '/' || c == ':' || c == '.' ? 1 : 0;
    } else {
      return false;
    }
  }
  return marks >= 2 && digits >= 4 && text.find(',') == std::string_view::npos;
}

}  // namespace brenvolt
