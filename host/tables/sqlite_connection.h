// SQLite behind three small owners: a connection, a prepared statement, a readable blob. Every failure is a
// DatabaseError with one line for a person; its Where() is the file as the caller of the program named it.
//
// Connections distrust the file: its views and triggers do not run, and its schema may not call functions
// with side effects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/base/error.h"
#include "host/base/files/file_turn.h"

struct sqlite3;
struct sqlite3_blob;
struct sqlite3_stmt;

namespace brenvolt {

class DatabaseError : public Error {
 public:
  DatabaseError(const std::string& what, std::string where, int code)
      : Error(what, std::move(where)), code_(code) {}
  // SQLite's extended result code.
  int Code() const noexcept { return code_; }
  // True when only a connection that may write can read the file: a killed writer left its journal, or another program
  // keeps a log of what it writes.
  bool NeedsRepair() const noexcept;
  // True when the file itself is at fault: damaged, not a database, or no longer the file under its name.
  bool IsUnusableFile() const noexcept;

 private:
  int code_;
};

class Statement;

class Connection {
 public:
  enum class Purpose { kRead, kRepair, kWrite };

  // Opens an existing file, which must be a regular one. `named` takes its place in errors. A connection for
  // reading writes nothing; one for repair is for reading as well, but undoes what a killed writer began, or fails
  // where it may not. While others use the file, all wait as long as the process is to (file_turn.h).
  Connection(const std::filesystem::path& file, std::string named, Purpose purpose);

  // Runs statements that give no rows of interest.
  void Execute(const char* statements);
  Statement Prepare(std::string_view statement);
  // The integer in the first column of the first row, or 0 without a row.
  std::int64_t QueryInteger(std::string_view statement);

  // Reads the bytes of the file itself from its start, past all locks; how many there were, at most
  // bytes.size().
  std::size_t ReadStart(std::span<unsigned char> bytes);
  std::uint64_t FileSize();

  const std::string& Name() const { return named_; }
  // Throws the DatabaseError for a result code.
  [[noreturn]] void Fail(int code);

 private:
  friend class Statement;
  friend class BlobReader;
  struct Closer {
    void operator()(sqlite3* database) const noexcept;
  };
  static int WaitForOthers(void* wait, int attempt) noexcept;

  std::unique_ptr<TurnWait> wait_;  // SQLite knows its place
  std::unique_ptr<sqlite3, Closer> database_;
  std::string named_;
  Purpose purpose_;
};

// A statement; must not outlive its connection. Parameters count from 1, columns of a row from 0.
class Statement {
 public:
  Statement& Bind(int parameter, std::int64_t value);
  Statement& Bind(int parameter, double value);
  Statement& BindNull(int parameter);
  // The bytes must stay until the next Run or Reset.
  Statement& BindText(int parameter, std::string_view text);
  Statement& BindBlob(int parameter, std::span<const std::byte> bytes);

  // Steps to the next row; false when there is none.
  bool Step();
  // Executes to the end and readies the statement for the next parameters.
  void Run();
  void Reset();

  // One of SQLITE_INTEGER, SQLITE_FLOAT, SQLITE_TEXT, SQLITE_BLOB, SQLITE_NULL.
  int ColumnType(int column) const;
  std::int64_t ColumnInteger(int column) const;
  double ColumnReal(int column) const;
  // Text or blob as its bytes, valid until the next step.
  std::string_view ColumnBytes(int column) const;

 private:
  friend class Connection;
  Statement(Connection& connection, std::string_view text);
  void Require(int code);

  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const noexcept;
  };
  Connection* connection_;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

// Reads blobs of one column of one table straight into the caller's memory. Must not outlive its connection.
class BlobReader {
 public:
  BlobReader(Connection& connection, const char* table, const char* column);
  // Turns to the blob of a row; its size in bytes.
  std::size_t Seek(std::int64_t row);
  // Reads the whole of the blob that Seek turned to; bytes.size() must be its size.
  void Read(std::span<std::byte> bytes);

 private:
  struct Closer {
    void operator()(sqlite3_blob* blob) const noexcept;
  };
  Connection* connection_;
  const char* table_;
  const char* column_;
  std::unique_ptr<sqlite3_blob, Closer> blob_;
};

}  // namespace brenvolt
