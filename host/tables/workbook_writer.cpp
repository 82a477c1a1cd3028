#include "host/tables/workbook_writer.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <set>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "host/tables/workbook.h"

namespace brenvolt {
namespace {

// A small project takes small pages, of which each table needs at least one; long columns go fastest in large
// ones.
constexpr std::uint64_t kSmallProjectBytes = std::uint64_t{1} << 20;
constexpr int kSmallPage = 4096;
constexpr int kLargePage = 65536;
// Unused space, in addition to as much as the content takes, from which a file is rewritten.
constexpr std::uint64_t kToleratedWaste = std::uint64_t{1} << 20;

struct PlannedColumn {
  StoredColumn place;
  bool kept = false;
};

// For each variable, sheet by sheet, where its values are or will be.
struct ColumnPlan {
  std::vector<PlannedColumn> columns;
  std::set<std::int64_t> keptIds;
  std::uint64_t keptBytes = 0;
};

ColumnPlan PlanColumns(SheetList sheets, StoredColumns stored) {
  ColumnPlan plan;
  for (const auto& sheet : sheets) {
    for (std::size_t i = 0; i < sheet->VariableCount(); ++i) {
      PlannedColumn& column = plan.columns.emplace_back();
      const auto found = stored.find(sheet->VariableAt(i).ContentStamp());
      if (found == stored.end()) continue;
      column = {found->second, true};
      plan.keptIds.insert(found->second.variable);
      plan.keptBytes += sheet->VariableAt(i).Size() * sizeof(double);
      stored.erase(found);  // a copy of the variable needs a column of its own
    }
  }
  std::int64_t next = 0;
  for (PlannedColumn& column : plan.columns) {
    if (column.kept) continue;
    do ++next;
    while (plan.keptIds.contains(next));
    column.place.variable = next;
  }
  return plan;
}

// A number as SQLite keeps it; as a blob of its bytes if SQLite would change it (NaN, negative zero).
void BindExactly(Statement& statement, int parameter, const double& value) {
  if (std::isnan(value) || (value == 0 && std::signbit(value))) {
    statement.BindBlob(parameter, std::as_bytes(std::span(&value, 1)));
  } else {
    statement.Bind(parameter, value);
  }
}

class ContentWriter {
 public:
  explicit ContentWriter(Connection& connection)
      : sheet_(connection.Prepare("INSERT INTO sheet VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")),
        variable_(connection.Prepare("INSERT INTO variable VALUES (?, ?, ?, ?, ?, ?, ?)")),
        chunk_(connection.Prepare("INSERT INTO column_chunk(variable, position, doubles) VALUES (?, ?, ?)")),
        label_(connection.Prepare("INSERT INTO label VALUES (?, ?, ?)")),
        property_(connection.Prepare("INSERT INTO property VALUES (?, ?, ?, ?)")),
        caseName_(connection.Prepare("INSERT INTO case_name VALUES (?, ?, ?)")) {}

  StoredColumns Write(SheetList sheets, ColumnPlan plan);

 private:
  void WriteSheet(std::int64_t id, const Spreadsheet& sheet, std::span<const PlannedColumn> columns);
  void WriteVariable(std::int64_t sheetId, std::int64_t position, const Variable& variable,
                     const StoredColumn& place);
  void WriteColumn(std::int64_t id, std::span<const double> values);

