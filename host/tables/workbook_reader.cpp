#include "host/tables/workbook_reader.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <system_error>
#include <unordered_set>

#include "host/base/work_watch.h"

namespace brenvolt {
namespace {

constexpr std::uint32_t kUtf8 = 1;
constexpr std::int64_t kMostCases = std::int64_t{1} << 40;
// A number alone, with no value to it in the file, must not make others work or take memory for it.
constexpr std::size_t kMostCasesWithoutVariables = 10'000'000;

// Names from the file that are in `how` may contain anything; the message stays one line.
[[noreturn]] void Damaged(const Connection& connection, std::string how) {
  std::ranges::replace_if(
      how, [](unsigned char c) { return c < ' '; }, '?');
  throw Error("the project is damaged: " + how, connection.Name());
}

void RequireRegularFile(const std::filesystem::path& path) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  if (std::filesystem::is_directory(status))
    throw Error("a folder stands in place of the project", path.string());
  if (std::filesystem::is_regular_file(status)) return;
  if (std::filesystem::exists(status))
    throw Error("a device or pipe stands in place of the project", path.string());
  throw Error("the project cannot be read: " +
                  (failure ? failure : std::make_error_code(std::errc::no_such_file_or_directory)).message(),
              path.string());
}

void RequireReadableFormat(const WorkbookHeader& header, const std::string& name) {
  if (!header.IsWorkbook()) throw Error("the file is not a project; import makes one of a data file", name);
  if (header.formatVersion > static_cast<std::uint32_t>(Workbook::kFormatVersion)) {
    throw Error("was written by a newer version of this program (format " +
                    std::to_string(header.formatVersion) + ", this version reads formats up to " +
                    std::to_string(Workbook::kFormatVersion) + ")",
                name);
  }
  if (header.formatVersion == 0) throw Error("the project is damaged: it has no format version", name);
}

void RequireTables(Connection& connection) {
  Statement find = connection.Prepare("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ?");
  for (const TableDefinition& table : kWorkbookTables) {
    find.BindText(1, table.name);
    if (!find.Step() || find.ColumnBytes(0) != table.sql) {
      Damaged(connection, "its table \"" + std::string(table.name) + "\" is missing or not as it should be");
    }
    find.Reset();
  }
}

// Guards against malformed rows. Each byte of content is in the file once, so what was read can never exceed the
// size of the file: a file that claims more, or leads in circles, ends here before it takes memory.
class ContentReader {
 public:
  explicit ContentReader(Connection& connection)
      : connection_(connection),
        blobs_(connection, "column_chunk", "doubles"),
        variables_(connection.Prepare("SELECT id, name, type, missing_code, checksum FROM variable "
                                      "WHERE sheet = ? ORDER BY position")),
        sizes_(connection.Prepare("SELECT sum(length(doubles)) FROM column_chunk WHERE variable = ?")),
        chunks_(
            connection.Prepare("SELECT id, position FROM column_chunk WHERE variable = ? ORDER BY position")),
        labels_(connection.Prepare("SELECT value, text FROM label WHERE variable = ? ORDER BY value")),
        properties_(
            connection.Prepare("SELECT key, value FROM property WHERE variable = ? ORDER BY position")),
        caseNames_(
            connection.Prepare("SELECT position, name FROM case_name WHERE sheet = ? ORDER BY position")),
        budget_(static_cast<std::uint64_t>(connection.QueryInteger("PRAGMA page_count")) *
                static_cast<std::uint64_t>(connection.QueryInteger("PRAGMA page_size"))),
        steps_(connection.QueryInteger("SELECT count(*) FROM column_chunk")) {}

  WorkbookContent Read();
  std::vector<SheetOutline> Outline();

