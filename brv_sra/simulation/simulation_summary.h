// What is told of simulated variables: moments, extremes and percentiles, and the correlations reached.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/base/run_progress.h"
#include "host/statistics/moments.h"
#include "host/statistics/order_statistics.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The percentiles of a summary.
inline constexpr std::array<int, 9> kSummaryPercents{1, 5, 10, 25, 50, 75, 90, 95, 99};

// The summary of one variable's values, which are given in passes: all of them, in their order and in pieces
// that hold whole blocks of kBlock values (but for the last), until no more are wanted. In memory that does
// not grow with their number.
class SampleSummary {
 public:
  static constexpr std::size_t kBlock = 4096;

  // Of `count` values.
  explicit SampleSummary(std::uint64_t count);

  bool IsDone() const { return !search_ || search_->IsDone(); }
  void Add(std::span<const double> values);
  void EndPass();
  // Count, mean, standard deviation, skewness, kurtosis, minimum, maximum and the percentiles, kNotSet where
  // they are not defined; when no more values are wanted.
  std::vector<double> Values() const;

 private:
  MomentAccumulator moments_;
  bool isFirstPass_ = true;
  std::uint64_t count_;
  std::optional<OrderStatisticSearch> search_;
};

// The values of some variables' summaries, by name.
struct SampleSummaries {
  std::vector<std::string> names;
  std::vector<std::vector<double>> values;  // as SampleSummary gives them
};
// Of an output's variables. Throws UserCancelled.
SampleSummaries SummarizeOutput(const Spreadsheet& output, const RunProgress& bars);

// The correlations between the variables of an output, k x k; NaN if they are not defined. Throws
// UserCancelled.
struct ReachedCorrelations {
  std::vector<double> pearson;
  std::vector<double> spearman;
};
ReachedCorrelations CorrelateOutput(const Spreadsheet& output, const RunProgress& bars);

}  // namespace brenvolt::sra
