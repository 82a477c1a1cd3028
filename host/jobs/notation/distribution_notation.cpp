#include "host/jobs/notation/distribution_notation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "host/base/lower_case.h"
#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/notation/value_words.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/johnson.h"

namespace brenvolt {
namespace {

// Usual names of parameters beside those of the facts. If the code is none, they hold for every distribution that
// has the parameter.
struct Synonym {
  std::string_view written;
  std::string_view parameter;
  std::optional<DistributionCode> only;
};
constexpr std::array<Synonym, 9> kSynonyms{{{"mean", "location", DistributionCode::kNormal},
                                            {"sd", "scale", DistributionCode::kNormal},
                                            {"lambda", "mean", DistributionCode::kPoisson},
                                            {"p", "proportion", {}},
                                            {"n", "trials", {}},
                                            {"minimum", "min", {}},
                                            {"maximum", "max", {}},
                                            {"threshold", "offset", {}},
                                            {"family", "type", {}}}};

std::string TypeName(const DistributionFacts& facts) {
  return kNamedDistributions[static_cast<std::size_t>(facts.code)].name;
}

// The parameters in order, with the offset if there is one.
std::vector<std::string> NamesOf(const DistributionFacts& facts) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < facts.ParameterCount(); ++i) names.emplace_back(facts.parameters[i].name);
  if (facts.HasOffset()) names.emplace_back("offset");
  return names;
}

std::optional<double> JohnsonFamily(std::string_view word) {
  for (std::size_t i = 0; i < kJohnsonFamilies.size(); ++i) {
    if (LowerCase(word) == LowerCase(kJohnsonFamilies[i])) return static_cast<double>(i + 1);
  }
  return std::nullopt;
}

