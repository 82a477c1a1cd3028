#include "host/tables/spreadsheet.h"

#include "host/base/error.h"

namespace brenvolt {

Spreadsheet::Spreadsheet(std::string name, std::size_t cases, std::size_t variables)
    : name_(std::move(name)), cases_(cases) {
  variables_.reserve(variables);
  for (std::size_t i = 0; i < variables; ++i) variables_.emplace_back("Var" + std::to_string(i + 1), cases);
}

std::optional<std::size_t> Spreadsheet::FindVariable(std::string_view name) const {
  for (std::size_t i = 0; i < variables_.size(); ++i) {
    if (variables_[i].Name() == name) return i;
  }
  return std::nullopt;
}

Variable& Spreadsheet::AddVariable(Variable variable) {
  if (variables_.empty() && cases_ == 0) cases_ = variable.Size();
  if (variable.Size() != cases_) {
    throw Error("variable " + variable.Name() + " has " + std::to_string(variable.Size()) +
                    " cases, the sheet has " + std::to_string(cases_),
                name_);
  }
  return variables_.emplace_back(std::move(variable));
}

void Spreadsheet::AddCases(std::size_t count) {
  cases_ += count;
  for (Variable& variable : variables_) variable.Resize(cases_, variable.MissingCode());
  if (!caseNames_.empty()) caseNames_.resize(cases_);
  if (!selection_.accepted.empty()) selection_.accepted.resize(cases_, 1);
}

std::string Spreadsheet::CaseName(std::size_t index) const {
  if (areCasesNumbered_) return std::to_string(index + 1);
  return caseNames_.empty() ? std::string() : caseNames_[index];
}

void Spreadsheet::SetCaseName(std::size_t index, std::string name) {
  if (areCasesNumbered_) {
    for (std::size_t i = 0; i < cases_; ++i) caseNames_.push_back(CaseName(i));
    areCasesNumbered_ = false;
  }
  caseNames_.resize(cases_);
  caseNames_[index] = std::move(name);
}

void Spreadsheet::SetCaseNames(std::vector<std::string> names) {
  if (!names.empty() && names.size() != cases_) {
    throw Error(std::to_string(names.size()) + " case names for " + std::to_string(cases_) + " cases", name_);
  }
  caseNames_ = std::move(names);
  areCasesNumbered_ = false;
}

void Spreadsheet::NumberCases() {
  caseNames_ = {};
  areCasesNumbered_ = true;
}

}  // namespace brenvolt