  Statement sheet_;
  Statement variable_;
  Statement chunk_;
  Statement label_;
  Statement property_;
  Statement caseName_;
};

StoredColumns ContentWriter::Write(SheetList sheets, ColumnPlan plan) {
  StoredColumns stored;
  std::span<PlannedColumn> rest = plan.columns;
  std::int64_t sheetId = 0;
  for (const auto& sheet : sheets) {
    const std::span<PlannedColumn> columns = rest.first(sheet->VariableCount());
    rest = rest.subspan(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const Variable& variable = sheet->VariableAt(i);
      if (!columns[i].kept) {
        columns[i].place.checksum = ColumnChecksum(variable.Values());
        WriteColumn(columns[i].place.variable, variable.Values());
      }
      stored.emplace(variable.ContentStamp(), columns[i].place);
    }
    WriteSheet(++sheetId, *sheet, columns);
  }
  return stored;
}

void ContentWriter::WriteSheet(std::int64_t id, const Spreadsheet& sheet,
                               std::span<const PlannedColumn> columns) {
  const CaseSelection& selection = sheet.Selection();
  sheet_.Bind(1, id).BindText(2, sheet.Name());
  sheet_.BindText(3, sheet.Kind() == SheetKind::kMatrix ? "matrix" : "data");
  sheet_.BindText(4, sheet.Title()).BindText(5, sheet.Header());
  sheet_.Bind(6, static_cast<std::int64_t>(sheet.CaseCount()))
      .Bind(7, std::int64_t{sheet.AreCasesNumbered()});
  sheet_.BindNull(8);
  if (sheet.WeightVariable()) sheet_.Bind(8, columns[*sheet.WeightVariable()].place.variable);
  sheet_.Bind(9, std::int64_t{selection.enabled}).BindText(10, selection.condition).BindNull(11);
  if (!selection.accepted.empty()) sheet_.BindBlob(11, std::as_bytes(std::span(selection.accepted)));
  sheet_.Run();

  for (std::size_t i = 0; i < columns.size(); ++i) {
    WriteVariable(id, static_cast<std::int64_t>(i) + 1, sheet.VariableAt(i), columns[i].place);
  }
  if (!sheet.HasCaseNames() || sheet.AreCasesNumbered()) return;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    caseName_.Bind(1, id).Bind(2, static_cast<std::int64_t>(i) + 1).BindText(3, sheet.CaseName(i)).Run();
  }
}

void ContentWriter::WriteVariable(std::int64_t sheetId, std::int64_t position, const Variable& variable,
                                  const StoredColumn& place) {
  const double code = variable.MissingCode();
  variable_.Bind(1, place.variable).Bind(2, sheetId).Bind(3, position).BindText(4, variable.Name());
  variable_.BindText(5, variable.Type() == VariableType::kText ? "text" : "numeric").BindNull(6);
  if (std::bit_cast<std::uint64_t>(code) != std::bit_cast<std::uint64_t>(GetDefaultMDValue())) {
    BindExactly(variable_, 6, code);
  }
  variable_.Bind(7, place.checksum).Run();

  for (const auto& [value, text] : variable.Labels()) {
    label_.Bind(1, place.variable);
    BindExactly(label_, 2, value);
    label_.BindText(3, text).Run();
  }
  std::int64_t propertyPosition = 0;
  for (const auto& [key, text] : variable.Properties()) {
    property_.Bind(1, place.variable).Bind(2, ++propertyPosition).BindText(3, key).BindText(4, text).Run();
  }
}

void ContentWriter::WriteColumn(std::int64_t id, std::span<const double> values) {
  for (std::int64_t position = 1; !values.empty(); ++position) {
    const auto chunk = values.first(std::min(values.size(), kChunkValues));
    chunk_.Bind(1, id).Bind(2, position).BindBlob(3, std::as_bytes(chunk)).Run();
    values = values.subspan(chunk.size());
  }
}

// True when the columns to keep are in the file as they were when they were found or written.
bool HoldsColumns(Connection& connection, const ColumnPlan& plan) {
  Statement find = connection.Prepare("SELECT checksum FROM variable WHERE id = ? AND checksum IS NOT NULL");
  for (const PlannedColumn& column : plan.columns) {
    if (!column.kept) continue;
    find.Bind(1, column.place.variable);
    if (!find.Step() || find.ColumnInteger(0) != column.place.checksum) return false;
    find.Reset();
  }
  return true;
}

void RemoveOtherColumns(Connection& connection, const std::set<std::int64_t>& kept) {
  std::vector<std::int64_t> unused;
  Statement present = connection.Prepare("SELECT DISTINCT variable FROM column_chunk");
  while (present.Step()) {
    if (!kept.contains(present.ColumnInteger(0))) unused.push_back(present.ColumnInteger(0));
  }
  Statement remove = connection.Prepare("DELETE FROM column_chunk WHERE variable = ?");
  for (const std::int64_t id : unused) remove.Bind(1, id).Run();
}

}  // namespace

