// What automation asks of the next result by the Results… members of a dialog. It counts once, for the next result that
// is made, and each part for a result in which it has a meaning.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/automation/automation_object.h"
#include "host/automation/variant.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Which cases a result is made of: those of a condition or by their numbers, or all others; of these, those with one of
// the codes of a variable.
struct CaseChoice {
  std::string condition;
  std::vector<std::int32_t> numbers;  // from 1
  bool leavesOut = false;
  Variant codeVariable;  // its name, or its number from 1; empty without codes
  std::vector<Variant> codes;

  bool HasSelection() const { return !condition.empty() || !numbers.empty(); }
  bool IsGiven() const { return HasSelection() || leavesOut || !codes.empty(); }
};

struct ResultRequest {
  std::optional<std::int32_t> kind;  // a constant of OuptutType
  std::vector<std::string> columns;  // identifiers or headings
  CaseChoice cases;
  std::vector<double> values;
  std::filesystem::path file;

  // Takes what is put into a Results… member; nothing (Empty) takes a former put back. Throws Error for what the member
  // does not take, and nothing changes.
  void Take(DispatchId member, const Variant& value);
  // Throws Error that names the first part that a result has left unused, as it has no meaning for that.
  void RequireUsed() const;
};

// Which cases of a sheet meet a condition over its variables, 1 or 0 for each; a missing value meets none. Throws Error
// that points at the fault of the condition in the text that `sourceName` names.
std::vector<std::uint8_t> CasesMeeting(const std::string& condition, const Spreadsheet& sheet,
                                       std::string_view sourceName);

// Which cases of a sheet are chosen, 1 or 0 for each. Throws Error for a condition that cannot be evaluated, a case or a
// variable that the sheet does not have, and where no case is left.
std::vector<std::uint8_t> ChosenCases(const CaseChoice& choice, const Spreadsheet& sheet);

// A copy of a sheet that has these of its variables, in that order, and the chosen cases; all cases if `chosen` is empty.
std::unique_ptr<Spreadsheet> PartOf(const Spreadsheet& sheet, const std::vector<std::size_t>& variables,
                                    const std::vector<std::uint8_t>& chosen);
// Where the columns of a table are, by identifier or heading. Throws Error that lists them for one that is not there.
std::vector<std::size_t> PlacesOfColumns(const Spreadsheet& table, const std::vector<std::string>& columns);

}  // namespace brenvolt
