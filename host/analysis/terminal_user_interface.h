// The user interface of the command line: messages and progress on standard error, documents and graphs kept
// for the command that asked for them. Questions are answered without asking: the command line has settled
// everything.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/analysis/user_interface.h"

namespace brenvolt {

class TerminalUserInterface : public UserInterface {
 public:
  // `program` begins every message: "brenvolt: <text>".
  explicit TerminalUserInterface(std::string program);

  // Documents and graphs shown so far, oldest first.
  std::vector<std::shared_ptr<CAnalysisTableDoc>>& Documents() { return documents_; }
  std::vector<std::shared_ptr<CAnalysisGraphDoc>>& Graphs() { return graphs_; }

  // Messages printed so far.
  int MessageCount() const { return messageCount_; }

  // Prints the text; the answer is OK.
  MessageAnswer ShowMessage(const Message& message) override;
  // Questions for files and variables, and modal dialogs, are cancelled.
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& /*question*/) override { return {}; }
  bool SelectVariables(VariableQuestion& /*question*/) override { return false; }
  void RunModal(CAnalysisModalDialog& /*dialog*/) override {}
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;
  // Shows progress when standard error is a terminal and the work is longer than a second.
  void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) override;
  void EndProgress() override;
  // True once the user pressed Ctrl-C while a job that polls was running.
  bool IsExternallyCancelled() override;

 private:
  std::string program_;
  std::vector<std::shared_ptr<CAnalysisTableDoc>> documents_;
  std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs_;
  bool terminal_;
  bool lineOpen_ = false;
  int messageCount_ = 0;
};

}  // namespace brenvolt
