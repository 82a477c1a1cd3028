#include "host/tables/text/text_detection.h"

#include <algorithm>
#include <map>

#include "host/base/quoted.h"
#include "host/tables/text/text_header.h"
#include "host/tables/text/text_sample.h"

namespace brenvolt {
namespace {

constexpr std::size_t kJudgedRows = 300;

std::size_t MostFrequentWidth(const std::vector<SampleRow>& rows) {
  std::map<std::size_t, std::size_t> counts;
  for (const SampleRow& row : rows) ++counts[row.cells.size()];
  std::size_t width = 1;
  for (const auto& [cells, count] : counts) {
    if (count >= counts[width]) width = cells;
  }
  return width;
}

// Whether a cell is such as stand in tables, and not the place where several cells were not told apart. A comma before a
// blank is one of a text.
bool IsPlausible(const SampleCell& cell) {
  if (cell.quoted || cell.text.empty()) return true;
  bool undivided = false;
  for (std::size_t i = 0; i < cell.text.size(); ++i) {
    const char c = cell.text[i];
    const bool ofText = c == ',' && i + 1 < cell.text.size() && cell.text[i + 1] == ' ';
    undivided = undivided || c == ';' || c == '\t' || c == '|' || (c == ',' && !ofText);
  }
  if (!undivided) return true;
  return IsNumberOfAnyForm(cell.text) || LooksMissing(cell.text) || LooksLikeDate(cell.text);
}

// The rows of a text under a delimiter, and how well it divides them.
struct Division {
  char delimiter = ',';
  std::vector<SampleRow> rows;
  std::size_t width = 1;
  double consistent = 0;  // the share of rows of that width
  double plausible = 0;   // the share of their cells that are such as stand in tables
  bool hasNumbers = false;

