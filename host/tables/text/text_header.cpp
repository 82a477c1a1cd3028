#include "host/tables/text/text_header.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>

#include "host/base/number_text.h"
#include "host/tables/csv_layout.h"

namespace brenvolt {
namespace {

using Rows = std::vector<SampleRow>;

// Looks at the rows of a table under the form of its numbers.
class HeaderFinder {
 public:
  HeaderFinder(const Rows& rows, const HeaderRules& rules) : rows_(rows), rules_(rules) {
    for (std::size_t column = 0; column < rules.width; ++column) {
      if (IsNumeric(column)) numeric_.push_back(column);
    }
  }

  HeaderFound Find() const;
  HeaderFound At(std::size_t place) const;
  HeaderFound Without() const;
  std::optional<std::size_t> PlaceOf(std::size_t line) const;

 private:
  bool IsNumber(const std::string& text) const { return IsNumberOf(text, rules_.numbers); }
  bool IsMissing(const std::string& text) const {
    return LooksMissing(text) || std::ranges::find(rules_.missing, text) != rules_.missing.end();
  }
  bool IsWide(std::size_t place) const {
    return place < rows_.size() && rows_[place].cells.size() == rules_.width;
  }
  bool IsNumeric(std::size_t column) const;
  std::size_t FirstOfTable() const;
  bool LacksFirst(std::size_t place) const;
  bool IsData(std::size_t place) const;
  bool HasNoNumber(std::size_t place) const;
  bool IsUnits(std::size_t place) const;
  bool IsOfYears(std::size_t place) const;

