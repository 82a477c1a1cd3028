#include "brv_sra/profiler/dialogs/profiler_predictors_dialog.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/profiler/dialogs/profiler_specification.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace profiler_dialog;

constexpr DistributionControls kFields{kParameter, kParameterLabel, 5,       kMinimum,
                                       kMaximum,   kMixtures,       kLevels, kGroup};

}  // namespace

PredictorPage::PredictorPage(CAnalysisDialog& dialog, ProfilerDesign& design)
    : dialog_(dialog), design_(design), fields_(dialog, kFields, DistributionFields::Check::kTogether) {}

bool PredictorPage::IsFixedHighlighted() {
  return Controls().Selection(kDistributions) == kDistributionCount;
}

ProfilerPredictor* PredictorPage::Highlighted() {
  const int place = Controls().Selection(kPredictors);
  const auto index = static_cast<std::size_t>(place);
  return place >= 0 && index < design_.predictors.size() ? &design_.predictors[index] : nullptr;
}

void PredictorPage::Refresh() {
  std::vector<std::string> names;
  std::vector<std::string> lines;
  for (const ProfilerPredictor& predictor : design_.predictors) {
    names.push_back(predictor.name);
    lines.push_back(PredictorLine(predictor));
  }
  std::vector<std::string> distributions;
  for (int code = 0; code < kDistributionCount; ++code)
    distributions.emplace_back(DisplayName(static_cast<DistributionCode>(code)));
  distributions.emplace_back(ResourceString(kProfilerFixed));
  const int last = static_cast<int>(design_.predictors.size()) - 1;
  const int place = std::max(0, std::min(Controls().Selection(kPredictors), last));
  Controls().SetItems(kPredictors, std::move(names));
  Controls().SetItems(kSelected, std::move(lines));
  Controls().SetItems(kDistributions, std::move(distributions));
  Controls().Select(kPredictors, place);
  Controls().Select(kSelected, place);
  HighlightPredictor();
  Controls().Enable(kAddDistribution, Highlighted() != nullptr);
  Controls().Enable(kFitBest, Highlighted() != nullptr && dialog_.GetInputTable() != nullptr);
  Controls().SetChecked(kSimulateCorrelations, design_.simulateCorrelations);
  Controls().Enable(kSimulateCorrelations, design_.predictors.size() > 1);
  Controls().Enable(kEditCorrelation, design_.simulateCorrelations && design_.predictors.size() > 1);
}

// A predictor brings its own distribution with it.
void PredictorPage::HighlightPredictor() {
  const ProfilerPredictor* predictor = Highlighted();
  int distribution = 0;
  if (predictor != nullptr && predictor->setting == PredictorSetting::kFixed)
    distribution = kDistributionCount;
  if (predictor != nullptr && predictor->IsRandom())
    distribution = static_cast<int>(predictor->specification.code);
  Controls().Select(kDistributions, distribution);
  StartEditing();
}

void PredictorPage::StartEditing() {
  const ProfilerPredictor* predictor = Highlighted();
  fixed_ = predictor != nullptr && predictor->setting == PredictorSetting::kFixed ? predictor->fixedValue
                                                                                  : kNotSet;
  const int selected = std::clamp(Controls().Selection(kDistributions), 0, kDistributionCount - 1);
  const bool isOwn = predictor != nullptr && predictor->IsRandom();
  fields_.Edit(static_cast<DistributionCode>(selected), isOwn ? &predictor->specification : nullptr);
  if (IsFixedHighlighted()) ShowFixed();
}

void PredictorPage::ShowFixed() {
  fields_.Hide();
  Controls().Show(kParameter, true);
  Controls().Show(kParameterLabel, true);
  Controls().SetText(kParameterLabel, dialog_.szLoadResString(kProfilerLabelValue));
  Controls().SetDlgItemDouble(kParameter, fixed_);
}

// A field without a readable number is not set; applying reports it.
void PredictorPage::TakeFixed() {
  fixed_ = kNotSet;
  Controls().GetDlgItemDouble(kParameter, fixed_);
}

bool PredictorPage::OnChanged(std::int32_t control) {
  if (control == kParameter && IsFixedHighlighted()) {
    TakeFixed();
    return true;
  }
  if (fields_.OnChanged(control)) return true;
  switch (control) {
    case kPredictors:
    case kSelected:  // the lists go together
      Controls().Select(control == kSelected ? kPredictors : kSelected, Controls().Selection(control));
      HighlightPredictor();
      return true;
    case kDistributions:
      StartEditing();
      return true;
    case kSimulateCorrelations:
      design_.simulateCorrelations = Controls().IsChecked(kSimulateCorrelations);
      Controls().Enable(kEditCorrelation, design_.simulateCorrelations);
      return true;
    default:
      return false;
  }
}

bool PredictorPage::Apply() {
  ProfilerPredictor* predictor = Highlighted();
  if (predictor == nullptr) return false;
  if (IsFixedHighlighted()) {
    if (IsNotSet(fixed_) || !std::isfinite(fixed_)) {
      dialog_.Analysis().ShowMessage(
          FormatResource(kMsgInvalidParameter, "value", ResourceString(kProfilerFixed)));
      return false;
    }
    predictor->setting = PredictorSetting::kFixed;
    predictor->fixedValue = fixed_;
  } else {
    auto taken = fields_.Taken();
    if (!taken) return false;
    try {
      RequireClasses(*predictor, *taken);
    } catch (const Error& error) {
      dialog_.Analysis().ShowMessage(error.what(), error.Where());
      return false;
    }
    predictor->setting = PredictorSetting::kRandom;
    predictor->keepsToParts = false;
    predictor->specification = *std::move(taken);
  }
  Refresh();
  return true;
}

}  // namespace brenvolt::sra
