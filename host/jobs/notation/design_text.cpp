#include "host/jobs/notation/design_text.h"

#include <algorithm>
#include <fstream>

#include "host/base/correlation_rules.h"
#include "host/base/error.h"
#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

constexpr std::string_view kCorrelationWord = "correlation";
constexpr const char* kForm = "expected FIRST,SECOND=NUMBER";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// A file of another kind has a fault in every line, of which these tell enough.
constexpr std::size_t kMostFaultsOfFile = 10;

bool Contains(const std::vector<std::string>& names, const std::string& name) {
  return std::ranges::find(names, name) != names.end();
}

bool IsPair(const NotedCorrelation& a, const NotedCorrelation& b) {
  return (a.first == b.first && a.second == b.second) || (a.first == b.second && a.second == b.first);
}

void RequireNew(const NotedCorrelation& correlation, const std::vector<NotedCorrelation>& former) {
  for (const NotedCorrelation& other : former) {
    if (IsPair(other, correlation))
      throw Error("the correlation of " + correlation.first + " and " + correlation.second +
                  " is given twice");
  }
}

void RequireKnown(const std::string& name, const std::vector<std::string>& known) {
  if (Contains(known, name)) return;
  throw Error("no variable is called " + Quoted(name) + NearestNameHint(name, known));
}

std::string MessageOf(const Error& error) {
  return error.Where().empty() ? error.what() : std::string(error.what()) + " (" + error.Where() + ")";
}

// What follows the word that begins a line of a correlation; nothing for another line.
std::optional<std::string_view> CorrelationIn(std::string_view line) {
  if (!line.starts_with(kCorrelationWord)) return std::nullopt;
  const std::string_view rest = line.substr(kCorrelationWord.size());
  // A variable may be called so.
  if (rest.empty() || (rest.front() != ' ' && rest.front() != '\t') ||
      rest.find('~') != std::string_view::npos)
    return std::nullopt;
  return rest;
}

// The line up to a comment: a '#' after a blank, behind the sign that follows the names, and in no quotes.
std::string_view WithoutComment(std::string_view line) {
  bool isQuoted = false;
  for (std::size_t i = line.find_first_of("~="); i < line.size(); ++i) {
    if (line[i] == '"') isQuoted = !isQuoted;
    const bool isAfterBlank = i > 0 && (line[i - 1] == ' ' || line[i - 1] == '\t');
    if (line[i] == '#' && isAfterBlank && !isQuoted) return Trim(line.substr(0, i));
  }
  return line;
}

void Place(const std::filesystem::path& file, std::size_t line, JobFaults& faults, std::size_t from) {
  for (std::size_t i = from; i < faults.size(); ++i)
    faults[i].message = file.string() + ", line " + std::to_string(line) + ": " + faults[i].message;
}

void Shorten(const std::filesystem::path& file, std::size_t from, JobFaults& faults) {
  const std::size_t most = from + kMostFaultsOfFile;
  if (faults.size() <= most) return;
  const std::size_t more = faults.size() - most;
  faults.resize(most);
  faults.push_back({"fromFile", file.string() + ": and " + std::to_string(more) + " more"});
}

double RequiredCorrelation(double value, const std::string& pair) {
  if (const auto entered = CorrelationEntry(value)) return *entered;
  throw Error("a correlation lies between -1 and 1, got " + ShortestNumber(value) + " for " + pair);
}

void RequireTwo(const NotedCorrelation& pair, std::string_view text) {
  if (pair.first.empty() || pair.second.empty()) throw Error(std::string(kForm) + ", got " + Quoted(text));
  if (pair.first == pair.second) throw Error("a variable is correlated with itself by 1, " + Quoted(text));
}

NotedCorrelation ReadCorrelation(std::string_view text, const std::vector<std::string>& known) {
  const std::size_t equals = text.rfind('=');
  const auto value =
      equals == std::string_view::npos ? std::nullopt : ParseNumber(Trim(text.substr(equals + 1)));
  if (!value) throw Error(std::string(kForm) + ", got " + Quoted(text));
  const std::string_view pair = text.substr(0, equals);
  const double correlation = RequiredCorrelation(*value, std::string(Trim(pair)));
  NotedCorrelation first{.first = {}, .second = {}, .value = correlation};
  for (std::size_t comma = pair.find(','); comma != std::string_view::npos;
       comma = pair.find(',', comma + 1)) {
    const NotedCorrelation parted{std::string(Trim(pair.substr(0, comma))),
                                  std::string(Trim(pair.substr(comma + 1))), correlation};
    if (first.first.empty()) first = parted;
    if (!Contains(known, parted.first) || !Contains(known, parted.second)) continue;
    first = parted;
    break;
  }
  RequireTwo(first, text);
  return first;
}

// `Read` makes of a text, or of its parts, what is added; an error is a fault of the field.
template <class Read>
void AddTo(DesignText& design, const std::string& field, JobFaults& faults, Read read) {
  try {
    NotedVariable variable = read();
    if (Contains(design.Names(), variable.name))
      throw Error("the variable " + variable.name + " is given twice");
    design.variables.push_back(std::move(variable));
  } catch (const Error& error) {
    faults.push_back({field, MessageOf(error)});
  }
}

