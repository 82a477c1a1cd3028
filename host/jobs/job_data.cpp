#include "host/jobs/job_data.h"

#include <limits>
#include <random>
#include <utility>

namespace brenvolt {

std::int32_t DrawSeed() {
  std::random_device source;
  return std::uniform_int_distribution<std::int32_t>(1, std::numeric_limits<std::int32_t>::max())(source);
}

FormerConditions::~FormerConditions() {
  sheet_.SetWeightVariable(weight_);
  sheet_.SetSelection(std::move(selection_));
}

JobInput JobRun::Input(ProgramInterface& interface, JobRecorder& recorder) {
  const auto start = [this, &interface, &recorder]() -> AnalysisSession& {
    session = std::make_unique<AnalysisSession>(interface, *sheet);
    recorder.Started(sheet, session->Analysis());
    return *session;
  };
  return {*sheet, &data, sheet, start};
}

void RecordShown(AnalysisSession& session, JobRecorder& recorder) {
  const auto& documents = session.Interface().Documents();
  for (std::size_t i = 0; i < documents.size(); ++i)
    recorder.Shown(session.Analysis(), i, documents[i].get());
}

}  // namespace brenvolt
