// The tasks that the startup dialogs offer.
#pragma once

#include <cstdint>
#include <span>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/module/simulation_and_risk.h"

namespace brenvolt::sra {

struct StartupTask {
  std::int32_t command;  // the button that starts it
  std::int32_t text;
  std::int32_t step;
  // Case selection conditions and case weights of the input mean nothing to it: the host's are off for the
  // analysis while it runs.
  bool ignoresCaseSettings;
};

// In the order of the startup dialog's list; the last is the profiler.
std::span<const StartupTask> StartupTasks();
// The task of a command, or null.
const StartupTask* FindStartupTask(std::int32_t command);

// The command of the task started last in this process; "Fit Distribution" before the first.
std::int32_t LastTask();

// A dialog that starts tasks.
class CTaskDialog : public CSimulationAndRiskModelessDialog {
 public:
  CTaskDialog(CSimulationAndRisk& analysis, const DialogTemplate& source)
      : CSimulationAndRiskModelessDialog(analysis, source), analysis_(analysis) {}

 protected:
  CSimulationAndRisk& SimulationAndRisk() const { return analysis_; }
  // Switches the host's startup menus on.
  void OnInitDialog() override;
  // Remembers the task, switches the host's startup menus off, its case selection and weights on or off as the
  // task needs them, and asks the sequence for `step`. All is put back if the step is refused.
  void StartTask(const StartupTask& task, std::int32_t step);
  void OnStepRefused() override;

 private:
  struct Settings {
    std::int32_t lastTask = 0;
    bool startupMenus = true;
    bool caseSettings = true;
  };
  CSimulationAndRisk& analysis_;
  Settings former_;  // before the task that was started last
};

}  // namespace brenvolt::sra
