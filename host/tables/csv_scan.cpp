#include "host/tables/csv_scan.h"

#include <algorithm>
#include <cstring>

namespace brenvolt {

std::string CsvField::Text() const {
  if (!escaped) return std::string(raw);
  std::string text;
  text.reserve(raw.size());
  for (std::size_t i = 0; i < raw.size(); ++i) {
    text += raw[i];
    if (raw[i] == '"') ++i;
  }
  return text;
}

bool CsvScanner::SkipBlankLine() {
  const std::string_view rest = Rest();
  const std::size_t length = rest.starts_with("\r\n") ? 2 : rest.starts_with('\n') ? 1 : rest == "\r" ? 1 : 0;
  position_ += length;
  return length > 0;
}

void CsvScanner::BeginRow() {
  rowStart_ = position_;
  fieldNumber_ = 0;
  rowEnded_ = false;
}

bool CsvScanner::TakeDelimiter() {
  const std::string_view rest = Rest();
  rowEnded_ = rest.empty() || rest == "\r" || rest.front() == '\n' || rest.starts_with("\r\n");
  if (rest.empty()) return true;
  if (!rowEnded_ && rest.front() != separator_) return false;
  position_ += rest.starts_with("\r\n") ? 2 : 1;
  return true;
}

bool CsvScanner::TakePlain(std::size_t length) {
  const std::size_t former = position_;
  position_ += length;
  if (!TakeDelimiter()) {
    position_ = former;
    return false;
  }
  ++fieldNumber_;
  return true;
}

CsvField CsvScanner::NextField() {
  ++fieldNumber_;
  const std::string_view rest = Rest();
  if (rest.starts_with('"')) return QuotedField();
  std::size_t end = 0;
  while (end < rest.size() && rest[end] != separator_ && rest[end] != '\n') {
    if (rest[end] == '"') Fail("a quote stands inside an unquoted field");
    ++end;
  }
  const bool rowEnd = end == rest.size() || rest[end] == '\n';
  CsvField field;
  field.raw = rest.substr(0, rowEnd && end > 0 && rest[end - 1] == '\r' ? end - 1 : end);
  position_ += field.raw.size();
  TakeDelimiter();
  return field;
}

CsvField CsvScanner::QuotedField() {
  CsvField field;
  field.quoted = true;
  const std::size_t start = position_ + 1;
  std::size_t end = start;
  for (;;) {
    end = text_.find('"', end);
    if (end == std::string_view::npos) Fail("a quoted field is not closed");
    if (end + 1 >= text_.size() || text_[end + 1] != '"') break;
    field.escaped = true;
    end += 2;
  }
  field.raw = text_.substr(start, end - start);
  position_ = end + 1;
  if (!TakeDelimiter()) Fail("text stands behind a quoted field");
  return field;
}

void CsvScanner::Fail(std::string what) const { throw CsvFault{std::move(what), RowOffset(), fieldNumber_}; }

std::size_t NextRowStart(std::string_view text, std::size_t from, bool insideQuotes) {
  for (; from < text.size(); ++from) {
    if (text[from] == '"') insideQuotes = !insideQuotes;
    if (text[from] == '\n' && !insideQuotes) return from + 1;
  }
  return text.size();
}

}  // namespace brenvolt
