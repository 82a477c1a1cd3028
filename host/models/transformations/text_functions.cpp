// The built-in functions over texts, patterns and dates. Letters are taken as ASCII where their case counts.
// Patterns are matched by RE2, whose time is linear in the text: a pattern from a file cannot stall a run.
#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>

#include "host/base/number_text.h"
#include "host/models/transformations/expression_element.h"

namespace brenvolt::pmml {
namespace {

constexpr double kSecondsPerDay = 86400;

// Longer results are missing: functions of functions could make texts that no memory holds.
constexpr std::size_t kLongestText = std::size_t{1} << 16;
constexpr std::size_t kLongestReplacement = 1024;

double NumberOf(const std::string& text, Frame& frame) {
  return text.size() > kLongestText ? kMissing : frame.Pool().Number(text);
}

std::string WithCase(std::string_view text, char first, int shift) {
  constexpr int kLetters = 26;
  std::string result(text);
  for (char& c : result) {
    if (c >= first && c < first + kLetters) c = static_cast<char>(c + shift);
  }
  return result;
}

bool BeginsCharacter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

double Length(std::string_view text) {
  return static_cast<double>(std::ranges::count_if(text, BeginsCharacter));
}

// Characters number `start` (from 1) on, `count` of them.
std::string_view Substring(std::string_view text, double start, double count) {
  std::size_t begin = text.size();
  std::size_t end = text.size();
  double character = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!BeginsCharacter(text[i])) continue;
    ++character;
    if (character == start) begin = i;
    if (character == start + count) {
      end = i;
      break;
    }
  }
  return text.substr(begin, end - begin);
}

std::unique_ptr<re2::RE2> CompilePattern(const Operand& pattern, const Element& at) {
  if (!pattern.literal) at.Fail("a pattern must be a constant");
  constexpr std::int64_t kMostMemory = 1 << 20;
  re2::RE2::Options options(re2::RE2::Quiet);
  options.set_max_mem(kMostMemory);
  auto expression = std::make_unique<re2::RE2>(*pattern.literal, options);
  if (!expression->ok())
    at.Fail("the pattern \"" + *pattern.literal + "\" is not supported: " + expression->error());
  return expression;
}

// A replacement text with groups as $1 in RE2's form.
std::string Rewrite(std::string_view replacement) {
  std::string rewrite;
  for (std::size_t i = 0; i < replacement.size(); ++i) {
    const char c = replacement[i];
    const bool isGroup =
        c == '$' && i + 1 < replacement.size() && replacement[i + 1] >= '0' && replacement[i + 1] <= '9';
    if (isGroup) {
      rewrite += '\\';
    } else if (c == '\\') {
      rewrite += "\\\\";
    } else {
      rewrite += c;
    }
  }
  return rewrite;
}

// A printf conversion of one number, taken apart: the text before, flags with width and precision, the
// conversion letter, and the text after.
struct NumberFormat {
  std::string format;  // for long long or double
  bool isWhole = false;

  std::string Write(double x) const {
    constexpr double kLargest = 9e18;
    if (!isWhole) return FormatNumber(format.c_str(), x);
    if (std::fabs(x) > kLargest) return ShortestNumber(x);
    std::array<char, 256> text{};
    std::snprintf(text.data(), text.size(), format.c_str(), static_cast<long long>(x));
    return text.data();
  }
};

NumberFormat ReadNumberFormat(const Operand& pattern, const Element& at) {
  if (!pattern.literal) at.Fail("a number format must be a constant");
  constexpr std::size_t kLongest = 64;
  constexpr std::size_t kMostDigits = 4;
  const std::string& text = *pattern.literal;
  static const re2::RE2 kShape("([^%]*)%([-+ 0#]*)([0-9]*)((?:\\.[0-9]+)?)([dioxXeEfgG])([^%]*)");
  std::string before;
  std::string flags;
  std::string width;
  std::string precision;
  std::string letter;
  std::string behind;
  const bool fits = text.size() <= kLongest &&
                    re2::RE2::FullMatch(text, kShape, &before, &flags, &width, &precision, &letter, &behind);
  const bool isBounded = width.size() < kMostDigits - 1 && precision.size() < kMostDigits;
  if (!fits || !isBounded) at.Fail("the number format \"" + text + "\" is not supported");
  NumberFormat result;
  result.isWhole = std::string_view("dioxX").find(letter) != std::string_view::npos;
  result.format = before + "%" + flags + width + precision + (result.isWhole ? "ll" : "") + letter + behind;
  return result;
}

