// A user interface without a user: answers are scripted, every message, document and graph is
// recorded.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/analysis/user_interface.h"

namespace brenvolt {

class HeadlessUserInterface : public UserInterface {
 public:
  // Answers to come, used first to last; after them a message is answered by OK, every other question and a
  // modal dialog by cancelling.
  std::deque<MessageAnswer> messageAnswers;
  std::deque<std::vector<std::filesystem::path>> fileAnswers;
  std::deque<std::function<void(VariableQuestion&)>> variableAnswers;
  std::deque<std::function<void(SelectionQuestion&)>> selectionAnswers;
  std::deque<std::function<void(WeightQuestion&)>> weightAnswers;
  std::deque<std::function<void(MatrixQuestion&)>> matrixAnswers;
  std::deque<std::function<void(CAnalysisModalDialog&)>> modalAnswers;
  // Set by a test or another thread's owner to ask a running operation to stop; or how many looks at it find
  // nothing before the next one does.
  bool cancelled = false;
  std::optional<int> looksBeforeCancel;
  std::chrono::milliseconds pollInterval{1000};

  // What happened, in order.
  std::vector<Message> messages;
  std::vector<std::shared_ptr<CAnalysisTableDoc>> documents;
  std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs;
  std::vector<std::string> progressCaptions;

  // The texts of the messages since the last call, which takes them.
  std::vector<std::string> TakeTexts();

  MessageAnswer ShowMessage(const Message& message) override;
  std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& question) override;
  bool SelectVariables(VariableQuestion& question) override;
  bool EditSelection(SelectionQuestion& question) override;
  bool EditWeights(WeightQuestion& question) override;
  bool EditMatrix(MatrixQuestion& question) override;
  void RunModal(CAnalysisModalDialog& dialog) override;
  void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) override;
  void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override;
  void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) override;
  void EndProgress() override {}
  bool IsExternallyCancelled() override;
  std::chrono::milliseconds PollInterval() const override { return pollInterval; }
};

}  // namespace brenvolt
