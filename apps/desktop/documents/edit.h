// What a person does to a project, as plain data: each edit can be carried out, undone by the edits that carrying it out
// returns, and written to a journal (edit_stream.h).
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/tables/editing/sheet_structure.h"

namespace brenvolt::desktop {

// Everything of a variable but its values.
struct VariableFacts {
  std::string name;
  VariableType type = VariableType::kNumeric;
  double missingCode = GetDefaultMDValue();
  std::map<double, std::string> labels;
  std::vector<std::pair<std::string, std::string>> properties;
};
VariableFacts FactsOf(const Variable& variable);
// The values stay.
void GiveFacts(const VariableFacts& facts, Variable& variable);
// NaN codes are equal.
bool AreSame(const VariableFacts& a, const VariableFacts& b);

// Successive cells of one variable.
struct CellRun {
  std::size_t variable = 0;
  std::size_t firstCase = 0;
  std::vector<double> values;
};

// Sheets go by their names, variables and cases by their places from 0.
struct SetCells {
  std::string sheet;
  std::vector<CellRun> runs;
};
struct SetFacts {
  std::string sheet;
  std::vector<std::pair<std::size_t, VariableFacts>> variables;
};
// Which cases count, and by how much.
struct SetConditions {
  std::string sheet;
  std::optional<std::size_t> weight;
  CaseSelection selection;
};
struct AddVariables {
  std::string sheet;
  std::size_t at = 0;
  SheetVariables variables;
};
struct DropVariables {
  std::string sheet;
  std::size_t at = 0;
  std::size_t count = 0;
};
struct AddCases {
  std::string sheet;
  std::size_t at = 0;
  SheetCases cases;
};
struct DropCases {
  std::string sheet;
  std::size_t at = 0;
  std::size_t count = 0;
};
struct AddSheet {
  std::size_t at = 0;
  std::unique_ptr<Spreadsheet> sheet;
};
struct DropSheet {
  std::string sheet;
};
struct NameSheet {
  std::string sheet;
  std::string name;
};

using Edit = std::variant<SetCells, SetFacts, SetConditions, AddVariables, DropVariables, AddCases, DropCases,
                          AddSheet, DropSheet, NameSheet>;
using Edits = std::vector<Edit>;

// The sheet that an edit is about: for a new one, its name to be.
const std::string& SheetOf(const Edit& edit);
// True if the edit changes how many variables or cases there are.
bool ChangesShape(const Edit& edit);

// Carries an edit out; the edit that undoes it. Throws Error, and changes nothing, where the project lacks what the edit
// is about, or a sheet of the new name is there.
Edit Apply(Workbook& workbook, Edit edit);
// The same for several in turn, all or none; those that undo them are in the order in which they are to be applied.
Edits Apply(Workbook& workbook, Edits edits);

}  // namespace brenvolt::desktop