void RequireConsistent(SheetList sheets, const std::string& file) {
  std::unordered_set<std::string_view> names;
  for (const auto& sheet : sheets) {
    const auto fail = [&](const std::string& what) {
      throw Error("the project cannot be written: sheet \"" + sheet->Name() + "\" " + what, file);
    };
    const std::size_t cases = sheet->CaseCount();
    if (!names.insert(sheet->Name()).second) fail("has the name of another sheet");
    if (const auto weight = sheet->WeightVariable(); weight && *weight >= sheet->VariableCount()) {
      fail("weights its cases by a variable that it does not have");
    }
    const std::size_t flags = sheet->Selection().accepted.size();
    if (flags != 0 && flags != cases) fail("has a case selection for another number of cases");
    for (std::size_t i = 0; i < sheet->VariableCount(); ++i) {
      const Variable& variable = sheet->VariableAt(i);
      if (variable.Size() != cases)
        fail("and its variable \"" + variable.Name() + "\" differ in the number of cases");
    }
  }
}

std::uint64_t ColumnBytes(SheetList sheets) {
  std::uint64_t bytes = 0;
  for (const auto& sheet : sheets)
    bytes += std::uint64_t{sheet->CaseCount()} * sheet->VariableCount() * sizeof(double);
  return bytes;
}

StoredColumns WriteNewWorkbook(Connection& connection, SheetList sheets) {
  const int pageSize = ColumnBytes(sheets) < kSmallProjectBytes ? kSmallPage : kLargePage;
  // No journal next to the new file: when writing it fails, it goes as a whole.
  const std::string settings =
      "PRAGMA page_size = " + std::to_string(pageSize) +
      "; PRAGMA encoding = 'UTF-8'; PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF; BEGIN"
      "; PRAGMA application_id = " +
      std::to_string(kWorkbookApplicationId) +
      "; PRAGMA user_version = " + std::to_string(Workbook::kFormatVersion);
  connection.Execute(settings.c_str());
  for (const TableDefinition& table : kWorkbookTables) connection.Execute(std::string(table.sql).c_str());
  connection.Execute(kWorkbookConveniences);
  StoredColumns stored = ContentWriter(connection).Write(sheets, PlanColumns(sheets, {}));
  connection.Execute("COMMIT");
  return stored;
}

std::optional<StoredColumns> UpdateWorkbook(Connection& connection, SheetList sheets,
                                            const StoredColumns& stored, const WorkbookHeader& header) {
  ColumnPlan plan = PlanColumns(sheets, stored);
  if (plan.keptIds.empty()) return std::nullopt;

  connection.Execute("PRAGMA synchronous = EXTRA; BEGIN IMMEDIATE");
  const WorkbookHeader present = ReadWorkbookHeader(connection);
  if (!present.IsWorkbook() || present.writeAheadLog || present.changeCounter != header.changeCounter ||
      present.size > 2 * ColumnBytes(sheets) + kToleratedWaste || !HoldsColumns(connection, plan)) {
    return std::nullopt;
  }
  connection.Execute(
      "DELETE FROM sheet; DELETE FROM variable; DELETE FROM label; DELETE FROM property; DELETE FROM "
      "case_name");
  // First, so that new columns take the place of old ones.
  RemoveOtherColumns(connection, plan.keptIds);
  StoredColumns updated = ContentWriter(connection).Write(sheets, std::move(plan));
  connection.Execute("COMMIT");
  return updated;
}

}  // namespace brenvolt
