// The automation interface of the fit specification: its members with their dispatch numbers.
#include <array>

#include "brv_sra/fitting/fit_distribution_dialog.h"
#include "brv_sra/frame/control_members.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using Dialog = CFitDistribution;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;
using namespace fit_dialog;

std::vector<std::int16_t> VariableList(const Dialog& dialog, const Variant& value) {
  const Spreadsheet* table = dialog.GetInputTable();
  if (table == nullptr) throw Error("no input spreadsheet");
  return VariableNumbers(value, table->VariableCount());
}

template <std::int32_t Control>
Variant IsContinuous(Dialog& dialog, Indexes indexes) {
  return std::int32_t{dialog.IsContinuousChecked(indexes[0].ToInteger(), Control) ? 1 : 0};
}
template <std::int32_t Control>
void SetContinuous(Dialog& dialog, Indexes indexes, const Variant& value) {
  dialog.CheckContinuous(indexes[0].ToInteger(), Control, value.ToBoolean());
}
template <std::int32_t Control>
Variant GetOffset(Dialog& dialog, Indexes indexes) {
  return dialog.Offset(indexes[0].ToInteger(), Control);
}
template <std::int32_t Control>
void SetOffset(Dialog& dialog, Indexes indexes, const Variant& value) {
  dialog.EnterOffset(indexes[0].ToInteger(), Control, value.ToReal());
}
template <std::int32_t Control>
Variant IsDiscrete(Dialog& dialog, Indexes indexes) {
  return std::int32_t{dialog.IsDiscreteChecked(indexes[0].ToInteger(), Control) ? 1 : 0};
}
template <std::int32_t Control>
void SetDiscrete(Dialog& dialog, Indexes indexes, const Variant& value) {
  dialog.CheckDiscrete(indexes[0].ToInteger(), Control, value.ToBoolean());
}

Variant GetContinuousList(Dialog& dialog, Indexes) {
  return dialog.Controls().Text(kContinuousList);
}
void SetContinuousList(Dialog& dialog, Indexes, const Variant& value) {
  dialog.SelectContinuous(VariableList(dialog, value));
}
Variant GetDiscreteList(Dialog& dialog, Indexes) {
  return dialog.Controls().Text(kDiscreteList);
}
void SetDiscreteList(Dialog& dialog, Indexes, const Variant& value) {
  dialog.SelectDiscrete(VariableList(dialog, value));
}

// An index counts the variables of the list from 1.
constexpr std::array<Member, 10> kMembers{{
    {"IsPairwise", 0x60030010, 0, GetChecked<Dialog, kPairwise>, PutChosen<Dialog, kPairwise>},
    {"IsCasewise", 0x60030012, 0, GetChecked<Dialog, kCasewise>, PutChosen<Dialog, kCasewise>},
    {"ContinuousVariable", 0x60030014, 0, GetContinuousList, SetContinuousList},
    {"IsNormalDistribution", 0x60030016, 1, IsContinuous<kNormal>, SetContinuous<kNormal>},
    {"IsLogNormalDistribution", 0x60030018, 1, IsContinuous<kLogNormal>, SetContinuous<kLogNormal>},
    {"IsWeibullDistribution", 0x60030020, 1, IsContinuous<kWeibull>, SetContinuous<kWeibull>},
    {"LogNormalOffset", 0x6003002e, 1, GetOffset<kLogNormalOffset>, SetOffset<kLogNormalOffset>},
    {"WeibullOffset", 0x60030036, 1, GetOffset<kWeibullOffset>, SetOffset<kWeibullOffset>},
    {"DiscreteVariable", 0x6003003a, 0, GetDiscreteList, SetDiscreteList},
    {"IsPoissonDistribution", 0x60030042, 1, IsDiscrete<kPoisson>, SetDiscrete<kPoisson>},
}};

}  // namespace

CFitDistribution::CFitDistribution(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, FitDistributionTemplate()) {
  EnableAutomation<CFitDistribution>("SRAFitDistribution", "CFitDistribution", kMembers);
}

}  // namespace brenvolt::sra
