#include "host/jobs/profile/long_profile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "host/analysis/run_bounds.h"
#include "host/base/bytes.h"
#include "host/base/number_text.h"
#include "host/rounds/crew.h"
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
    if (isFirstPass_) batches_.emplace_back();
    for (std::size_t i = 0; i < column.Size(); ++i) {
      const double value = column.Values()[i];
      if (!column.IsMissing(i) && std::isfinite(value)) {
        valid_.push_back(value);
      } else if (isFirstPass_) {
        batches_.back().CountMissing();
      }
    }
    if (isFirstPass_) batches_.back().Add(std::span<const double>(valid_));
    if (search_ && !(isFirstPass_ && valid_.size() < column.Size())) search_->Add(valid_);
    lacks_ = lacks_ || valid_.size() < column.Size();
  }

  // The first pass looks for the ranks of as many values as there are runs: where some have no prediction, it is made again.
  void EndPass() {
    for (const MomentAccumulator& batch : batches_) moments_.Join(batch);
    batches_.clear();
    if (isFirstPass_ && lacks_) {
      SeekIn(static_cast<std::uint64_t>(moments_.Finish().count));
    } else if (search_) {
      search_->EndPass();
      isBegun_ = true;
    }
    isFirstPass_ = false;
  }

  // What the batches of this pass have told, and the same of batches behind those that were added here.
  void PutTally(ByteWriter& bytes) const {
    bytes.Put(lacks_);
    bytes.Put<std::uint64_t>(batches_.size());
    for (const MomentAccumulator& batch : batches_) batch.Put(bytes);
    if (search_) search_->PutTally(bytes);
  }
  void AddTally(ByteReader& bytes) {
    lacks_ = bytes.Get<bool>() || lacks_;
    const auto batches = bytes.Get<std::uint64_t>();
    for (std::uint64_t i = 0; i < batches; ++i) batches_.push_back(MomentAccumulator::Get(bytes));
    if (search_) search_->AddTally(bytes);
  }
  // What is known between two passes. A search that is begun anew knows nothing.
  void PutKnown(ByteWriter& bytes) const {
    moments_.Put(bytes);
    bytes.Put(count_);
    bytes.Put(search_ && isBegun_);
    if (search_ && isBegun_) search_->PutKnown(bytes);
  }
  void TakeKnown(ByteReader& bytes) {
    moments_ = MomentAccumulator::Get(bytes);
    SeekIn(bytes.Get<std::uint64_t>());
    isBegun_ = bytes.Get<bool>();
    if (isBegun_) search_->TakeKnown(bytes);
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
    isBegun_ = false;
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
  bool isBegun_ = false;                    // the search, by a pass that ended
  bool lacks_ = false;                      // a run without a prediction was met
  std::vector<MomentAccumulator> batches_;  // of the first pass, until it ends
  std::uint64_t count_ = 0;
  MomentAccumulator moments_;
  std::optional<OrderStatisticSearch> search_;
  std::vector<double> valid_;
};

// What a pass over some batches has told.
struct PassTally {
  std::vector<ResponseSummary> summaries;
  std::vector<double> defects;  // counts add up; none in later passes

  void AddDefects(const std::vector<double>& more) {
    defects.resize(std::max(defects.size(), more.size()));
    for (std::size_t i = 0; i < more.size(); ++i) defects[i] += more[i];
  }
  std::string Bytes() const {
    ByteWriter bytes;
    bytes.Put(defects);
    for (const ResponseSummary& summary : summaries) summary.PutTally(bytes);
    return std::move(bytes).Take();
  }
  void Add(const std::string& behind) {
    ByteReader bytes(behind);
    AddDefects(bytes.GetList<double>());
    for (ResponseSummary& summary : summaries) summary.AddTally(bytes);
  }
  std::string End() && {
    ByteWriter bytes;
    bytes.Put(defects);
    for (ResponseSummary& summary : summaries) {
      summary.EndPass();
      summary.PutKnown(bytes);
    }
    return std::move(bytes).Take();
  }
};