  const Rows& rows_;
  const HeaderRules& rules_;
  std::vector<std::size_t> numeric_;
};

// The second half of the rows tells: titles, header and units stand in the first.
bool HeaderFinder::IsNumeric(std::size_t column) const {
  constexpr double kMostly = 0.6;
  double numbers = 0;
  double values = 0;
  for (std::size_t place = rows_.size() / 2; place < rows_.size(); ++place) {
    const SampleRow& row = rows_[place];
    if (row.cells.size() != rules_.width || IsMissing(row.cells[column].text)) continue;
    ++values;
    numbers += IsNumber(row.cells[column].text) ? 1 : 0;
  }
  return numbers > 0 && numbers >= kMostly * values;
}

// The header that names all columns but the first, as statistics packages write it.
bool HeaderFinder::LacksFirst(std::size_t place) const {
  return rules_.mayLackFirst && rules_.width > 1 && rows_[place].cells.size() + 1 == rules_.width &&
         IsData(place + 1) && std::ranges::none_of(rows_[place].cells, [this](const SampleCell& cell) {
           return IsNumber(cell.text) || cell.text.empty();
         });
}

std::size_t HeaderFinder::FirstOfTable() const {
  for (std::size_t place = 0; place < rows_.size(); ++place) {
    const bool last = place + 1 == rows_.size();
    if (LacksFirst(place) || (IsWide(place) && (last || IsWide(place + 1)))) return place;
  }
  return 0;
}

bool HeaderFinder::IsData(std::size_t place) const {
  if (!IsWide(place) || numeric_.empty()) return false;
  bool any = false;
  for (const std::size_t column : numeric_) {
    const std::string& text = rows_[place].cells[column].text;
    if (!IsNumber(text) && !IsMissing(text)) return false;
    any = any || IsNumber(text);
  }
  return any;
}

bool HeaderFinder::HasNoNumber(std::size_t place) const {
  return IsWide(place) && std::ranges::none_of(rows_[place].cells, [this](const SampleCell& cell) {
           return cell.text.empty() || IsNumber(cell.text) || LooksMissing(cell.text);
         });
}

bool HeaderFinder::IsUnits(std::size_t place) const {
  if (!IsWide(place) || numeric_.empty()) return false;
  std::size_t units = 0;
  for (const std::size_t column : numeric_) {
    const std::string& text = rows_[place].cells[column].text;
    if (LooksLikeUnit(text)) {
      ++units;
    } else if (!text.empty() && text != "-" && text != "1") {
      return false;
    }
  }
  return 2 * units >= numeric_.size() && units > 0;
}

// Names that are years, one after the other, above numbers that are none.
bool HeaderFinder::IsOfYears(std::size_t place) const {
  constexpr double kFirst = 1800;
  constexpr double kLast = 2100;
  if (!IsWide(place) || numeric_.size() < 2) return false;
  const auto isYear = [](double value) {
    return value >= kFirst && value <= kLast && value == std::floor(value);
  };
  double former = 0;
  std::size_t years = 0;
  for (const std::size_t column : numeric_) {
    const std::optional<double> value = ParseNumber(rows_[place].cells[column].text);
    const std::optional<double> below =
        IsWide(place + 1) ? ParseNumber(rows_[place + 1].cells[column].text) : std::nullopt;
    if (below && isYear(*below)) return false;
    if (!value || !isYear(*value) || (former != 0 && std::abs(*value - former) > 10)) return false;
    former = *value;
    ++years;
  }
  return years == numeric_.size();
}

HeaderFound HeaderFinder::At(std::size_t place) const {
  HeaderFound found{.line = rows_[place].line};
  found.lacksFirst = LacksFirst(place);
  found.hasUnits = IsUnits(place + 1) && !IsData(place + 1);
  found.isOfNumbers = IsData(place);
  return found;
}

HeaderFound HeaderFinder::Without() const {
  return {.line = rows_[FirstOfTable()].line, .hasHeader = false};
}

HeaderFound HeaderFinder::Find() const {
  const std::size_t first = FirstOfTable();
  if (IsData(first)) {
    const bool named = first > 0 && rows_[first - 1].cells.size() + 1 == rules_.width;
    if (IsOfYears(first)) return At(first);
    return named && !IsNumber(rows_[first - 1].cells[0].text) ? At(first - 1) : Without();
  }
  std::size_t data = first + 1;
  while (data < rows_.size() && !IsData(data)) ++data;
  // Lines of two fields may stand above a table of two; that all columns of numbers lack one in it tells them from a row.
  std::size_t header = first;
  if (data < rows_.size() && numeric_.size() > 1) {
    const std::size_t last = data - 1;
    const std::size_t names = IsUnits(last) && last > first ? last - 1 : last;
    if (HasNoNumber(names)) header = names;
  }
  return At(header);
}

std::optional<std::size_t> HeaderFinder::PlaceOf(std::size_t line) const {
  const auto found = std::ranges::find(rows_, line, &SampleRow::line);
  if (found == rows_.end()) return std::nullopt;
  return static_cast<std::size_t>(found - rows_.begin());
}

}  // namespace

HeaderFound FindHeader(const Rows& rows, const HeaderRules& rules) {
  return rows.empty() ? HeaderFound{} : HeaderFinder(rows, rules).Find();
}

HeaderFound HeaderAt(const Rows& rows, std::size_t line, const HeaderRules& rules) {
  const HeaderFinder finder(rows, rules);
  const auto place = finder.PlaceOf(line);
  return place ? finder.At(*place) : HeaderFound{.line = line};
}

HeaderFound WithoutHeader(const Rows& rows, const HeaderRules& rules) {
  return rows.empty() ? HeaderFound{.hasHeader = false} : HeaderFinder(rows, rules).Without();
}

std::size_t HeaderInComment(std::string_view sample, char comment, char delimiter, std::size_t width,
                            std::size_t line) {
  std::size_t found = 0;
  std::size_t number = 1;
  for (std::size_t offset = 0; offset < sample.size() && number < line; ++number) {
    const std::size_t end = std::min(sample.find('\n', offset), sample.size());
    std::string_view text = TrimLeft(sample.substr(offset, end - offset));
    if (text.starts_with(comment)) {
      while (text.starts_with(comment)) text.remove_prefix(1);
      const Rows rows = SampleRows(text, delimiter, 0);
      const bool names = rows.size() == 1 && rows[0].cells.size() == width &&
                         std::ranges::none_of(rows[0].cells, [](const SampleCell& cell) {
                           return cell.text.empty() || IsNumberOfAnyForm(cell.text);
                         });
      found = names ? number : 0;
    }
    offset = end + 1;
  }
  return found;
}

bool HasNumericColumn(const Rows& rows, std::size_t width) {
  for (std::size_t column = 0; column < width; ++column) {
    std::size_t numbers = 0;
    std::size_t others = 0;
    for (const SampleRow& row : rows) {
      const std::string& text = row.cells[column].text;
      if (!LooksMissing(text)) ++(IsNumberOfAnyForm(text) ? numbers : others);
    }
    if (numbers > 0 && (numbers > 2 * others || others <= 2)) return true;
  }
  return false;
}

bool LooksLikeUnit(std::string_view text) {
  static const std::set<std::string, std::less<>> kUnits{
      "m",   "mm",    "cm",   "dm",   "km",    "um",    "µm",     "μm",    "nm",     "in",    "inch", "ft",
      "yd",  "mi",    "s",    "sec",  "ms",    "us",    "µs",     "μs",    "ns",     "min",   "h",    "hr",
      "hrs", "hours", "d",    "day",  "days",  "weeks", "months", "yr",    "year",   "years", "g",    "kg",
      "mg",  "µg",    "ug",   "μg",   "t",     "lb",    "lbs",    "oz",    "N",      "kN",    "MN",   "mN",
      "Nm",  "kNm",   "V",    "mV",   "kV",    "uV",    "µV",     "μV",    "A",      "mA",    "uA",   "µA",
      "μA",  "W",     "kW",   "mW",   "MW",    "kWh",   "Wh",     "VA",    "Pa",     "kPa",   "hPa",  "MPa",
      "GPa", "bar",   "mbar", "psi",  "atm",   "°C",    "C",      "degC",  "K",      "°F",    "F",    "degF",
      "%",   "‰",     "Hz",   "kHz",  "MHz",   "GHz",   "rpm",    "J",     "kJ",     "MJ",    "cal",  "kcal",
      "l",   "L",     "ml",   "mL",   "ul",    "µl",    "mol",    "mmol",  "ppm",    "ppb",   "dB",   "dBm",
      "Ohm", "ohm",   "kOhm", "Ω",    "kΩ",    "MΩ",    "F",      "uF",    "nF",     "pF",    "H",    "mH",
      "T",   "mT",    "EUR",  "USD",  "GBP",   "CHF",   "€",      "$",     "£",      "deg",   "°",    "rad",
      "cd",  "lm",    "lx",   "lux",  "Bq",    "Sv",    "pH",     "count", "counts", "pcs",   "m2",   "m3",
      "m²",  "m³",    "cm2",  "cm3",  "cm²",   "cm³",   "mm2",    "mm²",   "mm3",    "mm³",   "s2",   "s²",
      "1",   "a.u.",  "arb",  "unit", "units", "HRC",   "HV"};
  if (text.size() > 1) {
    const std::pair<char, char> ends{text.front(), text.back()};
    for (const std::pair<char, char>& brackets :
         {std::pair{'[', ']'}, std::pair{'(', ')'}, std::pair{'<', '>'}}) {
      if (ends == brackets) return true;
    }
  }
  if (text.empty()) return false;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find_first_of("/*^ ", begin), text.size());
    const std::string_view part = text.substr(begin, end - begin);
    const bool isPower =
        begin > 0 && !part.empty() && part.find_first_not_of("-0123456789") == std::string_view::npos;
    if (!isPower && !kUnits.contains(part)) return false;
    begin = end + 1;
  }
  return true;
}

}  // namespace brenvolt
