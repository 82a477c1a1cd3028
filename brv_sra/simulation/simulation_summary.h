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
// that hold whole blocks of kBlock values (but for the last), until no more are wanted. In memory that hardly grows with
// their number.
//
// The moments are those of parts of kPart values, joined in the order of the parts; so others can help, each with some of
// the parts, and the digits stay the same.
class SampleSummary {
 public:
  static constexpr std::size_t kBlock = 4096;
  static constexpr std::size_t kPart = 256 * kBlock;

  // Of `count` values.
  explicit SampleSummary(std::uint64_t count);

  bool IsFirstPass() const { return isFirstPass_; }
  bool IsDone() const { return !search_ || search_->IsDone(); }
  // The first values that are given to one of several helpers begin a part.
  void Add(std::span<const double> values);
  void EndPass();

  // What the values of this pass have told, as bytes, and the same of values behind those that were added here.
  void PutTally(ByteWriter& bytes) const;
  void AddTally(ByteReader& bytes);
  // What is known between two passes, for the others.
  void PutKnown(ByteWriter& bytes) const;
  void TakeKnown(ByteReader& bytes);

  // Count, mean, standard deviation, skewness, kurtosis, minimum, maximum and the percentiles, kNotSet where
  // they are not defined; when no more values are wanted.
  std::vector<double> Values() const;

 private:
  MomentAccumulator moments_;
  std::vector<MomentAccumulator> parts_;  // of the first pass, until it ends
  std::size_t left_ = 0;                  // room in the last part
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
