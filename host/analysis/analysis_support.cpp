#include "host/analysis/analysis_support.h"

#include "host/analysis/analysis_automation.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/analysis_memory.h"
#include "host/automation/automation_failure.h"
#include "host/base/error.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

// The host's caption over message boxes, if the module's context has none.
constexpr std::int32_t kCaptionResource = 10010;

Variable* InputVariable(Spreadsheet* table, int variable) {
  if (table == nullptr || variable < 1 || static_cast<std::size_t>(variable) > table->VariableCount())
    return nullptr;
  return &table->VariableAt(static_cast<std::size_t>(variable - 1));
}

bool HasCase(const Variable* variable, int caseNumber) {
  return variable != nullptr && caseNumber >= 1 && static_cast<std::size_t>(caseNumber) <= variable->Size();
}

// The value that carries a label with this text, a new one if there is none.
double ValueOfLabel(Variable& variable, const std::string& text) {
  for (const auto& [value, label] : variable.Labels()) {
    if (label == text) return value;
  }
  const double next = variable.Labels().empty() ? 1.0 : variable.Labels().rbegin()->first + 1;
  variable.SetLabel(next, text);
  return next;
}

}  // namespace

CAnalysisSupport::CAnalysisSupport(CAnalysisDoc* document, const CAnalysisContext& context)
    : document_(document), context_(context) {}

CAnalysisSupport::~CAnalysisSupport() {
  if (automation_ != nullptr) automation_->AnalysisClosed();
}

void CAnalysisSupport::InitializeAfterFileChanged() {
  dialog_.reset();
  currentStep_ = 0;
  path_.clear();
  pending_.reset();
}

void CAnalysisSupport::Initialize() {}

CAnalysisDialog* CAnalysisSupport::GetDialog() const {
  return dialog_.get();
}

std::shared_ptr<AutomationObject> CAnalysisSupport::GetDialgInterface() const {
  return dialog_ != nullptr ? dialog_->AutomationInterface() : nullptr;
}

int CAnalysisSupport::ContextEntry() {
  return ++contextDepth_;
}

int CAnalysisSupport::ContextExit() {
  return --contextDepth_;
}

std::string CAnalysisSupport::ContextWrite() const {
  return {};
}

bool CAnalysisSupport::ContextRead(std::string_view text) {
  return text.empty();
}

void CAnalysisSupport::ContextInit() {
  contextDepth_ = 0;
}

bool CAnalysisSupport::ForwardSequence(int from, int to) const {
  return (from == 0 || FindStep(from) != nullptr) && FindStep(to) != nullptr;
}

InstanceHandle CAnalysisSupport::GetLibInstance() const {
  return context_.Instance();
}

std::string CAnalysisSupport::GetResourceString(std::int32_t number) const {
  return std::string(context_.String(number));
}

int CAnalysisSupport::GetAnalysisID() const {
  return 0;
}

std::shared_ptr<AutomationObject> CAnalysisSupport::GetDialogAutomationInterface() const {
  return GetDialgInterface();
}

void CAnalysisSupport::UpdateLastAutomationDefinition() {}

double CAnalysisSupport::get_md(int variable) const {
  const Variable* found = InputVariable(InputTable(), variable);
  return found != nullptr ? found->MissingCode() : GetDefaultMDValue();
}

std::string CAnalysisSupport::get_vn(int variable) const {
  const Variable* found = InputVariable(InputTable(), variable);
  return found != nullptr ? found->Name() : std::string();
}

std::string CAnalysisSupport::dsplst(const std::vector<std::int16_t>& variables) const {
  std::string text;
  for (std::size_t first = 0; first < variables.size();) {
    std::size_t last = first;
    while (last + 1 < variables.size() && variables[last + 1] == variables[last] + 1) ++last;
    if (!text.empty()) text += ' ';
    text += std::to_string(variables[first]);
    if (last > first) text += '-' + std::to_string(variables[last]);
    first = last + 1;
  }
  return text;
}

