#include "host/analysis/ports/headless_user_interface.h"

#include <utility>

namespace brenvolt {
namespace {

template <class Answer>
Answer Next(std::deque<Answer>& answers, Answer otherwise) {
  if (answers.empty()) return otherwise;
  Answer answer = std::move(answers.front());
  answers.pop_front();
  return answer;
}

// Lets the next answer fill the question in; false if there is none.
template <class Question>
bool Fill(std::deque<std::function<void(Question&)>>& answers, Question& question) {
  const auto answer = Next<std::function<void(Question&)>>(answers, nullptr);
  if (!answer) return false;
  answer(question);
  return true;
}

}  // namespace

std::vector<std::string> HeadlessUserInterface::TakeTexts() {
  std::vector<std::string> texts;
  for (Message& message : messages) texts.push_back(std::move(message.text));
  messages.clear();
  return texts;
}

MessageAnswer HeadlessUserInterface::ShowMessage(const Message& message) {
  messages.push_back(message);
  return Next(messageAnswers, MessageAnswer::kOk);
}

std::vector<std::filesystem::path> HeadlessUserInterface::ChooseFiles(const FileQuestion& /*question*/) {
  return Next(fileAnswers, {});
}

bool HeadlessUserInterface::SelectVariables(VariableQuestion& question) {
  return Fill(variableAnswers, question);
}

bool HeadlessUserInterface::EditSelection(SelectionQuestion& question) {
  return Fill(selectionAnswers, question);
}

bool HeadlessUserInterface::EditWeights(WeightQuestion& question) {
  return Fill(weightAnswers, question);
}

bool HeadlessUserInterface::EditMatrix(MatrixQuestion& question) {
  return Fill(matrixAnswers, question);
}

void HeadlessUserInterface::RunModal(CAnalysisModalDialog& dialog) {
  const auto answer = Next<std::function<void(CAnalysisModalDialog&)>>(modalAnswers, nullptr);
  if (answer) answer(dialog);
}

void HeadlessUserInterface::ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) {
  documents.push_back(std::move(document));
}

void HeadlessUserInterface::ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) {
  graphs.push_back(std::move(graph));
}

void HeadlessUserInterface::ShowProgress(std::string_view caption, std::int64_t done,
                                         std::int64_t /*total*/) {
  if (done == 0) progressCaptions.emplace_back(caption);
}

bool HeadlessUserInterface::IsExternallyCancelled() {
  return cancelled || (looksBeforeCancel && (*looksBeforeCancel)-- <= 0);
}

}  // namespace brenvolt
