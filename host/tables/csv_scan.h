// Splits separated values (RFC 4180) into rows and fields, and long texts into blocks of whole rows that can
// be read independently of each other. Knows nothing of what a field means.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// A field as it is in the text; valid as long as the text.
struct CsvField {
  // Of an unquoted field all but the blanks at its ends, of a quoted one all between its quotes.
  std::string_view text;
  bool quoted = false;
  bool hasDoubledQuotes = false;  // each means one quote
};

enum class CsvFieldEnd : std::uint8_t { kSeparator, kRow };

// Thrown when the text breaks the rules.
struct CsvFault {
  std::string what;
  std::size_t offset;  // into the text
  std::size_t column;  // number of the field in its row, from 1
};

// Hands out the fields of text[begin, end), which must begin with a row and end with one.
//
// Rows end with LF or CRLF. Blanks (spaces and tabs) around a quoted field are skipped. Text must be
// UTF-8 without zero bytes.
class CsvScanner {
 public:
  // `comment` begins lines that SkipComment passes over; 0: there are none.
  CsvScanner(std::string_view text, std::size_t begin, std::size_t end, char separator, char comment = 0);

  bool AtEnd() const { return next_ == end_; }
  // Where the next field begins.
  std::size_t Offset() const { return static_cast<std::size_t>(next_ - text_.data()); }
  // At the start of a row: passes over a line that holds at most blanks. False, and nothing moved, for
  // others.
  bool SkipBlankLine();
  // The same for a comment.
  bool SkipComment();
  // Reads one field and tells what ended it. Throws CsvFault.
  CsvFieldEnd Next(CsvField& field);

 private:
  const char* FindSpecial(const char* from) const {
    while (from != end_ && !isSpecial_[static_cast<std::uint8_t>(*from)]) ++from;
    return from;
  }
  bool IsBlank(char c) const { return (c == ' ' || c == '\t') && c != separator_; }
  const char* SkipBlanks(const char* from) const {
    while (from != end_ && IsBlank(*from)) ++from;
    return from;
  }
  // The position after the row end at `from`, or null when none stands there.
  const char* PastRowEnd(const char* from) const;
  CsvFieldEnd NextQuoted(CsvField& field, const char* quote);
  CsvFieldEnd FinishField(const char* end, bool atSeparator);
  [[noreturn]] void Fail(const char* what, const char* where) const;

  std::string_view text_;
  const char* next_;
  const char* end_;
  const char* firstNonText_;  // or end_
  std::size_t column_ = 1;
  char separator_;
  char comment_;
  std::array<bool, 256> isSpecial_{};  // what ends an unquoted field or is a fault in it
};

// Cuts text[begin, size) into blocks of whole rows, about `blockBytes` long each if rows are shorter than
// that. Returns the offsets at which blocks begin, in ascending order, and the size of the text. In text that
// breaks the rules, blocks up to the first fault are right: a scanner over the block with that fault meets
// it.
std::vector<std::size_t> SplitIntoRowBlocks(std::string_view text, std::size_t begin, std::size_t blockBytes);

// ---- Inline: what runs for every field of a file of numbers. ----

inline CsvFieldEnd CsvScanner::FinishField(const char* end, bool atSeparator) {
  if (end > firstNonText_) [[unlikely]] {
    Fail("the text is not UTF-8", firstNonText_);
  }
  if (atSeparator) {
    next_ = end + 1;
    ++column_;
    return CsvFieldEnd::kSeparator;
  }
  next_ = end == end_ ? end : end + 1;
  column_ = 1;
  return CsvFieldEnd::kRow;
}

inline CsvFieldEnd CsvScanner::Next(CsvField& field) {
  const char* begin = next_;
  const char* const special = FindSpecial(begin);
  if (special != end_ && *special == '"') return NextQuoted(field, special);

  const bool atSeparator = special != end_ && *special == separator_;
  const char* end = special;
  if (!atSeparator && end != begin && end[-1] == '\r') --end;
  while (begin != end && IsBlank(*begin)) ++begin;
  while (end != begin && IsBlank(end[-1])) --end;
  field = {.text = {begin, end}};
  return FinishField(special, atSeparator);
}

}  // namespace brenvolt
