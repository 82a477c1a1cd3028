// The simulation results: OK shows the summary of the simulated variables and, where correlation
// was induced, what was asked for and what was reached. Sequence step 105.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "brv_sra/frame/dialog_base.h"

namespace brenvolt::sra {

class CSimulationResults : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationResults(AnalysisServices& analysis);

  // The variables are numbers of the simulated data's variables.
  std::string_view WithoutMeaning(DispatchId resultsMember) const override;
  std::string_view KindWithoutMeaning(std::int32_t kind) const override;
  void PutResultsVariables(const Variant& variables) override;

 protected:
  bool OnOk() override;

 private:
  bool ShowSummaries();

  std::vector<std::size_t> variables_;  // those that the next summary is of, by index; none: all
};

}  // namespace brenvolt::sra
