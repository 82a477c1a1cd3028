#include "host/tables/csv_scan.h"

#include <algorithm>
#include <cstring>

#include "host/base/parallel.h"
#include "host/base/utf8.h"

namespace brenvolt {

CsvScanner::CsvScanner(std::string_view text, std::size_t begin, std::size_t end, char separator,
                       char comment)
    : text_(text),
      next_(text.data() + begin),
      end_(text.data() + end),
      separator_(separator),
      comment_(comment) {
  const std::size_t nonText = FindNonText(text.substr(begin, end - begin));
  firstNonText_ = nonText == std::string_view::npos ? end_ : next_ + nonText;
  for (const char c : {separator, '"', '\n'}) isSpecial_[static_cast<std::uint8_t>(c)] = true;
}

const char* CsvScanner::PastRowEnd(const char* from) const {
  if (from != end_ && *from == '\r') ++from;
  if (from == end_) return from;
  return *from == '\n' ? from + 1 : nullptr;
}

bool CsvScanner::SkipBlankLine() {
  const char* const past = PastRowEnd(SkipBlanks(next_));
  if (past == nullptr) return false;
  next_ = past;
  return true;
}

bool CsvScanner::SkipComment() {
  if (comment_ == 0) return false;
  const char* const first = SkipBlanks(next_);
  if (first == end_ || *first != comment_) return false;
  const char* const lineEnd = std::find(first, end_, '\n');
  next_ = lineEnd == end_ ? end_ : lineEnd + 1;
  return true;
}

CsvFieldEnd CsvScanner::NextQuoted(CsvField& field, const char* quote) {
  if (SkipBlanks(next_) != quote) Fail("an unquoted field has a quote inside", quote);
  const char* const begin = quote + 1;
  field = {.text = {}, .quoted = true};
  const char* close = begin;
  for (;; close += 2) {
    close = static_cast<const char*>(std::memchr(close, '"', static_cast<std::size_t>(end_ - close)));
    if (close == nullptr) Fail("a quoted field is not closed", quote);
    if (close + 1 == end_ || close[1] != '"') break;
    field.hasDoubledQuotes = true;
  }
  field.text = {begin, close};

  const char* const after = SkipBlanks(close + 1);
  if (after != end_ && *after == separator_) return FinishField(after, true);
  const char* const past = PastRowEnd(after);
  if (past == nullptr) Fail("text follows a closing quote", after);
  return FinishField(past == end_ && past[-1] != '\n' ? past : past - 1, false);
}

void CsvScanner::Fail(const char* what, const char* where) const {
  throw CsvFault{what, static_cast<std::size_t>(where - text_.data()), column_};
}

namespace {

// The offset after the first row end in text[begin, end), or npos. `quoted` says whether begin lies in
// quotes.
std::size_t FindRowStart(std::string_view text, std::size_t begin, std::size_t end, bool quoted) {
  while (begin != end) {
    const std::size_t lineEnd = std::min(end, text.find('\n', begin));
    if (std::count(text.begin() + begin, text.begin() + lineEnd, '"') % 2 != 0) quoted = !quoted;
    if (lineEnd == end) break;
    if (!quoted) return lineEnd + 1;
    begin = lineEnd + 1;
  }
  return std::string_view::npos;
}

}  // namespace

std::vector<std::size_t> SplitIntoRowBlocks(std::string_view text, std::size_t begin,
                                            std::size_t blockBytes) {
  const std::size_t pieces = (text.size() - begin + blockBytes - 1) / blockBytes;
  const auto pieceBegin = [&](std::size_t i) { return std::min(text.size(), begin + i * blockBytes); };

  // Every quote that obeys the rules opens or closes, a doubled one both: an odd number before a place puts
  // it inside a quoted field.
  std::vector<std::uint8_t> quoted(pieces + 1, 0);
  ParallelFor(pieces, [&](std::size_t i) {
    quoted[i + 1] = std::count(text.begin() + pieceBegin(i), text.begin() + pieceBegin(i + 1), '"') % 2 != 0;
  });
  for (std::size_t i = 1; i <= pieces; ++i) quoted[i] ^= quoted[i - 1];

  std::vector<std::size_t> starts(pieces, begin);
  ParallelFor(pieces, [&](std::size_t i) {
    if (i > 0) starts[i] = FindRowStart(text, pieceBegin(i), pieceBegin(i + 1), quoted[i] != 0);
  });
  // A row longer than a piece belongs to the block in which it begins.
  std::erase(starts, std::string_view::npos);
  if (starts.empty() || starts.back() != text.size()) starts.push_back(text.size());
  return starts;
}

}  // namespace brenvolt