void CAnalysisSupport::SetMessageErrorHandler(MessageErrorHandler handler) {
  messageHandler_ = handler;
}

std::string CAnalysisSupport::GetAnalysisName() const {
  return {};
}

std::string CAnalysisSupport::GetInputTableDisplayName() const {
  const Spreadsheet* table = InputTable();
  return table != nullptr ? table->Name() : std::string();
}

std::string CAnalysisSupport::GetPlcmprStr() const {
  return "= <> < <= > >=";
}

bool CAnalysisSupport::AnalysisQueryUpdate() const {
  return false;
}

std::vector<std::string> CAnalysisSupport::GetMacroReferences() const {
  return {};
}

bool CAnalysisSupport::BeforeRouteOutput(CAnalysisTableDoc& /*document*/) {
  return true;
}

void CAnalysisSupport::OnCurrentDialogChange() {}

void CAnalysisSupport::BeforeCallEventHandler() {}

void CAnalysisSupport::AfterCallEventHandler() {}

bool CAnalysisSupport::SetInputTableValue(int caseNumber, int variable, const std::string& text) {
  Variable* target = InputVariable(InputTable(), variable);
  if (!HasCase(target, caseNumber)) return false;
  double value = 0;
  Interface().Change([&] { value = ValueOfLabel(*target, text); });
  return SetInputTableValue(caseNumber, variable, value);
}

bool CAnalysisSupport::SetInputTableValue(int caseNumber, int variable, double value) {
  Variable* target = InputVariable(InputTable(), variable);
  if (!HasCase(target, caseNumber)) return false;
  Interface().Change([&] { target->MutableValues()[static_cast<std::size_t>(caseNumber - 1)] = value; });
  return true;
}

bool CAnalysisSupport::SetInputTableTextLabel(int variable, double value, const std::string& text) {
  Variable* target = InputVariable(InputTable(), variable);
  if (target == nullptr) return false;
  Interface().Change([&] { target->SetLabel(value, text); });
  return true;
}

bool CAnalysisSupport::InputTableAddCases(int count) {
  if (InputTable() == nullptr || count < 0) return false;
  Interface().Change([&] { InputTable()->AddCases(static_cast<std::size_t>(count)); });
  return true;
}

bool CAnalysisSupport::InputTableAddVariables(int count) {
  Spreadsheet* table = InputTable();
  if (table == nullptr || count < 0) return false;
  Interface().Change([&] {
    for (int i = 0; i < count; ++i) {
      Variable variable("Var" + std::to_string(table->VariableCount() + 1), 0);
      variable.Resize(table->CaseCount(), variable.MissingCode());
      table->AddVariable(std::move(variable));
    }
  });
  return true;
}

bool CAnalysisSupport::InputTableTextValueEdit(int variable, double value, const std::string& text) {
  const Variable* target = InputVariable(InputTable(), variable);
  if (target == nullptr || !target->Label(value)) return false;
  return SetInputTableTextLabel(variable, value, text);
}

bool CAnalysisSupport::SupportsByGroup() const {
  return false;
}

bool CAnalysisSupport::SupportsCaseWeights() const {
  return true;
}

bool CAnalysisSupport::AcceptsMatrixInput() const {
  return true;
}

void CAnalysisSupport::BeforeClose() {
  InitializeAfterFileChanged();
}

Spreadsheet* CAnalysisSupport::InputTable() const {
  return document_ != nullptr ? document_->InputTable() : nullptr;
}

bool CAnalysisSupport::MatrixIsOK() const {
  return AcceptsMatrixInput() && InputTable() != nullptr && IsMatrixSheet(*InputTable());
}

UserInterface& CAnalysisSupport::Interface() const {
  if (document_ == nullptr) throw Error("no document is attached to the analysis", GetAnalysisName());
  return document_->Interface();
}

