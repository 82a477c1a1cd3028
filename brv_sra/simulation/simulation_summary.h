// What is told of simulated variables: moments, extremes and percentiles, and correlations.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/simulation/design_correlations.h"
#include "host/controls/progress_bar.h"
#include "host/statistics/moments.h"
#include "host/statistics/order_statistics.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

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
  // Count, moments, extremes and percentiles in the order of the summary's columns, kNotSet where they are
  // not defined; when no more values are wanted.
  std::vector<double> Values() const;

 private:
  MomentAccumulator moments_;
  bool isFirstPass_ = true;
  std::uint64_t count_;
  std::optional<OrderStatisticSearch> search_;
};

// One case per variable, by name; `values` as SampleSummary gives them.
std::unique_ptr<Spreadsheet> SummarySheet(const std::string& title, std::vector<std::string> names,
                                          std::span<const std::vector<double>> values);

// The summary of an output's variables. Throws UserCancelled.
std::unique_ptr<Spreadsheet> SimulationSummary(const Spreadsheet& output, ProgressPort& port);

// One case per pair of variables of an output, (1, 2), (1, 3), …, (2, 3), …: the correlation asked for, the
// one used after a repair, and those reached, Pearson's and Spearman's; missing where they are not defined.
// Throws UserCancelled.
std::unique_ptr<Spreadsheet> CorrelationSummary(const Spreadsheet& output,
                                                const SimulatedCorrelations& correlations,
                                                ProgressPort& port);

}  // namespace brenvolt::sra
