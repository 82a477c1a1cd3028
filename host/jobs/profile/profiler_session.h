// The dialog of the profiler as a job drives it, by its members: predictors and responses by their places from 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/jobs/profile/long_profile.h"
#include "host/jobs/profile/predictor_inputs.h"
#include "host/jobs/profile/profile_job.h"

namespace brenvolt {

class ProfilerSession {
 public:
  // Opens the dialog. Job and session must outlive this.
  ProfilerSession(const ProfileJob& job, std::int32_t seed, AnalysisSession& session);

  AnalysisSession& Session() const { return session_; }
  const std::vector<std::string>& PredictorNames() const { return predictors_; }
  const std::vector<std::string>& Responses() const { return responses_; }
  const PredictorInputs& Predictors() const { return inputs_; }
  // What the dialog has told of what it leaves out, and what else is to be said of the results.
  const std::vector<std::string>& Notes() const { return notes_; }
  void AddNote(std::string note);

  // What predicts. Both give the dialog its predictors and responses; models come first, as formulas take the places of
  // models of their responses.
  void LoadModels(const Variant::Array& models);
  void SetFormulas(const Variant::Array& formulas);
  void FitBest();

  // The response that further members are about.
  void Select(std::size_t response);
  void Put(std::string_view member, const Variant& value);

  const RunBatches& Batches() const { return batches_; }
  // The runs of the next simulation.
  void PutBatch(std::int64_t batch);
  // The simulated runs, why some have no prediction, and the graph of the profiles unless there are too many.
  AnalysisSession::Shown Simulate();
  // The runs of a batch, in the sheet of the first, which is filled anew.
  const Spreadsheet& Refill(std::int64_t batch);
  // Lets go of what is shown of further batches.
  void KeepDocuments(std::size_t count) { session_.Interface().KeepDocuments(count); }
  std::size_t DocumentCount() const { return session_.Interface().Documents().size(); }

  bool IsSpecified(std::size_t response) const;
  void TakeResults(std::size_t response, ProfileResults& results);
  // The table of the counts of defects and the graph of the profiles, for which the response is specified.
  std::pair<Table, std::optional<Graph>> Defects(std::size_t response);

 private:
  void PutPredictions(std::string_view member, const Variant::Array& predictions);
  void NoteMessages(std::size_t from);
  void TakeNames();
  AnalysisSession::Shown Show(std::string_view member);

  const ProfileJob& job_;
  const RunBatches batches_;
  AnalysisSession& session_;
  std::shared_ptr<AutomationObject> dialog_;
  std::vector<std::string> predictors_;
  std::vector<std::string> responses_;
  std::vector<std::string> notes_;
  PredictorInputs inputs_{session_, predictors_};
};

}  // namespace brenvolt
