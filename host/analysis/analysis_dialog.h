// The base of an analysis's dialogs: controls by number, commands, and the end of the dialog by a step of the
// sequence. What a user does with a mouse and what automation does are the same operations.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/analysis/analysis_support.h"
#include "host/analysis/result_request.h"
#include "host/controls/control_set.h"

namespace brenvolt {

class CAnalysisDialog {
 public:
  CAnalysisDialog(CAnalysisSupport& analysis, const DialogTemplate& source);
  virtual ~CAnalysisDialog();
  CAnalysisDialog(const CAnalysisDialog&) = delete;
  CAnalysisDialog& operator=(const CAnalysisDialog&) = delete;

  const DialogTemplate& Template() const { return template_; }
  ControlSet& Controls() { return controls_; }
  const ControlSet& Controls() const { return controls_; }
  CAnalysisSupport& Analysis() const { return analysis_; }
  Spreadsheet* GetInputTable() const { return analysis_.InputTable(); }

  // The dialog's automation object; the base has none.
  virtual std::shared_ptr<AutomationObject> AutomationInterface() { return nullptr; }

  // Why a Results… member has no meaning for what the dialog makes; nothing where it has one. The base makes no results.
  virtual std::string_view WithoutMeaning(DispatchId /*resultsMember*/) const {
    return "the dialog makes no results";
  }
  // The same for a kind of result that ResultsOption may name.
  virtual std::string_view KindWithoutMeaning(std::int32_t /*kind*/) const { return {}; }
  // The variables that the next results are made of, as automation passes them, where that has a meaning.
  virtual void PutResultsVariables(const Variant& /*variables*/) {}
  // What the other Results… members have asked of the next result.
  ResultRequest& Request() { return request_; }

  // What a recorded macro writes for the press of a button, or the double click on a list, if that is not
  // simply OK, Cancel or a member of automation: calls of members, as name and, for a put, value.
  struct StandIn {
    std::string_view member;
    CallKind kind;
    Variant value;
  };
  virtual std::vector<StandIn> StandInsOf(std::int32_t /*number*/) const { return {}; }

  // Control operations. Each acts as the user's own action would and answers whether the dialog took it: a
  // control that is disabled or hidden refuses, and so does a button whose step of the sequence fails. After
  // Press the dialog may no longer exist.
  bool Press(std::int32_t number);
  bool Check(std::int32_t number, bool checked);
  bool Select(std::int32_t number, int index);
  bool Enter(std::int32_t number, const std::string& text);
  // A double click on a list's selected entry; the dialog may no longer exist afterwards.
  bool DoubleClick(std::int32_t number);

  // While one exists, the dialog refuses every control operation.
  class Disabled {
   public:
    explicit Disabled(CAnalysisDialog& dialog) : dialog_(dialog) { ++dialog_.disabled_; }
    ~Disabled() { --dialog_.disabled_; }
    Disabled(const Disabled&) = delete;
    Disabled& operator=(const Disabled&) = delete;

   private:
    CAnalysisDialog& dialog_;
  };

  // A text of the module by number.
  std::string szLoadResString(std::int32_t number) const { return analysis_.GetResourceString(number); }

 protected:
  // Called once, before the dialog is shown.
  virtual void OnInitDialog() {}
  // A button was pressed (OK and Cancel included). False refuses.
  virtual bool OnCommand(std::int32_t number);
  // A list was double-clicked. False refuses.
  virtual bool OnDoubleClick(std::int32_t /*number*/) { return false; }
  // The step that a command asked for could not be taken, and the dialog is still open: what was done for the
  // step is to be undone.
  virtual void OnStepRefused() {}
  // OK: true when the dialog's checks passed and the work is done.
  virtual bool OnOk() { return true; }
  // A check box, radio button, list or field has its new state.
  virtual void OnControlChanged(std::int32_t /*number*/) {}

  void GoToStep(std::int32_t step) { analysis_.RequestStep(step); }
  void GoBack() { analysis_.RequestReturn(); }
  // Shows a result: of a table the columns that were asked for. It goes into the file that was asked for. Throws Error,
  // and shows nothing, for a part of the request that has no meaning for it.
  void Present(const std::shared_ptr<CAnalysisTableDoc>& table);
  void Present(const std::shared_ptr<CAnalysisGraphDoc>& graph);
  // Saves a result that is shown otherwise.
  void SaveRequested(const std::shared_ptr<CAnalysisTableDoc>& table);
  MessageAnswer ShowMessage(std::int32_t resource) const {
    return analysis_.ShowMessage(szLoadResString(resource));
  }

 private:
  bool Takes(std::int32_t number) const;
  // Carries out what a command asked the sequence for.
  bool Conclude(CAnalysisSupport& analysis);

  CAnalysisSupport& analysis_;
  const DialogTemplate& template_;
  ControlSet controls_;
  int disabled_ = 0;
  ResultRequest request_;
};

// A dialog of the sequence.
class CAnalysisModelessDialog : public CAnalysisDialog {
 public:
  using CAnalysisDialog::CAnalysisDialog;

  // Initialises the dialog and makes it the analysis's open one. False, and no dialog is open that was not
  // before, when the initialisation failed.
  static bool CreateAnalysisDialog(std::unique_ptr<CAnalysisModelessDialog> dialog);
};

// A dialog over the open one, which waits for it.
class CAnalysisModalDialog : public CAnalysisDialog {
 public:
  using CAnalysisDialog::CAnalysisDialog;

  // Initialises the dialog, lets the user act on it, and returns when they left it: true by OK, false by
  // Cancel.
  bool DoModal();
  // True from the start of DoModal until OK was taken or Cancel pressed.
  bool IsOpen() const { return open_; }

 protected:
  bool OnCommand(std::int32_t number) override;

 private:
  bool open_ = false;
  bool accepted_ = false;
};

}  // namespace brenvolt
