#include "host/numeric/algebra/correlation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "host/base/parallel.h"
#include "host/numeric/algebra/matrix_product.h"

namespace brenvolt {
namespace {

constexpr std::size_t kChunk = 256;        // rows of one update
constexpr std::size_t kColumnPanel = 64;   // columns that one task describes
constexpr std::size_t kRowsPerTask = 32;   // rows that one task centres
constexpr double kCancelled = 1.0 / 1024;  // what is left of a sum of squares when it has lost ten bits
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A compensated sum (Neumaier 1974).
struct ExactSum {
  double high = 0;
  double low = 0;

  void Add(double x) {
    const double total = high + x;
    const double part = total - high;
    low += (high - (total - part)) + (x - part);
    high = total;
  }
  double Value() const { return high + low; }
};

struct Column {
  std::size_t count = 0;
  double minimum = std::numeric_limits<double>::infinity();
  double maximum = -std::numeric_limits<double>::infinity();
  ExactSum sum;
  double mean = 0;
  double scale = 1;     // a power of two
  bool usable = false;  // finite and not constant

  void Add(double x) {
    if (std::isnan(x)) return;
    ++count;
    minimum = std::min(minimum, x);
    maximum = std::max(maximum, x);
    sum.Add(x);
  }

  void Finish() {
    mean = sum.Value() / static_cast<double>(count);
    const double spread = std::max(maximum - mean, mean - minimum);
    usable = count >= 2 && minimum < maximum && std::isfinite(spread);
    if (usable) scale = std::ldexp(1.0, -std::clamp(std::ilogb(spread), -1000, 1000));
  }

  double Standardised(double x) const { return (x - mean) * scale; }
};

struct Data {
  std::span<const double> values;
  std::size_t n;
  std::size_t k;
  double At(std::size_t row, std::size_t column) const { return values[row * k + column]; }
};

std::vector<Column> DescribeColumns(const Data& data) {
  std::vector<Column> columns(data.k);
  ParallelBlocks(data.k, kColumnPanel, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = 0; i < data.n; ++i)
      for (std::size_t j = begin; j < end; ++j) columns[j].Add(data.At(i, j));
    for (std::size_t j = begin; j < end; ++j) columns[j].Finish();
  });
  return columns;
}

// A k x k matrix of compensated sums over chunks of rows.
class ProductSums {
 public:
  ProductSums(std::size_t k, ProductPart part) : k_(k), part_(part), high_(k * k), low_(k * k) {}

  // Adds a' b for chunks of `rows` rows.
  void Add(const std::vector<double>& a, const std::vector<double>& b, std::size_t rows) {
    AddProduct(RowMajor(a, rows, k_).Transposed(), RowMajor(b, rows, k_), 1,
               {high_.data(), k_, low_.data(), part_});
  }
  double At(std::size_t i, std::size_t j) const { return high_[i * k_ + j] + low_[i * k_ + j]; }

 private:
  std::size_t k_;
  ProductPart part_;
  std::vector<double> high_;
  std::vector<double> low_;
};

// The sums of a pair, all about the same origins and over the rows where both values are present.
struct PairSums {
  double count;
  double x, y, xx, yy, xy;
};

// NaN when the pair has no coefficient, or its sums have cancelled.
double Coefficient(const PairSums& s) {
  const double xx = s.xx - s.x * s.x / s.count;
  const double yy = s.yy - s.y * s.y / s.count;
  if (!(xx > kCancelled * s.xx) || !(yy > kCancelled * s.yy)) return kNaN;
  return std::clamp((s.xy - s.x * s.y / s.count) / (std::sqrt(xx) * std::sqrt(yy)), -1.0, 1.0);
}

double CoefficientOfPair(const Data& data, std::size_t first, std::size_t second) {
  Column x;
  Column y;
  const auto forPairs = [&](const auto& body) {
    for (std::size_t i = 0; i < data.n; ++i) {
      const double a = data.At(i, first);
      const double b = data.At(i, second);
      if (!std::isnan(a) && !std::isnan(b)) body(a, b);
    }
  };
  forPairs([&](double a, double b) {
    x.Add(a);
    y.Add(b);
  });
  x.Finish();
  y.Finish();
  if (!x.usable || !y.usable) return kNaN;
  ExactSum sx, sy, xx, yy, xy;
  forPairs([&](double a, double b) {
    const double u = x.Standardised(a);
    const double v = y.Standardised(b);
    sx.Add(u);
    sy.Add(v);
    xx.Add(u * u);
    yy.Add(v * v);
    xy.Add(u * v);
  });
  return Coefficient(
      {static_cast<double>(x.count), sx.Value(), sy.Value(), xx.Value(), yy.Value(), xy.Value()});
}

