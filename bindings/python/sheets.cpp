#include "bindings/python/sheets.h"

#include "host/base/error.h"

namespace brenvolt::python {

SheetRef::SheetRef(std::unique_ptr<Spreadsheet> own) : own_(std::move(own)), sheet_(own_.get()) {}

SheetRef::SheetRef(std::shared_ptr<WorkbookRef> workbook, Spreadsheet& sheet)
    : workbook_(std::move(workbook)), sheet_(&sheet) {}

SheetRef::SheetRef(std::shared_ptr<CAnalysisTableDoc> document) : document_(std::move(document)) {}

Spreadsheet& SheetRef::Sheet() const {
  if (document_ == nullptr) return *sheet_;
  if (!document_->HasTable()) throw Error("the document no longer has a spreadsheet");
  return document_->Table();
}

std::optional<std::filesystem::path> WorkbookRef::Path() const {
  if (!file_.isProject) return std::nullopt;
  return file_.path;
}

std::shared_ptr<SheetRef> WorkbookRef::RefTo(Spreadsheet& sheet) {
  auto& known = refs_[&sheet];
  if (auto ref = known.lock()) return ref;
  auto ref = std::make_shared<SheetRef>(shared_from_this(), sheet);
  known = ref;
  return ref;
}

std::shared_ptr<SheetRef> WorkbookRef::SheetCalled(const std::string& name) {
  return RefTo(file_.Sheet(name));
}

std::shared_ptr<SheetRef> WorkbookRef::SheetAt(std::ptrdiff_t index) {
  const auto count = static_cast<std::ptrdiff_t>(Content().SheetCount());
  const std::ptrdiff_t place = index < 0 ? index + count : index;
  if (place < 0 || place >= count) throw std::out_of_range("no sheet " + std::to_string(index));
  return RefTo(Content().SheetAt(static_cast<std::size_t>(place)));
}

std::vector<std::string> WorkbookRef::Names() const {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < file_.workbook.SheetCount(); ++i)
    names.push_back(file_.workbook.SheetAt(i).Name());
  return names;
}

std::shared_ptr<SheetRef> WorkbookRef::Add(const std::shared_ptr<SheetRef>& sheet) {
  if (!sheet->IsFree()) return RefTo(Content().Add(std::make_unique<Spreadsheet>(sheet->Sheet())));
  Content().Add(std::move(sheet->own_));
  sheet->workbook_ = shared_from_this();
  refs_[sheet->sheet_] = sheet;
  return sheet;
}

std::shared_ptr<SheetRef> WorkbookRef::Remove(const std::string& name) {
  Spreadsheet* sheet = Content().Find(name);
  if (sheet == nullptr) throw std::out_of_range(name);
  auto ref = RefTo(*sheet);
  refs_.erase(sheet);
  ref->own_ = Content().Remove(name);
  ref->workbook_.reset();
  return ref;
}

void WorkbookRef::Save(const std::optional<std::filesystem::path>& path) {
  if (!path && !file_.isProject) throw std::invalid_argument("the workbook has no file yet: give a path");
  const std::filesystem::path target = path.value_or(file_.path);
  Content().Save(target);
  file_.path = target;
  file_.isProject = true;
}

Variable& VariableRef::Get() const {
  Spreadsheet& table = sheet->Sheet();
  if (index >= table.VariableCount()) throw Error("the sheet no longer has this variable", table.Name());
  return table.VariableAt(index);
}

}  // namespace brenvolt::python