template <class Read>
void AddPairTo(DesignText& design, const std::string& field, const std::vector<std::string>* others,
               JobFaults& faults, Read read) {
  try {
    std::vector<std::string> known = design.Names();
    if (others != nullptr) known.insert(known.end(), others->begin(), others->end());
    NotedCorrelation correlation = read(known);
    if (others != nullptr) {
      RequireKnown(correlation.first, known);
      RequireKnown(correlation.second, known);
    }
    RequireNew(correlation, design.correlations);
    design.correlations.push_back(std::move(correlation));
  } catch (const Error& error) {
    faults.push_back({field, MessageOf(error)});
  }
}

}  // namespace

std::vector<std::string> DesignText::Names() const {
  std::vector<std::string> names;
  for (const NotedVariable& variable : variables) names.push_back(variable.name);
  return names;
}

void AddVariable(const std::string& field, std::string_view text, DesignText& design, JobFaults& faults) {
  AddTo(design, field, faults, [&] { return ReadVariable(text); });
}

void AddVariable(const std::string& field, const std::string& name, std::string_view distribution,
                 DesignText& design, JobFaults& faults) {
  AddTo(design, field, faults, [&] { return ReadVariable(name, distribution); });
}

void AddCorrelation(const std::string& field, std::string_view text, const std::vector<std::string>* others,
                    DesignText& design, JobFaults& faults) {
  AddPairTo(design, field, others, faults,
            [&](const std::vector<std::string>& known) { return ReadCorrelation(text, known); });
}

void AddCorrelation(const std::string& field, const NotedCorrelation& correlation,
                    const std::vector<std::string>* others, DesignText& design, JobFaults& faults) {
  AddPairTo(design, field, others, faults, [&](const std::vector<std::string>& /*known*/) {
    NotedCorrelation pair{std::string(Trim(correlation.first)), std::string(Trim(correlation.second)),
                          correlation.value};
    pair.value = RequiredCorrelation(pair.value, pair.first + "," + pair.second);
    RequireTwo(pair, pair.first + "," + pair.second + "=" + ShortestNumber(pair.value));
    return pair;
  });
}

void AddCorrelations(const std::string& field, const Spreadsheet& table,
                     const std::vector<std::string>* others, DesignText& design, JobFaults& faults) {
  try {
    const auto matrix = MatrixFromTable(table, "correlations");
    std::vector<std::string> known = design.Names();
    if (others != nullptr) known.insert(known.end(), others->begin(), others->end());
    const std::vector<NotedCorrelation> former = design.correlations;
    for (std::size_t i = 0; i < matrix->VariableCount(); ++i) {
      const std::string& name = matrix->VariableAt(i).Name();
      if (others != nullptr) RequireKnown(name, known);
      for (std::size_t j = 0; j < i; ++j) {
        const NotedCorrelation correlation{matrix->VariableAt(j).Name(), name,
                                           matrix->VariableAt(j).Values()[i]};
        RequireNew(correlation, former);
        design.correlations.push_back(correlation);
      }
    }
  } catch (const Error& error) {
    // The field is named with every fault, so that of the place only a row and a column are left to say.
    const std::size_t comma = error.Where().find(", ");
    const std::string place = comma == std::string::npos ? "" : error.Where().substr(comma + 2);
    faults.push_back({field, error.what() + (place.empty() ? "" : " (" + place + ")")});
  }
}

void ReadDesignFile(const std::filesystem::path& file, const std::vector<std::string>* others,
                    DesignText& design, JobFaults& faults) {
  std::error_code ignored;
  if (std::filesystem::exists(file, ignored) && !std::filesystem::is_regular_file(file, ignored))
    throw Error("is not a regular file; it is read more than once, so save it as one", file.string());
  std::ifstream stream(file);
  if (!stream) throw Error("cannot be read", file.string());
  struct Line {
    std::size_t number;
    std::string text;
  };
  const std::size_t former = faults.size();
  std::vector<Line> correlations;
  std::string line;
  for (std::size_t number = 1; std::getline(stream, line); ++number) {
    if (number == 1 && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
    std::string_view text = Trim(std::string_view(line).substr(0, line.find_last_not_of('\r') + 1));
    if (text.empty() || text.front() == '#') continue;
    text = WithoutComment(text);
    if (const auto correlation = CorrelationIn(text)) {
      correlations.push_back({number, std::string(*correlation)});
      continue;
    }
    const std::size_t before = faults.size();
    AddVariable("fromFile", text, design, faults);
    Place(file, number, faults, before);
  }
  if (stream.bad()) throw Error("cannot be read", file.string());
  for (const Line& correlation : correlations) {
    const std::size_t before = faults.size();
    AddCorrelation("fromFile", correlation.text, others, design, faults);
    Place(file, correlation.number, faults, before);
  }
  Shorten(file, former, faults);
}

std::string TextOf(const DesignText& design) {
  std::string text;
  for (const NotedVariable& variable : design.variables) text += NotationOf(variable) + "\n";
  for (const NotedCorrelation& correlation : design.correlations) {
    text += std::string(kCorrelationWord) + " " + correlation.first + ", " + correlation.second + " = " +
            ShortestNumber(correlation.value) + "\n";
  }
  return text;
}

}  // namespace brenvolt
