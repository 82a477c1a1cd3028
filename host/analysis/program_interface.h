// The user interface of a program, which has stated all that it needs: every question is cancelled, and what
// is shown is kept.
#pragma once

#include <memory>
#include <vector>

#include "host/analysis/user_interface.h"
#include "host/automation/variant.h"

namespace brenvolt {

class ProgramInterface : public UserInterface {
 public:
  // Everything shown so far, oldest first; documents are tables and graphs.
  const std::vector<Message>& Messages() const { return messages_; }
  const std::vector<Variant::Object>& Documents() const { return documents_; }

  // The answer is OK.
  MessageAnswer ShowMessage(const Message& message) override;
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& /*question*/) override { return {}; }
  bool SelectVariables(VariableQuestion& /*question*/) override { return false; }
  void RunModal(CAnalysisModalDialog& /*dialog*/) override {}
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;

 private:
  std::vector<Message> messages_;
  std::vector<Variant::Object> documents_;
};

}  // namespace brenvolt
