// The user interface of a program, which has stated all that it needs: files and variables are not chosen, and what is
// shown is kept.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "host/analysis/user_interface.h"
#include "host/automation/variant.h"

namespace brenvolt {

class ProgramInterface : public UserInterface {
 public:
  // Everything shown so far, oldest first; documents are tables and graphs.
  const std::vector<Message>& Messages() const { return messages_; }
  const std::vector<Variant::Object>& Documents() const { return documents_; }

  // Lets go of the documents after the first so many, for runs in batches, which show more than memory may hold.
  void KeepDocuments(std::size_t count) { documents_.resize(std::min(count, documents_.size())); }

  // Whether a question is answered with OK, as macros do; else it is cancelled and not shown.
  void AnswerQuestions(bool answers) { answersQuestions_ = answers; }
  // The last question that was cancelled.
  const std::optional<Message>& Unanswered() const { return unanswered_; }

  // The answer is OK, but for questions that are cancelled.
  MessageAnswer ShowMessage(const Message& message) override;
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& /*question*/) override { return {}; }
  bool SelectVariables(VariableQuestion& /*question*/) override { return false; }
  void RunModal(CAnalysisModalDialog& /*dialog*/) override {}
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;

 protected:
  bool Answers(const Message& message) const {
    return message.buttons == MessageButtons::kOk || answersQuestions_;
  }

 private:
  bool answersQuestions_ = true;
  std::optional<Message> unanswered_;
  std::vector<Message> messages_;
  std::vector<Variant::Object> documents_;
};

}  // namespace brenvolt
