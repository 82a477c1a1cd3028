#include "host/tables/text/text_table.h"

#include <algorithm>
#include <optional>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/base/text_encoding.h"
#include "host/base/utf8.h"
#include "host/tables/csv_reader.h"
#include "host/tables/text/single_quotes.h"
#include "host/tables/text/text_detection.h"
#include "host/tables/text/text_sample.h"

namespace brenvolt {
namespace {

// Where a line begins, from 1; the end of the text if it has none of that number.
std::size_t OffsetOfLine(std::string_view text, std::size_t line) {
  std::size_t offset = 0;
  for (; line > 1; --line) {
    offset = text.find('\n', offset);
    if (offset == std::string_view::npos) return text.size();
    ++offset;
  }
  return offset;
}

// Appends a line whose runs of blanks outside of quotes have become single tabs.
void AppendDivided(std::string& out, std::string_view line) {
  bool quoted = false;
  const bool cut = line.ends_with('\r');
  if (cut) line.remove_suffix(1);
  line = Trim(line);
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') quoted = !quoted;
    const bool blank = !quoted && (line[i] == ' ' || line[i] == '\t');
    if (!blank) {
      out += line[i];
    } else if (out.back() != '\t') {
      out += '\t';
    }
  }
}

// The text as the reader takes it: fields are separated by one character, no comment holds a quote, and a header in a
// comment is none. Lines keep their numbers.
std::string Rewritten(std::string_view text, const DetectedLayout& found) {
  std::string out;
  out.reserve(text.size());
  const char comment = found.layout.comment;
  std::size_t number = 1;
  for (std::size_t offset = 0; offset < text.size(); ++number) {
    const std::size_t end = std::min(text.find('\n', offset), text.size());
    std::string_view line = text.substr(offset, end - offset);
    const bool isComment = comment != 0 && TrimLeft(line).starts_with(comment);
    if (isComment && found.headerInComment && number == found.beginLine) {
      line = TrimLeft(line);
      while (line.starts_with(comment)) line.remove_prefix(1);
      line = TrimLeft(line);
    } else if (isComment) {
      line = line.substr(0, line.find('"'));
    }
    if (!isComment || (found.headerInComment && number == found.beginLine)) {
      if (found.delimiter == kBlanks) {
        AppendDivided(out, line);
      } else {
        out += line;
      }
    } else {
      out += line;
    }
    if (end < text.size()) out += '\n';
    offset = end + 1;
  }
  return out;
}

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i)
    text += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
  return text;
}

void RequireColumns(const Spreadsheet& sheet, const std::vector<std::string>& names,
                    const std::string& where) {
  for (const std::string& name : names) {
    if (!sheet.FindVariable(name)) throw OptionError({"text", "no column called " + Quoted(name)}, where);
  }
}

// "<0.5" or "> 100".
bool IsBound(std::string_view text) {
  text = Trim(text);
  return (text.starts_with('<') || text.starts_with('>')) && IsNumberOfAnyForm(Trim(text.substr(1)));
}

// A number with a sign of a currency, of per cent or of a unit before or behind it: "12 %", "EUR 3.50".
bool IsNumberWithSign(std::string_view text) {
  constexpr std::string_view kOfNumbers = "0123456789.,+-";
  const std::size_t first = text.find_first_of("+-0123456789");
  const std::size_t last = text.find_last_of("0123456789");
  if (first == std::string_view::npos || last == std::string_view::npos || last < first) return false;
  constexpr std::size_t kLongestSign = 6;
  constexpr std::string_view kCurrencies[] = {"$", "€", "£", "¥", "EUR", "USD", "GBP", "CHF", "JPY"};
  const std::string_view number = text.substr(first, last + 1 - first);
  const std::string_view before = Trim(text.substr(0, first));
  const std::size_t behind = text.size() - last - 1;
  const bool isCurrency = std::ranges::find(kCurrencies, before) != std::end(kCurrencies);
  return (before.empty() ? behind > 0 && behind <= kLongestSign : isCurrency) &&
         number.find_first_not_of(kOfNumbers) == std::string_view::npos && IsNumberOfAnyForm(number);
}

// What is to be told of a column of texts all of which are numbers, numbers with signs, or usual marks of missing values.
std::optional<ReadingNote> NoteOf(const Variable& variable) {
  std::string missing;
  std::string withSign;
  bool hasNumber = false;
  std::string_view behind;
  bool isOneSign = true;
  for (const auto& [code, text] : variable.Labels()) {
    if (LooksMissing(text)) {
      missing += (missing.empty() ? "" : ",") + text;
    } else if (IsNumberOfAnyForm(text)) {
      hasNumber = true;
    } else if (IsNumberWithSign(text)) {
      const std::string_view sign = std::string_view(text).substr(text.find_last_of("0123456789") + 1);
      isOneSign = isOneSign && (withSign.empty() || sign == behind);
      behind = sign;
      if (withSign.empty()) withSign = text;
    } else {
      return std::nullopt;
    }
  }
  if (!withSign.empty() && isOneSign)
    return ReadingNote{"", variable.Name() +
                               " is read as text: its values are numbers with signs or units, as " +
                               Quoted(withSign) + "; without them they are read as numbers"};
  if (withSign.empty() && hasNumber && !missing.empty())
    return ReadingNote{"missingText", variable.Name() +
                                          " is read as text: all that is no number in it looks like a "
                                          "missing value; " +
                                          Quoted(missing) + " here reads such texts as missing"};
  return std::nullopt;
}

