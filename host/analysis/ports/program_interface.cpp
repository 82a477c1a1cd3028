#include "host/analysis/ports/program_interface.h"

#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt {

MessageAnswer ProgramInterface::ShowMessage(const Message& message) {
  if (!Answers(message)) {
    unanswered_ = message;
    return MessageAnswer::kCancel;
  }
  messages_.push_back(message);
  return MessageAnswer::kOk;
}

void ProgramInterface::ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) {
  documents_.push_back(std::move(document));
}

void ProgramInterface::ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) {
  documents_.push_back(std::move(graph));
}

}  // namespace brenvolt
