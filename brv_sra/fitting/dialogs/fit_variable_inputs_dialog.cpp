#include "brv_sra/fitting/dialogs/fit_variable_inputs_dialog.h"

#include <array>
#include <string>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/estimation.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;

// `Count` check boxes, numbered one after the other.
template <std::size_t Count>
constexpr std::array<std::int32_t, Count> ChecksFrom(std::int32_t first) {
  std::array<std::int32_t, Count> checks{};
  for (std::int32_t& check : checks) check = first++;
  return checks;
}
// Those of the continuous distributions with the option of the Johnson fit.
constexpr auto kContinuousBoxes = ChecksFrom<kContinuousCount + 1>(kContinuousChecks);
constexpr auto kDiscreteBoxes = ChecksFrom<kDiscreteCount>(kDiscreteChecks);

constexpr double kUsualOffset = 0.0;
constexpr std::int32_t kUsualMixtures = 2;

bool IsEmpty(const ControlSet& controls, std::int32_t field) {
  return Trim(controls.Text(field)).empty();
}

// Checks one offset; false if it is invalid. A typed value that means "not set" counts as no offset.
bool ReadOffset(const ControlSet& controls, DistributionCode code, double& offset) {
  offset = kNotSet;
  if (controls.GetDlgItemDouble(FieldOf(code), offset) != 0) offset = kNotSet;
  return !IsNotSet(offset) || !controls.IsChecked(CheckOf(code));
}

bool ReadMixtures(const ControlSet& controls, std::int32_t& mixtures) {
  mixtures = kNotSetCount;
  if (controls.GetDlgItemLong(kMixtures, mixtures) != 0) mixtures = kNotSetCount;
  return mixtures != kNotSetCount || !controls.IsChecked(CheckOf(DistributionCode::kGaussianMixture));
}

void ShowCheck(ControlSet& controls, std::int32_t check, bool isChecked, bool enabled) {
  controls.Enable(check, enabled);
  controls.SetChecked(check, enabled && isChecked);
}

}  // namespace

void ShowInputs(ControlSet& controls, const ContinuousSpecification* shown) {
  const bool enabled = shown != nullptr;
  const ContinuousSpecification specification = enabled ? *shown : ContinuousSpecification{};
  for (const DistributionCode code : FittedContinuous()) {
    ShowCheck(controls, CheckOf(code), specification.fit[PlaceInKind(code)], enabled);
    if (!HasOffset(code)) continue;
    controls.Enable(FieldOf(code), enabled);
    controls.SetDlgItemDouble(FieldOf(code), specification.offsets[PlaceInKind(code)]);
  }
  ShowCheck(controls, kJohnsonPercentile, specification.johnsonByPercentiles, enabled);
  controls.Enable(kMixtures, enabled);
  controls.SetDlgItemLong(kMixtures, specification.mixtures);
}

void ShowInputs(ControlSet& controls, const DiscreteSpecification* shown) {
  const bool enabled = shown != nullptr;
  const DiscreteSpecification specification = enabled ? *shown : DiscreteSpecification{};
  for (const DistributionCode code : FittedDiscrete())
    ShowCheck(controls, CheckOf(code), specification.fit[PlaceInKind(code)], enabled);
  controls.Enable(kUseTrials, enabled);
  controls.SetChecked(kUseTrials, specification.useTrials);
  controls.Enable(kTrials, enabled);
  controls.SetDlgItemLong(kTrials, specification.trials);
}

std::int32_t ReadInputs(const ControlSet& controls, ContinuousSpecification& specification) {
  ContinuousSpecification read;
  for (const DistributionCode code : FittedContinuous())
    read.fit[PlaceInKind(code)] = controls.IsChecked(CheckOf(code));
  read.johnsonByPercentiles = controls.IsChecked(kJohnsonPercentile);
  specification.fit = read.fit;
  specification.johnsonByPercentiles = read.johnsonByPercentiles;
  for (const DistributionCode code : FittedContinuous()) {
    if (HasOffset(code) && !ReadOffset(controls, code, read.offsets[PlaceInKind(code)]))
      return kMsgInvalidOffsets;
  }
  if (!ReadMixtures(controls, read.mixtures)) return kMsgInvalidMixtureCountReverted;
  specification = read;
  return 0;
}

std::int32_t ReadInputs(const ControlSet& controls, DiscreteSpecification& specification) {
  DiscreteSpecification read;
  for (const DistributionCode code : FittedDiscrete())
    read.fit[PlaceInKind(code)] = controls.IsChecked(CheckOf(code));
  read.useTrials = controls.IsChecked(kUseTrials);
  const bool empty = IsEmpty(controls, kTrials);
  const bool valid = controls.GetDlgItemLong(kTrials, read.trials) == 0 && read.trials > 0;
  const bool needed = read.useTrials && controls.IsChecked(CheckOf(DistributionCode::kBinomial));
  if (!valid && (needed || !empty)) return kMsgInvalidTrialsOfVariable;
  specification = read;
  return 0;
}

void FillUsualInput(ControlSet& controls, std::int32_t check) {
  if (!controls.IsChecked(check)) return;
  for (const DistributionCode code : FittedContinuous()) {
    if (CheckOf(code) == check && HasOffset(code) && IsEmpty(controls, FieldOf(code))) {
      controls.SetDlgItemDouble(FieldOf(code), kUsualOffset);
    }
  }
  if (check == CheckOf(DistributionCode::kGaussianMixture) && IsEmpty(controls, kMixtures)) {
    controls.SetDlgItemLong(kMixtures, kUsualMixtures);
  }
}

std::string TakeOverMixtures(std::span<const VariableFit> results,
                             std::span<ContinuousSpecification> specifications) {
  std::string taken;
  for (std::size_t i = 0; i < specifications.size(); ++i) {
    if (results[i].mixtures == kNotSetCount) continue;
    specifications[i].mixtures = results[i].mixtures;
    taken += (taken.empty() ? "" : "; ") + results[i].name + ": " + std::to_string(results[i].mixtures);
  }
  return taken;
}

std::span<const std::int32_t> ContinuousChecks() {
  return kContinuousBoxes;
}

std::span<const std::int32_t> DiscreteChecks() {
  return kDiscreteBoxes;
}

}  // namespace brenvolt::sra
