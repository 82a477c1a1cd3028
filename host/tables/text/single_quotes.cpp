#include "host/tables/text/single_quotes.h"

#include <algorithm>
#include <cstddef>

namespace brenvolt {
namespace {

bool IsBlankBeside(char c, char separator) {
  return c != separator && (c == ' ' || c == '\t' || c == '\r');
}

// Goes through the fields of lines that begin with a quote.
class QuotedFields {
 public:
  QuotedFields(std::string_view line, char separator) : line_(line), separator_(separator) {}

  // Moves to the next field; false at the end of the line.
  bool Next() {
    if (next_ > line_.size()) return false;
    begin_ = next_;
    while (begin_ < line_.size() && IsBlankBeside(line_[begin_], separator_)) ++begin_;
    closed_ = IsOpen('\'') ? Closing() : std::string_view::npos;
    const std::size_t end = std::min(line_.find(separator_, IsClosed() ? closed_ + 1 : begin_), line_.size());
    next_ = end + 1;
    return true;
  }

  bool IsOpen(char quote) const { return begin_ < line_.size() && line_[begin_] == quote; }
  bool IsClosed() const { return closed_ != std::string_view::npos; }
  std::size_t Begin() const { return begin_; }
  std::size_t Closed() const { return closed_; }

 private:
  // The quote that ends the field: one that is not doubled, before a separator or the end of the line. Once a field of the line is
  // not closed, none after it is looked for.
  std::size_t Closing() {
    if (isBroken_) return std::string_view::npos;
    for (std::size_t i = begin_ + 1; i < line_.size(); ++i) {
      if (line_[i] != '\'') continue;
      if (i + 1 < line_.size() && line_[i + 1] == '\'') {
        ++i;
        continue;
      }
      std::size_t after = i + 1;
      while (after < line_.size() && IsBlankBeside(line_[after], separator_)) ++after;
      if (after == line_.size() || line_[after] == separator_) return i;
    }
    isBroken_ = true;
    return std::string_view::npos;
  }

  std::string_view line_;
  char separator_;
  std::size_t next_ = 0;
  std::size_t begin_ = 0;
  std::size_t closed_ = std::string_view::npos;
  bool isBroken_ = false;
};

template <class Visit>
void ForEachLine(std::string_view text, const Visit& visit) {
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t end = std::min(text.find('\n', offset), text.size());
    visit(text.substr(offset, end - offset), end < text.size());
    offset = end + 1;
  }
}

// How many fields stand in single quotes; 0 where the quotes are letters.
std::size_t CountQuoted(std::string_view sample, char separator) {
  std::size_t count = 0;
  bool isBroken = false;
  ForEachLine(sample, [&](std::string_view line, bool) {
    QuotedFields fields(line, separator);
    while (!isBroken && fields.Next()) {
      isBroken = fields.IsOpen('"') || (fields.IsOpen('\'') && !fields.IsClosed());
      count += fields.IsClosed() ? 1 : 0;
    }
  });
  return isBroken ? 0 : count;
}

void AppendQuoted(std::string& out, std::string_view inside) {
  out += '"';
  for (std::size_t i = 0; i < inside.size(); ++i) {
    out += inside[i];
    if (inside[i] == '"') out += '"';
    if (inside[i] == '\'' && i + 1 < inside.size() && inside[i + 1] == '\'') ++i;
  }
  out += '"';
}

}  // namespace

std::optional<char> SeparatorOfSingleQuotes(std::string_view sample) {
  constexpr std::size_t kFewest = 2;
  std::optional<char> found;
  std::size_t most = kFewest - 1;
  if (sample.find('\'') == std::string_view::npos) return found;
  for (const char separator : {',', ';', '\t', '|'}) {
    const std::size_t count = CountQuoted(sample, separator);
    if (count <= most) continue;
    most = count;
    found = separator;
  }
  return found;
}

std::string WithDoubleQuotes(std::string_view text, char separator) {
  std::string out;
  out.reserve(text.size());
  ForEachLine(text, [&](std::string_view line, bool hasEnd) {
    QuotedFields fields(line, separator);
    std::size_t copied = 0;
    while (fields.Next()) {
      if (!fields.IsClosed()) continue;
      out += line.substr(copied, fields.Begin() - copied);
      AppendQuoted(out, line.substr(fields.Begin() + 1, fields.Closed() - fields.Begin() - 1));
      copied = fields.Closed() + 1;
    }
    out += line.substr(copied);
    if (hasEnd) out += '\n';
  });
  return out;
}

}  // namespace brenvolt
