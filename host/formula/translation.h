// Our grammar (expression.h) rewritten into the parser's: operators by their other names, variables as x0,
// x1, …; for every character of the result the place that it came from is known, so that a fault found in
// either text is reported at its place in the text that the person wrote.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace mu {
class Parser;
}

namespace brenvolt {

class Translation {
 public:
  // The index of the variable that a name stands for, or nothing.
  using FindVariable = std::function<std::optional<std::size_t>(std::string_view name)>;

  // Throws Error when the source holds something that belongs to no formula; the texts passed must outlive
  // the translation.
  Translation(std::string_view source, FindVariable findVariable, std::string_view sourceName);

  const std::string& Text() const { return text_; }
  // Indices of the variables used.
  const std::set<std::size_t>& Used() const { return used_; }
  static std::string Symbol(std::size_t variable) { return "x" + std::to_string(variable); }

  // A parser of the text that knows the operators and functions of our grammar; the variables used live in
  // `storage(index)`. The text itself is judged at the first evaluation: see Checked.
  std::unique_ptr<mu::Parser> MakeParser(const std::function<double*(std::size_t variable)>& storage) const;
  // Runs `evaluate`, and reports a fault that the parser finds at its place in the source.
  void Checked(const std::function<void()>& evaluate) const;

 private:
  [[noreturn]] void Fail(const std::string& what, std::size_t position) const;
  std::size_t SourcePosition(std::size_t position) const;
  void Emit(std::string_view piece, std::size_t from);
  void TakeToken();
  void TakeQuotedName();
  void TakeWord();
  void TakeNumber();
  void TakeOperator();
  void NoteComparison();
  void Use(std::size_t variable, std::size_t from);

  std::string_view source_;
  FindVariable findVariable_;
  std::string_view sourceName_;
  std::size_t position_ = 0;
  // One for each parenthesis open at the position, and one for the whole: whether there was a comparison
  // since the last and, or, comma.
  std::vector<bool> compared_{false};
  std::string text_;
  std::vector<std::size_t> origin_;
  std::set<std::size_t> used_;
};

}  // namespace brenvolt
