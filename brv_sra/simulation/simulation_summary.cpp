#include "brv_sra/simulation/simulation_summary.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/controls/polled_loop.h"
#include "host/numeric/algebra/correlation.h"
#include "host/numeric/vector/sorting.h"
#include "host/statistics/percentiles.h"

namespace brenvolt::sra {
namespace {

std::vector<double> SummaryOf(const Variable& variable) {
  std::vector<double> valid;
  valid.reserve(variable.Size());
  for (std::size_t i = 0; i < variable.Size(); ++i)
    if (!variable.IsMissing(i)) valid.push_back(variable.Values()[i]);
  SampleSummary summary(valid.size());
  while (!summary.IsDone()) {
    summary.Add(valid);
    summary.EndPass();
  }
  return summary.Values();
}

// Pearson's correlations of the columns of an output, or of their ranks: Spearman's.
std::vector<double> Correlate(const Spreadsheet& output, bool ofRanks, ProgressBar& progress) {
  const std::size_t n = output.CaseCount();
  const std::size_t k = output.VariableCount();
  std::vector<double> matrix(n * k);
  PolledParallelFor(k, progress, [&](std::size_t j, const Cancellation& cancelled) {
    cancelled.Poll();
    const std::span<const double> values = output.VariableAt(j).Values();
    std::vector<double> ranks(ofRanks ? n : 0);
    if (ofRanks) AverageRanks(values, ranks);
    const std::span<const double> column = ofRanks ? std::span<const double>(ranks) : values;
    for (std::size_t i = 0; i < n; ++i) matrix[i * k + j] = column[i];
  });
  std::vector<double> correlation(k * k);
  PolledParallelFor(1, progress,
                    [&](std::size_t, const Cancellation&) { PearsonCorrelation(matrix, n, k, correlation); });
  return correlation;
}

}  // namespace

SampleSummary::SampleSummary(std::uint64_t count) : count_(count) {
  if (count == 0) return;
  std::vector<std::uint64_t> ranks;
  for (const int percent : kSummaryPercents) {
    const std::uint64_t below = PlaceOfPercentile(count, percent).below;
    ranks.push_back(below);
    ranks.push_back(std::min(below + 1, count - 1));
  }
  search_.emplace(ranks);
}

void SampleSummary::Add(std::span<const double> values) {
  for (std::size_t from = 0; isFirstPass_ && from < values.size(); from += kBlock) {
    if (left_ == 0) {
      parts_.emplace_back();
      left_ = kPart;
    }
    const std::size_t count = std::min(kBlock, values.size() - from);
    parts_.back().Add(values.subspan(from, count));
    left_ -= count;
  }
  search_->Add(values);
}

void SampleSummary::EndPass() {
  for (const MomentAccumulator& part : parts_) moments_.Join(part);
  parts_.clear();
  isFirstPass_ = false;
  search_->EndPass();
}

void SampleSummary::PutTally(ByteWriter& bytes) const {
  bytes.Put<std::uint64_t>(parts_.size());
  for (const MomentAccumulator& part : parts_) part.Put(bytes);
  search_->PutTally(bytes);
}

void SampleSummary::AddTally(ByteReader& bytes) {
  const auto parts = bytes.Get<std::uint64_t>();
  for (std::uint64_t part = 0; part < parts; ++part) parts_.push_back(MomentAccumulator::Get(bytes));
  left_ = 0;
  search_->AddTally(bytes);
}

void SampleSummary::PutKnown(ByteWriter& bytes) const {
  moments_.Put(bytes);
  search_->PutKnown(bytes);
}

void SampleSummary::TakeKnown(ByteReader& bytes) {
  moments_ = MomentAccumulator::Get(bytes);
  isFirstPass_ = false;
  search_->TakeKnown(bytes);
}

std::vector<double> SampleSummary::Values() const {
  Moments moments = moments_.Finish();
  // One value shows no spread and no shape.
  if (moments.count == 1) moments.standardDeviation = moments.skewness = moments.kurtosis = kNotSet;
  std::vector<double> values{static_cast<double>(moments.count),
                             moments.mean,
                             moments.standardDeviation,
                             moments.skewness,
                             moments.kurtosis,
                             moments.minimum,
                             moments.maximum};
  for (std::size_t i = 0; i < kSummaryPercents.size(); ++i) {
    if (!search_) {
      values.push_back(kNotSet);
      continue;
    }
    const double fraction = PlaceOfPercentile(count_, kSummaryPercents[i]).fraction;
    values.push_back(std::lerp(search_->Value(2 * i), search_->Value(2 * i + 1), fraction));
  }
  return values;
}

SampleSummaries SummarizeOutput(const Spreadsheet& output, const RunProgress& bars) {
  const std::size_t k = output.VariableCount();
  const auto progress = Computing(bars, k + 1);
  SampleSummaries summaries;
  for (std::size_t i = 0; i < k; ++i) summaries.names.push_back(output.VariableAt(i).Name());
  summaries.values.resize(k);
  PolledParallelFor(k, *progress, [&](std::size_t i, const Cancellation& cancelled) {
    cancelled.Poll();
    summaries.values[i] = SummaryOf(output.VariableAt(i));
  });
  return summaries;
}

ReachedCorrelations CorrelateOutput(const Spreadsheet& output, const RunProgress& bars) {
  const auto progress = Computing(bars, 2 * output.VariableCount() + 1);
  std::vector<double> pearson = Correlate(output, false, *progress);
  return {std::move(pearson), Correlate(output, true, *progress)};
}

}  // namespace brenvolt::sra
