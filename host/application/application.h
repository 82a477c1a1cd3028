// The application object: the analysis module it has loaded, and the data files it opens.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/analysis/analysis_support.h"
#include "host/base/process/dynamic_library.h"
#include "host/tables/formats/data_file_reader.h"
#include "host/tables/workbook.h"

namespace brenvolt {

class Application {
 public:
  // `userInterface` must outlive the application.
  explicit Application(UserInterface& userInterface) : userInterface_(userInterface) {}

  UserInterface& Interface() { return userInterface_; }

  // The module's file as installed: BRENVOLT_MODULE if it is set, otherwise libbrv_sra.so next to the host's
  // own library.
  static std::filesystem::path DefaultModulePath();
  // Loads the module at first use; throws Error when it cannot be loaded or is not a module.
  DynamicLibrary& Module();

  // A new analysis over `document`, at its first step; `document` must outlive it. Throws Error when the
  // module makes none.
  std::unique_ptr<CAnalysisSupport> NewAnalysis(CAnalysisDoc& document);

 private:
  UserInterface& userInterface_;
  std::unique_ptr<DynamicLibrary> module_;
};

// A data file that is open: a project, or a sheet read from another format and kept in a project without a
// file.
struct DataFile {
  std::filesystem::path path;
  Workbook workbook;
  bool isProject = false;
  // Of other formats, what was found by looking (data_file_reader.h).
  std::string readAs;
  std::vector<ReadingNote> doubts;

  // The sheet called `name`; the first data sheet if the name is empty. Throws Error naming the file.
  Spreadsheet& Sheet(const std::string& name);
};

// Opens a project or a data file of another format, told apart by content. Throws as ReadDataFile does.
DataFile OpenDataFile(const std::filesystem::path& path, const TextOptions& options);

// Evaluates a sheet's selection condition into its mask of accepted cases. Throws Error pointing at the fault
// of the condition; the sheet's selection then stays as it was.
void ApplySelection(Spreadsheet& sheet, const std::string& condition);

}  // namespace brenvolt
