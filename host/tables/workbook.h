// A project: an ordered list of spreadsheets and matrix files with distinct names, kept in one file (".bvw").
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt {

struct StoredWorkbook;  // what is in which file, known to workbook.cpp

// What a listing says of a sheet.
struct SheetOutline {
  std::string name;
  SheetKind kind = SheetKind::kData;
  std::string title;
  std::size_t cases = 0;
  std::size_t variables = 0;
};

class Workbook {
 public:
  // The newest file format that this program reads and the one that it writes.
  static constexpr int kFormatVersion = 1;

  // An empty project without a file.
  Workbook();
  ~Workbook();
  Workbook(Workbook&&) noexcept;
  Workbook& operator=(Workbook&&) noexcept;

  // Reads a project. Throws Error, naming the file, when it is missing, unreadable, no project, damaged, or
  // written by a newer version of the program.
  static Workbook Open(const std::filesystem::path& path);
  // The sheets of a project file in their order, without reading their data. Throws as Open does.
  static std::vector<SheetOutline> Outline(const std::filesystem::path& path);
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

  // Writes the project to `path` as one transaction: after a failure or a killed process the file holds its
  // old or its new content, never a mixture. A link stays a link: the file that it names is written.
  //
  // If `path` is the file that this project was read from or last saved to, and nobody else wrote to it
  // since, only columns whose content changed are written, into the file as it stands. Otherwise, and when no
  // column could be kept or more than half of the file would be left unused, a new file takes the place of
  // the former one. Equal content in new files gives equal bytes.
  //
  // If others wrote to that file since, what they saved stays, and what was changed here is put into it
  // (workbook_merge.h); the sheets here remain as they are. Programs that save at the same time take turns
  // (file_turn.h); who reads, changes and saves with one FileTurn keeps others out in between.
  //
  // Throws Error, naming the file: it is a folder, device or pipe, may not be written, is in use by another
  // program, the device is full; others changed the same data; also when sheets share a name, or a variable,
  // weight variable or case selection does not match its sheet.
  void Save(const std::filesystem::path& path);
  // The same, but what others wrote is lost: for people who were asked.
  void Replace(const std::filesystem::path& path);

  // Whether `path` is the file that this project was read from or last saved to, and others wrote to it since.
  bool IsChangedByOthers(const std::filesystem::path& path) const;

 private:
  void SaveMerged(const std::filesystem::path& path);
  void SaveAlone(const std::filesystem::path& path);

  std::vector<std::unique_ptr<Spreadsheet>> sheets_;
  std::unique_ptr<StoredWorkbook> stored_;  // what is in the file last read or saved; null without one
};

}  // namespace brenvolt