  double Score() const {
    constexpr double kUndivided = 0.05;
    const double width_ = static_cast<double>(width);
    return (width > 1 ? (width_ - 1) / width_ : kUndivided) * consistent * plausible;
  }
};

Division Divide(std::string_view sample, char delimiter, char comment) {
  Division division{.delimiter = delimiter, .rows = SampleRows(sample, delimiter, comment)};
  if (division.rows.size() > kJudgedRows) division.rows.resize(kJudgedRows);
  if (division.rows.empty()) return division;
  division.width = MostFrequentWidth(division.rows);
  std::size_t consistent = 0;
  std::size_t plausible = 0;
  for (const SampleRow& row : division.rows) {
    if (row.cells.size() != division.width) continue;
    ++consistent;
    plausible += static_cast<std::size_t>(std::ranges::count_if(row.cells, IsPlausible));
    division.hasNumbers = division.hasNumbers || std::ranges::any_of(row.cells, [](const SampleCell& cell) {
                            return IsNumberOfAnyForm(cell.text);
                          });
  }
  const auto share = [](std::size_t part, std::size_t whole) {
    return static_cast<double>(part) / static_cast<double>(whole);
  };
  // Few lines above a table count less than their number.
  division.consistent = share(consistent, division.rows.size());
  division.plausible = share(plausible, consistent * division.width);
  return division;
}

// Blanks also stand in texts: they divide where all rows but those of a title are divided alike into numbers.
bool MayDivide(const Division& division) {
  if (division.delimiter != kBlanks) return true;
  std::vector<SampleRow> wide;
  for (const SampleRow& row : division.rows) {
    if (row.cells.size() == division.width) wide.push_back(row);
  }
  return division.hasNumbers && HasNumericColumn(wide, division.width) &&
         division.consistent >= (division.rows.size() > 4 ? 0.7 : 0.5);
}

// Whether a table of two columns is one of a single column of numbers with decimal commas: a comma stands between digits in
// its rows, and in none of the lines above them.
bool IsColumnOfDecimals(const Division& division) {
  constexpr std::size_t kFewest = 3;
  const auto isWhole = [](const SampleCell& cell) {
    const std::size_t sign = cell.text.find_first_not_of("+-");
    return !cell.quoted && sign <= 1 && cell.text.find_first_not_of("0123456789", sign) == std::string::npos;
  };
  std::size_t wide = 0;
  for (const SampleRow& row : division.rows) {
    if (row.cells.size() > 2 || (wide > 0 && !isWhole(row.cells[0]))) return false;
    if (row.cells.size() == 1) continue;
    if (!isWhole(row.cells[0]) || !isWhole(row.cells[1])) return false;
    ++wide;
  }
  return wide >= kFewest && division.rows.front().cells.size() == 1 &&
         !isWhole(division.rows.front().cells[0]);
}

Division BestDivision(std::string_view sample, const TextOptions& options, char comment) {
  if (options.delimiter) return Divide(sample, DelimiterOf(*options.delimiter), comment);
  constexpr double kPlausible = 0.9;
  Division best = Divide(sample, ',', comment);
  if (best.width == 2 && options.decimal != "." && IsColumnOfDecimals(best))
    return Divide(sample, ';', comment);
  if (best.width > 1 && best.consistent == 1 && best.plausible >= kPlausible) return best;
  for (const char delimiter : {';', '\t', '|', kBlanks}) {
    Division other = Divide(sample, delimiter, comment);
    // Blanks that divide no further than tabs are these tabs.
    if (delimiter == kBlanks && best.delimiter == '\t' && other.width == best.width) continue;
    if (MayDivide(other) && other.Score() > best.Score()) best = std::move(other);
  }
  if (best.width == 1) best = Divide(sample, ',', comment);
  return best;
}

char FirstMark(std::string_view sample) {
  const std::size_t first = sample.find_first_not_of(" \t\r\n");
  return first == std::string_view::npos ? '\0' : sample[first];
}

// The character that begins comments at the top of a file; 0 if there is none.
char TopComment(std::string_view sample) {
  constexpr std::string_view kMarks = "#%!";
  const char mark = FirstMark(sample);
  if (mark == 0 || kMarks.find(mark) == std::string_view::npos) return 0;
  return SampleRows(sample, '\n', mark).empty() ? '\0' : mark;
}

// Whether lines that begin with "#" in the middle of a table are no rows of it.
bool HasInnerComments(const Division& division) {
  bool any = false;
  for (const SampleRow& row : division.rows) {
    if (!row.cells.front().text.starts_with('#') || row.cells.front().quoted) continue;
    if (row.cells.size() == division.width) return false;
    any = true;
  }
  return any;
}

// Finds the layout step by step; each takes up what the former found.
class Detector {
 public:
  Detector(std::string_view text, const TextOptions& options) : sample_(SampleOf(text)), options_(options) {}

  DetectedLayout Detect() {
    found_.layout.refusesStrayTexts = true;
    found_.layout.missing = options_.missingText;
    found_.layout.textColumns = options_.text;
    Delimiter();
    Numbers();
    Header();
    return std::move(found_);
  }

 private:
  void Delimiter();
  void Numbers();
  void Header();
  void TellHeader(const HeaderFound& header);
  void DoubtZeros(const HeaderFound& header);
  std::string ZerosOf(std::size_t column, const HeaderFound& header) const;
  void ReadAs(bool given, const std::string& what) {
    if (!given) found_.readAs.push_back(what);
  }
  void Doubt(const char* field, const std::string& what) { found_.doubts.push_back({field, what}); }
  std::vector<NumberForm> AllowedForms() const;
  void DoubtGroups(const NumberForm& form, const std::vector<std::string>& cells);
  std::vector<std::string> NumberCells() const;

