#include "brv_sra/distributions/sheet_property_store.h"

#include <cstddef>

namespace brenvolt::sra {

std::optional<std::string> SheetPropertyStore::Get(int variableNumber, std::string_view key) const {
  const Variable* const variable = Find(variableNumber);
  if (variable == nullptr) return std::nullopt;
  return variable->Property(key);
}

void SheetPropertyStore::Set(int variableNumber, std::string_view key, const std::string& value) {
  if (Variable* const variable = Find(variableNumber)) variable->SetProperty(key, value);
}

void SheetPropertyStore::Remove(int variableNumber, std::string_view key) {
  if (Variable* const variable = Find(variableNumber)) variable->RemoveProperty(key);
}

std::string SheetPropertyStore::VariableName(int variableNumber) const {
  const Variable* const variable = Find(variableNumber);
  return variable == nullptr ? std::string() : variable->Name();
}

Variable* SheetPropertyStore::Find(int variableNumber) const {
  if (variableNumber < 1 || static_cast<std::size_t>(variableNumber) > sheet_->VariableCount())
    return nullptr;
  return &sheet_->VariableAt(static_cast<std::size_t>(variableNumber) - 1);
}

}  // namespace brenvolt::sra
