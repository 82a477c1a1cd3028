#include "brv_sra/module/define_task_dialog.h"

#include <array>

#include "brv_sra/frame/control_members.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/startup_interface.h"
#include "host/analysis/case_editors.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace define_task;

void PutAutoProfiler(CDefineTask& dialog, std::span<const Variant>, const Variant& value) {
  const std::int32_t state = value.ToInteger();
  if (state != 0 && state != 1) throw Error("expected 0 or 1, got " + value.ToText());
  if (!dialog.Check(kAutoProfiler, state == 1))
    ThrowControlRefused("AutoProfiler is about the profiler: select it first, by TypeOfAnalysis");
}

// The dialog is closed afterwards.
Variant CallSimulationStartup(CDefineTask& dialog, std::span<const Variant>) {
  return std::int32_t{dialog.Press(kSimulationStartup) ? 1 : 0};
}

constexpr std::array<AutomationMember<CDefineTask>, 3> kMembers{{
    {"TypeOfAnalysis", GetSelection<CDefineTask, kTaskList, 0>, PutSelection<CDefineTask, kTaskList, 0>},
    {"AutoProfiler", nullptr, PutAutoProfiler},
    AutomationMember<CDefineTask>{"SimulationStartup", CallSimulationStartup, nullptr}.ByButton(
        kSimulationStartup),
}};
static_assert(Binds(kStartupInterface, kMembers));

}  // namespace

CDefineTask::CDefineTask(CSimulationAndRisk& analysis) : CTaskDialog(analysis, DefineTaskTemplate()) {
  EnableAutomation<CDefineTask>(kStartupInterface, "CDefineTask", kMembers);
}

void CDefineTask::OnInitDialog() {
  CTaskDialog::OnInitDialog();
  std::vector<std::string> items;
  int last = 0;
  for (const StartupTask& task : StartupTasks()) {
    if (task.command == LastTask()) last = static_cast<int>(items.size());
    items.push_back(szLoadResString(task.text));
  }
  Controls().SetItems(kTaskList, std::move(items));
  Controls().SetChecked(kAutoProfiler, SimulationAndRisk().AutoProfiler());
  Select(kTaskList, last);
}

bool CDefineTask::OnCommand(std::int32_t number) {
  if (number == kSelectionConditions) return EditSelectionConditions(Analysis());
  if (number == kCaseWeights) return EditCaseWeights(Analysis());
  if (number == kOpenData) {
    const Disabled disabled(*this);
    return SimulationAndRisk().OpenData();
  }
  if (number == kSimulationStartup) {
    Analysis().RequestEntry([](CAnalysisSupport& analysis) {
      return static_cast<CSimulationAndRisk&>(analysis).SimulationStartupDialog();
    });
    return true;
  }
  if (const StartupTask* task = FindStartupTask(number)) {
    StartTask(*task, task->step);
    return true;
  }
  return CTaskDialog::OnCommand(number);
}

std::vector<CAnalysisDialog::StandIn> CDefineTask::StandInsOf(std::int32_t number) const {
  const StartupTask* task = FindStartupTask(number);
  std::int32_t place = Controls().Selection(kTaskList);
  if (task != nullptr) place = static_cast<std::int32_t>(task - StartupTasks().data());
  if (task == nullptr && number != kControlOk && number != kTaskList) return {};
  return {{"TypeOfAnalysis", CallKind::kPut, place}, {"OK", CallKind::kMethod, {}}};
}

bool CDefineTask::OnOk() {
  const int selected = Controls().Selection(kTaskList);
  return selected >= 0 && OnCommand(StartupTasks()[static_cast<std::size_t>(selected)].command);
}

bool CDefineTask::OnDoubleClick(std::int32_t number) {
  return number == kTaskList && OnOk();
}

void CDefineTask::OnControlChanged(std::int32_t number) {
  if (number == kTaskList) {
    const bool isProfiler = Controls().Selection(kTaskList) + 1 == static_cast<int>(StartupTasks().size());
    Controls().Enable(kAutoProfiler, isProfiler);
  }
  if (number == kAutoProfiler) SimulationAndRisk().SetAutoProfiler(Controls().IsChecked(kAutoProfiler));
}

}  // namespace brenvolt::sra
