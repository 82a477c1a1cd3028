// The profiler as the command drives it: its dialog through its automation object, with predictors and
// responses by their names.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "apps/cli/profile_report.h"
#include "apps/cli/session.h"
#include "host/statistics/specification_limits.h"

namespace brenvolt::cli {

// "NAME = expression" taken apart.
struct ResponseFormula {
  std::string response;
  std::string expression;
};

class ProfilerSession {
 public:
  // Over a sheet, which must outlive the session.
  ProfilerSession(Spreadsheet& sheet, JobRecorder& job);

  // All members throw JobFailed where the dialog refuses and has said why. Models come before formulas.
  void LoadModels(const std::vector<std::filesystem::path>& files);
  // In the place of a model of the same response.
  void SetFormulas(const std::vector<ResponseFormula>& formulas);
  // In the profiler's order.
  const std::vector<std::string>& Predictors() const { return predictors_; }
  const std::vector<std::string>& Responses() const { return responses_; }

  // The places below are those in the lists above.
  // Whether it is known what the predictor is drawn from.
  bool IsPredictorSpecified(std::size_t predictor) const;
  void SetRuns(std::int32_t runs);
  void SetSeed(std::int32_t seed);
  void Correlate();
  void FitBest();
  void Fix(std::size_t predictor, double value);
  void Truncate(std::size_t predictor, double minimum, double maximum);
  void AddNoise(std::size_t response, double standardDeviation);
  void Specify(std::size_t response, const SpecificationLimits& limits);

  Table Simulate();
  ResponseResults ResultsOf(std::size_t response, bool hasSpecification);
  // The histogram with its best fit and the tornado graph of a response.
  Graph GraphsOf(std::size_t response);
  // The table of defect rates and the graph of the profiles, for which at least one response is specified.
  std::pair<Table, std::optional<Graph>> Defects(std::size_t specifiedResponse);

 private:
  void TakeNames();
  void PutSpecification(std::size_t predictor, const Variant& specification);
  void Put(std::string_view member, const Variant& value);
  void Select(std::size_t response);
  // The documents and graphs that a member shows.
  struct Shown {
    std::vector<Table> tables;
    std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs;
  };
  Shown Show(std::string_view member);

  Session session_;
  std::shared_ptr<AutomationObject> dialog_;
  std::vector<std::string> predictors_;
  std::vector<std::string> responses_;
};

}  // namespace brenvolt::cli