// A date with time by a strftime pattern of the conversions below.
std::string WriteDate(std::string_view pattern, double seconds) {
  constexpr int kSixty = 60;
  constexpr int kHundred = 100;
  const double days = std::floor(seconds / kSecondsPerDay);
  const int second = static_cast<int>(seconds - days * kSecondsPerDay);
  const std::chrono::sys_days day(std::chrono::days(static_cast<int>(days)));
  const std::chrono::year_month_day date(day);
  const int year = static_cast<int>(date.year());
  const auto yearDay = (day - std::chrono::sys_days(date.year() / std::chrono::January / 1)).count() + 1;
  std::string result;
  const auto put = [&result](const char* format, int number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, number);
    result += text.data();
  };
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] != '%' || i + 1 == pattern.size()) {
      result += pattern[i];
      continue;
    }
    switch (pattern[++i]) {
      case 'Y':
        put("%04d", year);
        break;
      case 'y':
        put("%02d", ((year % kHundred) + kHundred) % kHundred);
        break;
      case 'm':
        put("%02d", static_cast<int>(static_cast<unsigned>(date.month())));
        break;
      case 'd':
        put("%02d", static_cast<int>(static_cast<unsigned>(date.day())));
        break;
      case 'j':
        put("%03d", static_cast<int>(yearDay));
        break;
      case 'H':
        put("%02d", second / (kSixty * kSixty));
        break;
      case 'M':
        put("%02d", second / kSixty % kSixty);
        break;
      case 'S':
        put("%02d", second % kSixty);
        break;
      default:
        result += pattern[i];
    }
  }
  return result;
}

class Call {
 public:
  Call(const std::string& name, std::span<const Operand> arguments, const Place& place, const Element& at)
      : name_(name), arguments_(arguments), place_(place), at_(at) {}

  std::optional<Operand> Compile() const {
    if (name_ == "uppercase")
      return OfText([](std::string_view text) { return WithCase(text, 'a', 'A' - 'a'); });
    if (name_ == "lowercase")
      return OfText([](std::string_view text) { return WithCase(text, 'A', 'a' - 'A'); });
    if (name_ == "trimBlanks")
      return OfText([](std::string_view text) { return std::string(TrimXml(text)); });
    if (name_ == "stringLength") return NumberOfText(kInteger, Length);
    if (name_ == "substring") return Part();
    if (name_ == "concat") return Joined();
    if (name_ == "matches") return Matches();
    if (name_ == "replace") return Replaced();
    if (name_ == "formatNumber") return FormattedNumber();
    if (name_ == "formatDatetime") return FormattedDate();
    return Dates();
  }

 private:
  void Want(std::size_t count) const {
    if (arguments_.size() != count) at_.Fail("the function " + name_ + " has the wrong number of arguments");
  }
  Operand NewResult(TypeInfo type) const {
    Operand result;
    result.type = type;
    result.opType = type.type == DataType::kInteger ? OpType::kContinuous : OpType::kCategorical;
    result.slot = place_.Build().NewSlot(at_);
    return result;
  }

