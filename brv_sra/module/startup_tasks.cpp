#include "brv_sra/module/startup_tasks.h"

#include <algorithm>
#include <array>

#include "brv_sra/frame/sequence_steps.h"
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

void CTaskDialog::OnInitDialog() {
  analysis_.EnableStartupMenus(true);
}

void CTaskDialog::StartTask(const StartupTask& task, std::int32_t step) {
  former_ = {lastTask, analysis_.StartupMenusEnabled(), analysis_.CaseSelectionEnabled()};
  lastTask = task.command;
  analysis_.EnableStartupMenus(false);
  analysis_.EnableCaseSettings(!task.ignoresCaseSettings);
  analysis_.RequestStep(step);
}

void CTaskDialog::OnStepRefused() {
  lastTask = former_.lastTask;
  analysis_.EnableStartupMenus(former_.startupMenus);
  analysis_.EnableCaseSettings(former_.caseSettings);
}

}  // namespace brenvolt::sra
