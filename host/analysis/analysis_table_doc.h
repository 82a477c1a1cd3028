// A spreadsheet as a document: what an analysis takes as input and hands back as output.
#pragma once

#include <memory>
#include <utility>

#include "host/automation/automation_object.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

class CAnalysisTableDoc : public AutomationObject {
 public:
  explicit CAnalysisTableDoc(std::unique_ptr<Spreadsheet> table) : table_(std::move(table)) {}

  Spreadsheet& Table() { return *table_; }
  const Spreadsheet& Table() const { return *table_; }
  // False once the spreadsheet was handed out.
  bool HasTable() const { return table_ != nullptr; }
  // Hands the spreadsheet out, for instance into a project; the document is empty afterwards.
  std::unique_ptr<Spreadsheet> ReleaseTable() { return std::move(table_); }

  std::string_view InterfaceName() const override { return "Spreadsheet"; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;

 private:
  std::unique_ptr<Spreadsheet> table_;
};

}  // namespace brenvolt
