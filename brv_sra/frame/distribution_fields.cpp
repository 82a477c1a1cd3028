#include "brv_sra/frame/distribution_fields.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/specification_array.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/numeric/distributions/gaussian_mixture.h"

namespace brenvolt::sra {
namespace {

constexpr std::int32_t kMostLevels = 1000;

std::int32_t LabelOf(DistributionCode code, std::size_t field) {
  if (field == Facts(code).ParameterCount()) return kProfilerLabelOffset;
  if (code == DistributionCode::kHistogram && field == 0) return kProfilerLabelValue;
  const ParameterTexts& texts = TextsOf(code, field);
  return texts.label != 0 ? texts.label : texts.heading;
}

}  // namespace

std::size_t DistributionFields::GroupSize() const {
  return Facts(edited_.code).ParameterCount();
}

std::size_t DistributionFields::Groups() const {
  return edited_.values.size() / GroupSize();
}

std::size_t DistributionFields::FirstShown() const {
  const int group = std::clamp(Controls().Selection(controls_.group), 0, static_cast<int>(Groups()) - 1);
  return static_cast<std::size_t>(group) * GroupSize();
}

std::size_t DistributionFields::ShownCount() const {
  return GroupSize() + (HasOffset(edited_.code) ? 1 : 0);
}

void DistributionFields::Edit(DistributionCode code, const DistributionSpecification* own) {
  edited_ = {};
  edited_.code = code;
  if (own != nullptr && own->code == code) edited_ = *own;
  const std::size_t groups = Facts(code).isUserDefined ? kFewestMixtures : 1;
  if (edited_.values.empty()) edited_.values.assign(GroupSize() * groups, kNotSet);
  if (HasOffset(code) && IsNotSet(edited_.offset)) edited_.offset = 0;
  Show();
}

void DistributionFields::Show() {
  const bool mixture = edited_.code == DistributionCode::kGaussianMixture;
  const bool histogram = edited_.code == DistributionCode::kHistogram;
  std::vector<std::string> groups;
  for (std::size_t g = 1; g <= Groups(); ++g) groups.push_back(std::to_string(g));
  const std::size_t first = FirstShown();
  Controls().SetItems(controls_.group, std::move(groups));
  Controls().Select(controls_.group, static_cast<int>(first / GroupSize()));
  Hide();
  for (std::size_t field = 0; field < ShownCount(); ++field) {
    const auto place = static_cast<std::int32_t>(field);
    Controls().Show(controls_.parameter + place, true);
    Controls().Show(controls_.parameterLabel + place, true);
    Controls().SetText(controls_.parameterLabel + place,
                       dialog_.szLoadResString(LabelOf(edited_.code, field)));
    Controls().SetDlgItemDouble(controls_.parameter + place,
                                field < GroupSize() ? edited_.values[first + field] : edited_.offset);
  }
  Controls().Show(controls_.mixtures, mixture);
  Controls().Show(controls_.levels, histogram);
  Controls().Show(controls_.group, mixture || histogram);
  Controls().SetDlgItemLong(mixture ? controls_.mixtures : controls_.levels,
                            static_cast<std::int32_t>(Groups()));
  Controls().Show(controls_.minimum, true);
  Controls().Show(controls_.maximum, true);
  Controls().SetDlgItemDouble(controls_.minimum, edited_.truncateBelow ? edited_.truncationMinimum : kNotSet);
  Controls().SetDlgItemDouble(controls_.maximum, edited_.truncateAbove ? edited_.truncationMaximum : kNotSet);
}

void DistributionFields::Hide() {
  for (std::int32_t field = 0; field < controls_.fields; ++field) {
    Controls().Show(controls_.parameter + field, false);
    Controls().Show(controls_.parameterLabel + field, false);
  }
  for (const std::int32_t control :
       {controls_.minimum, controls_.maximum, controls_.mixtures, controls_.levels, controls_.group})
    Controls().Show(control, false);
}

bool DistributionFields::IsTaken(std::size_t field, double value) const {
  if (check_ == Check::kTogether) return true;
  if (field < GroupSize()) {
    const auto fault = CheckValue(edited_.code, field, value);
    if (fault) ShowFault(dialog_.Analysis(), fault->fault);
    return !fault;
  }
  if (std::isfinite(value) && !IsNotSet(value)) return true;
  ShowFault(dialog_.Analysis(), {FaultIdentifier::kInvalidOffset});
  return false;
}

bool DistributionFields::AreBoundsTaken(const DistributionSpecification& changed) const {
  if (check_ == Check::kTogether || AreBoundsInOrder(changed)) return true;
  dialog_.Analysis().ShowMessage(dialog_.szLoadResString(kMsgProfilerMinimumMaximum));
  return false;
}

// An empty field takes its value away.
void DistributionFields::TakeField(std::size_t field) {
  const std::int32_t control = controls_.parameter + static_cast<std::int32_t>(field);
  double value = kNotSet;
  Controls().GetDlgItemDouble(control, value);
  double& target = field < GroupSize() ? edited_.values[FirstShown() + field] : edited_.offset;
  if (Trim(Controls().Text(control)).empty() || IsTaken(field, value)) {
    target = value;
  } else {
    Controls().SetDlgItemDouble(control, target);
  }
}

void DistributionFields::TakeBound(bool below) {
  const std::int32_t control = below ? controls_.minimum : controls_.maximum;
  DistributionSpecification changed = edited_;
  double& bound = below ? changed.truncationMinimum : changed.truncationMaximum;
  bool& isInForce = below ? changed.truncateBelow : changed.truncateAbove;
  bound = kNotSet;
  isInForce = !Trim(Controls().Text(control)).empty();
  Controls().GetDlgItemDouble(control, bound);
  if (AreBoundsTaken(changed)) {
    edited_ = std::move(changed);
  } else {
    Show();
  }
}

void DistributionFields::Resize(bool mixture) {
  std::int32_t groups = 0;
  const bool read = Controls().GetDlgItemLong(mixture ? controls_.mixtures : controls_.levels, groups) == 0;
  const std::int32_t least = mixture ? kFewestMixtures : 1;
  const std::int32_t most = mixture ? kMostMixtures : kMostLevels;
  if (read && groups >= least && groups <= most) {
    edited_.values.resize(static_cast<std::size_t>(groups) * GroupSize(), kNotSet);
  } else {
    dialog_.Analysis().ShowMessage(
        dialog_.szLoadResString(mixture ? kMsgInvalidMixtureCount : kMsgInvalidLevelCount));
  }
  Show();
}

bool DistributionFields::OnChanged(std::int32_t control) {
  if (control >= controls_.parameter && control < controls_.parameter + controls_.fields) {
    TakeField(static_cast<std::size_t>(control - controls_.parameter));
    return true;
  }
  if (control == controls_.minimum || control == controls_.maximum) {
    TakeBound(control == controls_.minimum);
    return true;
  }
  if (control == controls_.mixtures || control == controls_.levels) {
    Resize(control == controls_.mixtures);
    return true;
  }
  if (control == controls_.group) Show();
  return control == controls_.group;
}

std::optional<DistributionSpecification> DistributionFields::Taken() const {
  try {
    CheckEnteredSpecification(edited_);
    return edited_;
  } catch (const Error& error) {
    dialog_.Analysis().ShowMessage(error.what(), error.Where());
    return std::nullopt;
  }
}

}  // namespace brenvolt::sra