// Reads a text from left to right.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  NotedVariable Variable() {
    const std::size_t tilde = text_.find('~');
    if (tilde == std::string_view::npos)
      Fail(0, "expected a name, '~' and a distribution, as in h ~ normal(50.2, 0.05)");
    return VariableUpTo(tilde);
  }

  // The name ends before the '~' at this place.
  NotedVariable VariableUpTo(std::size_t tilde) {
    NotedVariable variable;
    variable.name = Trim(text_.substr(0, tilde));
    if (variable.name.empty()) Fail(0, "expected the name of a variable before '~'");
    place_ = tilde + 1;
    variable.distribution = Distribution();
    return variable;
  }

  NotedDistribution Distribution() {
    const DistributionFacts& facts = FactsNamed();
    noted_.code = facts.code;
    Values(facts);
    const std::size_t values = place_;
    Bounds();
    SkipBlanks();
    if (place_ < text_.size()) Fail(place_, "expected nothing more, or 'in [MIN, MAX]'");
    CheckConsistent(facts, values);
    return std::move(noted_);
  }

 private:
  [[noreturn]] void Fail(std::size_t place, const std::string& what) const {
    throw NotationError(text_, place, what);
  }

  void SkipBlanks() {
    while (place_ < text_.size() && (text_[place_] == ' ' || text_[place_] == '\t')) ++place_;
  }
  bool Take(char c) {
    SkipBlanks();
    if (place_ >= text_.size() || text_[place_] != c) return false;
    ++place_;
    return true;
  }
  void Expect(char c, const std::string& why) {
    if (!Take(c)) Fail(place_, "expected '" + std::string(1, c) + "' " + why);
  }

  const DistributionFacts& FactsNamed() {
    SkipBlanks();
    start_ = place_;
    const std::size_t open = std::min(text_.find('(', place_), text_.size());
    const std::string name(Trim(text_.substr(place_, open - place_)));
    if (name.empty()) Fail(place_, "expected a distribution: one of " + AllDistributionNames());
    const NamedDistribution* distribution = FindDistribution(name);
    if (distribution == nullptr) {
      std::vector<std::string> names;
      for (const NamedDistribution& known : kNamedDistributions) names.push_back(known.name);
      const std::string nearest = NearestName(name, names);
      const std::string hint = nearest.empty() ? "." : "; did you mean " + nearest + "?";
      Fail(place_, "no distribution is called " + Quoted(name) + hint +
                       " The distributions are: " + AllDistributionNames());
    }
    place_ = open;
    return EntryOf(static_cast<DistributionCode>(distribution - kNamedDistributions.data())).facts;
  }

  std::string Takes(const DistributionFacts& facts) const {
    return TypeName(facts) + " takes " + ParameterNames(facts.code);
  }

  void Values(const DistributionFacts& facts) {
    Expect('(', "; " + Takes(facts));
    if (facts.isUserDefined) {
      Groups(facts);
    } else {
      Parameters(facts);
    }
  }

  // What stands up to a separator, without blanks at its ends; `place_` is then at the separator.
  std::string_view Item(std::string_view separators) {
    SkipBlanks();
    const std::size_t end = std::min(text_.find_first_of(separators, place_), text_.size());
    const std::string_view item = Trim(text_.substr(place_, end - place_));
    itemPlace_ = place_;
    place_ = end;
    return item;
  }

  double Value(std::string_view item, std::string_view name, ParameterRange range,
               const DistributionFacts& facts) {
    std::optional<double> value = ParseNumber(item);
    if (!value && range == ParameterRange::kJohnsonFamily) value = JohnsonFamily(item);
    if (!value || !IsInRange(*value, range)) {
      Fail(itemPlace_, "expected " + std::string(RangeText(range)) + " for " + std::string(name) + ", got " +
                           (item.empty() ? "nothing" : Quoted(item)) + "; " + Takes(facts));
    }
    return *value;
  }

  void Groups(const DistributionFacts& facts) {
    const std::size_t group = facts.ParameterCount();
    do {
      const std::size_t inGroup = noted_.values.size() % group;
      if (facts.code == DistributionCode::kHistogram && inGroup == 0) {
        Level(facts);
        continue;
      }
      const ParameterFacts& parameter = facts.parameters[inGroup];
      noted_.values.push_back(Value(Item(",:;)"), parameter.name, parameter.range, facts));
    } while (Take(',') || Take(':') || Take(';'));
    Expect(')', "after the last value");
    if (noted_.values.size() % group != 0)
      Fail(place_ - 1, "the last group is not complete; " + Takes(facts));
  }

  // The number or the text of a level, which none before it has.
  void Level(const DistributionFacts& facts) {
    const auto text = QuotedText();
    const std::string_view item = text ? std::string_view(*text) : Item(",:;)");
    const auto number = text ? std::nullopt : ParseNumber(item);
    const bool isFirst = noted_.values.empty();
    if (!isFirst && number.has_value() != noted_.levels.empty())
      Fail(itemPlace_,
           "levels must be all numbers or all texts; a text that is spelled like a number needs quotes");
    if (number || item.empty()) {
      noted_.values.push_back(Value(item, "code", ParameterRange::kFinite, facts));
    } else {
      noted_.values.push_back(static_cast<double>(noted_.levels.size() + 1));
      noted_.levels.emplace_back(item);
    }
    if (IsLastLevelKnown()) Fail(itemPlace_, "the level " + std::string(item) + " is there twice");
  }

  // Whether the level that was read last is there already.
  bool IsLastLevelKnown() const {
    if (!noted_.levels.empty()) {
      const auto last = noted_.levels.end() - 1;
      return std::find(noted_.levels.begin(), last, *last) != last;
    }
    for (std::size_t i = 0; i + 1 < noted_.values.size(); i += 2) {  // codes and proportions in turn
      if (noted_.values[i] == noted_.values.back()) return true;
    }
    return false;
  }

  // The text between the double quotes that stand here; nothing if none do.
  std::optional<std::string> QuotedText() {
    SkipBlanks();
    if (place_ >= text_.size() || text_[place_] != '"') return std::nullopt;
    itemPlace_ = place_;
    std::string quoted;
    for (++place_; place_ < text_.size(); ++place_) {
      const bool isQuote = text_[place_] == '"';
      if (isQuote && !text_.substr(place_ + 1).starts_with('"')) {
        ++place_;
        return quoted;
      }
      if (isQuote) ++place_;
      quoted += text_[place_];
    }
    Fail(itemPlace_, "expected another '\"' at the end of the text");
  }

  // The place among the names, by a name or a synonym.
  std::size_t PlaceOf(std::string_view written, const std::vector<std::string>& names,
                      const DistributionFacts& facts) {
    const std::string lower = LowerCase(written);
    auto found = std::ranges::find(names, lower);
    for (const Synonym& synonym : kSynonyms) {
      if (found != names.end()) break;
      if (synonym.written == lower && (!synonym.only || *synonym.only == facts.code))
        found = std::ranges::find(names, synonym.parameter);
    }
    if (found == names.end())
      Fail(itemPlace_, TypeName(facts) + " has no parameter called " + Quoted(written) + "; it takes " +
                           ParameterNames(facts.code));
    return static_cast<std::size_t>(found - names.begin());
  }

  void Parameters(const DistributionFacts& facts) {
    const std::vector<std::string> names = NamesOf(facts);
    std::vector<std::optional<double>> values(names.size());
    std::size_t next = 0;
    bool named = false;
    do {
      std::string_view item = Item(",=)");
      std::size_t parameter = next++;
      if (Take('=')) {
        named = true;
        parameter = PlaceOf(item, names, facts);
        item = Item(",)");
      } else if (named) {
        Fail(itemPlace_, "expected a name and '=': after a named parameter, all others must be named");
      }
      if (parameter >= names.size()) Fail(itemPlace_, "too many values; " + Takes(facts));
      if (values[parameter]) Fail(itemPlace_, names[parameter] + " is given twice");
      const ParameterRange range =
          parameter < facts.ParameterCount() ? facts.parameters[parameter].range : ParameterRange::kFinite;
      values[parameter] = Value(item, names[parameter], range, facts);
    } while (Take(','));
    Expect(')', "after the last parameter");
    for (std::size_t i = 0; i < facts.ParameterCount(); ++i) {
      if (!values[i]) Fail(place_ - 1, names[i] + " is missing; " + Takes(facts));
      noted_.values.push_back(*values[i]);
    }
    if (facts.HasOffset()) noted_.offset = values.back().value_or(0.0);
  }

  std::optional<double> Bound(std::string_view separators) {
    const std::string_view item = Item(separators);
    if (item.empty()) return std::nullopt;
    const auto bound = ParseNumber(item);
    if (!bound) Fail(itemPlace_, "expected a number as a bound, or nothing, got " + Quoted(item));
    return bound;
  }

  void Bounds() {
    SkipBlanks();
    const std::size_t begin = place_;
    if (!text_.substr(place_).starts_with("in")) return;
    place_ += 2;
    Expect('[', "after 'in', as in 'in [0, 100]'");
    noted_.minimum = Bound(",]");
    Expect(',', "between the bounds, as in 'in [0, 100]'; either may be left out");
    noted_.maximum = Bound(",]");
    Expect(']', "after the bounds");
    if (!noted_.levels.empty()) Fail(begin, "bounds do not apply to levels that are texts");
    if (!noted_.minimum && !noted_.maximum) Fail(begin, "expected at least one bound, as in 'in [0, ]'");
    if (noted_.minimum && noted_.maximum && *noted_.minimum >= *noted_.maximum)
      Fail(begin, "the lower bound must be below the upper one");
    boundsPlace_ = begin;
  }

  // The rules that are not about one value alone.
  void CheckConsistent(const DistributionFacts& facts, std::size_t values) {
    const AnyDistribution distribution(facts.code, noted_.values,
                                       IsNotSet(noted_.offset) ? 0.0 : noted_.offset);
    if (const auto wrong = WrongTogether(facts.code, noted_.values))
      Fail(values > 0 ? values - 1 : 0, *wrong);
    const double below = noted_.minimum ? distribution.Cdf(std::nextafter(*noted_.minimum, -HUGE_VAL)) : 0.0;
    const double above = noted_.maximum ? distribution.Complement(*noted_.maximum) : 0.0;
    if (boundsPlace_ && below + above >= 1.0)
      Fail(*boundsPlace_, "the bounds leave nothing of the distribution");
  }

  std::string_view text_;
  std::size_t place_ = 0;
  std::size_t start_ = 0;
  std::size_t itemPlace_ = 0;
  std::optional<std::size_t> boundsPlace_;
  NotedDistribution noted_;
};

