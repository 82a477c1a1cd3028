#include "host/tables/workbook.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "host/base/error.h"
#include "host/base/files/file_identity.h"
#include "host/base/files/file_replacement.h"
#include "host/base/files/file_turn.h"
#include "host/tables/sqlite_connection.h"
#include "host/tables/workbook_merge.h"
#include "host/tables/workbook_reader.h"
#include "host/tables/workbook_writer.h"

namespace brenvolt {

struct StoredWorkbook {
  std::filesystem::path path;  // links followed
  WorkbookHeader header;
  StoredColumns columns;
  FileIdentity state;    // of the file; none where the file holds more than what is here
  ProjectMemory memory;  // what was read or saved
};

namespace {

// Keeps others from writing to the file about to be replaced, after undoing what a killed writer began there:
// its journal, left next to the new file, would be taken for the journal of the new one. Nothing when there
// is no file, or none that SQLite could write to.
std::optional<Connection> LockFormer(const std::filesystem::path& file, const std::string& named) {
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) return std::nullopt;
  try {
    Connection former(file, named, Connection::Purpose::kWrite);
    if (ReadWorkbookHeader(former).writeAheadLog) former.Execute("PRAGMA journal_mode = DELETE");
    former.Execute("BEGIN IMMEDIATE; SELECT count(*) FROM sqlite_master");
    return former;
  } catch (const DatabaseError& error) {
    if (!error.IsUnusableFile()) throw;
    return std::nullopt;
  }
}

// What SQLite would take for parts of the new file.
void RemoveCompanions(const std::filesystem::path& file, const std::string& named) {
  for (const char* const ending : {"-journal", "-wal", "-shm"}) {
    std::filesystem::path companion = file;
    companion += ending;
    std::error_code failure;
    std::filesystem::remove(companion, failure);
    if (failure)
      throw Error(
          "the project cannot be replaced: " + companion.filename().string() + ": " + failure.message(),
          named);
  }
}

StoredWorkbook SaveAnew(const std::filesystem::path& path, SheetList sheets) {
  FileReplacement replacement(path);
  StoredWorkbook stored;
  stored.path = replacement.Target();
  {
    Connection connection(replacement.Temporary(), path.string(), Connection::Purpose::kWrite);
    stored.columns = WriteNewWorkbook(connection, sheets);
    stored.header = ReadWorkbookHeader(connection);
  }
  const std::optional<Connection> former = LockFormer(replacement.Target(), path.string());
  RemoveCompanions(replacement.Target(), path.string());
  replacement.Commit();
  stored.state = FileIdentity::Of(stored.path);
  return stored;
}

// Nothing when the file has to be rewritten.
std::optional<StoredWorkbook> SaveInPlace(const std::filesystem::path& path, SheetList sheets,
                                          const StoredWorkbook& stored) {
  std::error_code ignored;
  if (stored.path != FollowLinks(path) || !std::filesystem::is_regular_file(stored.path, ignored) ||
      FileIdentity::Of(stored.path) != stored.state) {
    return std::nullopt;
  }
  try {
    Connection connection(stored.path, path.string(), Connection::Purpose::kWrite);
    auto columns = UpdateWorkbook(connection, sheets, stored.columns, stored.header);
    if (!columns) return std::nullopt;
    // The counter rises by one with every transaction. Read from the file now, it might count another
    // program's.
    StoredWorkbook updated;
    updated.path = stored.path;
    updated.header = stored.header;
    updated.columns = std::move(*columns);
    ++updated.header.changeCounter;
    updated.state = FileIdentity::Of(stored.path);
    return updated;
  } catch (const DatabaseError& error) {
    if (!error.IsUnusableFile()) throw;
    return std::nullopt;
  }
}

// The place of the sheet of this name in a list of sheets, or its end.
template <typename Sheets>
auto Locate(Sheets& sheets, std::string_view name) {
  return std::ranges::find(sheets, name, [](const auto& sheet) { return std::string_view(sheet->Name()); });
}

}  // namespace

Workbook::Workbook() = default;
Workbook::~Workbook() = default;
Workbook::Workbook(Workbook&&) noexcept = default;
Workbook& Workbook::operator=(Workbook&&) noexcept = default;