  // `function`(frame, x) for every value of the first argument that is not missing.
  template <class Function>
  Operand Over(Slot in, TypeInfo type, Function function) const {
    const Operand result = NewResult(type);
    AddStep(place_.program, [in, out = result.slot, function = std::move(function)](Frame& frame) {
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const double x = frame.In(in)[i];
        frame.Out(out)[i] = std::isnan(x) ? kMissing : function(frame, x);
      }
    });
    return result;
  }

  template <class Function>
  Operand OfText(Function function) const {
    Want(1);
    return Over(TextSlot(arguments_[0], place_, at_), kText, [function](Frame& frame, double x) {
      return frame.Pool().Number(function(frame.Pool().Text(x)));
    });
  }

  template <class Function>
  Operand NumberOfText(TypeInfo type, Function function) const {
    Want(1);
    return Over(TextSlot(arguments_[0], place_, at_), type,
                [function](Frame& frame, double x) { return function(frame.Pool().Text(x)); });
  }

  Operand Part() const {
    Want(3);
    const Operand result = NewResult(kText);
    AddStep(place_.program,
            [in = TextSlot(arguments_[0], place_, at_), start = NumberSlot(arguments_[1], place_, at_),
             count = NumberSlot(arguments_[2], place_, at_), out = result.slot](Frame& frame) {
              for (std::size_t i = 0; i < frame.Rows(); ++i) {
                const double x = frame.In(in)[i];
                const double from = frame.In(start)[i];
                const double length = frame.In(count)[i];
                frame.Out(out)[i] = std::isnan(x) || !(from >= 1) || !(length >= 0)
                                        ? kMissing
                                        : frame.Pool().Number(Substring(frame.Pool().Text(x), from, length));
              }
            });
    return result;
  }

  Operand Joined() const {
    std::vector<Slot> slots;
    for (const Operand& argument : arguments_) slots.push_back(TextSlot(argument, place_, at_));
    const Operand result = NewResult(kText);
    AddStep(place_.program, [slots, out = result.slot](Frame& frame) {
      std::string text;
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        text.clear();
        bool isMissing = false;
        for (const Slot slot : slots) {
          const double x = frame.In(slot)[i];
          isMissing = isMissing || std::isnan(x);
          if (!isMissing && text.size() <= kLongestText) text += frame.Pool().Text(x);
        }
        frame.Out(out)[i] = isMissing ? kMissing : NumberOf(text, frame);
      }
    });
    return result;
  }

  Operand Matches() const {
    Want(2);
    const std::shared_ptr<re2::RE2> pattern = CompilePattern(arguments_[1], at_);
    return Over(TextSlot(arguments_[0], place_, at_), kTruth, [pattern](Frame& frame, double x) {
      const std::string_view text = frame.Pool().Text(x);
      return re2::RE2::PartialMatch(re2::StringPiece(text.data(), text.size()), *pattern) ? 1.0 : 0.0;
    });
  }

  Operand Replaced() const {
    Want(3);
    const std::shared_ptr<re2::RE2> pattern = CompilePattern(arguments_[1], at_);
    if (!arguments_[2].literal) at_.Fail("a replacement must be a constant");
    if (arguments_[2].literal->size() > kLongestReplacement) at_.Fail("the replacement is too long");
    const std::string rewrite = Rewrite(*arguments_[2].literal);
    std::string error;
    if (!pattern->CheckRewriteString(rewrite, &error)) at_.Fail("the replacement is not supported: " + error);
    return Over(TextSlot(arguments_[0], place_, at_), kText, [pattern, rewrite](Frame& frame, double x) {
      std::string text(frame.Pool().Text(x));
      if (text.size() > kLongestText) return kMissing;
      re2::RE2::GlobalReplace(&text, *pattern, rewrite);
      return NumberOf(text, frame);
    });
  }

  Operand FormattedNumber() const {
    Want(2);
    return Over(NumberSlot(arguments_[0], place_, at_), kText,
                [format = ReadNumberFormat(arguments_[1], at_)](Frame& frame, double x) {
                  return frame.Pool().Number(format.Write(x));
                });
  }

  // The argument as seconds since 1970-01-01.
  Operand AsSeconds(const Operand& argument) const {
    if (argument.type.type == DataType::kDateTime) return argument;
    if (argument.type.IsText()) return Cast(argument, {DataType::kDateTime}, place_, at_);
    if (argument.type.type != DataType::kDate) at_.Fail("the function " + name_ + " needs a date");
    Operand seconds =
        Over(argument.slot, {DataType::kDateTime}, [](Frame&, double days) { return days * kSecondsPerDay; });
    return seconds;
  }

  Operand FormattedDate() const {
    constexpr double kFarthest = 1e14;  // seconds
    Want(2);
    if (!arguments_[1].literal) at_.Fail("a date format must be a constant");
    const std::string format = *arguments_[1].literal;
    for (std::size_t i = format.find('%'); i != std::string::npos; i = format.find('%', i + 2)) {
      const bool known = i + 1 < format.size() &&
                         std::string_view("YymdjHMS%").find(format[i + 1]) != std::string_view::npos;
      if (!known) at_.Fail("the date format \"" + format + "\" is not supported");
    }
    return Over(AsSeconds(arguments_[0]).slot, kText, [format](Frame& frame, double x) {
      return std::fabs(x) > kFarthest ? kMissing : frame.Pool().Number(WriteDate(format, x));
    });
  }

  std::optional<Operand> Dates() const {
    if (name_ == "dateSecondsSinceMidnight") {
      Want(1);
      if (arguments_[0].type.type == DataType::kTime) return Cast(arguments_[0], kInteger, place_, at_);
      return Over(AsSeconds(arguments_[0]).slot, kInteger,
                  [](Frame&, double x) { return x - std::floor(x / kSecondsPerDay) * kSecondsPerDay; });
    }
    const bool inDays = name_ == "dateDaysSinceYear";
    if (!inDays && name_ != "dateSecondsSinceYear") return std::nullopt;
    Want(2);
    constexpr int kLastYear = 9999;
    const auto year = arguments_[1].literal ? ParseInteger(*arguments_[1].literal) : std::nullopt;
    if (!year || *year < 0 || *year > kLastYear) at_.Fail("the function " + name_ + " needs a year");
    return Over(
        AsSeconds(arguments_[0]).slot, kInteger, [inDays, epoch = DaysToYear(*year)](Frame&, double seconds) {
          return inDays ? std::floor(seconds / kSecondsPerDay) - epoch : seconds - epoch * kSecondsPerDay;
        });
  }

  const std::string& name_;
  std::span<const Operand> arguments_;
  const Place& place_;
  const Element& at_;
};

}  // namespace

std::optional<Operand> CompileTextFunction(const std::string& name, std::span<const Operand> arguments,
                                           const Place& place, const Element& at) {
  return Call(name, arguments, place, at).Compile();
}

}  // namespace brenvolt::pmml
