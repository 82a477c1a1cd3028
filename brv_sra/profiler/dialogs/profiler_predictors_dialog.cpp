#include "brv_sra/profiler/dialogs/profiler_predictors_dialog.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/frame/specification_array.h"
#include "brv_sra/profiler/dialogs/profiler_specification.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace profiler_dialog;

constexpr std::int32_t kFieldCount = 5;
constexpr std::int32_t kMostLevels = 1000;

std::size_t Unsigned(int index) {
  return static_cast<std::size_t>(index);
}

std::int32_t LabelOf(const CatalogueEntry& entry, std::size_t field) {
  if (field == Parameters(entry.code).size()) return kProfilerLabelOffset;
  if (entry.code == DistributionCode::kHistogram && field == 0) return kProfilerLabelValue;
  return entry.parameters[field].labelResource;
}

}  // namespace

bool PredictorPage::IsFixedHighlighted() {
  return Controls().Selection(kDistributions) == kDistributionCount;
}

ProfilerPredictor* PredictorPage::Highlighted() {
  const int place = Controls().Selection(kPredictors);
  return place >= 0 && Unsigned(place) < design_.predictors.size() ? &design_.predictors[Unsigned(place)]
                                                                   : nullptr;
}

std::size_t PredictorPage::GroupSize() const {
  return Parameters(edited_.code).size();
}

std::size_t PredictorPage::Groups() const {
  return edited_.values.size() / GroupSize();
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
  edited_ = {};
  fixed_ = predictor != nullptr && predictor->setting == PredictorSetting::kFixed ? predictor->fixedValue
                                                                                  : kNotSet;
  const int selected = std::clamp(Controls().Selection(kDistributions), 0, kDistributionCount - 1);
  edited_.code = static_cast<DistributionCode>(selected);
  if (predictor != nullptr && predictor->IsRandom() && predictor->specification.code == edited_.code)
    edited_ = predictor->specification;
  const std::size_t groups = Facts(edited_.code).isUserDefined ? kMinimumMixtures : 1;
  if (edited_.values.empty()) edited_.values.assign(GroupSize() * groups, kNotSet);
  if (HasOffset(edited_.code) && IsNotSet(edited_.offset)) edited_.offset = 0;
  ShowFields();
}

void PredictorPage::ShowFields() {
  const CatalogueEntry& entry = Entry(edited_.code);
  const bool fixed = IsFixedHighlighted();
  const std::size_t shown = fixed ? 1 : GroupSize() + (HasOffset(entry.code) ? 1 : 0);
  std::vector<std::string> groups;
  for (std::size_t g = 1; g <= Groups(); ++g) groups.push_back(std::to_string(g));
  const int group = std::clamp(Controls().Selection(kGroup), 0, static_cast<int>(Groups()) - 1);
  Controls().SetItems(kGroup, std::move(groups));
  Controls().Select(kGroup, group);
  for (std::int32_t i = 0; i < kFieldCount; ++i) {
    const std::size_t field = Unsigned(i);
    Controls().Show(kParameter + i, field < shown);
    Controls().Show(kParameterLabel + i, field < shown);
    if (field >= shown) continue;
    const std::int32_t label = fixed ? kProfilerLabelValue : LabelOf(entry, field);
    Controls().SetText(kParameterLabel + i, dialog_.szLoadResString(label));
    double value = fixed ? fixed_ : edited_.offset;
    if (!fixed && field < GroupSize()) value = edited_.values[Unsigned(group) * GroupSize() + field];
    Controls().SetDlgItemDouble(kParameter + i, value);
  }
  const bool mixture = !fixed && edited_.code == DistributionCode::kGaussianMixture;
  const bool histogram = !fixed && edited_.code == DistributionCode::kHistogram;
  Controls().Show(kMixtures, mixture);
  Controls().Show(kLevels, histogram);
  Controls().Show(kGroup, mixture || histogram);
  Controls().SetDlgItemLong(mixture ? kMixtures : kLevels, static_cast<std::int32_t>(Groups()));
  Controls().Show(kMinimum, !fixed);
  Controls().Show(kMaximum, !fixed);
  Controls().SetDlgItemDouble(kMinimum, edited_.truncateBelow ? edited_.truncationMinimum : kNotSet);
  Controls().SetDlgItemDouble(kMaximum, edited_.truncateAbove ? edited_.truncationMaximum : kNotSet);
}

// A field without a readable number is not set; applying reports it.
void PredictorPage::TakeField(std::size_t field) {
  double value = kNotSet;
  Controls().GetDlgItemDouble(kParameter + static_cast<std::int32_t>(field), value);
  if (IsFixedHighlighted()) {
    fixed_ = value;
  } else if (field < GroupSize()) {
    edited_.values[Unsigned(std::max(0, Controls().Selection(kGroup))) * GroupSize() + field] = value;
  } else {
    edited_.offset = value;
  }
}

void PredictorPage::Resize(std::int32_t control) {
  const bool mixture = control == kMixtures;
  std::int32_t groups = 0;
  const auto least = static_cast<std::int32_t>(mixture ? kMinimumMixtures : 1);
  const auto most = mixture ? static_cast<std::int32_t>(kMaximumMixtures) : kMostLevels;
  if (Controls().GetDlgItemLong(control, groups) == 0 && groups >= least && groups <= most) {
    edited_.values.resize(static_cast<std::size_t>(groups) * GroupSize(), kNotSet);
  } else if (mixture) {
    dialog_.Analysis().ShowMessage(dialog_.szLoadResString(kMsgInvalidMixtureCount));
  }
  ShowFields();
}

bool PredictorPage::OnChanged(std::int32_t control) {
  if (control >= kParameter && control < kParameter + kFieldCount) {
    TakeField(Unsigned(control - kParameter));
    return true;
  }
  switch (control) {
    case kPredictors:
    case kSelected:  // the lists go together
      Controls().Select(control == kSelected ? kPredictors : kSelected, Controls().Selection(control));
      HighlightPredictor();
      return true;
    case kDistributions:
      StartEditing();
      return true;
    case kGroup:
      ShowFields();
      return true;
    case kMixtures:
    case kLevels:
      Resize(control);
      return true;
    case kMinimum:
      edited_.truncationMinimum = kNotSet;
      edited_.truncateBelow = !Controls().Text(kMinimum).empty();
      Controls().GetDlgItemDouble(kMinimum, edited_.truncationMinimum);
      return true;
    case kMaximum:
      edited_.truncationMaximum = kNotSet;
      edited_.truncateAbove = !Controls().Text(kMaximum).empty();
      Controls().GetDlgItemDouble(kMaximum, edited_.truncationMaximum);
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
    try {
      CheckEnteredSpecification(edited_);
    } catch (const Error& error) {
      dialog_.Analysis().ShowMessage(error.what());
      return false;
    }
    predictor->setting = PredictorSetting::kRandom;
    predictor->specification = edited_;
  }
  Refresh();
  return true;
}

}  // namespace brenvolt::sra
