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
  explicit CFitDistribution(AnalysisServices& analysis);

  // Operations of automation, each as the person's own action. They throw Error for what the dialog refuses,
  // and then nothing has changed.
  //
  // Takes both lists, of spreadsheet variable numbers from 1; a list that changed has its variables'
  // specifications afresh.
  void SelectLists(const std::vector<std::int16_t>& continuous, const std::vector<std::int16_t>& discrete);
  // Shows a variable on its tab, by its place in its list from 1, and stores the inputs of the one left.
  void ShowContinuousVariable(int position);
  void ShowDiscreteVariable(int position);
  // The place of the variable that a tab shows, from 1; 0 for none.
  int ShownContinuousVariable() const { return shownContinuous_ + 1; }
  int ShownDiscreteVariable() const { return shownDiscrete_ + 1; }

  FitSpecification& Specification() { return Services().Fit().specification; }
  const FitSpecification& Specification() const { return Services().Fit().specification; }

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  bool ListsAreOfInput() const;
  bool OpenData();
  bool EditOptions();

  // Variable selection.
  bool AskForVariables();
  bool AskUntilTakeable(VariableQuestion& question);
  void TakeLists(const std::vector<std::int16_t>& continuous, const std::vector<std::int16_t>& discrete);
  std::string TextVariablesMessage(const std::vector<std::int16_t>& first,
                                   const std::vector<std::int16_t>& second) const;
  std::string NameOf(int variable) const;
  std::vector<std::string> NamesOf(const std::vector<std::int16_t>& variables) const;
  void ListVariables();
  void RefreshLists();

  // The shown variables. Reading returns 0, or the number of the message that says what is wrong; storing
  // shows that message and returns whether all was well.
  void ShowContinuous(int index);
  void ShowDiscrete(int index);
  std::int32_t ReadShownContinuous();
  std::int32_t ReadShownDiscrete();
  bool StoreShownContinuous();
  bool StoreShownDiscrete();
  bool MoveContinuous(int index);
  bool MoveDiscrete(int index);
  std::int64_t ValidCases(std::int16_t variable) const;
  bool ShowFaults(const std::vector<VariableFit>& results);
  void TakeOverMixturesOf(const std::vector<VariableFit>& results);

  // OK.
  bool EveryVariableHasDistribution() const;
  bool EveryOffsetIsValid() const;
  bool RunAndKeepResults();
  bool Run(std::vector<VariableFit>& results, CaseCounts& cases);

  int shownContinuous_ = -1;  // index in the list, -1 for none
  int shownDiscrete_ = -1;
};

}  // namespace brenvolt::sra
