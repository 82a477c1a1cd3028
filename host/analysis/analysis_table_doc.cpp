#include "host/analysis/analysis_table_doc.h"

#include <array>

#include "host/analysis/read_only_members.h"

namespace brenvolt {
namespace {

using Arguments = std::span<const Variant>;

const Variable& VariableOf(const Spreadsheet& table, const Variant& number) {
  return table.VariableAt(IndexFrom(number, table.VariableCount(), "variable"));
}

constexpr std::array<ReadOnlyMember<Spreadsheet>, 7> kMembers{{
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

constexpr std::span<const ReadOnlyMember<Spreadsheet>> kAllMembers(kMembers);

}  // namespace

std::optional<DispatchId> CAnalysisTableDoc::FindMember(std::string_view name) const {
  return FindReadOnlyMember(kAllMembers, name);
}

Variant CAnalysisTableDoc::Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) {
  return GetReadOnlyMember(kAllMembers, Table(), InterfaceName(), member, kind, arguments);
}

}  // namespace brenvolt
