#include "host/tables/csv_cell.h"

#include <algorithm>
#include <array>
#include <limits>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/utf8.h"

namespace brenvolt {
namespace {

// The minus of typesetters, U+2212.
constexpr std::string_view kMinusSign = "\u2212";

// Equal but for the case of letters; `word` is in lower case.
bool SpellsWord(std::string_view text, std::string_view word) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(text, word, {}, lower);
}

std::string_view WithoutSign(std::string_view text) {
  return text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
}

bool IsInfinityWord(std::string_view text) {
  const std::string_view word = WithoutSign(text);
  return SpellsWord(word, "inf") || SpellsWord(word, "infinity");
}

bool NeedsQuotes(std::string_view text, char separator) {
  const auto isSpecial = [separator](char c) { return c == separator || c == '"' || c == '\n' || c == '\r'; };
  return std::ranges::any_of(text, isSpecial) || Trim(text).size() != text.size() || IsMissingWord(text) ||
         text.starts_with(kByteOrderMark);
}

bool IsSafeMark(char c) {
  constexpr std::string_view kUnsafe = "\"\r\n+-";
  const auto byte = static_cast<unsigned char>(c);
  const bool letterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return byte > 0 && byte < 0x80 && !letterOrDigit && kUnsafe.find(c) == std::string_view::npos;
}

bool IsGroupMark(std::string_view text, char separator, std::size_t& length) {
  length = 1;
  if (text.front() == separator) return true;
  if (separator != ' ') return false;
  for (const std::string_view blank : {"\u00A0", "\u202F", "\u2009"}) {
    length = blank.size();
    if (text.starts_with(blank)) return true;
  }
  return false;
}

}  // namespace

bool IsMissingWord(std::string_view text) {
  return text == "NA" || SpellsWord(WithoutSign(text), "nan");
}

bool ReadGroupedNumber(std::string_view text, char decimalSeparator, char thousandsSeparator, double& value) {
  constexpr std::size_t kGroup = 3;
  constexpr std::size_t kLongest = 64;  // more digits than any double
  const std::string_view whole = WithoutSign(text);
  if (whole.size() > kLongest || whole.starts_with('0')) return false;
  std::string plain(text.substr(0, text.size() - whole.size()));
  std::size_t digits = 0;  // of the group
  bool grouped = false;
  std::size_t i = 0;
  for (std::size_t length = 1; i < whole.size() && whole[i] != decimalSeparator; i += length) {
    length = 1;
    if (whole[i] >= '0' && whole[i] <= '9') {
      if (++digits > kGroup) return false;
      plain += whole[i];
      continue;
    }
    if (!IsGroupMark(whole.substr(i), thousandsSeparator, length)) return false;
    if (digits == 0 || (grouped && digits != kGroup)) return false;
    grouped = true;
    digits = 0;
  }
  if (!grouped || digits != kGroup) return false;
  plain += whole.substr(i);
  return ReadNumber(plain, {decimalSeparator}, value) == NumberReading::kNumber;
}

void CheckCsvFormat(const CsvFormat& format) {
  if (format.separator == format.decimalSeparator) throw Error("the separator is also the decimal separator");
  if (!IsSafeMark(format.separator)) throw Error("the separator could be part of a cell");
  if (format.decimalSeparator != '.' && format.decimalSeparator != ',') {
    throw Error("the decimal separator is neither point nor comma");
  }
}

CsvCellKind ReadCsvCell(const CsvField& field, const CsvLayout& layout, double& value) {
  const std::string_view text = field.quoted ? Trim(field.text) : field.text;
  if (!layout.missing.empty() && std::ranges::find(layout.missing, text) != layout.missing.end())
    return CsvCellKind::kMissing;
  switch (ReadNumber(text, {layout.decimalSeparator}, value)) {
    case NumberReading::kNumber:
      return CsvCellKind::kNumber;
    case NumberReading::kTooLarge:
      return CsvCellKind::kTooLarge;
    case NumberReading::kNoNumber:
      break;
  }
  if (text.starts_with(kMinusSign) && text.size() > kMinusSign.size() && text[kMinusSign.size()] != '-' &&
      text[kMinusSign.size()] != '+') {
    const std::string plain = '-' + std::string(text.substr(kMinusSign.size()));
    if (ReadNumber(plain, {layout.decimalSeparator}, value) == NumberReading::kNumber)
      return CsvCellKind::kNumber;
  }
  if (field.text.empty() || (!field.quoted && IsMissingWord(text))) return CsvCellKind::kMissing;
  if (layout.thousandsSeparator != 0 &&
      ReadGroupedNumber(text, layout.decimalSeparator, layout.thousandsSeparator, value)) {
    return CsvCellKind::kNumber;
  }
  if (!IsInfinityWord(text)) return CsvCellKind::kText;
  value = std::numeric_limits<double>::infinity() * (text.front() == '-' ? -1 : 1);
  return CsvCellKind::kNumber;
}

std::string_view CsvFieldText(const CsvField& field, std::string& buffer) {
  if (!field.hasDoubledQuotes) return field.text;
  buffer.clear();
  for (std::size_t i = 0; i < field.text.size(); ++i) {
    buffer += field.text[i];
    if (field.text[i] == '"') ++i;
  }
  return buffer;
}

void AppendCsvText(std::string& out, std::string_view text, char separator) {
  if (!NeedsQuotes(text, separator)) {
    out += text;
    return;
  }
  out += '"';
  for (const char c : text) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

void AppendCsvNumber(std::string& out, double x, char decimalSeparator) {
  std::array<char, kShortestNumberCapacity> buffer;
  const std::size_t length = WriteShortestNumber(x, buffer);
  if (decimalSeparator != '.') std::replace(buffer.begin(), buffer.begin() + length, '.', decimalSeparator);
  out.append(buffer.data(), length);
}

}  // namespace brenvolt
