// Archives of NumPy arrays: a zip file, not compressed, that holds one .npy file per column, as numpy.savez
// writes and numpy.load reads. Each column can be taken out as a file of its own and mapped into memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/base/files/output_file.h"
#include "host/base/files/scratch_file.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// An archive written column by column, each in pieces. Without Commit the target stays as it was; a pipe or
// device is written directly. All members throw Error naming the target when it cannot be written.
class NumpyArchive {
 public:
  explicit NumpyArchive(const std::filesystem::path& path);
  ~NumpyArchive();
  NumpyArchive(const NumpyArchive&) = delete;
  NumpyArchive& operator=(const NumpyArchive&) = delete;

  // Starts the next column: `length` doubles, which Append then takes, all of them before the next column.
  void BeginColumn(const std::string& name, std::uint64_t length);
  void Append(std::span<const double> values);
  void Commit();

 private:
  struct Stream;

  void Check(std::int64_t result) const;

  std::filesystem::path path_;
  OutputFile file_;
  std::unique_ptr<Stream> stream_;
};

// An archive of a table that comes in pieces, sheets of the same variables in their order: the file is what
// WriteNumpyArchive makes of all their cases together. An archive holds column after column, so that the pieces wait in a
// temporary file, in the folder of the target or, of a pipe or device, in that of temporary files. Without Commit the
// target stays as it was.
class NumpyPieces {
 public:
  explicit NumpyPieces(const std::filesystem::path& path);
  void Append(const Spreadsheet& piece);
  void Commit();

 private:
  std::filesystem::path path_;
  ScratchFile waiting_;  // the columns of the first piece, those of the second, …
  std::vector<std::string> names_;
  std::vector<std::uint64_t> lengths_;  // of the pieces
};

// True for names that end in .npz.
bool IsNumpyArchiveName(const std::filesystem::path& path);

// Writes the variables of a sheet, missing values as NaN; case names and texts are left out.
void WriteNumpyArchive(const Spreadsheet& sheet, const std::filesystem::path& path);

}  // namespace brenvolt
