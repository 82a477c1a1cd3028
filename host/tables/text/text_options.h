// What a person may say of a text file of data. What is not said is found by looking at the file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// The words of a front end, as they were given.
struct TextOptions {
  std::optional<std::string> delimiter;  // one character, or "tab", or "blanks": runs of blanks and tabs
  std::optional<std::string> decimal;    // "." or ","
  std::optional<std::string> thousands;  // one of ",", ".", "'", " "; "none"
  std::optional<std::string> header;     // "no", or the number of its line
  std::optional<bool> unitsRow;          // whether the line after the header holds units
  std::optional<std::string> comment;    // the character that begins comments; "none"
  std::optional<std::string> encoding;
  std::vector<std::string> missingText;  // texts that mean a missing value, besides the usual ones
  std::vector<std::string> text;         // names of columns that are texts whatever they hold
};

// What is wrong with an option, or what is to be told of a file, and the option that it is about: the identifier of a
// member of TextOptions, which each front end spells in its own way; empty if there is none.
struct ReadingNote {
  std::string field;
  std::string message;
};

// All that is wrong with the options by themselves.
std::vector<ReadingNote> CheckTextOptions(const TextOptions& options);

// What the words mean; they must be right.
char DelimiterOf(std::string_view word);
char ThousandsOf(std::string_view word);
char CommentOf(std::string_view word);
// The number of the header's line; 0 for "no".
std::size_t HeaderLineOf(std::string_view word);

// Fields separated by runs of blanks and tabs.
inline constexpr char kBlanks = ' ';

}  // namespace brenvolt
