// The analysis object's members for the correlation matrix file: questions, messages and the exchange of the
// input around the engine in brv_sra/matrix.
#include <algorithm>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/attached_input.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/profiler/dialogs/profiler_dialog.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/automation/variable_list.h"

namespace brenvolt::sra {
namespace {

// The variables chosen from `names`; none when the person cancelled. Those in `preset` are chosen beforehand.
std::vector<std::string> AskForVariables(UserInterface& userInterface, const std::vector<std::string>& names,
                                         const std::vector<std::string>& preset) {
  VariableQuestion question;
  question.caption = ResourceString(kMatrixSelectVariables);
  question.firstListCaption = ResourceString(kMatrixSelectVariablesList);
  question.names = names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (std::ranges::find(preset, names[i]) != preset.end()) question.first.push_back(VariableNumberOf(i));
  }
  if (!userInterface.SelectVariables(question)) return {};
  std::vector<std::string> chosen;
  for (const std::int16_t number : question.first) {
    if (number >= 1 && static_cast<std::size_t>(number) <= names.size())
      chosen.push_back(names[static_cast<std::size_t>(number - 1)]);
  }
  return chosen;
}

bool ProfilesFormulas(CSimulationAndRisk& analysis) {
  const bool profiling = dynamic_cast<const CSimulationProfiler*>(analysis.GetDialog()) != nullptr;
  return profiling && analysis.Profiler().mode == ProfilerMode::kFormulas;
}

// The names of selected variables, each once.
void AppendSelected(const std::vector<std::int16_t>& numbers, const std::vector<std::string>& names,
                    std::vector<std::string>& selected) {
  for (const std::int16_t number : numbers) {
    if (number < 1 || static_cast<std::size_t>(number) > names.size()) continue;
    const std::string& name = names[static_cast<std::size_t>(number - 1)];
    if (std::ranges::find(selected, name) == selected.end()) selected.push_back(name);
  }
}

}  // namespace

std::int32_t CSimulationAndRisk::ValidateInputMatrixFile(WindowHandle /*parent*/) {
  matrix_->attached = false;
  matrix_->file = {};
  if (!MatrixIsOK()) return 0;
  Result<MatrixFile> read =
      ReadMatrixFile(*InputTable(), {.useCaseSelection = CaseSelectionEnabled(),
                                     .isCancelled = [this] { return Interface().IsExternallyCancelled(); }});
  if (!read) {
    ShowFault(*this, read.Reason());
    return 0;
  }
  matrix_->file = *std::move(read);
  matrix_->numberOfVariables = static_cast<std::int32_t>(matrix_->file.variables.size());
  matrix_->attached = true;
  matrix_->symmetric = IsCorrelationMatrixSymmetric() != 0;
  return 1;
}

std::int32_t CSimulationAndRisk::ValidateOrDesignInputMatrixFile() {
  if (ValidateInputMatrixFile() != 0) {
    UpdateFromInputMatrixFile();
    return 1;
  }
  if (IsUnderAutomation() || Document() == nullptr) return 0;
  const MessageAnswer answer = ShowMessage(std::string(ResourceString(kMsgMatrixCreateQuestion)), {},
                                           MessageIcon::kInformation, MessageButtons::kOkCancel);
  return answer == MessageAnswer::kOk ? CreateAndAttachCorrelationInputFile() : 0;
}

std::int32_t CSimulationAndRisk::CreateAndAttachCorrelationInputFile() {
  if (Document() == nullptr) return 0;
  std::vector<std::string> variables = matrix_->variables;
  if (!IsUnderAutomation()) {
    const Spreadsheet* input = InputTable();
    const auto names = input != nullptr ? VariableNames(*input) : std::vector<std::string>();
    variables = AskForVariables(Interface(), names, variables);
  }
  if (variables.empty()) return 0;

  const auto document = std::make_shared<CAnalysisTableDoc>(*MakeMatrixFile(MatrixFile::Identity(variables)));
  matrix_->variables = std::move(variables);
  ShowAndAttachInput(*this, document);
  return ValidateInputMatrixFile();
}

// Names of variables are kept as they read, never hashed nor coded: blanks at their ends are all that goes.
std::int32_t CSimulationAndRisk::UpdateFromInputMatrixFile() {
  if (ProfilesFormulas(*this)) return 1;
  if (InputTable() == nullptr) return 0;
  matrix_->variables = VariableNames(*InputTable());
  matrix_->numberOfVariables = static_cast<std::int32_t>(matrix_->variables.size());
  return 1;
}

std::int32_t CSimulationAndRisk::UpdateFromInputSpreadsheet() {
  const std::int32_t read = UpdateFromInputMatrixFile();
  if (read == 0 || ProfilesFormulas(*this)) return read;
  const FitSpecification& fit = fit_->specification;
  std::vector<std::string> selected;
  AppendSelected(fit.continuous, matrix_->variables, selected);
  AppendSelected(fit.discrete, matrix_->variables, selected);
  AppendSelected(simulation_->options.variables, matrix_->variables, selected);
  if (selected.empty()) return 1;
  matrix_->variables = std::move(selected);
  matrix_->numberOfVariables = static_cast<std::int32_t>(matrix_->variables.size());
  return 1;
}

std::int32_t CSimulationAndRisk::IsCorrelationMatrixSymmetric() {
  return IsSymmetricCorrelationMatrix(matrix_->file.correlations) ? 1 : 0;
}

}  // namespace brenvolt::sra
