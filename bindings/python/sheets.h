// Spreadsheets and workbooks as Python holds them: references that stay valid whatever becomes of the
// workbook or document that the sheet lies in.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/analysis_table_doc.h"
#include "host/application/application.h"
#include "host/models/prediction_model.h"

namespace brenvolt::python {

class WorkbookRef;

// A sheet that is free, in a workbook, or the table of a document. The sheet of a workbook keeps it alive.
class SheetRef {
 public:
  explicit SheetRef(std::unique_ptr<Spreadsheet> own);
  SheetRef(std::shared_ptr<WorkbookRef> workbook, Spreadsheet& sheet);
  explicit SheetRef(std::shared_ptr<CAnalysisTableDoc> document);

  // Throws Error if the document no longer has its table.
  Spreadsheet& Sheet() const;
  const std::shared_ptr<CAnalysisTableDoc>& Document() const { return document_; }
  const std::shared_ptr<WorkbookRef>& Workbook() const { return workbook_; }
  bool IsFree() const { return own_ != nullptr; }

  // Of predictions: why cases have none, and the outputs of the model that cannot be given.
  std::vector<UnpredictedReason> unpredicted;
  std::vector<UnavailableOutput> unavailable;

 private:
  friend class WorkbookRef;

  std::unique_ptr<Spreadsheet> own_;
  std::shared_ptr<WorkbookRef> workbook_;
  std::shared_ptr<CAnalysisTableDoc> document_;
  Spreadsheet* sheet_ = nullptr;
};

class WorkbookRef : public std::enable_shared_from_this<WorkbookRef> {
 public:
  WorkbookRef() = default;
  explicit WorkbookRef(DataFile file) : file_(std::move(file)) {}

  Workbook& Content() { return file_.workbook; }
  DataFile& File() { return file_; }
  // The project's file; nothing for a workbook that was never saved nor read from a project.
  std::optional<std::filesystem::path> Path() const;

  // The one reference to a sheet of this workbook.
  std::shared_ptr<SheetRef> RefTo(Spreadsheet& sheet);
  // The sheet of that name; the first data sheet if none is given. Throws Error.
  std::shared_ptr<SheetRef> SheetCalled(const std::string& name);
  std::shared_ptr<SheetRef> SheetAt(std::ptrdiff_t index);
  std::vector<std::string> Names() const;
  // Appends a sheet: a free one moves in, any other is copied.
  std::shared_ptr<SheetRef> Add(const std::shared_ptr<SheetRef>& sheet);
  // Takes a sheet out, which is free from then on.
  std::shared_ptr<SheetRef> Remove(const std::string& name);
  // Without a path, to the file that the project was read from or last saved to.
  void Save(const std::optional<std::filesystem::path>& path);

 private:
  DataFile file_;
  std::map<const Spreadsheet*, std::weak_ptr<SheetRef>> refs_;
};

// A variable of a sheet, by its place.
struct VariableRef {
  std::shared_ptr<SheetRef> sheet;
  std::size_t index;

  // Throws Error if the sheet no longer has the variable.
  Variable& Get() const;
};

}  // namespace brenvolt::python