// What is to be told of columns that are read as texts though most of their values are numbers.
ReadingNote NoteOf(const StrayTexts& mixed) {
  std::string cells;
  std::vector<std::string> texts;
  for (const StrayTexts::Cell& cell : mixed.first) {
    cells += (cells.empty() ? "" : ", ") + Quoted(cell.text) + " (line " + std::to_string(cell.line) + ")";
    if (std::ranges::find(texts, cell.text) == texts.end()) texts.push_back(cell.text);
  }
  if (std::ranges::any_of(texts, IsBound))
    return {
        "",
        mixed.column + " is read as text: values such as " + cells +
            " are known by a bound alone; with the bound as a number, and a column that says left or right "
            "of it, a fit takes them as censored"};
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ",") + text;
  return {"missingText", mixed.column + " is read as text: of its " + std::to_string(mixed.values) +
                             " values " + std::to_string(mixed.texts) +
                             (mixed.texts == 1 ? " is not a number: " : " are not numbers: ") + cells + "; " +
                             Quoted(list) + " here reads such texts as missing"};
}

// Reads text in UTF-8.
class TextReader {
 public:
  TextReader(std::string_view text, const std::string& name, const std::string& where,
             const TextOptions& options)
      : text_(text), name_(name), where_(where), options_(options) {}

  void Read(std::vector<std::string> readAs, DataRead& read) {
    DetectedLayout found = DetectLayout(text_, options_);
    readAs.insert(readAs.end(), found.readAs.begin(), found.readAs.end());
    std::string rewritten;
    std::string_view text = text_;
    if (found.delimiter == kBlanks || found.layout.comment != 0) text = rewritten = Rewritten(text_, found);
    found.layout.begin = OffsetOfLine(text, found.beginLine);
    if (options_.header && found.layout.begin == text.size() && !text.empty())
      throw OptionError({"header", "the file has no line " + *options_.header}, where_);
    std::vector<StrayTexts> mixed;
    auto sheet = std::make_unique<Spreadsheet>(
        ReadCsvBlocks(text, name_, where_, found.layout, kCsvBlockBytes, &mixed));
    RequireColumns(*sheet, options_.text, where_);
    for (std::size_t i = 0; i < sheet->VariableCount(); ++i) {
      const Variable& variable = sheet->VariableAt(i);
      const auto isOfIt = [&](const StrayTexts& one) { return one.column == variable.Name(); };
      const bool isAsked = std::ranges::find(options_.text, variable.Name()) != options_.text.end();
      if (variable.Type() != VariableType::kText || isAsked || std::ranges::any_of(mixed, isOfIt)) continue;
      if (auto note = NoteOf(variable)) read.doubts.push_back(std::move(*note));
    }
    read.sheets.push_back(std::move(sheet));
    read.doubts.insert(read.doubts.end(), found.doubts.begin(), found.doubts.end());
    for (const StrayTexts& one : mixed) read.doubts.push_back(NoteOf(one));
    read.readAs = Joined(readAs);
  }

 private:
  std::string_view text_;
  const std::string& name_;
  const std::string& where_;
  const TextOptions& options_;
};

// Lines that end as on old machines, by a return alone.
bool HasReturnsAlone(std::string_view text) {
  const std::string_view sample = text.substr(0, kSampleBytes);
  return sample.find('\n') == std::string_view::npos && sample.find('\r') != std::string_view::npos;
}

// Text in UTF-8, or what is taken for it.
void ReadLines(std::string_view text, const std::string& name, const std::string& where,
               const TextOptions& options, std::vector<std::string> readAs, DataRead& read) {
  std::string lines;
  if (HasReturnsAlone(text) && text.find_first_not_of("\r") != std::string_view::npos) {
    lines = text;
    std::ranges::replace(lines, '\r', '\n');
    text = lines;
    readAs.emplace_back("returns alone at the ends of lines");
  }
  if (const auto separator = SeparatorOfSingleQuotes(SampleOf(text))) {
    lines = WithDoubleQuotes(text, *separator);
    text = lines;
    readAs.emplace_back("fields in single quotes");
  }
  try {
    TextReader(text, name, where, options).Read(std::move(readAs), read);
  } catch (const Error& error) {
    if (std::string_view(error.what()) != "the text is not UTF-8") throw;
    if (options.encoding)
      throw OptionError({"encoding", "the text is not " + *options.encoding}, error.Where());
    if (text.find('\0') != std::string_view::npos)
      throw Error("the file is no text: it holds bytes that stand in none", error.Where());
    throw Error(std::string(error.what()) +
                    " from here on, as it is above; another encoding reads it: windows-1252, for one",
                error.Where());
  }
}

bool IsUtf8(std::string name) {
  std::ranges::transform(name, name.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return name == "UTF-8" || name == "UTF8" || name == "ASCII" || name == "US-ASCII";
}

}  // namespace

DataRead ReadTextTable(std::string_view bytes, const std::string& name, const std::string& where,
                       const TextOptions& options) {
  DetectedEncoding encoding = DetectEncoding(bytes);
  DataRead read;
  std::vector<std::string> readAs;
  if (options.encoding) {
    encoding = {*options.encoding, encoding.mark, false};
  } else if (!IsUtf8(encoding.name)) {
    readAs.push_back(encoding.name + " text");
    if (encoding.isDoubtful)
      read.doubts.push_back(
          {"encoding", "few characters tell the encoding, which is taken for " + encoding.name});
  }
  if (IsUtf8(encoding.name)) {
    const std::string_view text = bytes.substr(bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    ReadLines(text, name, where, options, std::move(readAs), read);
    return read;
  }
  std::string text;
  try {
    text = ToUtf8(bytes.substr(options.encoding ? 0 : encoding.mark), encoding.name);
  } catch (const EncodingFault& fault) {
    throw OptionError(
        {"encoding", "the text is not " + encoding.name + " in line " + std::to_string(fault.line)}, where);
  }
  ReadLines(text, name, where, options, std::move(readAs), read);
  return read;
}

}  // namespace brenvolt
