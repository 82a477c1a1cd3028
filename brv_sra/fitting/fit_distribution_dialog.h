// "Fit Distributions": the person picks variables, candidate distributions and the treatment of missing data,
// and starts the fit. Sequence step 102.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/dialog_base.h"

namespace brenvolt::sra {

class CFitDistribution : public CSimulationAndRiskModelessDialog {
 public:
  explicit CFitDistribution(CSimulationAndRisk& analysis);

  // Operations of automation, each as the person's own action. Lists hold spreadsheet variable numbers from
  // 1; `position` counts the variables of a list from 1. They throw Error for what the dialog refuses.
  void SelectContinuous(const std::vector<std::int16_t>& variables);
  void SelectDiscrete(const std::vector<std::int16_t>& variables);
  bool IsContinuousChecked(int position, std::int32_t control);
  void CheckContinuous(int position, std::int32_t control, bool checked);
  double Offset(int position, std::int32_t control);
  void EnterOffset(int position, std::int32_t control, double value);
  bool IsDiscreteChecked(int position, std::int32_t control);
  void CheckDiscrete(int position, std::int32_t control, bool checked);

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  FitSpecification& Specification() { return SimulationAndRisk().Fit().specification; }

  bool AskForVariables();
  // Takes new lists; the state of a list that changed starts afresh.
  void TakeLists(const std::vector<std::int16_t>& continuous, const std::vector<std::int16_t>& discrete);
  // The names of the text variables of a list, each preceded by a blank; and the message that refuses them.
  std::string TextVariables(const std::vector<std::int16_t>& variables) const;
  std::string TextVariablesMessage(const std::string& names) const;
  void RequireTakeable(const std::vector<std::int16_t>& variables);
  std::vector<std::string> NamesOf(const std::vector<std::int16_t>& variables) const;

  void RefreshLists();
  void ShowContinuous(int index);
  void ShowDiscrete(int index);
  bool ReadShownContinuous();
  void ReadShownDiscrete();
  bool ReadShown();
  bool MoveContinuous(int index);
  void SetContinuousChecks(bool (*next)(bool));
  void SetDiscreteChecks(bool (*next)(bool));
  bool EveryVariableHasDistribution() const;
  bool RunAndKeepResults();

  int shownContinuous_ = -1;
  int shownDiscrete_ = -1;
};

}  // namespace brenvolt::sra
