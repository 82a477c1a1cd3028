#include "host/tables/text/text_options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "host/base/quoted.h"
#include "host/base/text_encoding.h"
#include "host/base/utf8.h"

namespace brenvolt {
namespace {

constexpr std::string_view kThousands = ",.' ";
constexpr std::string_view kNone = "none";

struct NamedDelimiter {
  std::string_view word;
  char delimiter;
};
constexpr std::array kDelimiters{NamedDelimiter{"comma", ','},      NamedDelimiter{"semicolon", ';'},
                                 NamedDelimiter{"tab", '\t'},       NamedDelimiter{"\\t", '\t'},
                                 NamedDelimiter{"bar", '|'},        NamedDelimiter{"blank", kBlanks},
                                 NamedDelimiter{"blanks", kBlanks}, NamedDelimiter{"space", kBlanks}};

const NamedDelimiter* FindDelimiter(std::string_view word) {
  const auto found = std::ranges::find(kDelimiters, word, &NamedDelimiter::word);
  return found == kDelimiters.end() ? nullptr : &*found;
}

bool IsMark(std::string_view word) {
  if (word.size() != 1) return false;
  const auto c = static_cast<std::uint8_t>(word[0]);
  const bool letterOrDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
  return (c > ' ' || c == '\t') && c < 0x7f && !letterOrDigit;
}

bool IsDelimiter(std::string_view word) {
  if (FindDelimiter(word) != nullptr || word == " ") return true;
  constexpr std::string_view kInNumbers = "\"+-.";
  return IsMark(word) && kInNumbers.find(word[0]) == std::string_view::npos;
}

std::optional<std::size_t> LineNumber(std::string_view word) {
  std::size_t line = 0;
  const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), line);
  if (fault != std::errc() || end != word.data() + word.size() || line == 0) return std::nullopt;
  return line;
}

}  // namespace

std::vector<ReadingNote> CheckTextOptions(const TextOptions& options) {
  std::vector<ReadingNote> faults;
  const auto expect = [&faults](bool holds, const char* field, const char* wanted, const std::string& got) {
    if (!holds) faults.push_back({field, std::string("expected ") + wanted + ", got " + Quoted(got)});
  };
  if (options.delimiter) {
    expect(IsDelimiter(*options.delimiter), "delimiter",
           "one character that no number has in it, or comma, semicolon, tab, bar, or blanks",
           *options.delimiter);
  }
  if (options.decimal)
    expect(*options.decimal == "." || *options.decimal == ",", "decimal", "a point or a comma",
           *options.decimal);
  if (options.thousands) {
    const bool isMark =
        options.thousands->size() == 1 && kThousands.find(*options.thousands) != std::string::npos;
    expect(isMark || *options.thousands == kNone, "thousands", "a comma, point, apostrophe, blank, or none",
           *options.thousands);
  }
  if (options.header)
    expect(*options.header == "no" || LineNumber(*options.header), "header", "no or the number of a line",
           *options.header);
  if (options.comment) {
    const bool isComment = IsMark(*options.comment) && *options.comment != "\"" && *options.comment != "-";
    expect(isComment || *options.comment == kNone, "comment", "a character that begins comments, or none",
           *options.comment);
  }
  if (options.encoding) {
    expect(IsEncodingName(*options.encoding), "encoding",
           "the name of an encoding such as UTF-8, UTF-16, or windows-1252", *options.encoding);
  }
  for (const auto* list : {&options.missingText, &options.text}) {
    const char* field = list == &options.text ? "text" : "missingText";
    for (const std::string& word : *list) {
      if (!IsText(word)) faults.push_back({field, Quoted(word) + " is not UTF-8 text"});
    }
  }
  if (faults.empty() && options.delimiter && options.decimal &&
      DelimiterOf(*options.delimiter) == (*options.decimal)[0])
    faults.push_back({"decimal", "the delimiter is also the decimal sign"});
  if (faults.empty() && options.thousands && options.decimal && *options.thousands == *options.decimal)
    faults.push_back({"thousands", "the decimal sign also separates thousands"});
  return faults;
}

char DelimiterOf(std::string_view word) {
  const NamedDelimiter* named = FindDelimiter(word);
  return named != nullptr ? named->delimiter : word[0];
}

char ThousandsOf(std::string_view word) {
  return word == kNone ? '\0' : word[0];
}

char CommentOf(std::string_view word) {
  return word == kNone ? '\0' : word[0];
}

std::size_t HeaderLineOf(std::string_view word) {
  return LineNumber(word).value_or(0);
}

}  // namespace brenvolt
