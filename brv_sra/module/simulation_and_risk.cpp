#include "brv_sra/module/simulation_and_risk.h"

#include <new>

#include "brv_sra/fitting/dialogs/fit_distribution_dialog.h"
#include "brv_sra/fitting/dialogs/fit_results_dialog.h"
#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/loaded_module.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/module/define_task_dialog.h"
#include "brv_sra/module/sequence_table.h"
#include "brv_sra/module/simulation_startup_dialog.h"
#include "brv_sra/profiler/dialogs/profiler_dialog.h"
#include "brv_sra/profiler/profiler_state.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/dialogs/design_dialog.h"
#include "brv_sra/simulation/dialogs/simulation_dialog.h"
#include "brv_sra/simulation/dialogs/simulation_results_dialog.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr int kAnalysisId = 25693;
constexpr std::int32_t kDialogOpened = -1;

template <class Dialog>
std::int32_t OpenDialog(CSimulationAndRisk& analysis) {
  try {
    return CAnalysisModelessDialog::CreateAnalysisDialog(std::make_unique<Dialog>(analysis)) ? kDialogOpened
                                                                                             : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

}  // namespace

CSimulationAndRisk::CSimulationAndRisk(CAnalysisDoc* document)
    : AnalysisServices(document, ModuleContext()),
      fit_(std::make_unique<FitState>()),
      matrix_(std::make_unique<MatrixState>()),
      simulation_(std::make_unique<SimulationState>()),
      profiler_(std::make_unique<ProfilerState>()) {
  InstallSequence(sra::SequenceTable());
}

// The open dialog works on the members below: it goes first.
CSimulationAndRisk::~CSimulationAndRisk() {
  InitializeAfterFileChanged();
}

void CSimulationAndRisk::Initialize() {}

bool CSimulationAndRisk::ForwardSequence(int from, int to) const {
  return CAnalysisSupport::ForwardSequence(from, to);
}

InstanceHandle CSimulationAndRisk::GetLibInstance() const {
  return ModuleInstance();
}

int CSimulationAndRisk::GetAnalysisID() const {
  return kAnalysisId;
}

std::string CSimulationAndRisk::GetAnalysisName() const {
  return std::string(ResourceString(kAnalysisName));
}

std::int32_t CSimulationAndRisk::Init() {
  InitCommons(&caseSelection_, &startupMenus_, &counts_, &weights_, nullptr);
  return 1;
}

bool CSimulationAndRisk::OpenData() {
  FileQuestion question;
  question.title = ResourceString(kOpenDataTitle);
  question.filter = ResourceString(kOpenDataFilter);
  const auto files = Interface().ChooseFiles(question);
  if (files.empty()) return false;
  try {
    Document()->OpenInput(files.front());
  } catch (const Error& error) {
    ShowMessage(error.what(), error.Where());
    return false;
  }
  *fit_ = {};
  *simulation_ = {};
  *profiler_ = {};
  matrix_->saved.reset();
  InitCommons(&caseSelection_, &startupMenus_, &counts_, &weights_, nullptr);
  return true;
}

bool CSimulationAndRisk::MayFitInput() const {
  if (InputTable() == nullptr || !IsMatrixFile(*InputTable())) return true;
  return ShowMessage(GetResourceString(kMsgInputIsMatrixFile), {}, MessageIcon::kInformation,
                     MessageButtons::kOkCancel) == MessageAnswer::kOk;
}

std::int32_t CSimulationAndRisk::StartAnalysis() {
  return OpenDialog<CDefineTask>(*this);
}

std::int32_t CSimulationAndRisk::SimulationStartupDialog() {
  return OpenDialog<CSimulation>(*this);
}

// Back from its results, the dialog works on an input that the person has already agreed to.
std::int32_t CSimulationAndRisk::FitDistributionDialog() {
  if (CurrentStep() != step::kFitResults && !MayFitInput()) return 0;
  return OpenDialog<CFitDistribution>(*this);
}

std::int32_t CSimulationAndRisk::FitDistributionResultsDialog() {
  return OpenDialog<CFitDistributionResults>(*this);
}

std::int32_t CSimulationAndRisk::DesignSimulationDialog() {
  return OpenDialog<CDesignSimulation>(*this);
}

std::int32_t CSimulationAndRisk::SimulationFromDistributionDialog() {
  return OpenDialog<CSimulationFromDistribution>(*this);
}

std::int32_t CSimulationAndRisk::SimulationResultsDialog() {
  return OpenDialog<CSimulationResults>(*this);
}

std::int32_t CSimulationAndRisk::SimulationProfilerDialog() {
  return OpenDialog<CSimulationProfiler>(*this);
}

}  // namespace brenvolt::sra

brenvolt::sra::CSimulationAndRisk* Kro6NewAnalysis() {
  try {
    return std::make_unique<brenvolt::sra::CSimulationAndRisk>(nullptr).release();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
