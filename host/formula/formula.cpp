#include "host/formula/formula.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdint>

#include "host/base/almost_equal.h"
#include "host/base/parallel.h"
#include "host/formula/compiler.h"
#include "host/formula/lexer.h"

namespace brenvolt {
namespace {

constexpr std::size_t kCasesPerTask = 32 * Program::kBlock;

// The index of the variable that a name means; the case number is the index one past the last variable.
std::optional<std::size_t> Find(std::string_view name, bool quoted, std::span<const std::string_view> names) {
  const auto found = std::ranges::find(names, name);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  if (quoted || name.size() < 2 || name.size() > 9 || (name[0] != 'v' && name[0] != 'V')) return std::nullopt;
  std::size_t number = 0;
  for (const char c : name.substr(1)) {
    if (c < '0' || c > '9') return std::nullopt;
    number = 10 * number + static_cast<std::size_t>(c - '0');
  }
  if (number == 0) return names.size();
  return number <= names.size() ? std::optional(number - 1) : std::nullopt;
}

// The values that count as equal to a missing-data code (AlmostEqual) lie between two doubles.
struct CodeRange {
  explicit CodeRange(double code) : low(code), high(code) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    for (std::int64_t step = 0; step < kAlmostEqualUlps; ++step) {
      low = std::nextafter(low, -kLargest);
      high = std::nextafter(high, kLargest);
    }
  }
  double low;
  double high;
};

void CopyWithoutCode(std::span<const double> values, const CodeRange& code, std::span<double> out) {
  for (std::size_t i = 0; i < out.size(); ++i) {
    // Without a branch, so that the loop is vectorised.
    const int above = values[i] >= code.low ? 1 : 0;
    const int below = values[i] <= code.high ? 1 : 0;
    out[i] = (above & below) != 0 ? kMissingResult : values[i];
  }
}

}  // namespace

Formula::Formula(std::string_view text, std::span<const std::string_view> names, std::string_view sourceName,
                 std::size_t begin)
    : program_(std::make_shared<const Program>(Compile(
          text, [names](std::string_view name, bool quoted) { return Find(name, quoted, names); }, sourceName,
          begin))),
      caseNumber_(names.size()) {
  std::ranges::copy_if(program_->Variables(), std::back_inserter(used_),
                       [this](std::size_t variable) { return variable != caseNumber_; });
}

void Formula::Evaluate(std::span<const FormulaColumn> columns, std::span<double> out,
                       std::size_t firstCase) const {
  assert(columns.size() >= caseNumber_);
  if (out.empty()) return;
  ParallelBlocks(out.size(), kCasesPerTask, [&](std::size_t begin, std::size_t end) {
    EvaluateRange(columns, begin, firstCase, out.subspan(begin, end - begin));
  });
}

std::vector<double> Formula::Evaluate(std::span<const FormulaColumn> columns, std::size_t cases) const {
  std::vector<double> out(cases);
  Evaluate(columns, out);
  return out;
}

void Formula::EvaluateRange(std::span<const FormulaColumn> columns, std::size_t begin, std::size_t firstCase,
                            std::span<double> out) const {
  const auto variables = program_->Variables();
  const std::size_t block = std::min(out.size(), Program::kBlock);
  auto workspace = program_->MakeWorkspace();
  std::vector<double> copies(variables.size() * block);
  std::vector<const double*> inputs(variables.size());
  for (std::size_t done = 0; done < out.size(); done += block) {
    const std::size_t count = std::min(block, out.size() - done);
    const std::size_t first = begin + done;
    for (std::size_t v = 0; v < variables.size(); ++v) {
      const std::span<double> copy(copies.data() + v * block, count);
      inputs[v] = copy.data();
      if (variables[v] == caseNumber_) {
        for (std::size_t i = 0; i < count; ++i) copy[i] = static_cast<double>(firstCase + first + i);
        continue;
      }
      const FormulaColumn& column = columns[variables[v]];
      if (std::isfinite(column.missingCode)) {
        CopyWithoutCode(column.values.subspan(first, count), CodeRange(column.missingCode), copy);
      } else {
        inputs[v] = column.values.data() + first;
      }
    }
    const std::span<double> results = out.subspan(done, count);
    program_->Run(inputs, workspace, results);
    for (double& value : results) value = std::isfinite(value) ? value : kMissingResult;
  }
}

FormulaAssignment SplitAssignment(std::string_view text, std::string_view sourceName) {
  Lexer lexer(text, sourceName, 0);
  const TokenKind kind = lexer.Current().kind;
  if (kind != TokenKind::kWord && kind != TokenKind::kQuotedName) return {};
  const std::string name = lexer.Current().name;
  lexer.Advance();
  if (lexer.At("==")) return {};
  const std::size_t sign = lexer.At(":=") ? 2 : (lexer.At("=") ? 1 : 0);
  return sign == 0 ? FormulaAssignment{} : FormulaAssignment{name, lexer.Current().begin + sign};
}

}  // namespace brenvolt
