// The results of a fit as spreadsheets: what a person reads, a program takes, and automation returns.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "brv_sra/fitting/fit_state.h"
#include "host/analysis/result_columns.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// The columns are those of host/analysis/result_columns.h; a value that does not exist is missing.

// A moment as tables and graphs show it. It exists from a least number of values on; its value says nothing
// about that.
struct MomentColumn {
  const ResultColumn& column;
  double Moments::*member;
  std::int64_t leastCount;

  bool ExistsFor(const Moments& moments) const { return moments.count >= leastCount; }
};
// In the order in which they are shown.
std::span<const MomentColumn> MomentColumns();

// One case per variable, named after it: its moments, and why it has no fits if it has none.
std::unique_ptr<Spreadsheet> SummaryTable(std::span<const VariableFit> results);

// One case per checked distribution of a variable, best first, named by its display name; titled by the
// criterion. Columns of the bootstrap only if it was asked for.
std::unique_ptr<Spreadsheet> RankedTable(const VariableFit& fit, RankingCriterion criterion);

// One case per value of a fit, named as in the catalogue ("Scale"; groups are numbered, "Mean 2"): value,
// standard error, and covariances with the values in order, as far as the estimator gives them. An offset
// stands last. Throws CDispatchException if the fit failed.
std::unique_ptr<Spreadsheet> DetailsTable(const VariableFit& variable, const DistributionFit& fit);

// One case per point: the point, density and distribution function of a fit there, and its quantile where the point is a
// probability. Throws CDispatchException where the fit failed.
std::unique_ptr<Spreadsheet> PointsTable(const VariableFit& variable, const DistributionFit& fit,
                                         std::span<const double> points);

}  // namespace brenvolt::sra