std::string ValueText(double value, ParameterRange range) {
  if (range == ParameterRange::kJohnsonFamily)
    return std::string(kJohnsonFamilies.at(static_cast<std::size_t>(value) - 1));
  return ShortestNumber(value);
}

// The number of characters of a text in UTF-8.
std::ptrdiff_t Characters(std::string_view text) {
  constexpr unsigned char kLeadingBits = 0xC0;
  constexpr unsigned char kContinuation = 0x80;
  return std::ranges::count_if(
      text, [](char c) { return (static_cast<unsigned char>(c) & kLeadingBits) != kContinuation; });
}

// As Level reads it.
std::string LevelText(const std::string& level) {
  const bool isPlain = !level.empty() && !ParseNumber(level) && Trim(level) == level &&
                       level.find_first_of(",:;)#\"") == std::string::npos;
  if (isPlain) return level;
  std::string quoted = "\"";
  for (const char c : level) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

}  // namespace

NotationError::NotationError(std::string_view text, std::size_t place, const std::string& what)
    : Error(what,
            "character " + std::to_string(Characters(text.substr(0, place)) + 1) + " of " + Quoted(text)),
      character_(Characters(text.substr(0, place))) {}

NotedDistribution ReadDistribution(std::string_view text) {
  return Reader(text).Distribution();
}