 private:
  [[noreturn]] void Damaged(const std::string& how) const { brenvolt::Damaged(connection_, how); }
  void Spend(std::uint64_t bytes);
  bool Step(Statement& rows);
  std::int64_t Integer(const Statement& row, int column) const;
  std::string Text(const Statement& row, int column);
  std::optional<double> Real(const Statement& row, int column) const;
  SheetKind Kind(const Statement& row, int column);
  std::size_t Cases(const Statement& row, int column) const;

  std::unique_ptr<Spreadsheet> ReadSheet(const Statement& row);
  CaseSelection ReadSelection(const Statement& row, std::size_t cases);
  void ReadCaseNames(std::int64_t sheetId, Spreadsheet& sheet);
  void ReadVariables(std::int64_t sheetId, std::optional<std::int64_t> weightId, Spreadsheet& sheet);
  Variable ReadVariable(std::size_t cases);
  std::vector<double> ReadColumn(std::int64_t id, const std::string& name, std::size_t cases);
  void RequireDistinctName(const std::string& name);

  Connection& connection_;
  BlobReader blobs_;
  Statement variables_;
  Statement sizes_;
  Statement chunks_;
  Statement labels_;
  Statement properties_;
  Statement caseNames_;
  std::uint64_t budget_;
  WatchedSteps steps_;  // parts of columns
  StoredColumns columns_;
  std::unordered_set<std::string> names_;
};

void ContentReader::Spend(std::uint64_t bytes) {
  if (bytes > budget_) Damaged("it claims more content than it can hold");
  budget_ -= bytes;
}

bool ContentReader::Step(Statement& rows) {
  if (!rows.Step()) return false;
  Spend(1);
  return true;
}

std::int64_t ContentReader::Integer(const Statement& row, int column) const {
  if (row.ColumnType(column) != SQLITE_INTEGER)
    Damaged("it has a text or nothing in place of a whole number");
  return row.ColumnInteger(column);
}

// A blob also counts as text, since tools store the content of a file so.
std::string ContentReader::Text(const Statement& row, int column) {
  const int type = row.ColumnType(column);
  if (type != SQLITE_TEXT && type != SQLITE_BLOB) Damaged("it has a number or nothing in place of a text");
  const std::string_view text = row.ColumnBytes(column);
  Spend(text.size());
  return std::string(text);
}

// A number, or as a blob the bytes of one that SQLite's numbers cannot tell from others; nothing for NULL.
std::optional<double> ContentReader::Real(const Statement& row, int column) const {
  const int type = row.ColumnType(column);
  if (type == SQLITE_NULL) return std::nullopt;
  if (type == SQLITE_FLOAT || type == SQLITE_INTEGER) return row.ColumnReal(column);
  double number = 0;
  const std::string_view bytes = row.ColumnBytes(column);
  if (type != SQLITE_BLOB || bytes.size() != sizeof number) Damaged("it has a text in place of a number");
  std::memcpy(&number, bytes.data(), sizeof number);
  return number;
}

SheetKind ContentReader::Kind(const Statement& row, int column) {
  const std::string kind = Text(row, column);
  if (kind == "data") return SheetKind::kData;
  if (kind == "matrix") return SheetKind::kMatrix;
  Damaged("it has a sheet of unknown kind");
}

std::size_t ContentReader::Cases(const Statement& row, int column) const {
  const std::int64_t cases = Integer(row, column);
  if (cases < 0 || cases > kMostCases) Damaged("it has a sheet of " + std::to_string(cases) + " cases");
  return static_cast<std::size_t>(cases);
}

void ContentReader::RequireDistinctName(const std::string& name) {
  if (!names_.insert(name).second) Damaged("it has two sheets of the same name");
}

WorkbookContent ContentReader::Read() {
  WorkbookContent content;
  Statement sheets = connection_.Prepare(
      "SELECT id, name, kind, title, header, cases, weight_variable, selection_enabled, selection_condition, "
      "selection_accepted, cases_numbered FROM sheet ORDER BY id");
  while (Step(sheets)) content.sheets.push_back(ReadSheet(sheets));
  content.columns = std::move(columns_);
  content.header = ReadWorkbookHeader(connection_);
  return content;
}

std::vector<SheetOutline> ContentReader::Outline() {
  std::vector<SheetOutline> outline;
  Statement sheets = connection_.Prepare(
      "SELECT name, kind, title, cases, (SELECT count(*) FROM variable WHERE variable.sheet = sheet.id) "
      "FROM sheet ORDER BY id");
  while (Step(sheets)) {
    SheetOutline& sheet = outline.emplace_back();
    sheet.name = Text(sheets, 0);
    RequireDistinctName(sheet.name);
    sheet.kind = Kind(sheets, 1);
    sheet.title = Text(sheets, 2);
    sheet.cases = Cases(sheets, 3);
    sheet.variables = static_cast<std::size_t>(sheets.ColumnInteger(4));
  }
  return outline;
}

std::unique_ptr<Spreadsheet> ContentReader::ReadSheet(const Statement& row) {
  const std::int64_t id = Integer(row, 0);
  const std::string name = Text(row, 1);
  RequireDistinctName(name);
  const std::size_t cases = Cases(row, 5);
  auto sheet = std::make_unique<Spreadsheet>(name, cases);
  sheet->SetKind(Kind(row, 2));
  sheet->SetTitle(Text(row, 3));
  sheet->SetHeader(Text(row, 4));
  std::optional<std::int64_t> weight;
  if (row.ColumnType(6) != SQLITE_NULL) weight = Integer(row, 6);
  sheet->SetSelection(ReadSelection(row, cases));
  ReadCaseNames(id, *sheet);
  if (Integer(row, 10) != 0) {
    if (sheet->HasCaseNames()) Damaged("its numbered cases have names");
    sheet->NumberCases();
  }
  ReadVariables(id, weight, *sheet);
  if (sheet->VariableCount() == 0 && cases > kMostCasesWithoutVariables)
    Damaged("it has a sheet of " + std::to_string(cases) + " cases without any variable");
  return sheet;
}

CaseSelection ContentReader::ReadSelection(const Statement& row, std::size_t cases) {
  CaseSelection selection;
  selection.enabled = Integer(row, 7) != 0;
  selection.condition = Text(row, 8);
  if (row.ColumnType(9) == SQLITE_NULL) return selection;
  const std::string_view accepted = row.ColumnBytes(9);
  if (accepted.size() != cases) Damaged("a case selection does not match the number of cases");
  Spend(accepted.size());
  selection.accepted.assign(accepted.begin(), accepted.end());
  return selection;
}

void ContentReader::ReadCaseNames(std::int64_t sheetId, Spreadsheet& sheet) {
  std::vector<std::string> names;
  caseNames_.Bind(1, sheetId);
  while (Step(caseNames_)) {
    names.push_back(Text(caseNames_, 1));
    if (Integer(caseNames_, 0) != static_cast<std::int64_t>(names.size())) Damaged("a case name is missing");
  }
  caseNames_.Reset();
  if (!names.empty() && names.size() != sheet.CaseCount())
    Damaged("the case names do not match the number of cases");
  sheet.SetCaseNames(std::move(names));
}

void ContentReader::ReadVariables(std::int64_t sheetId, std::optional<std::int64_t> weightId,
                                  Spreadsheet& sheet) {
  const std::size_t cases = sheet.CaseCount();
  variables_.Bind(1, sheetId);
  while (Step(variables_)) {
    if (weightId == Integer(variables_, 0)) sheet.SetWeightVariable(sheet.VariableCount());
    sheet.AddVariable(ReadVariable(cases));
  }
  variables_.Reset();
  if (weightId && !sheet.WeightVariable()) Damaged("the weight variable of a sheet is missing");
}

Variable ContentReader::ReadVariable(std::size_t cases) {
  const std::int64_t id = Integer(variables_, 0);
  Variable variable(Text(variables_, 1), 0);
  const std::string type = Text(variables_, 2);
  if (type != "numeric" && type != "text") Damaged("it has a variable of unknown type");
  variable.SetType(type == "text" ? VariableType::kText : VariableType::kNumeric);
  if (const auto code = Real(variables_, 3)) variable.SetMissingCode(*code);

  variable.AssignValues(ReadColumn(id, variable.Name(), cases));
  if (variables_.ColumnType(4) != SQLITE_NULL) {
    const std::int64_t checksum = Integer(variables_, 4);
    if (checksum != ColumnChecksum(variable.Values()))
      Damaged("the values of \"" + variable.Name() + "\" have changed");
    columns_.emplace(variable.ContentStamp(), StoredColumn{id, checksum});
  }

  labels_.Bind(1, id);
  while (Step(labels_)) {
    const auto value = Real(labels_, 0);
    if (!value) Damaged("a label has no value");
    variable.SetLabel(*value, Text(labels_, 1));
  }
  labels_.Reset();

  properties_.Bind(1, id);
  while (Step(properties_)) {
    const std::string key = Text(properties_, 0);
    variable.SetProperty(key, Text(properties_, 1));
  }
  properties_.Reset();
  return variable;
}

std::vector<double> ContentReader::ReadColumn(std::int64_t id, const std::string& name, std::size_t cases) {
  Spend(std::uint64_t{cases} * sizeof(double));
  // Before memory is taken for what a small file may only claim.
  sizes_.Bind(1, id);
  const std::int64_t size = sizes_.Step() ? sizes_.ColumnInteger(0) : 0;
  sizes_.Reset();
  if (size < static_cast<std::int64_t>(cases * sizeof(double)))
    Damaged("it has fewer values of \"" + name + "\" than cases");
  std::vector<double> values(cases);
  std::span<std::byte> rest = std::as_writable_bytes(std::span(values));
  chunks_.Bind(1, id);
  for (std::int64_t position = 1; Step(chunks_); ++position) {
    if (Integer(chunks_, 1) != position) Damaged("a part of the values of \"" + name + "\" is missing");
    const std::size_t size = blobs_.Seek(Integer(chunks_, 0));
    if (size > rest.size()) Damaged("it has more values of \"" + name + "\" than cases");
    blobs_.Read(rest.first(size));
    steps_.Done();
    rest = rest.subspan(size);
  }
  chunks_.Reset();
  if (!rest.empty()) Damaged("it has fewer values of \"" + name + "\" than cases");
  return values;
}

}  // namespace

