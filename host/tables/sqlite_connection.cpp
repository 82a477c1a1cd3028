#include "host/tables/sqlite_connection.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>

#include "host/base/process/interruption.h"

namespace brenvolt {
namespace {

constexpr int kPrimaryCodeMask = 0xff;

struct Switch {
  int option;
  int value;
};
constexpr Switch kDistrust[] = {
    {SQLITE_DBCONFIG_DEFENSIVE, 1},      {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0}, {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
    {SQLITE_DBCONFIG_ENABLE_FKEY, 0},
};

// SQLite's own message may quote the file, line breaks included; this one is a fixed phrase and the system's
// reason.
std::string Describe(int code, int systemError, bool writing) {
  const char* const failed = writing ? "the project cannot be written: " : "the project cannot be read: ";
  switch (code & kPrimaryCodeMask) {
    case SQLITE_NOTADB:
      return "the file is not a project; import makes one of a data file";
    case SQLITE_CORRUPT:
      return "the project is damaged";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return std::string(failed) + "it is in use by another program";
    case SQLITE_FULL:
      return std::string(failed) + "no space left on the device";
    case SQLITE_PERM:
    case SQLITE_READONLY:
      return std::string(failed) + "Permission denied";
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
      if (systemError != 0) return std::string(failed) + std::strerror(systemError);
      [[fallthrough]];
    default:
      return std::string(failed) + sqlite3_errstr(code);
  }
}

sqlite3_file* FileOf(sqlite3* database) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
  return file;
}

}  // namespace

bool DatabaseError::IsUnusableFile() const noexcept {
  const int primary = code_ & kPrimaryCodeMask;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || code_ == SQLITE_READONLY_DBMOVED;
}

bool DatabaseError::NeedsRepair() const noexcept {
  const int primary = code_ & kPrimaryCodeMask;
  return primary == SQLITE_READONLY || primary == SQLITE_CANTOPEN;
}

void Connection::Closer::operator()(sqlite3* database) const noexcept {
  sqlite3_close_v2(database);
}
void Statement::Finalizer::operator()(sqlite3_stmt* statement) const noexcept {
  sqlite3_finalize(statement);
}
void BlobReader::Closer::operator()(sqlite3_blob* blob) const noexcept {
  sqlite3_blob_close(blob);
}

Connection::Connection(const std::filesystem::path& file, std::string named, Purpose purpose)
    : named_(std::move(named)), purpose_(purpose) {
  sqlite3* opened = nullptr;
  const int result =
      sqlite3_open_v2(std::filesystem::absolute(file).c_str(), &opened,
                      purpose == Purpose::kRead ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE, nullptr);
  database_.reset(opened);
  if (result != SQLITE_OK) Fail(result);
  sqlite3_extended_result_codes(opened, 1);
  wait_ = std::make_unique<TurnWait>(named_);
  sqlite3_busy_handler(opened, WaitForOthers, wait_.get());
  for (const Switch& chosen : kDistrust) sqlite3_db_config(opened, chosen.option, chosen.value, nullptr);
}

// A wait begins with its first attempt.
int Connection::WaitForOthers(void* wait, int attempt) noexcept {
  auto& turn = *static_cast<TurnWait*>(wait);
  if (attempt == 0) turn.Begin();
  return turn.Pause() ? 1 : 0;
}

void Connection::Fail(int code) {
  if ((code & kPrimaryCodeMask) == SQLITE_BUSY && InterruptionRequested()) throw UserCancelled();
  const int systemError = database_ ? sqlite3_system_errno(database_.get()) : 0;
  throw DatabaseError(Describe(code, systemError, purpose_ == Purpose::kWrite), named_, code);
}

void Connection::Execute(const char* statements) {
  const int result = sqlite3_exec(database_.get(), statements, nullptr, nullptr, nullptr);
  if (result != SQLITE_OK) Fail(result);
}

Statement Connection::Prepare(std::string_view statement) {
  return {*this, statement};
}

std::int64_t Connection::QueryInteger(std::string_view statement) {
  Statement query = Prepare(statement);
  return query.Step() ? query.ColumnInteger(0) : 0;
}

// Through SQLite's own file: a second descriptor on it would, when closed, drop the locks of this process.
std::size_t Connection::ReadStart(std::span<unsigned char> bytes) {
  const std::size_t count = std::min<std::uint64_t>(bytes.size(), FileSize());
  sqlite3_file* const file = FileOf(database_.get());
  const int result = file->pMethods->xRead(file, bytes.data(), static_cast<int>(count), 0);
  if (result == SQLITE_IOERR_SHORT_READ) return 0;
  if (result != SQLITE_OK) Fail(result);
  return count;
}

std::uint64_t Connection::FileSize() {
  sqlite3_file* const file = FileOf(database_.get());
  sqlite3_int64 size = 0;
  const int result = file->pMethods->xFileSize(file, &size);
  if (result != SQLITE_OK) Fail(result);
  return static_cast<std::uint64_t>(size);
}

Statement::Statement(Connection& connection, std::string_view text) : connection_(&connection) {
  sqlite3_stmt* prepared = nullptr;
  const int result = sqlite3_prepare_v2(connection.database_.get(), text.data(),
                                        static_cast<int>(text.size()), &prepared, nullptr);
  statement_.reset(prepared);
  if (result != SQLITE_OK) connection.Fail(result);
}

void Statement::Require(int code) {
  if (code != SQLITE_OK) connection_->Fail(code);
}

Statement& Statement::Bind(int parameter, std::int64_t value) {
  Require(sqlite3_bind_int64(statement_.get(), parameter, value));
  return *this;
}

Statement& Statement::Bind(int parameter, double value) {
  Require(sqlite3_bind_double(statement_.get(), parameter, value));
  return *this;
}

Statement& Statement::BindNull(int parameter) {
  Require(sqlite3_bind_null(statement_.get(), parameter));
  return *this;
}

Statement& Statement::BindText(int parameter, std::string_view text) {
  const char* const start = text.empty() ? "" : text.data();  // a null pointer would bind NULL
  Require(sqlite3_bind_text64(statement_.get(), parameter, start, text.size(), SQLITE_STATIC, SQLITE_UTF8));
  return *this;
}

Statement& Statement::BindBlob(int parameter, std::span<const std::byte> bytes) {
  Require(sqlite3_bind_blob64(statement_.get(), parameter, bytes.data(), bytes.size(), SQLITE_STATIC));
  return *this;
}

bool Statement::Step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) connection_->Fail(result);
  return false;
}

