// The property store over a host spreadsheet.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "brv_sra/distributions/variable_properties.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// What people call a distribution.
using DistributionNames = std::string_view (*)(DistributionCode);

// Reads and writes the properties of the sheet's variables. The sheet must outlive the store. A variable
// number that the sheet does not have has no properties and an empty name; setting one changes nothing.
class SheetPropertyStore : public VariablePropertyStore {
 public:
  SheetPropertyStore(Spreadsheet& sheet, DistributionNames names) : sheet_(&sheet), names_(names) {}

  std::optional<std::string> Get(int variableNumber, std::string_view key) const override;
  void Set(int variableNumber, std::string_view key, const std::string& value) override;
  void Remove(int variableNumber, std::string_view key) override;
  std::string VariableName(int variableNumber) const override;
  std::string_view NameOf(DistributionCode code) const override { return names_(code); }
  const Spreadsheet& Sheet() const { return *sheet_; }

 private:
  Variable* Find(int variableNumber) const;

  Spreadsheet* sheet_;
  DistributionNames names_;
};

}  // namespace brenvolt::sra
