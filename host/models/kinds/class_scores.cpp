#include "host/models/kinds/class_scores.h"

#include <array>
#include <cmath>

namespace brenvolt::pmml {

void NormaliseSum(const std::vector<Slot>& columns, Frame& frame) {
  std::array<double, kBlockRows> sum{};
  for (const Slot column : columns) {
    const double* x = frame.In(column);
    for (std::size_t i = 0; i < frame.Rows(); ++i) sum[i] += x[i];
  }
  for (const Slot column : columns) {
    double* x = frame.Out(column);
    for (std::size_t i = 0; i < frame.Rows(); ++i) x[i] /= sum[i];
  }
}

void NormaliseSoftmax(const std::vector<Slot>& columns, Frame& frame) {
  std::array<double, kBlockRows> greatest;
  greatest.fill(-std::numeric_limits<double>::infinity());
  for (const Slot column : columns) {
    const double* x = frame.In(column);
    for (std::size_t i = 0; i < frame.Rows(); ++i) greatest[i] = x[i] > greatest[i] ? x[i] : greatest[i];
  }
  for (const Slot column : columns) {
    double* x = frame.Out(column);
    for (std::size_t i = 0; i < frame.Rows(); ++i) x[i] = std::exp(x[i] - greatest[i]);
  }
  NormaliseSum(columns, frame);
}

void DifferenceCumulative(const std::vector<Slot>& columns, Frame& frame) {
  const std::size_t last = columns.size() - 1;
  for (std::size_t k = last; k > 0; --k) {
    double* x = frame.Out(columns[k]);
    const double* below = frame.In(columns[k - 1]);
    for (std::size_t i = 0; i < frame.Rows(); ++i) x[i] = (k == last ? 1 : x[i]) - below[i];
  }
}

}  // namespace brenvolt::pmml
