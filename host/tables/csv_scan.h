// Rows and fields of a text of separated values.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace brenvolt {

// A fault of the text at a place: the byte offset of the row and the field's number in it, from 1.
struct CsvFault {
  std::string what;
  std::size_t rowOffset;
  std::size_t field;
};

struct CsvField {
  std::string_view raw;  // without the enclosing quotes
  bool quoted = false;
  bool escaped = false;  // holds doubled quotes

  // The field's text with doubled quotes made single.
  std::string Text() const;
};

// Walks the fields of a text from row to row.
class CsvScanner {
 public:
  // `base` is the offset of `text` in the whole file, for faults.
  CsvScanner(std::string_view text, std::size_t base, char separator)
      : text_(text), base_(base), separator_(separator) {}

  bool AtEnd() const { return position_ == text_.size(); }
  std::size_t Position() const { return position_; }
  // True, and the line is passed over, when the next line is empty.
  bool SkipBlankLine();
  // Begins a row at the present position.
  void BeginRow();
  // Reads the next field of the row; afterwards AtRowEnd tells whether it was the last. Throws CsvFault for an
  // unclosed quote, text beside a quoted field, or a quote inside an unquoted one.
  CsvField NextField();
  bool AtRowEnd() const { return rowEnded_; }
  std::size_t RowOffset() const { return base_ + rowStart_; }
  std::size_t FieldNumber() const { return fieldNumber_; }
  // The rest of the text from the next field on, for parsing a number in place; and taking that field.
  std::string_view Rest() const { return text_.substr(position_); }
  // Takes a field of `length` unquoted bytes if a separator or row end follows it; false, and nothing is taken, else.
  bool TakePlain(std::size_t length);
  [[noreturn]] void Fail(std::string what) const;

 private:
  // Moves past a separator or row end at the position; false when there is neither.
  bool TakeDelimiter();
  CsvField QuotedField();

  std::string_view text_;
  std::size_t base_;
  char separator_;
  std::size_t position_ = 0;
  std::size_t rowStart_ = 0;
  std::size_t fieldNumber_ = 0;
  bool rowEnded_ = false;
};

// The offset just behind the row end that follows `from`, or the text's size; `insideQuotes` tells whether `from`
// lies within a quoted field.
std::size_t NextRowStart(std::string_view text, std::size_t from, bool insideQuotes);

}  // namespace brenvolt
