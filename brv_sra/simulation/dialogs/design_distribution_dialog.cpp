#include "brv_sra/simulation/dialogs/design_distribution_dialog.h"

#include <utility>
#include <vector>

#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/design_editor_templates.h"

namespace brenvolt::sra {
namespace {

using namespace design_distribution;

constexpr DistributionControls kFields{kParameter, kParameterLabel, 5,       kMinimum,
                                       kMaximum,   kMixtures,       kLevels, kGroup};

}  // namespace

DesignSimDistributionModalDlg::DesignSimDistributionModalDlg(AnalysisServices& analysis, std::string variable,
                                                             const DistributionSpecification* start)
    : EnteredDistributionDialog(analysis, DesignDistributionTemplate(), std::move(variable), start, kFields) {
}

void DesignSimDistributionModalDlg::OnInitDialog() {
  std::vector<std::string> names;
  for (int code = 0; code < kDistributionCount; ++code)
    names.emplace_back(DisplayName(static_cast<DistributionCode>(code)));
  const DistributionCode code = start_ != nullptr ? start_->code : DistributionCode::kNormal;
  Controls().SetText(kVariable, variable_);
  Controls().SetItems(kTypes, std::move(names));
  Controls().Select(kTypes, static_cast<int>(code));
  fields_.Edit(code, start_);
}

void DesignSimDistributionModalDlg::OnControlChanged(std::int32_t number) {
  if (fields_.OnChanged(number) || number != kTypes) return;
  fields_.Edit(static_cast<DistributionCode>(Controls().Selection(kTypes)), start_);
}

}  // namespace brenvolt::sra
