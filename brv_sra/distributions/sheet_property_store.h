// The property store over a host spreadsheet.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "brv_sra/distributions/variable_properties.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Reads and writes the properties of the sheet's variables. The sheet must outlive the store. A variable
// number that the sheet does not have has no properties and an empty name; setting one changes nothing.
class SheetPropertyStore : public VariablePropertyStore {
 public:
  explicit SheetPropertyStore(Spreadsheet& sheet) : sheet_(&sheet) {}

  std::optional<std::string> Get(int variableNumber, std::string_view key) const override;
  void Set(int variableNumber, std::string_view key, const std::string& value) override;
  void Remove(int variableNumber, std::string_view key) override;
  std::string VariableName(int variableNumber) const override;

 private:
  Variable* Find(int variableNumber) const;

  Spreadsheet* sheet_;
};

}  // namespace brenvolt::sra