// One pass, a round of the crew. Returns the counts of defects.
using AddBatches = std::function<void(PartRange, PassTally&)>;
std::vector<double> CarryOutPass(const std::string& name, std::int64_t batches, const AddBatches& add,
                                 std::vector<ResponseSummary>& summaries) {
  Round round{name, static_cast<std::uint64_t>(batches), {}, {}, {}};
  round.run = [&](PartRange range) {
    PassTally tally{summaries, {}};
    add(range, tally);
    return tally.Bytes();
  };
  round.join = [&](const std::string& first, const std::string& second) {
    PassTally tally{summaries, {}};
    tally.Add(first);
    tally.Add(second);
    return tally.Bytes();
  };
  round.finish = [&](const std::string& all) {
    PassTally tally{summaries, {}};
    tally.Add(all);
    return std::move(tally).End();
  };
  const std::string told = TheCrew().Run(round);
  ByteReader bytes(told);
  std::vector<double> defects = bytes.GetList<double>();
  for (ResponseSummary& summary : summaries) summary.TakeKnown(bytes);
  return defects;
}

// A number that another profile hardly has: from what the first batch told.
std::uint64_t PrintOf(const ProfileResults& results, const RunBatches& batches) {
  ByteWriter bytes;
  bytes.Put(batches.Seed(0));
  bytes.Put(batches.FirstRun(batches.Count()));
  for (const ResponseResults& response : results.responses) {
    bytes.Put(std::string_view(response.name));
    for (const auto& [column, number] : response.statistics.numbers) bytes.Put(number);
    for (const ResultRow& row : response.percentiles) bytes.Put(row.Number("value"_column));
  }
  return HashOf(std::move(bytes).Take());
}

// Adds counts of further batches, with what follows from them.
void AddDefects(const std::vector<double>& more, ResultTable& defects) {
  for (std::size_t i = 0; i < defects.rows.size(); ++i) {
    ResultRow& row = defects.rows[i];
    const auto put = [&row](const ResultColumn& column, double value) {
      row.numbers[std::string(column.identifier)] = OrMissing(value);
    };
    const bool hasLimits = !std::isnan(row.Number("rate_lower"_column));
    const double count = row.Number("defects"_column) + more.at(2 * i);
    const double runs = row.Number("defect_runs"_column) + more.at(2 * i + 1);
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
                   const CountDefects& count, ProfileResults& results) {
  const std::int64_t runs = batches.FirstRun(batches.Count());
  std::vector<ResponseSummary> summaries;
  for (ResponseResults& response : results.responses) summaries.emplace_back(response, runs);
  const std::string name = "runs of profile " + std::to_string(PrintOf(results, batches));
  std::vector<double> defects;
  for (bool isFirst = true; isFirst || !std::ranges::all_of(summaries, &ResponseSummary::IsDone);
       isFirst = false) {
    const auto add = [&](PartRange range, PassTally& tally) {
      for (std::uint64_t batch = range.first; batch < range.end; ++batch) {
        simulate(static_cast<std::int64_t>(batch), [&](const Spreadsheet& simulated) {
          if (isFirst) take(simulated);
          if (isFirst && batch > 0 && results.defects) tally.AddDefects(count());
          for (ResponseSummary& summary : tally.summaries) summary.Add(simulated);
        });
      }
    };
    std::vector<double> counted = CarryOutPass(name, batches.Count(), add, summaries);
    if (isFirst) defects = std::move(counted);
  }
  for (ResponseSummary& summary : summaries) summary.Finish();
  if (results.defects) AddDefects(defects, *results.defects);
  results.runs = runs;
  results.notes.push_back(
      "Moments, percentiles and defects are those of all runs, all else that of the first " +
      std::to_string(batches.Runs(0)) + ".");
}

}  // namespace brenvolt
