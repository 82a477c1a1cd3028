// The design of a simulation: variables, the distributions that they are simulated from, and their correlations. It
// works on a spreadsheet, on a matrix file, or without an input, which is then a new spreadsheet of the named variables
// without cases. Sequence step 107.
//
// What is designed reaches the simulation by the properties of the input's variables, the matrix file, and the choice
// between fitted and own distributions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/automation/variant.h"

namespace brenvolt::sra {

class CDesignSimulation : public CSimulationAndRiskModelessDialog {
 public:
  explicit CDesignSimulation(AnalysisServices& analysis);

  DesignState& Design() const { return Services().Simulation().design; }
  // The variable at a place in the design, from 1. Throws Error if there is none.
  DesignedVariable& VariableAt(std::int32_t place) const;

  // Makes these the variables of the design. Names that the input lacks are added to an input without cases, and make
  // a new one if there is none. Throws Error, and changes nothing, for no name, an empty or repeated one, and one
  // that an input with cases, or a matrix file, does not have.
  void SetVariables(const std::vector<std::string>& names);

  // Writes the distributions of the design as properties of the input's variables; into a matrix file, its
  // correlations, means and deviations as well. Throws Error if no variable takes part.
  void SaveToInput();
  // The matrix file of the variables that take part; a simulation of the same input goes on with it.
  std::shared_ptr<CAnalysisTableDoc> ShowCorrelationMatrix();

  // The correlation matrix can be saved.
  std::string_view WithoutMeaning(DispatchId resultsMember) const override;

  // Makes a distribution the person's own of the variable, which is then simulated from it.
  void TakeOwn(DesignedVariable& variable, DistributionSpecification own);

  // Shows the variables after a change of the design.
  void ShowVariables();

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // Saves, and goes on to the simulation.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  bool IsBegun() const;
  void ReadInput();
  void TakeKeptCorrelations();
  void ReadFitted(Spreadsheet& sheet);
  void AddToInput(const std::vector<std::string>& names);
  void RequireParticipants() const;
  DesignedVariable* Highlighted() const;
  void HighlightVariable();
  bool AskForVariables();
  // The sub-editors; false if they were cancelled.
  template <class Editor>
  bool EditDistribution();
  bool EditCorrelations();
  bool EditDefaults();
};

}  // namespace brenvolt::sra
