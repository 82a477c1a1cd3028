#include "host/jobs/profile/long_profile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>

#include "host/analysis/run_bounds.h"
#include "host/base/number_text.h"
#include "host/statistics/moments.h"
#include "host/statistics/order_statistics.h"
#include "host/statistics/percentiles.h"
#include "host/statistics/proportion.h"

namespace brenvolt {
namespace {

constexpr double kConfidence = 0.95;
constexpr double kMillion = 1e6;

double OrMissing(double value) {
  return IsNotSet(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

// What is told of a response over all runs, whose values come in passes, batch by batch.
class ResponseSummary {
 public:
  ResponseSummary(ResponseResults& response, std::int64_t runs)
      : response_(response),
        hasMoments_(!response.IsPredicted() || !std::isnan(response.statistics.Number("mean"_column))),
        hasLimits_(HasLimits(response)) {
    SeekIn(static_cast<std::uint64_t>(runs));
  }

  bool IsDone() const { return !search_ || search_->IsDone(); }

  void Add(const Spreadsheet& simulated) {
    const Variable& column = simulated.VariableAt(*simulated.FindVariable(response_.name));
    valid_.clear();
    for (std::size_t i = 0; i < column.Size(); ++i) {
      const double value = column.Values()[i];
      if (!column.IsMissing(i) && std::isfinite(value)) {
        valid_.push_back(value);
      } else if (isFirstPass_) {
        moments_.CountMissing();
      }
    }
    if (isFirstPass_) moments_.Add(std::span<const double>(valid_));
    if (search_ && !(isFirstPass_ && valid_.size() < column.Size())) search_->Add(valid_);
    lacks_ = lacks_ || valid_.size() < column.Size();
  }

  // The first pass looks for the ranks of as many values as there are runs: where some have no prediction, it is made again.
  void EndPass() {
    if (isFirstPass_ && lacks_) {
      SeekIn(static_cast<std::uint64_t>(moments_.Finish().count));
    } else if (search_) {
      search_->EndPass();
    }
    isFirstPass_ = false;
  }

  void Finish() {
    const Moments moments = moments_.Finish();
    const auto put = [this](const ResultColumn& column, double value) {
      response_.statistics.numbers[std::string(column.identifier)] = OrMissing(value);
    };
    put("n"_column, static_cast<double>(moments.count));
    put("missing"_column, static_cast<double>(moments.missing));
    if (hasMoments_) {
      put("mean"_column, moments.mean);
      put("standard_deviation"_column, moments.standardDeviation);
      put("skewness"_column, moments.skewness);
      put("kurtosis"_column, moments.kurtosis);
      put("minimum"_column, moments.minimum);
      put("maximum"_column, moments.maximum);
    }
    if (!search_) return;
    std::size_t next = 0;
    for (ResultRow& row : response_.percentiles)
      PutPercentile(row, Estimate(row, [&](std::uint64_t) { return search_->Value(next++); }));
  }

 private:
  static bool HasLimits(const ResponseResults& response) {
    return std::ranges::any_of(response.percentiles, [](const ResultRow& row) {
      return !std::isnan(row.Number("lower"_column)) || !std::isnan(row.Number("upper"_column));
    });
  }

  PercentileEstimate Estimate(const ResultRow& row,
                              const std::function<double(std::uint64_t)>& valueOf) const {
    const auto percent = NumberIn(row.identifier, "percentile"_column);
    return EstimatePercentile(count_, ParseNumber(percent.value_or("")).value_or(0), kConfidence, valueOf);
  }

  void SeekIn(std::uint64_t count) {
    count_ = count;
    search_.reset();
    std::vector<std::uint64_t> ranks;
    const auto note = [&ranks](std::uint64_t rank) {
      ranks.push_back(rank);
      return 0.0;
    };
    for (const ResultRow& row : response_.percentiles) {
      if (count > 0) Estimate(row, note);
    }
    if (!ranks.empty()) search_.emplace(ranks);
  }

  void PutPercentile(ResultRow& row, const PercentileEstimate& estimate) const {
    const auto put = [&row](const ResultColumn& column, double value) {
      row.numbers[std::string(column.identifier)] = OrMissing(value);
    };
    put("value"_column, estimate.value);
    if (!hasLimits_) return;
    put("lower"_column, estimate.lower);
    put("upper"_column, estimate.upper);
    put("coverage"_column, estimate.coverage);
  }

  ResponseResults& response_;
  bool hasMoments_;  // classes have none
  bool hasLimits_;
  bool isFirstPass_ = true;
  bool lacks_ = false;  // a run without a prediction was met
  std::uint64_t count_ = 0;
  MomentAccumulator moments_;
  std::optional<OrderStatisticSearch> search_;
  std::vector<double> valid_;
};

}  // namespace

RunBatches::RunBatches(std::int64_t runs, std::int32_t seed)
    : runs_(runs),
      count_((runs + std::int64_t{kMostProfilerRuns} - 1) / std::int64_t{kMostProfilerRuns}),
      seed_(seed) {}

std::int64_t RunBatches::FirstRun(std::int64_t batch) const {
  return runs_ / count_ * batch + std::min(batch, runs_ % count_);
}

std::int32_t RunBatches::Runs(std::int64_t batch) const {
  return static_cast<std::int32_t>(FirstRun(batch + 1) - FirstRun(batch));
}

// Steps through all seeds, each once, and far: a seed nearby that a person gives starts other batches.
std::int32_t RunBatches::Seed(std::int64_t batch) const {
  constexpr std::int64_t kSeeds = std::numeric_limits<std::int32_t>::max();  // a prime
  constexpr std::int64_t kStep = 1640531527;
  return static_cast<std::int32_t>((seed_ - 1 + batch % kSeeds * kStep % kSeeds) % kSeeds + 1);
}

void ExtendResults(const RunBatches& batches, const SimulateBatch& simulate, const BatchSink& take,
                   ProfileResults& results) {
  const std::int64_t runs = batches.FirstRun(batches.Count());
  std::vector<ResponseSummary> summaries;
  for (ResponseResults& response : results.responses) summaries.emplace_back(response, runs);
  bool isFirstPass = true;
  while (isFirstPass || !std::ranges::all_of(summaries, &ResponseSummary::IsDone)) {
    for (std::int64_t batch = 0; batch < batches.Count(); ++batch) {
      simulate(batch, [&](const Spreadsheet& simulated) {
        if (isFirstPass) take(simulated);
        for (ResponseSummary& summary : summaries) summary.Add(simulated);
      });
    }
    for (ResponseSummary& summary : summaries) summary.EndPass();
    isFirstPass = false;
  }
  for (ResponseSummary& summary : summaries) summary.Finish();
  results.runs = runs;
  results.notes.push_back(
      "Moments, percentiles and defects are those of all runs, all else that of the first " +
      std::to_string(batches.Runs(0)) + ".");
}

void AddDefects(const ResultTable& more, ResultTable& defects) {
  for (std::size_t i = 0; i < defects.rows.size(); ++i) {
    ResultRow& row = defects.rows[i];
    const auto sum = [&](const ResultColumn& column) {
      return row.Number(column) + more.rows.at(i).Number(column);
    };
    const auto put = [&row](const ResultColumn& column, double value) {
      row.numbers[std::string(column.identifier)] = OrMissing(value);
    };
    const bool hasLimits = !std::isnan(row.Number("rate_lower"_column));
    const double count = sum("defects"_column);
    const double runs = sum("defect_runs"_column);
    put("defects"_column, count);
    put("defect_runs"_column, runs);
    put("defect_rate"_column, runs > 0 ? count / runs : kNotSet);
    put("defect_ppm"_column, runs > 0 ? count * kMillion / runs : kNotSet);
    if (!hasLimits) continue;
    const ConfidenceInterval interval =
        ProportionInterval(static_cast<std::int64_t>(count), static_cast<std::int64_t>(runs), kConfidence);
    put("rate_lower"_column, interval.lower);
    put("rate_upper"_column, interval.upper);
    put("ppm_lower"_column, interval.lower * kMillion);
    put("ppm_upper"_column, interval.upper * kMillion);
  }
}

}  // namespace brenvolt
