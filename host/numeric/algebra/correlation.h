// The correlation matrix of columns with missing values.
#pragma once

#include <cstddef>
#include <span>

namespace brenvolt {

// correlation (k x k, row-major, symmetric) = Pearson's coefficients of the columns of `data` (n x k,
// row-major; NaN is missing), each pair over the rows where both are present. Coefficients lie within [-1,
// 1], the diagonal is exactly 1. A coefficient is NaN if fewer than two rows are left, if either column
// is constant over them, or where a column holds an infinite value or its sum overflows.
//
// Columns are centred by compensated means and brought near 1 by a power of two; sums of squares and products
// are symmetric updates of rank 256 whose results are added with compensation, and are corrected for what the
// rounded mean left (Chan, Golub & LeVeque 1983, corrected two-pass algorithm). A pair whose sums cancel,
// because values far from the rest are missing in its other column, is computed again on its own. So the
// error is that of a coefficient whose columns are rounded once, whatever location and scale they have. The
// same bits at any number of threads and on any instruction set.
void PearsonCorrelation(std::span<const double> data, std::size_t n, std::size_t k,
                        std::span<double> correlation);

}  // namespace brenvolt