void Statement::Run() {
  while (Step()) {
  }
  Reset();
}

void Statement::Reset() {
  Require(sqlite3_reset(statement_.get()));
}

int Statement::ColumnType(int column) const {
  return sqlite3_column_type(statement_.get(), column);
}
std::int64_t Statement::ColumnInteger(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}
double Statement::ColumnReal(int column) const {
  return sqlite3_column_double(statement_.get(), column);
}

std::string_view Statement::ColumnBytes(int column) const {
  const void* const bytes = sqlite3_column_blob(statement_.get(), column);
  if (bytes == nullptr) return {};
  return {static_cast<const char*>(bytes),
          static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

BlobReader::BlobReader(Connection& connection, const char* table, const char* column)
    : connection_(&connection), table_(table), column_(column) {}

std::size_t BlobReader::Seek(std::int64_t row) {
  int result = SQLITE_OK;
  if (blob_) {
    result = sqlite3_blob_reopen(blob_.get(), row);
  } else {
    sqlite3_blob* opened = nullptr;
    result = sqlite3_blob_open(connection_->database_.get(), "main", table_, column_, row, 0, &opened);
    blob_.reset(opened);
  }
  // SQLITE_ERROR: no such row, or its value is not a blob.
  if (result != SQLITE_OK) connection_->Fail(result == SQLITE_ERROR ? SQLITE_CORRUPT : result);
  return static_cast<std::size_t>(sqlite3_blob_bytes(blob_.get()));
}

void BlobReader::Read(std::span<std::byte> bytes) {
  const int result = sqlite3_blob_read(blob_.get(), bytes.data(), static_cast<int>(bytes.size()), 0);
  if (result != SQLITE_OK) connection_->Fail(result);
}

}  // namespace brenvolt