// Chunks of standardised columns: the values (0 if missing), their squares, and 1 where present.
struct Chunk {
  std::vector<double> values;
  std::vector<double> squares;
  std::vector<double> present;
  std::size_t rows = 0;

  void Fill(const Data& data, const std::vector<Column>& columns, std::size_t begin) {
    rows = std::min(kChunk, data.n - begin);
    ParallelBlocks(rows, kRowsPerTask, [&](std::size_t first, std::size_t last) {
      for (std::size_t i = first; i < last; ++i) {
        for (std::size_t j = 0; j < data.k; ++j) {
          const double x = data.At(begin + i, j);
          const bool counts = columns[j].usable && !std::isnan(x);
          values[i * data.k + j] = counts ? columns[j].Standardised(x) : 0;
          if (present.empty()) continue;
          squares[i * data.k + j] = values[i * data.k + j] * values[i * data.k + j];
          present[i * data.k + j] = counts ? 1 : 0;
        }
      }
    });
  }
};

// Calls coefficient(i, j) for the pairs of usable columns, j < i, and fills the matrix.
template <class Pair>
void FillMatrix(const std::vector<Column>& columns, const Pair& coefficient, std::span<double> correlation) {
  const std::size_t k = columns.size();
  ParallelFor(k, [&](std::size_t i) {
    for (std::size_t j = 0; j < i; ++j)
      correlation[i * k + j] = columns[i].usable && columns[j].usable ? coefficient(i, j) : kNaN;
    correlation[i * k + i] = columns[i].usable ? 1 : kNaN;
  });
  MirrorLowerTriangle(correlation, k);
}

void CorrelateComplete(const Data& data, const std::vector<Column>& columns, std::span<double> correlation) {
  Chunk chunk;
  chunk.values.resize(kChunk * data.k);
  ProductSums products(data.k, ProductPart::kLowerTriangle);
  std::vector<ExactSum> sums(data.k);
  for (std::size_t begin = 0; begin < data.n; begin += kChunk) {
    chunk.Fill(data, columns, begin);
    for (std::size_t i = 0; i < chunk.rows; ++i)
      for (std::size_t j = 0; j < data.k; ++j) sums[j].Add(chunk.values[i * data.k + j]);
    products.Add(chunk.values, chunk.values, chunk.rows);
  }
  const auto coefficient = [&](std::size_t i, std::size_t j) {
    const double r = Coefficient({static_cast<double>(data.n), sums[i].Value(), sums[j].Value(),
                                  products.At(i, i), products.At(j, j), products.At(i, j)});
    return std::isnan(r) ? CoefficientOfPair(data, i, j) : r;
  };
  FillMatrix(columns, coefficient, correlation);
}

void CorrelatePairwise(const Data& data, const std::vector<Column>& columns, std::span<double> correlation) {
  const std::size_t size = kChunk * data.k;
  Chunk chunk{std::vector<double>(size), std::vector<double>(size), std::vector<double>(size)};
  ProductSums products(data.k, ProductPart::kLowerTriangle);
  ProductSums counts(data.k, ProductPart::kLowerTriangle);
  ProductSums sums(data.k, ProductPart::kAll);     // (i, j): of column i where j is present
  ProductSums squares(data.k, ProductPart::kAll);  // the same of the squares
  for (std::size_t begin = 0; begin < data.n; begin += kChunk) {
    chunk.Fill(data, columns, begin);
    products.Add(chunk.values, chunk.values, chunk.rows);
    counts.Add(chunk.present, chunk.present, chunk.rows);
    sums.Add(chunk.values, chunk.present, chunk.rows);
    squares.Add(chunk.squares, chunk.present, chunk.rows);
  }
  const auto coefficient = [&](std::size_t i, std::size_t j) {
    if (counts.At(i, j) < 2) return kNaN;
    const double r = Coefficient({counts.At(i, j), sums.At(i, j), sums.At(j, i), squares.At(i, j),
                                  squares.At(j, i), products.At(i, j)});
    return std::isnan(r) ? CoefficientOfPair(data, i, j) : r;
  };
  FillMatrix(columns, coefficient, correlation);
}

}  // namespace

void PearsonCorrelation(std::span<const double> data, std::size_t n, std::size_t k,
                        std::span<double> correlation) {
  const Data table{data, n, k};
  const std::vector<Column> columns = DescribeColumns(table);
  const bool complete = std::ranges::all_of(columns, [&](const Column& c) { return c.count == n; });
  if (complete) {
    CorrelateComplete(table, columns, correlation);
  } else {
    CorrelatePairwise(table, columns, correlation);
  }
}

}  // namespace brenvolt
