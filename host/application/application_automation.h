// The application as an automation object: what a macro asks a dialog or an analysis for as Application.
// Everything is read-only.
//
//   Name      "Brenvolt"
//   Version   of the system, such as "1.2.0"
//   Module    the file of the analysis module
#pragma once

#include <string>

#include "host/automation/automation_object.h"

namespace brenvolt {

class ApplicationAutomation final : public AutomationObject {
 public:
  explicit ApplicationAutomation(std::string module) : module_(std::move(module)) {}

  const std::string& Module() const { return module_; }

  std::string_view InterfaceName() const override { return "BrvApplication"; }
  std::optional<DispatchId> FindMember(std::string_view name) const override;
  Variant Invoke(DispatchId member, CallKind kind, std::span<const Variant> arguments) override;

 private:
  std::string module_;
};

}  // namespace brenvolt
