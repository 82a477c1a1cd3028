#include "host/jobs/job_data.h"

#include <limits>
#include <random>

namespace brenvolt {

std::int32_t DrawSeed() {
  std::random_device source;
  return std::uniform_int_distribution<std::int32_t>(1, std::numeric_limits<std::int32_t>::max())(source);
}

void JobRun::Start(ProgramInterface& interface, JobRecorder& recorder) {
  session = std::make_unique<AnalysisSession>(interface, *sheet);
  recorder.Started(sheet, session->Analysis());
}

void JobRun::RecordShown(JobRecorder& recorder) {
  const auto& documents = session->Interface().Documents();
  for (std::size_t i = 0; i < documents.size(); ++i)
    recorder.Shown(session->Analysis(), i, documents[i].get());
}

}  // namespace brenvolt