NotedVariable ReadVariable(std::string_view text) {
  return Reader(text).Variable();
}

NotedVariable ReadVariable(const std::string& name, std::string_view distribution) {
  return Reader(name + " ~ " + std::string(distribution)).VariableUpTo(name.size() + 1);
}

std::string NotationOf(const NotedDistribution& distribution) {
  const DistributionFacts& facts = EntryOf(distribution.code).facts;
  const std::size_t group = facts.ParameterCount();
  std::string text = TypeName(facts) + "(";
  for (std::size_t i = 0; i < distribution.values.size(); ++i) {
    const ParameterFacts& parameter = facts.parameters[i % group];
    if (i > 0) text += facts.isUserDefined && i % group != 0 ? ":" : ", ";
    if (!facts.isUserDefined && group > 1) text += std::string(parameter.name) + "=";
    const bool isText = !distribution.levels.empty() && i % group == 0;
    text += isText ? LevelText(distribution.levels.at(i / group))
                   : ValueText(distribution.values[i], parameter.range);
  }
  if (facts.HasOffset() && !IsNotSet(distribution.offset) && distribution.offset != 0)
    text += ", offset=" + ShortestNumber(distribution.offset);
  text += ")";
  if (!distribution.minimum && !distribution.maximum) return text;
  const auto bound = [](const std::optional<double>& value) {
    return value ? ShortestNumber(*value) : std::string();
  };
  return text + " in [" + bound(distribution.minimum) + ", " + bound(distribution.maximum) + "]";
}

std::string NotationOf(const NotedVariable& variable) {
  return variable.name + " ~ " + NotationOf(variable.distribution);
}

std::string ParameterNames(DistributionCode code) {
  const DistributionFacts& facts = EntryOf(code).facts;
  std::string text;
  for (const std::string& name : NamesOf(facts))
    text += (text.empty() ? "" : facts.isUserDefined ? ":" : ", ") + name;
  return facts.isUserDefined ? text + ", …" : text;
}

}  // namespace brenvolt
