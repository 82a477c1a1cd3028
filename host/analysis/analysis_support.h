// The base of every analysis: its input, its sequence of steps with the dialog that is open, and the services
// that its dialogs use. The host drives an analysis through the virtual operations; their names and order are
// part of the contract with modules compiled apart from the host (host/contract/module_contract.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/analysis_doc.h"
#include "host/analysis/module_registration.h"
#include "host/automation/automation_object.h"

namespace brenvolt {

class AnalysisAutomation;
class MacroRecorder;
class CAnalysisSupport;
class CAnalysisDialog;

// One row of an analysis's sequence table; an all-zero row ends the table.
//
// `entry` carries out the step and returns 0 when it failed. After a step that succeeded, the follow-on step
// (0 = none) runs at once. A dialog that the user leaves by Cancel goes to its step's return step; where
// that is 0, to the step whose dialog opened it, and if there is none either, the sequence has ended.
struct SequenceStep {
  std::int32_t step;
  std::int32_t (*entry)(CAnalysisSupport& analysis);
  std::int32_t followOn;
  std::int32_t returnStep;
};

// Blocks that the host shares with the analysis.
struct CaseSelectionBlock {
  bool caseSelectionEnabled = true;
};
struct StartupMenuBlock {
  bool startupMenusEnabled = true;
};
struct CaseCountBlock {
  std::int32_t numberOfCases = 0;
  std::int32_t numberOfVariables = 0;
};
struct CaseWeightBlock {
  bool caseWeightsEnabled = true;
};
struct MenuBlock;

// A window of the front end, null if it has none.
using WindowHandle = const void*;

class CAnalysisSupport {
 public:
  using MessageErrorHandler = void (*)(const std::string& text);

  // `document` may be null; the host attaches one later. `context` must outlive the analysis.
  CAnalysisSupport(CAnalysisDoc* document, const CAnalysisContext& context);

  virtual ~CAnalysisSupport();
  // The input file was changed without the analysis: closes the open dialog, so that the sequence starts
  // afresh.
  virtual void InitializeAfterFileChanged();
  virtual void Initialize();
  // The open dialog, or null.
  virtual CAnalysisDialog* GetDialog() const;
  // The automation object of the open dialog, or null.
  virtual std::shared_ptr<AutomationObject> GetDialgInterface() const;
  // The analysis's own state as the host nests calls into it: the depth of entries not yet left.
  virtual int ContextEntry();
  virtual int ContextExit();
  // The analysis's state as text, and back; the base has none.
  virtual std::string ContextWrite() const;
  virtual bool ContextRead(std::string_view text);
  virtual void ContextInit();
  // True when the sequence may move from one step (0 = from none) to another: both are in the table.
  virtual bool ForwardSequence(int from, int to) const;
  virtual InstanceHandle GetLibInstance() const;
  virtual std::string GetResourceString(std::int32_t number) const;
  virtual int GetAnalysisID() const;
  virtual std::shared_ptr<AutomationObject> GetDialogAutomationInterface() const;
  // Records that the user's settings changed, for the macro that is being recorded. The base does nothing:
  // dialogs record every action themselves (Recorder).
  virtual void UpdateLastAutomationDefinition();
  // The missing-data code and the name of an input variable, counted from 1.
  virtual double get_md(int variable) const;
  virtual std::string get_vn(int variable) const;
  // A list of variables as text, runs shortened: "1-3 5".
  virtual std::string dsplst(const std::vector<std::int16_t>& variables) const;
  // Where message texts go instead of a message box while a handler is set; null restores the box.
  virtual void SetMessageErrorHandler(MessageErrorHandler handler);
  virtual std::string GetAnalysisName() const;
  virtual std::string GetInputTableDisplayName() const;
  // The comparison operators of selection conditions, separated by blanks.
  virtual std::string GetPlcmprStr() const;
  // True when the analysis can be carried out again over changed input.
  virtual bool AnalysisQueryUpdate() const;
  // The names of the libraries that a recorded macro of this analysis refers to.
  virtual std::vector<std::string> GetMacroReferences() const;
  // Called around events; the base does nothing, and lets every output pass.
  virtual bool BeforeRouteOutput(CAnalysisTableDoc& document);
  virtual void OnCurrentDialogChange();
  virtual void BeforeCallEventHandler();
  virtual void AfterCallEventHandler();
  // Changes of the input table; cases and variables count from 1. False, and nothing changes, if the table
  // does not have the place.
  virtual bool SetInputTableValue(int caseNumber, int variable, const std::string& text);
  virtual bool SetInputTableValue(int caseNumber, int variable, double value);
  virtual bool SetInputTableTextLabel(int variable, double value, const std::string& text);
  virtual bool InputTableAddCases(int count);
  virtual bool InputTableAddVariables(int count);
  virtual bool InputTableTextValueEdit(int variable, double value, const std::string& text);
  // What the host may offer with this analysis: output by group, use of case weights, a matrix file as input.
  virtual bool SupportsByGroup() const;
  virtual bool SupportsCaseWeights() const;
  virtual bool AcceptsMatrixInput() const;
  // Called before the host deletes the analysis: closes the open dialog.
  virtual void BeforeClose();

  CAnalysisSupport(const CAnalysisSupport&) = delete;
  CAnalysisSupport& operator=(const CAnalysisSupport&) = delete;

