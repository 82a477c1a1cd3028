#include "brv_sra/frame/define_task_dialog.h"

#include <array>

#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace define_task;

struct Task {
  std::int32_t command;
  std::int32_t text;
  std::int32_t step;
};
// In list order; the last is the profiler.
constexpr std::array<Task, 4> kTasks{{{kFitDistribution, kCommandFitDistribution, step::kFit},
                                      {kRunSimulation, kCommandRunSimulation, step::kSimulation},
                                      {kDesignSimulation, kCommandDesignSimulation, step::kDesign},
                                      {kProfiler, kCommandProfiler, step::kProfiler}}};
constexpr int kProfilerEntry = 3;

// The command of the task started last, in this process.
std::int32_t lastTask = kFitDistribution;

constexpr std::array<AutomationMember<CDefineTask>, 2> kMembers{{
    {"TypeOfAnalysis", 0x60030000, 0, GetSelection<CDefineTask, kTaskList, 0>,
     PutSelection<CDefineTask, kTaskList, 0>},
    {"AutoProfiler", 0x60030002, 0, nullptr, PutChecked<CDefineTask, kAutoProfiler>},
}};

}  // namespace

CDefineTask::CDefineTask(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, DefineTaskTemplate()) {
  EnableAutomation<CDefineTask>("SRAStartup", "CDefineTask", kMembers);
}

void CDefineTask::OnInitDialog() {
  std::vector<std::string> items;
  int last = 0;
  for (std::size_t i = 0; i < kTasks.size(); ++i) {
    items.push_back(szLoadResString(kTasks[i].text));
    if (kTasks[i].command == lastTask) last = static_cast<int>(i);
  }
  Controls().SetItems(kTaskList, std::move(items));
  Controls().SetChecked(kAutoProfiler, SimulationAndRisk().AutoProfiler());
  Select(kTaskList, last);
}

bool CDefineTask::OnCommand(std::int32_t number) {
  for (const Task& task : kTasks) {
    if (task.command != number) continue;
    lastTask = number;
    GoToStep(task.step);
    return true;
  }
  return CSimulationAndRiskModelessDialog::OnCommand(number);
}

bool CDefineTask::OnOk() {
  const int selected = Controls().Selection(kTaskList);
  return selected >= 0 && OnCommand(kTasks[static_cast<std::size_t>(selected)].command);
}

void CDefineTask::OnControlChanged(std::int32_t number) {
  if (number == kTaskList)
    Controls().Enable(kAutoProfiler, Controls().Selection(kTaskList) == kProfilerEntry);
  if (number == kAutoProfiler) SimulationAndRisk().SetAutoProfiler(Controls().IsChecked(kAutoProfiler));
}

}  // namespace brenvolt::sra