  std::string_view sample_;
  const TextOptions& options_;
  Division division_;
  DetectedLayout found_;
};

void Detector::Delimiter() {
  char comment = options_.comment ? CommentOf(*options_.comment) : TopComment(sample_);
  division_ = BestDivision(sample_, options_, comment);
  if (!options_.comment && comment == 0 && HasInnerComments(division_)) {
    comment = '#';
    division_ = Divide(sample_, division_.delimiter, comment);
  }
  found_.layout.comment = comment;
  found_.delimiter = division_.delimiter;
  found_.layout.separator = division_.delimiter == kBlanks ? '\t' : division_.delimiter;
  static const std::map<char, std::string> kNames{
      {';', "semicolons"}, {'\t', "tabs"}, {'|', "bars"}, {kBlanks, "blanks"}};
  const auto name = kNames.find(division_.delimiter);
  if (division_.width > 1 && name != kNames.end())
    ReadAs(options_.delimiter.has_value(), "fields separated by " + name->second);
  if (comment != 0) ReadAs(options_.comment.has_value(), std::string("comments after ") + comment);
}

std::vector<NumberForm> Detector::AllowedForms() const {
  std::vector<NumberForm> forms;
  for (const NumberForm& form : kNumberForms) {
    const bool decimalFits = !options_.decimal || form.decimal == (*options_.decimal)[0];
    const bool groupsFit = !options_.thousands || form.thousands == ThousandsOf(*options_.thousands);
    if (decimalFits && groupsFit) forms.push_back(form);
  }
  return forms;
}

// The cells of columns half of which or more are numbers.
std::vector<std::string> Detector::NumberCells() const {
  std::vector<std::string> found;
  for (std::size_t column = 0; column < division_.width; ++column) {
    std::vector<std::string> numbers;
    std::size_t others = 0;
    for (const SampleRow& row : division_.rows) {
      if (row.cells.size() != division_.width || LooksMissing(row.cells[column].text)) continue;
      const std::string& text = row.cells[column].text;
      if (IsNumberOfAnyForm(text)) {
        numbers.push_back(text);
      } else {
        ++others;
      }
    }
    if (numbers.size() >= others) found.insert(found.end(), numbers.begin(), numbers.end());
  }
  return found;
}

void Detector::Numbers() {
  const std::vector<std::string> cells = NumberCells();
  const auto countOf = [&cells](const NumberForm& form) {
    return std::ranges::count_if(cells, [&form](const std::string& cell) { return IsNumberOf(cell, form); });
  };
  NumberForm best;
  std::ptrdiff_t most = 0;
  for (const NumberForm& form : AllowedForms()) {
    const std::ptrdiff_t count = countOf(form);
    if (count > most) best = form;
    most = std::max(most, count);
  }
  // In a file whose fields are separated by commas, numbers with commas are in quotes because they have groups.
  const NumberForm groups{'.', ','};
  if (best == NumberForm{',', 0} && division_.delimiter == ',' && countOf(groups) == most) best = groups;
  if (options_.decimal) best.decimal = (*options_.decimal)[0];
  if (options_.thousands) best.thousands = ThousandsOf(*options_.thousands);
  found_.layout.decimalSeparator = best.decimal;
  found_.layout.thousandsSeparator = best.thousands;
  // In a single column, a comma divides nothing.
  if (best.decimal == ',' && division_.width == 1 && !options_.delimiter) found_.layout.separator = ';';
  if (best.decimal == ',') ReadAs(options_.decimal.has_value(), "decimal commas");
  static const std::map<char, std::string> kNames{
      {',', "commas"}, {'.', "points"}, {' ', "blanks"}, {'\'', "apostrophes"}};
  if (best.thousands != 0)
    ReadAs(options_.thousands.has_value(), "thousands separated by " + kNames.at(best.thousands));

  if (!options_.decimal && !options_.thousands) DoubtGroups(best, cells);
}

// Where all numbers with a mark have three digits behind it, it may be the decimal sign or separate thousands.
void Detector::DoubtGroups(const NumberForm& form, const std::vector<std::string>& cells) {
  const bool isUnusual =
      division_.delimiter == ';' || division_.width == 1 || form.decimal == ',' || form.thousands != 0;
  const char mark = form.thousands != 0 ? form.thousands : form.decimal;
  if (!isUnusual || (mark != '.' && mark != ',')) return;
  const char other = mark == ',' ? '.' : ',';
  std::string example;
  for (const std::string& cell : cells) {
    if (cell.find(other) != std::string::npos) return;
    if (cell.find(mark) == std::string::npos) continue;
    if (!IsNumberOfTwoMeanings(cell, mark)) return;
    example = cell;
  }
  if (example.empty()) return;
  Doubt("decimal",
        form.thousands != 0
            ? Quoted(example) +
                  " is read as a whole number with groups of digits; it could be a decimal fraction"
            : Quoted(example) +
                  " is read as a decimal fraction; it could be a whole number with groups of digits");
}

void Detector::Header() {
  const HeaderRules rules{{found_.layout.decimalSeparator, found_.layout.thousandsSeparator},
                          division_.width,
                          division_.delimiter == kBlanks || division_.delimiter == '\t',
                          options_.missingText};
  const std::vector<SampleRow>& rows = division_.rows;
  HeaderFound header = FindHeader(rows, rules);
  if (options_.header) {
    const std::size_t line = HeaderLineOf(*options_.header);
    header = line > 0 ? HeaderAt(rows, line, rules) : WithoutHeader(rows, rules);
  }
  if (options_.unitsRow) header.hasUnits = *options_.unitsRow && header.hasHeader;
  found_.beginLine = header.line;
  found_.layout.hasHeader = header.hasHeader;
  found_.layout.hasUnits = header.hasUnits;
  found_.layout.headerLacksFirst = header.lacksFirst;
  TellHeader(header);
  DoubtZeros(header);
}

void Detector::TellHeader(const HeaderFound& header) {
  if (division_.rows.empty()) return;
  const std::string line = "line " + std::to_string(header.line);
  if (!header.hasHeader && !options_.header && found_.layout.comment != 0) {
    const std::size_t above =
        HeaderInComment(sample_, found_.layout.comment, division_.delimiter, division_.width, header.line);
    if (above > 0) {
      found_.beginLine = above;
      found_.layout.hasHeader = found_.headerInComment = true;
      found_.readAs.push_back("the header in the comment of line " + std::to_string(above));
      return;
    }
  }
  if (!options_.header) {
    if (!header.hasHeader) {
      found_.readAs.push_back("no header");
      Doubt("header",
            line + " looks like data and is read as such; the variables are called Var1, Var2 and so on");
    } else if (header.isOfNumbers) {
      Doubt("header", "the header in " + line + " looks like data; it is read as names");
    } else if (header.line != division_.rows.front().line) {
      found_.readAs.push_back("the header in " + line);
    }
    if (header.lacksFirst) found_.readAs.emplace_back("a first column that the header does not name");
  }
  if (header.hasUnits) ReadAs(options_.unitsRow.has_value(), "units in the line after the header");
}

// A value of a column of digits alone that begins with a zero and has several; empty if there is none.
std::string Detector::ZerosOf(std::size_t column, const HeaderFound& header) const {
  std::string found;
  for (const SampleRow& row : division_.rows) {
    if (row.cells.size() != division_.width || row.line < header.line + (header.hasHeader ? 1 : 0)) continue;
    const std::string& text = row.cells[column].text;
    if (text.find_first_not_of("0123456789") != std::string::npos) return {};
    if (text.size() > 1 && text.starts_with('0')) found = text;
  }
  return found;
}

// Numbers have no zeros before their digits; codes and postal codes do.
void Detector::DoubtZeros(const HeaderFound& header) {
  const auto names = std::ranges::find(division_.rows, header.line, &SampleRow::line);
  if (names == division_.rows.end() || !header.hasHeader || header.hasUnits || header.lacksFirst) return;
  for (std::size_t column = 0; column < std::min(division_.width, names->cells.size()); ++column) {
    const std::string& name = names->cells[column].text;
    const std::string zeros = ZerosOf(column, header);
    if (zeros.empty() || std::ranges::find(options_.text, name) != options_.text.end()) continue;
    Doubt("text", name + " is read as numbers, and " + Quoted(zeros) + " loses its zeros; " + Quoted(name) +
                      " here keeps them as texts");
  }
}

}  // namespace

std::string_view SampleOf(std::string_view text) {
  if (text.size() <= kSampleBytes) return text;
  const std::string_view sample = text.substr(0, kSampleBytes);
  const std::size_t end = sample.rfind('\n');
  return end == std::string_view::npos ? sample : sample.substr(0, end + 1);
}

DetectedLayout DetectLayout(std::string_view text, const TextOptions& options) {
  return Detector(text, options).Detect();
}

}  // namespace brenvolt
