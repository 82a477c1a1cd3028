#include "brv_sra/fitting/dialogs/fit_variable_inputs_dialog.h"

#include <array>
#include <string>

#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace fit_dialog;

constexpr std::array<std::int32_t, kContinuousFlagCount> kContinuousChecks{
    kNormal,          kLogNormal, kFoldedNormal,      kHalfNormal,          kRayleigh,      kWeibull,
    kGaussianMixture, kJohnson,   kJohnsonPercentile, kGeneralExtremeValue, kGeneralPareto, kTriangular};
constexpr std::array<std::int32_t, kDiscreteFlagCount> kDiscreteChecks{kBinomial, kPoisson, kGeometric,
                                                                       kBernoulli, kHistogram};

struct OffsetInput {
  std::int32_t check;
  std::int32_t field;
};
// In the order of kOffsetDistributions.
constexpr std::array<OffsetInput, kOffsetDistributions.size()> kOffsetInputs{{
    {kLogNormal, kLogNormalOffset},
    {kFoldedNormal, kFoldedNormalOffset},
    {kHalfNormal, kHalfNormalOffset},
    {kRayleigh, kRayleighOffset},
    {kWeibull, kWeibullOffset},
    {kGeneralPareto, kGeneralParetoOffset},
}};

constexpr double kUsualOffset = 0.0;
constexpr std::int32_t kUsualMixtures = 2;

bool IsEmpty(const ControlSet& controls, std::int32_t field) {
  return Trim(controls.Text(field)).empty();
}

// One offset: false if it is wrong. A typed value that means "not set" counts as no offset.
bool ReadOffset(const ControlSet& controls, const OffsetInput& input, double& offset) {
  offset = kNotSet;
  if (controls.GetDlgItemDouble(input.field, offset) != 0) offset = kNotSet;
  return !IsNotSet(offset) || !controls.IsChecked(input.check);
}

bool ReadMixtures(const ControlSet& controls, std::int32_t& mixtures) {
  mixtures = kNotSetCount;
  if (controls.GetDlgItemLong(kMixtures, mixtures) != 0) mixtures = kNotSetCount;
  return mixtures != kNotSetCount || !controls.IsChecked(kGaussianMixture);
}

template <std::size_t N>
void ShowChecks(ControlSet& controls, const std::array<std::int32_t, N>& checks,
                const std::array<bool, N>& fit, bool enabled) {
  for (std::size_t i = 0; i < N; ++i) {
    controls.Enable(checks[i], enabled);
    controls.SetChecked(checks[i], enabled && fit[i]);
  }
}

template <std::size_t N>
void ReadChecks(const ControlSet& controls, const std::array<std::int32_t, N>& checks,
                std::array<bool, N>& fit) {
  for (std::size_t i = 0; i < N; ++i) fit[i] = controls.IsChecked(checks[i]);
}

}  // namespace

void ShowInputs(ControlSet& controls, const ContinuousSpecification* shown) {
  const bool enabled = shown != nullptr;
  const ContinuousSpecification specification = enabled ? *shown : ContinuousSpecification{};
  ShowChecks(controls, kContinuousChecks, specification.fit, enabled);
  for (std::size_t i = 0; i < kOffsetInputs.size(); ++i) {
    controls.Enable(kOffsetInputs[i].field, enabled);
    controls.SetDlgItemDouble(kOffsetInputs[i].field, specification.offsets[i]);
  }
  controls.Enable(kMixtures, enabled);
  controls.SetDlgItemLong(kMixtures, specification.mixtures);
}

void ShowInputs(ControlSet& controls, const DiscreteSpecification* shown) {
  const bool enabled = shown != nullptr;
  const DiscreteSpecification specification = enabled ? *shown : DiscreteSpecification{};
  ShowChecks(controls, kDiscreteChecks, specification.fit, enabled);
  controls.Enable(kUseTrials, enabled);
  controls.SetChecked(kUseTrials, specification.useTrials);
  controls.Enable(kTrials, enabled);
  controls.SetDlgItemLong(kTrials, specification.trials);
}

std::int32_t ReadInputs(const ControlSet& controls, ContinuousSpecification& specification) {
  ContinuousSpecification read;
  ReadChecks(controls, kContinuousChecks, read.fit);
  specification.fit = read.fit;
  for (std::size_t i = 0; i < kOffsetInputs.size(); ++i) {
    if (!ReadOffset(controls, kOffsetInputs[i], read.offsets[i])) return kMsgInvalidOffsets;
  }
  if (!ReadMixtures(controls, read.mixtures)) return kMsgInvalidMixtureCountReverted;
  specification = read;
  return 0;
}

std::int32_t ReadInputs(const ControlSet& controls, DiscreteSpecification& specification) {
  DiscreteSpecification read;
  ReadChecks(controls, kDiscreteChecks, read.fit);
  read.useTrials = controls.IsChecked(kUseTrials);
  const bool empty = IsEmpty(controls, kTrials);
  const bool valid = controls.GetDlgItemLong(kTrials, read.trials) == 0 && read.trials > 0;
  const bool needed = read.useTrials && controls.IsChecked(kBinomial);
  if (!valid && (needed || !empty)) return kMsgInvalidTrialsOfVariable;
  specification = read;
  return 0;
}

void FillUsualInput(ControlSet& controls, std::int32_t check) {
  if (!controls.IsChecked(check)) return;
  for (const OffsetInput& input : kOffsetInputs) {
    if (input.check == check && IsEmpty(controls, input.field)) {
      controls.SetDlgItemDouble(input.field, kUsualOffset);
    }
  }
  if (check == kGaussianMixture && IsEmpty(controls, kMixtures)) {
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
  return kContinuousChecks;
}

std::span<const std::int32_t> DiscreteChecks() {
  return kDiscreteChecks;
}

}  // namespace brenvolt::sra