  void AttachDocument(CAnalysisDoc* document) { document_ = document; }
  CAnalysisDoc* Document() const { return document_; }
  // The input spreadsheet, or null.
  Spreadsheet* InputTable() const;
  // True when the input is a matrix file, whatever its values, and the analysis takes one.
  bool MatrixIsOK() const;
  // The user interface of the document. Throws Error when no document is attached.
  UserInterface& Interface() const;

  // Runs a step of the sequence table and what follows on. False when the step is not in the table or failed.
  bool RunSequenceStep(std::int32_t step);
  // The step whose dialog is open, 0 when none is.
  std::int32_t CurrentStep() const { return currentStep_; }
  const SequenceStep* SequenceTable() const { return sequence_; }

  // For dialogs: makes a dialog the open one; what it was before is closed.
  void SetCurrentDialog(std::unique_ptr<CAnalysisDialog> dialog);
  // For dialogs: what will happen once the command being carried out has returned.
  void RequestStep(std::int32_t step);
  void RequestReturn();
  // An entry method, which opens a dialog outside the sequence: leaving it by Cancel ends the sequence, or returns to
  // the step that it belongs to.
  void RequestEntry(std::int32_t (*entry)(CAnalysisSupport& analysis)) { pendingEntry_ = entry; }
  // Carries out what was requested. Called by the dialog base; the calling dialog no longer exists
  // afterwards, unless the answer is false: the step failed, and the dialog stays.
  bool CompleteTransition();

  // A message box under its caption, by default the host's, or the message handler.
  MessageAnswer ShowMessage(Message message) const;
  MessageAnswer ShowMessage(const std::string& text, const std::string& where = {},
                            MessageIcon icon = MessageIcon::kWarning,
                            MessageButtons buttons = MessageButtons::kOk,
                            const std::string& caption = {}) const {
    return ShowMessage(Message{text, where, caption, buttons, icon});
  }

  // Zero-filled work memory; null when memory is short.
  static void* AllocMem(std::size_t bytes);
  static void FreeMem(void* block);

  // The automation objects of the analysis itself and of the application that it runs in; the latter throws
  // AutomationFailure kNotAvailable if no application has attached a document.
  std::shared_ptr<AutomationObject> AutomationInterface();
  std::shared_ptr<AutomationObject> ApplicationInterface() const;

  // While one exists, the analysis is entered and driven by automation: no question is asked of the user.
  // They nest.
  class AutomationCall {
   public:
    explicit AutomationCall(CAnalysisSupport& analysis) : analysis_(analysis) {
      analysis_.ContextEntry();
      ++analysis_.automationDepth_;
    }
    ~AutomationCall() {
      --analysis_.automationDepth_;
      analysis_.ContextExit();
    }
    AutomationCall(const AutomationCall&) = delete;
    AutomationCall& operator=(const AutomationCall&) = delete;

   private:
    CAnalysisSupport& analysis_;
  };
  bool IsUnderAutomation() const { return automationDepth_ > 0; }

  // What records the actions on this analysis's dialogs as a macro; null while none is recorded. It must
  // outlive the analysis, or be taken away before.
  MacroRecorder* Recorder() const { return recorder_; }
  void SetRecorder(MacroRecorder* recorder) { recorder_ = recorder; }
  // Around each action on a dialog (action_recording.h). True for one that is not inside another.
  bool BeginAction() { return ++actionDepth_ == 1; }
  void EndAction() { --actionDepth_; }

  bool CaseSelectionEnabled() const {
    return caseSelection_ == nullptr || caseSelection_->caseSelectionEnabled;
  }
  bool CaseWeightsEnabled() const { return weights_ == nullptr || weights_->caseWeightsEnabled; }
  bool StartupMenusEnabled() const { return startupMenus_ == nullptr || startupMenus_->startupMenusEnabled; }

 protected:
  void InstallSequence(const SequenceStep* table) { sequence_ = table; }
  // Hands the host's blocks to the base. Null means a block that the analysis does not use.
  void InitCommons(CaseSelectionBlock* caseSelection, StartupMenuBlock* startupMenus, CaseCountBlock* counts,
                   CaseWeightBlock* weights, MenuBlock* menu);
  const CAnalysisContext& Context() const { return context_; }

 private:
  const SequenceStep* FindStep(std::int32_t step) const;
  bool MoveForward(std::int32_t step);
  void MoveBack();

  CAnalysisDoc* document_;
  const CAnalysisContext& context_;
  const SequenceStep* sequence_ = nullptr;
  std::unique_ptr<CAnalysisDialog> dialog_;
  std::int32_t currentStep_ = 0;
  std::vector<std::int32_t> path_;       // the steps whose dialogs led, one from the other, to the open one
  std::optional<std::int32_t> pending_;  // the step asked for; 0 asks to go back
  std::int32_t (*pendingEntry_)(CAnalysisSupport& analysis) = nullptr;
  MessageErrorHandler messageHandler_ = nullptr;
  int contextDepth_ = 0;
  int automationDepth_ = 0;
  CaseSelectionBlock* caseSelection_ = nullptr;
  CaseCountBlock* counts_ = nullptr;
  CaseWeightBlock* weights_ = nullptr;
  StartupMenuBlock* startupMenus_ = nullptr;
  std::shared_ptr<AnalysisAutomation> automation_;
  MacroRecorder* recorder_ = nullptr;
  int actionDepth_ = 0;
};

}  // namespace brenvolt
