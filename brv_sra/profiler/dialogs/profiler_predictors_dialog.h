// The profiler's page of predictors: which distribution each is drawn from.
//
// The fields show the distribution that is highlighted for the predictor that is highlighted: its values
// where it is the predictor's own, otherwise nothing. Of a distribution of repeated groups they show one group at a time,
// which the combo box chooses. "Fixed" comes after the distributions.
#pragma once

#include <cstdint>

#include "brv_sra/frame/distribution_fields.h"
#include "brv_sra/profiler/profiler_design.h"
#include "host/analysis/analysis_dialog.h"

namespace brenvolt::sra {

class PredictorPage {
 public:
  // Both must outlive the page.
  PredictorPage(CAnalysisDialog& dialog, ProfilerDesign& design);

  // Updates the lists after predictors or specifications have changed.
  void Refresh();
  // A control of the page has its new state; false for one of another page.
  bool OnChanged(std::int32_t control);
  // Applies what the fields hold to the highlighted predictor. A message, and false, if it is not valid.
  bool Apply();

 private:
  ControlSet& Controls() { return dialog_.Controls(); }
  bool IsFixedHighlighted();
  ProfilerPredictor* Highlighted();
  void HighlightPredictor();
  void StartEditing();
  void ShowFixed();
  void TakeFixed();

  CAnalysisDialog& dialog_;
  ProfilerDesign& design_;
  DistributionFields fields_;
  // The value of a fixed predictor that is being edited.
  double fixed_ = kNotSet;
};

}  // namespace brenvolt::sra
