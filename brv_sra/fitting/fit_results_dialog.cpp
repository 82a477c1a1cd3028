#include "brv_sra/fitting/fit_results_dialog.h"

#include <array>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/fitting/fit_documents.h"
#include "brv_sra/frame/control_members.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_results;
using Dialog = CFitDistributionResults;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;

Variant GetSummary(Dialog& dialog, Indexes) {
  return Variant::Object(dialog.ShowSummaryStatistics());
}
Variant GetDistributionSummary(Dialog& dialog, Indexes) {
  return Variant::Object(dialog.ShowDistributionSummary());
}
Variant SaveFit(Dialog& dialog, Indexes) {
  return std::int32_t{dialog.SaveFits()};
}

constexpr std::array<Member, 5> kMembers{{
    {"QuickTabVariable", 0x60030000, 0, GetSelection<Dialog, kVariable, 1>,
     PutSelection<Dialog, kVariable, 1>},
    {"QuickTabDistribution", 0x60030002, 0, GetSelection<Dialog, kDistribution, 1>,
     PutSelection<Dialog, kDistribution, 1>},
    {"SummaryStats", 0x60030004, 0, GetSummary, nullptr},
    {"QuickTabDistributionSummaryStats", 0x6003000f, 0, GetDistributionSummary, nullptr},
    {"SaveDistributionFit", 0x60030011, 0, SaveFit, nullptr},
}};

// The valid fits of a variable, best first, without its truncation.
VariableDistributions ValidFits(const VariableFit& fit) {
  VariableDistributions distributions;
  distributions.variableNumber = fit.variableNumber;
  for (const std::size_t index : fit.ranked) {
    if (fit.fits[index].IsValid()) distributions.ranked.push_back(fit.fits[index].specification);
  }
  return distributions;
}

}  // namespace

CFitDistributionResults::CFitDistributionResults(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, FitResultsTemplate()) {
  EnableAutomation<CFitDistributionResults>("SRAFitDistributionResults", "CFitDistributionResults", kMembers);
}

void CFitDistributionResults::OnInitDialog() {
  std::vector<std::string> names;
  for (const VariableFit& fit : Results().results) names.push_back(fit.name);
  Controls().SetItems(kVariable, std::move(names));
  Controls().Select(kVariable, static_cast<int>(Results().firstShown));
  ListDistributions();
}

bool CFitDistributionResults::OnCommand(std::int32_t number) {
  switch (number) {
    case kSummaryStatistics:
      ShowSummaryStatistics();
      return true;
    case kDistributionSummary:
      ShowDistributionSummary();
      return true;
    case kSaveFit:
      return SaveFits() > 0;
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

bool CFitDistributionResults::OnOk() {
  ShowSummaryStatistics();
  return true;
}

void CFitDistributionResults::OnControlChanged(std::int32_t number) {
  if (number == kVariable) ListDistributions();
}

const VariableFit& CFitDistributionResults::ShownVariable() const {
  const int shown = Controls().Selection(kVariable);
  if (shown < 0) throw Error("no variable is selected");
  return Results().results[static_cast<std::size_t>(shown)];
}

RankingCriterion CFitDistributionResults::CriterionOf(const VariableFit& fit) const {
  const FitSpecification& committed = Results().committed;
  return fit.continuous ? committed.continuousCriterion : committed.discreteCriterion;
}

void CFitDistributionResults::ListDistributions() {
  const VariableFit& fit = ShownVariable();
  std::vector<std::string> names;
  for (const std::size_t index : fit.ranked)
    names.emplace_back(DisplayName(fit.fits[index].specification.code));
  Controls().SetItems(kDistribution, std::move(names));
  Controls().Select(kDistribution, 0);
}

std::optional<std::vector<std::string>> CFitDistributionResults::FittedDistributions(int variable) const {
  const auto& results = Results().results;
  if (variable < 0 || static_cast<std::size_t>(variable) >= results.size()) return std::nullopt;
  std::vector<std::string> names;
  const VariableDistributions valid = ValidFits(results[static_cast<std::size_t>(variable)]);
  for (const DistributionSpecification& fit : valid.ranked) names.emplace_back(DisplayName(fit.code));
  return names;
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::Show(std::unique_ptr<Spreadsheet> table) {
  auto document = std::make_shared<CAnalysisTableDoc>(std::move(table));
  Analysis().Interface().ShowDocument(document);
  return document;
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowSummaryStatistics() {
  return Show(SummaryTable(Results().results));
}

std::shared_ptr<CAnalysisTableDoc> CFitDistributionResults::ShowDistributionSummary() {
  const VariableFit& fit = ShownVariable();
  if (fit.invalid) throw CDispatchException(szLoadResString(kMsgVariableNotFitted), fit.name);
  return Show(RankedTable(fit, CriterionOf(fit)));
}

int CFitDistributionResults::SaveFits() {
  if (GetInputTable() == nullptr) return 0;
  SheetPropertyStore store(*GetInputTable());
  int saved = 0;
  for (const VariableFit& fit : Results().results) {
    // Fits that failed do not displace those that the variable already carries.
    if (!fit.HasValidFit() && HasStoredOrder(store, fit.variableNumber)) continue;
    VariableDistributions distributions = ValidFits(fit);
    distributions.truncation = StoredTruncation(store, fit.variableNumber);
    WriteDistributionProperties(&store, distributions);
    saved += fit.HasValidFit() ? 1 : 0;
  }
  return saved;
}

}  // namespace brenvolt::sra
