// A spreadsheet: variables (columns) over common cases (rows), with names, a title, case weights and
// selection. Variables and cases are numbered from 1 where a person or an automation client names them, from
// 0 in this class.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/variable.h"

namespace brenvolt {

enum class SheetKind : std::uint8_t {
  kData,
  kMatrix  // a matrix file: a square matrix followed by four rows of summaries
};

// Which cases an analysis may use. The text is what the person wrote; the mask is what it means for the
// present values, made by whoever evaluates formulas. A selection without a mask admits every case.
struct CaseSelection {
  bool enabled = false;
  std::string condition;
  std::vector<std::uint8_t> accepted;  // one flag per case, or empty
};

class Spreadsheet {
 public:
  // `variables` columns named "Var1", "Var2", … of `cases` zeros.
  explicit Spreadsheet(std::string name, std::size_t cases = 0, std::size_t variables = 0);

  const std::string& Name() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  SheetKind Kind() const { return kind_; }
  void SetKind(SheetKind kind) { kind_ = kind; }
  const std::string& Title() const { return title_; }
  void SetTitle(std::string title) { title_ = std::move(title); }
  // The heading of the column of case names.
  const std::string& Header() const { return header_; }
  void SetHeader(std::string header) { header_ = std::move(header); }

  std::size_t CaseCount() const { return cases_; }
  std::size_t VariableCount() const { return variables_.size(); }
  const Variable& VariableAt(std::size_t index) const { return variables_[index]; }
  Variable& VariableAt(std::size_t index) { return variables_[index]; }
  // The index of the variable with exactly this name, or nothing.
  std::optional<std::size_t> FindVariable(std::string_view name) const;

  // Appends a variable; its size must be the number of cases unless this is the first variable, which sets
  // it. Throws Error on another size.
  Variable& AddVariable(Variable variable);
  // Appends cases, missing in every variable.
  void AddCases(std::size_t count);

  // Case names. A sheet that never had one set has none; once one is set, the others are empty. Numbered
  // cases are named "1", "2", … without taking memory, until a name is set.
  bool HasCaseNames() const { return areCasesNumbered_ || !caseNames_.empty(); }
  bool AreCasesNumbered() const { return areCasesNumbered_; }
  std::string CaseName(std::size_t index) const;
  void SetCaseName(std::size_t index, std::string name);
  void SetCaseNames(std::vector<std::string> names);
  void NumberCases();
  // What programs know a row of a result table by, as Variable::Identifier does a column; mostly empty.
  std::string_view CaseIdentifier(std::size_t index) const {
    return index < caseIdentifiers_.size() ? std::string_view(caseIdentifiers_[index]) : std::string_view();
  }
  void SetCaseIdentifiers(std::vector<std::string> identifiers) { caseIdentifiers_ = std::move(identifiers); }

  // The index of the variable whose values weight the cases, or nothing.
  std::optional<std::size_t> WeightVariable() const { return weightVariable_; }
  void SetWeightVariable(std::optional<std::size_t> index) { weightVariable_ = index; }
  const CaseSelection& Selection() const { return selection_; }
  void SetSelection(CaseSelection selection) { selection_ = std::move(selection); }
  bool IsCaseSelected(std::size_t index) const {
    return !selection_.enabled || selection_.accepted.empty() || selection_.accepted[index] != 0;
  }

 private:
  std::string name_;
  SheetKind kind_ = SheetKind::kData;
  std::string title_;
  std::string header_;
  std::size_t cases_ = 0;
  std::vector<Variable> variables_;
  std::vector<std::string> caseNames_;
  bool areCasesNumbered_ = false;
  std::vector<std::string> caseIdentifiers_;
  std::optional<std::size_t> weightVariable_;
  CaseSelection selection_;
};

}  // namespace brenvolt
