#include "host/analysis/analysis_table_doc.h"

#include <array>

#include "host/base/error.h"

namespace brenvolt {
namespace {

using Arguments = std::span<const Variant>;

std::size_t IndexFrom(const Variant& number, std::size_t count, const char* what) {
  const std::int32_t index = number.ToInteger();
  if (index < 1 || static_cast<std::size_t>(index) > count) {
    throw Error("no " + std::string(what) + " " + std::to_string(index));
  }
  return static_cast<std::size_t>(index - 1);
}

const Variable& VariableOf(const Spreadsheet& table, const Variant& number) {
  return table.VariableAt(IndexFrom(number, table.VariableCount(), "variable"));
}

struct Member {
  std::string_view name;
  std::size_t indexes;
  Variant (*get)(const Spreadsheet&, Arguments);
};

// Members in the order of their dispatch numbers, from 1.
constexpr std::array<Member, 7> kMembers{{
    {"Title", 0, [](const Spreadsheet& t, Arguments) { return Variant(t.Title()); }},
    {"NumberOfCases", 0,
     [](const Spreadsheet& t, Arguments) { return Variant(static_cast<std::int64_t>(t.CaseCount())); }},
    {"NumberOfVariables", 0,
     [](const Spreadsheet& t, Arguments) { return Variant(static_cast<std::int64_t>(t.VariableCount())); }},
    {"VariableName", 1,
     [](const Spreadsheet& t, Arguments a) { return Variant(VariableOf(t, a[0]).Name()); }},
    {"CaseName", 1,
     [](const Spreadsheet& t, Arguments a) {
       return Variant(std::string(t.CaseName(IndexFrom(a[0], t.CaseCount(), "case"))));
     }},
    {"Value", 2,
     [](const Spreadsheet& t, Arguments a) {
       return Variant(VariableOf(t, a[1]).Values()[IndexFrom(a[0], t.CaseCount(), "case")]);
     }},
    {"Text", 2,
     [](const Spreadsheet& t, Arguments a) {
       const Variable& variable = VariableOf(t, a[1]);
       const double value = variable.Values()[IndexFrom(a[0], t.CaseCount(), "case")];
       return Variant(std::string(variable.Label(value).value_or(std::string_view())));
     }},
}};

}  // namespace

std::optional<DispatchId> CAnalysisTableDoc::FindMember(std::string_view name) const {
  for (std::size_t i = 0; i < kMembers.size(); ++i) {
    if (kMembers[i].name == name) return static_cast<DispatchId>(i + 1);
  }
  return std::nullopt;
}

Variant CAnalysisTableDoc::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  if (member < 1 || static_cast<std::size_t>(member) > kMembers.size())
    throw Error("no such member", "Spreadsheet");
  const Member& found = kMembers[static_cast<std::size_t>(member - 1)];
  if (kind != CallKind::kGet) throw Error("is read-only", "Spreadsheet." + std::string(found.name));
  if (arguments.size() != found.indexes)
    throw Error("wrong number of arguments", "Spreadsheet." + std::string(found.name));
  return found.get(*table_, arguments);
}

}  // namespace brenvolt