Workbook Workbook::Open(const std::filesystem::path& path) {
  auto stored = std::make_unique<StoredWorkbook>();
  // Before the file is opened: what is put in its place in between shows as a change.
  stored->state = FileIdentity::Of(path);
  Connection connection = OpenWorkbookFile(path);
  WorkbookContent content = ReadWorkbook(connection);
  Workbook workbook;
  workbook.sheets_ = std::move(content.sheets);
  stored->path = FollowLinks(path);
  stored->header = content.header;
  stored->memory = RememberSheets(workbook.sheets_, content.columns);
  stored->columns = std::move(content.columns);
  workbook.stored_ = std::move(stored);
  return workbook;
}

std::vector<SheetOutline> Workbook::Outline(const std::filesystem::path& path) {
  Connection connection = OpenWorkbookFile(path);
  return ReadOutline(connection);
}

bool Workbook::IsWorkbookFile(const std::filesystem::path& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return false;
  try {
    Connection connection(path, path.string(), Connection::Purpose::kRead);
    return ReadWorkbookHeader(connection).IsWorkbook();
  } catch (const DatabaseError&) {
    return false;
  }
}

Spreadsheet* Workbook::Find(std::string_view name) {
  const auto found = Locate(sheets_, name);
  return found == sheets_.end() ? nullptr : found->get();
}

const Spreadsheet* Workbook::Find(std::string_view name) const {
  const auto found = Locate(sheets_, name);
  return found == sheets_.end() ? nullptr : found->get();
}

Spreadsheet& Workbook::Add(std::unique_ptr<Spreadsheet> sheet) {
  const std::string wanted = sheet->Name();
  for (int number = 2; sheet->Name().empty() || Find(sheet->Name()) != nullptr; ++number) {
    sheet->SetName(wanted + " (" + std::to_string(number) + ")");
  }
  return *sheets_.emplace_back(std::move(sheet));
}

std::unique_ptr<Spreadsheet> Workbook::Remove(std::string_view name) {
  const auto found = Locate(sheets_, name);
  if (found == sheets_.end()) return nullptr;
  std::unique_ptr<Spreadsheet> removed = std::move(*found);
  sheets_.erase(found);
  return removed;
}

bool Workbook::IsChangedByOthers(const std::filesystem::path& path) const {
  if (stored_ == nullptr || stored_->path != FollowLinks(path)) return false;
  const FileIdentity present = FileIdentity::Of(stored_->path);
  return present.IsThere() && (present != stored_->state || stored_->header.writeAheadLog);
}

void Workbook::SaveMerged(const std::filesystem::path& path) {
  std::optional<Workbook> merged;
  try {
    merged = Open(path);
  } catch (const DatabaseError& error) {
    if (!error.IsUnusableFile()) throw;
  } catch (const Error&) {
    // What cannot be read is no project that could be kept.
  }
  if (!merged) {
    SaveAlone(path);
    return;
  }
  const ProjectMemory memory = RememberSheets(sheets_, stored_->columns);
  MergeSheets(merged->sheets_, merged->stored_->memory, sheets_, memory, stored_->memory, path.string());
  merged->SaveAlone(path);
  // The file holds what others saved as well, so that every further save merges again.
  stored_->memory = memory;
  stored_->state = {};
}

void Workbook::SaveAlone(const std::filesystem::path& path) {
  std::optional<StoredWorkbook> saved;
  if (stored_) saved = SaveInPlace(path, sheets_, *stored_);
  if (!saved) saved = SaveAnew(path, sheets_);
  saved->memory = RememberSheets(sheets_, saved->columns);
  stored_ = std::make_unique<StoredWorkbook>(std::move(*saved));
}

void Workbook::Save(const std::filesystem::path& path) {
  RequireConsistent(sheets_, path.string());
  const FileTurn turn(path);
  if (IsChangedByOthers(path)) {
    SaveMerged(path);
  } else {
    SaveAlone(path);
  }
}

void Workbook::Replace(const std::filesystem::path& path) {
  RequireConsistent(sheets_, path.string());
  const FileTurn turn(path);
  SaveAlone(path);
}

}  // namespace brenvolt
