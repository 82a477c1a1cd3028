#include "brv_sra/simulation/dialogs/design_defaults_dialog.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "brv_sra/frame/specification_array.h"
#include "brv_sra/resources/design_editor_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

using namespace design_defaults;

bool HasBounds(const DistributionSpecification& specification) {
  return specification.truncateBelow || specification.truncateAbove;
}

// The variables whose bounds do not count because the saved distributions are simulated: "Var1, Var2".
std::string WithoutBounds(const DesignState& design) {
  std::string names;
  for (const DesignedVariable& variable : design.variables) {
    const bool own = variable.own && HasBounds(*variable.own);
    const bool fitted = !variable.fitted.empty() && HasBounds(variable.fitted.front());
    if (variable.isLeftOut || !(own || fitted)) continue;
    names += (names.empty() ? "" : ", ") + variable.name;
  }
  return names;
}

}  // namespace

std::string DesignLine(const DesignedVariable& variable, ParameterSource source) {
  const std::string name = variable.name + ": ";
  if (variable.isLeftOut) return name + std::string(ResourceString(kDesignLeftOut));
  const DistributionSpecification* from = SimulatedFrom(variable, source);
  if (from == nullptr) return name + std::string(ResourceString(kDesignNoDistribution));
  DistributionSpecification shown = *from;
  if (source == ParameterSource::kFitted) shown.truncateBelow = shown.truncateAbove = false;
  return name + SpecificationText(shown);
}

DesignSimDefaultDistributionsModalDlg::DesignSimDefaultDistributionsModalDlg(AnalysisServices& analysis,
                                                                             DesignState& design)
    : CSimulationAndRiskModalDialog(analysis, DesignDefaultsTemplate()), target_(design), edited_(design) {}

DesignedVariable& DesignSimDefaultDistributionsModalDlg::Highlighted() {
  return edited_.variables[static_cast<std::size_t>(std::max(0, Controls().Selection(kVariables)))];
}

void DesignSimDefaultDistributionsModalDlg::OnInitDialog() {
  Controls().SetChecked(kUseFitted, edited_.source == ParameterSource::kFitted);
  ShowDesign();
}

void DesignSimDefaultDistributionsModalDlg::ShowDesign() {
  std::vector<std::string> lines;
  for (const DesignedVariable& variable : edited_.variables)
    lines.push_back(DesignLine(variable, edited_.source));
  const int place = std::max(0, Controls().Selection(kVariables));
  Controls().SetItems(kVariables, std::move(lines));
  Controls().Select(kVariables, place);
  const std::string without =
      edited_.source == ParameterSource::kFitted ? WithoutBounds(edited_) : std::string();
  Controls().SetText(kBounds, without.empty() ? szLoadResString(kDesignBoundsCount)
                                              : FormatResource(kDesignBoundsWithoutEffect, without));
  ShowHighlighted();
}

void DesignSimDefaultDistributionsModalDlg::ShowHighlighted() {
  const DesignedVariable& variable = Highlighted();
  std::vector<std::string> fitted;
  for (const DistributionSpecification& saved : variable.fitted) fitted.push_back(SpecificationText(saved));
  Controls().SetItems(kFitted, std::move(fitted));
  Controls().Select(kFitted, 0);
  Controls().Enable(kTakeOver, !variable.fitted.empty());
  Controls().Enable(kLeave, variable.own.has_value());
  Controls().SetChecked(kTakesPart, !variable.isLeftOut);
}

bool DesignSimDefaultDistributionsModalDlg::OnCommand(std::int32_t number) {
  switch (number) {
    case kTakeOver:
      return TakeOver();
    case kTakeOverAll:
      TakeOverAll();
      return true;
    case kLeave:
      Highlighted().own.reset();
      ShowDesign();
      return true;
    default:
      return CSimulationAndRiskModalDialog::OnCommand(number);
  }
}

bool DesignSimDefaultDistributionsModalDlg::TakeOver() {
  const int place = Controls().Selection(kFitted);
  if (place < 0) return false;
  Highlighted().own = Highlighted().fitted[static_cast<std::size_t>(place)];
  ShowDesign();
  return true;
}

void DesignSimDefaultDistributionsModalDlg::TakeOverAll() {
  for (DesignedVariable& variable : edited_.variables) {
    if (!variable.fitted.empty()) variable.own = variable.fitted.front();
  }
  ShowDesign();
}

void DesignSimDefaultDistributionsModalDlg::OnControlChanged(std::int32_t number) {
  if (number == kVariables) return ShowHighlighted();
  if (number == kTakesPart) Highlighted().isLeftOut = !Controls().IsChecked(kTakesPart);
  if (number == kUseFitted)
    edited_.source =
        Controls().IsChecked(kUseFitted) ? ParameterSource::kFitted : ParameterSource::kUserSpecified;
  if (number == kTakesPart || number == kUseFitted) ShowDesign();
}

bool DesignSimDefaultDistributionsModalDlg::OnOk() {
  target_ = std::move(edited_);
  return true;
}

}  // namespace brenvolt::sra
