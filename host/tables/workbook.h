// A project: an ordered list of spreadsheets and matrix files with distinct names, kept in one file (".bvw").
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

class Workbook {
 public:
  // The newest file format that this program reads and the one that it writes.
  static constexpr int kFormatVersion = 1;

  // An empty project without a file.
  Workbook();
  ~Workbook();
  Workbook(Workbook&&) noexcept;
  Workbook& operator=(Workbook&&) noexcept;

  // Reads a project. Throws Error, naming the file, when it is missing, unreadable, no project, damaged, or written
  // by a newer version of the program.
  static Workbook Open(const std::filesystem::path& path);
  // True when the file begins as a project file does; false also when it cannot be read.
  static bool IsWorkbookFile(const std::filesystem::path& path);

  std::size_t SheetCount() const { return sheets_.size(); }
  Spreadsheet& SheetAt(std::size_t index) { return *sheets_[index]; }
  const Spreadsheet& SheetAt(std::size_t index) const { return *sheets_[index]; }
  // The sheet with exactly this name, or null.
  Spreadsheet* Find(std::string_view name);
  const Spreadsheet* Find(std::string_view name) const;

  // Appends a sheet. When its name is taken or empty, it gets the next free of "name (2)", "name (3)", ….
  Spreadsheet& Add(std::unique_ptr<Spreadsheet> sheet);
  // Removes a sheet and hands it out; null when there is none of that name.
  std::unique_ptr<Spreadsheet> Remove(std::string_view name);

  // Writes the project to `path` as one transaction: after a failure or a killed process the file holds its former
  // or its new content, never a mixture. Where `path` is the file that this project was read from or last saved to,
  // only columns whose content changed are written. Throws Error, naming the file.
  void Save(const std::filesystem::path& path);

 private:
  std::vector<std::unique_ptr<Spreadsheet>> sheets_;
  // Where columns already stand in the file at storedPath_: content stamp to row of the file.
  std::filesystem::path storedPath_;
  std::map<std::uint64_t, std::int64_t> storedColumns_;
};

}  // namespace brenvolt
