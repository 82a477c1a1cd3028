// The fields in which a person enters a distribution: its values under their labels, the offset after them, the bounds,
// and of a type of repeated groups their number and the group that is shown, one at a time. The dialogs that have such
// fields say which of their controls these are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "brv_sra/distributions/specification.h"
#include "host/analysis/analysis_dialog.h"

namespace brenvolt::sra {

struct DistributionControls {
  std::int32_t parameter;       // the first field
  std::int32_t parameterLabel;  // the first label
  std::int32_t fields;          // how many of both there are
  std::int32_t minimum;
  std::int32_t maximum;
  std::int32_t mixtures;  // the number of components
  std::int32_t levels;
  std::int32_t group;  // the component or level that the fields show
};

class DistributionFields {
 public:
  // When an entry is checked: with all others, or by itself as soon as it is made, when a refused one leaves what was
  // there. What concerns several values is checked with all others.
  enum class Check : std::uint8_t { kTogether, kAtOnce };

  // The dialog must outlive the fields.
  DistributionFields(CAnalysisDialog& dialog, const DistributionControls& controls, Check check)
      : dialog_(dialog), controls_(controls), check_(check) {}

  // Starts on a distribution of a type: `own` if it is one of it, otherwise one without values.
  void Edit(DistributionCode code, const DistributionSpecification* own);
  // What is in the fields, values that are not given included.
  const DistributionSpecification& Edited() const { return edited_; }
  // Shows the fields that the distribution has; none.
  void Show();
  void Hide();
  // A control has its new state; false if it is none of the fields.
  bool OnChanged(std::int32_t control);
  // The distribution, if what is entered makes one; otherwise a message.
  std::optional<DistributionSpecification> Taken() const;

 private:
  ControlSet& Controls() const { return dialog_.Controls(); }
  std::size_t GroupSize() const;
  std::size_t Groups() const;
  // The places of the values in the fields among all; that of the offset is behind them.
  std::size_t FirstShown() const;
  std::size_t ShownCount() const;
  void TakeField(std::size_t field);
  void TakeBound(bool below);
  void Resize(bool mixture);
  // A message if the entry is refused where it is made.
  bool IsTaken(std::size_t field, double value) const;
  bool AreBoundsTaken(const DistributionSpecification& changed) const;

  CAnalysisDialog& dialog_;
  DistributionControls controls_;
  Check check_;
  DistributionSpecification edited_;
};

}  // namespace brenvolt::sra