namespace {

Connection OpenFor(Connection::Purpose purpose, const std::filesystem::path& path) {
  Connection connection(path, path.string(), purpose);
  // Before SQLite looks at the content, which it could not understand from a newer version.
  RequireReadableFormat(ReadWorkbookHeader(connection), connection.Name());
  connection.Execute("PRAGMA cell_size_check = ON; BEGIN");
  RequireTables(connection);
  const WorkbookHeader header = ReadWorkbookHeader(connection);
  if (!header.writeAheadLog && header.size > connection.FileSize()) Damaged(connection, "its end is missing");
  if (header.textEncoding != kUtf8) Damaged(connection, "its texts are not UTF-8");
  return connection;
}

}  // namespace

// A journal may belong to the file that stands under the name now, while the file that was opened has been replaced:
// taking it for one's own would destroy it. So it is undone only in turn, when nobody replaces the file.
Connection OpenWorkbookFile(const std::filesystem::path& path) {
  RequireRegularFile(path);
  try {
    return OpenFor(Connection::Purpose::kRead, path);
  } catch (const DatabaseError& error) {
    if (!error.NeedsRepair()) throw;
  }
  const FileTurn turn(path);
  return OpenFor(Connection::Purpose::kRepair, path);
}

WorkbookContent ReadWorkbook(Connection& connection) {
  return ContentReader(connection).Read();
}

std::vector<SheetOutline> ReadOutline(Connection& connection) {
  return ContentReader(connection).Outline();
}

}  // namespace brenvolt
