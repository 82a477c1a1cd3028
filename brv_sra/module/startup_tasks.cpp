#include "brv_sra/module/startup_tasks.h"

#include <algorithm>
#include <array>

#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"

namespace brenvolt::sra {
namespace {

using namespace define_task;

constexpr std::array<StartupTask, 4> kTasks{{
    {kFitDistribution, kCommandFitDistribution, step::kFit, false},
    {kRunSimulation, kCommandRunSimulation, step::kSimulation, false},
    {kDesignSimulation, kCommandDesignSimulation, step::kDesign, true},
    {kProfiler, kCommandProfiler, step::kProfiler, true},
}};

std::int32_t lastTask = kFitDistribution;

}  // namespace

std::span<const StartupTask> StartupTasks() {
  return kTasks;
}

const StartupTask* FindStartupTask(std::int32_t command) {
  const auto* found = std::ranges::find(kTasks, command, &StartupTask::command);
  return found != kTasks.end() ? &*found : nullptr;
}

std::int32_t LastTask() {
  return lastTask;
}

StartupSettings StartTask(CSimulationAndRisk& analysis, const StartupTask& task, std::int32_t step) {
  const StartupSettings former{lastTask, analysis.StartupMenusEnabled(), analysis.CaseSelectionEnabled()};
  lastTask = task.command;
  analysis.EnableStartupMenus(false);
  analysis.EnableCaseSettings(!task.ignoresCaseSettings);
  analysis.RequestStep(step);
  return former;
}

void UndoTask(CSimulationAndRisk& analysis, const StartupSettings& former) {
  lastTask = former.lastTask;
  analysis.EnableStartupMenus(former.startupMenus);
  analysis.EnableCaseSettings(former.caseSettings);
}

}  // namespace brenvolt::sra
