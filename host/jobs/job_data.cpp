#include "host/jobs/job_data.h"

namespace brenvolt {

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
