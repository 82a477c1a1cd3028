// The startup dialog: the person picks one of four tasks. Sequence step 101.
#pragma once

#include <cstdint>
#include <vector>

#include "brv_sra/module/startup_tasks.h"

namespace brenvolt::sra {

class CDefineTask : public CTaskDialog {
 public:
  explicit CDefineTask(CSimulationAndRisk& analysis);

  // A task's button selects and starts it. So does OK: what is selected at first is the task that the process
  // started last, which need not be the same when a macro runs.
  std::vector<StandIn> StandInsOf(std::int32_t number) const override;

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // Sends the command of the selected list entry.
  bool OnOk() override;
  // On the list: as OK.
  bool OnDoubleClick(std::int32_t number) override;
  void OnControlChanged(std::int32_t number) override;
};

}  // namespace brenvolt::sra
