// The user interface of an analysis in Python: messages become warnings or errors, documents are collected,
// Ctrl-C cancels.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <vector>

#include "host/analysis/user_interface.h"
#include "host/automation/variant.h"

namespace brenvolt::python {

// Called by the host without the interpreter lock, by the analysis's own calls with it.
class PythonInterface : public UserInterface {
 public:
  // Everything shown so far, oldest first.
  const std::vector<Message>& Messages() const { return messages_; }
  const std::vector<Variant::Object>& Documents() const { return documents_; }
  // Rethrows what a signal handler raised (KeyboardInterrupt, as a rule) since the last time. With the
  // interpreter lock held.
  void ThrowIfInterrupted();

  // Recorded; the answer is OK. Questions for files and variables, and modal dialogs, are cancelled: a
  // program has said all it wants.
  MessageAnswer ShowMessage(const Message& message) override;
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& /*question*/) override { return {}; }
  bool SelectVariables(VariableQuestion& /*question*/) override { return false; }
  void RunModal(CAnalysisModalDialog& /*dialog*/) override {}
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;
  void ShowProgress(std::string_view /*caption*/, std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void EndProgress() override {}
  // Runs the handlers of signals that came. True once one of them raised.
  bool IsExternallyCancelled() override;

 private:
  std::vector<Message> messages_;
  std::vector<Variant::Object> documents_;
  std::optional<pybind11::error_already_set> interruption_;
};

}  // namespace brenvolt::python