const SequenceStep* CAnalysisSupport::FindStep(std::int32_t step) const {
  if (sequence_ == nullptr || step == 0) return nullptr;
  for (const SequenceStep* row = sequence_; row->step != 0; ++row) {
    if (row->step == step) return row;
  }
  return nullptr;
}

bool CAnalysisSupport::RunSequenceStep(std::int32_t step) {
  const SequenceStep* row = FindStep(step);
  if (row == nullptr) return false;
  const CAnalysisDialog* before = dialog_.get();
  if (row->entry(*this) == 0) return false;
  if (dialog_.get() != before) currentStep_ = step;
  return row->followOn == 0 || RunSequenceStep(row->followOn);
}

void CAnalysisSupport::SetCurrentDialog(std::unique_ptr<CAnalysisDialog> dialog) {
  dialog_ = std::move(dialog);
  OnCurrentDialogChange();
}

void CAnalysisSupport::RequestStep(std::int32_t step) {
  pending_ = step;
}

void CAnalysisSupport::RequestReturn() {
  pending_ = 0;
}

bool CAnalysisSupport::CompleteTransition() {
  if (const auto entry = std::exchange(pendingEntry_, nullptr)) return entry(*this) != 0;
  if (!pending_) return true;
  const std::int32_t target = *pending_;
  pending_.reset();
  if (target != 0) return MoveForward(target);
  MoveBack();
  return true;
}

// A step that fails leaves the present dialog open.
bool CAnalysisSupport::MoveForward(std::int32_t step) {
  const std::int32_t from = currentStep_;
  if (!ForwardSequence(from, step) || !RunSequenceStep(step)) return false;
  path_.push_back(from);
  return true;
}

void CAnalysisSupport::MoveBack() {
  const SequenceStep* row = FindStep(currentStep_);
  const std::int32_t returnStep = row != nullptr ? row->returnStep : 0;
  if (returnStep != 0) {
    path_.clear();
    RunSequenceStep(returnStep);
    return;
  }
  if (path_.empty()) {
    InitializeAfterFileChanged();
    return;
  }
  const std::int32_t former = path_.back();
  path_.pop_back();
  RunSequenceStep(former);
}

MessageAnswer CAnalysisSupport::ShowMessage(Message message) const {
  if (messageHandler_ != nullptr) {
    messageHandler_(message.text);
    return MessageAnswer::kOk;
  }
  if (message.caption.empty()) message.caption = GetResourceString(kCaptionResource);
  return Interface().ShowMessage(message);
}

std::shared_ptr<AutomationObject> CAnalysisSupport::AutomationInterface() {
  if (automation_ == nullptr) automation_ = std::make_shared<AnalysisAutomation>(*this);
  return automation_;
}

std::shared_ptr<AutomationObject> CAnalysisSupport::ApplicationInterface() const {
  auto application = document_ != nullptr ? document_->Application() : nullptr;
  if (application == nullptr) ThrowNotAvailable("Application");
  return application;
}

void* CAnalysisSupport::AllocMem(std::size_t bytes) {
  return AllocAnalysisMemory(bytes);
}

void CAnalysisSupport::FreeMem(void* block) {
  FreeAnalysisMemory(block);
}

void CAnalysisSupport::InitCommons(CaseSelectionBlock* caseSelection, StartupMenuBlock* startupMenus,
                                   CaseCountBlock* counts, CaseWeightBlock* weights, MenuBlock* /*menu*/) {
  caseSelection_ = caseSelection;
  startupMenus_ = startupMenus;
  counts_ = counts;
  weights_ = weights;
  if (counts_ != nullptr && InputTable() != nullptr) {
    counts_->numberOfCases = static_cast<std::int32_t>(InputTable()->CaseCount());
    counts_->numberOfVariables = static_cast<std::int32_t>(InputTable()->VariableCount());
  }
}

}  // namespace brenvolt
