// Gaussian mixture by expectation-maximisation (Dempster, Laird & Rubin 1977). Each start is a division of
// the sorted data into groups; the starts run a few steps (the short runs of Biernacki, Celeux & Govaert
// 2003), the best of them to the end. Long runs are accelerated by squared extrapolation (Varadhan & Roland
// 2008, scheme S3) in the logarithms of proportions and standard deviations and in the means; an
// extrapolation that loses likelihood is taken back, so that the likelihood never falls. Near a maximum
// Newton's method for the fixed point of the step finishes the run.
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "host/numeric/bracketed_root.h"
#include "host/numeric/estimator_support.h"
#include "host/numeric/estimators.h"
#include "host/numeric/mixture_expectation.h"

namespace brenvolt {
namespace {

using estimation::CheckSample;
using estimation::Fail;
using estimation::Mean;
using estimation::MeanSquare;
using estimation::ScaledSample;
using estimation::ScaleFrom;
using estimation::Succeed;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLeastRelativeDeviation = 1e-6;  // of that of the data; a component below has collapsed
constexpr double kLeastCount = 2.0;               // the values that a component must hold
constexpr std::size_t kValuesPerComponent = 3;

using Component = MixtureComponent;
using Mixture = std::vector<Component>;

// Steps of expectation and maximisation over one sample, with the space that they need.
class Climber {
 public:
  Climber(std::span<const double> values, std::size_t components, double deviation)
      : values_(values),
        leastDeviation_(kLeastRelativeDeviation * deviation),
        expectation_(components),
        sums_(components) {}

  // Replaces the mixture by the next one and returns the mean log-likelihood of the one given.
  double Step(Mixture& mixture);

  bool IsCollapsed(const Mixture& mixture) const {
    const double leastProportion = kLeastCount / static_cast<double>(values_.size());
    return std::any_of(mixture.begin(), mixture.end(), [&](const Component& c) {
      return !(c.proportion >= leastProportion * (1.0 - 1e-9)) || !(c.deviation > leastDeviation_);
    });
  }

 private:
  std::span<const double> values_;
  double leastDeviation_;
  MixtureExpectation expectation_;
  std::vector<ResponsibilitySums> sums_;
};

double Climber::Step(Mixture& mixture) {
  const double logLikelihood = expectation_.Run(values_, mixture, sums_);
  const auto n = static_cast<double>(values_.size());
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    const double shift = sums_[c].first / sums_[c].weight;
    mixture[c].proportion = sums_[c].weight / n;
    mixture[c].mean += shift;
    mixture[c].deviation = std::sqrt(std::max(0.0, sums_[c].second / sums_[c].weight - shift * shift));
  }
  return std::isnan(logLikelihood) ? -kInfinity : logLikelihood / n;
}

// x0 + 2 a r + a^2 v in the coordinates of the extrapolation, with r = x1 - x0 and v = (x2 - x1) - r.
class Extrapolation {
 public:
  Extrapolation(const Mixture& x0, const Mixture& x1, const Mixture& x2) : x0_(x0) {
    double rr = 0.0;
    double vv = 0.0;
    for (std::size_t c = 0; c < x0.size(); ++c) {
      const auto add = [&](double a, double b, double d, double unit) {
        r_.push_back(b - a);
        v_.push_back(d - b - (b - a));
        rr += r_.back() * r_.back() / (unit * unit);
        vv += v_.back() * v_.back() / (unit * unit);
      };
      add(std::log(x0[c].proportion), std::log(x1[c].proportion), std::log(x2[c].proportion), 1.0);
      add(x0[c].mean, x1[c].mean, x2[c].mean, x0[c].deviation);
      add(std::log(x0[c].deviation), std::log(x1[c].deviation), std::log(x2[c].deviation), 1.0);
    }
    length_ = vv > 0.0 ? std::sqrt(rr / vv) : 1.0;
  }

  double Length() const { return length_; }

  Mixture At(double length) const {
    Mixture mixture = x0_;
    double total = 0.0;
    for (std::size_t c = 0; c < mixture.size(); ++c) {
      const auto move = [&](std::size_t k) {
        return 2.0 * length * r_[3 * c + k] + length * length * v_[3 * c + k];
      };
      mixture[c].proportion *= std::exp(move(0));
      mixture[c].mean += move(1);
      mixture[c].deviation *= std::exp(move(2));
      total += mixture[c].proportion;
    }
    for (Component& component : mixture) component.proportion /= total;
    return mixture;
  }

 private:
  const Mixture& x0_;
  std::vector<double> r_;
  std::vector<double> v_;
  double length_ = 1.0;
};

struct Candidate {
  Mixture mixture;
  double logLikelihood = -kInfinity;  // mean
};

// A few plain steps.
Candidate RunShort(Climber& climber, Mixture mixture) {
  constexpr int kSteps = 40;
  Candidate candidate;
  for (int step = 0; step < kSteps; ++step) {
    if (climber.IsCollapsed(mixture)) return {};
    candidate.mixture = mixture;
    candidate.logLikelihood = climber.Step(mixture);
  }
  return candidate;
}

// A mixture as a point: ln proportion, mean and ln standard deviation of each component. The means' unit is
// the component's standard deviation in the mixture that the point is seen from.
using Coordinates = std::vector<double>;

// To - from, in the coordinates seen from `from`.
Coordinates Displacement(const Mixture& from, const Mixture& to) {
  Coordinates moved;
  for (std::size_t c = 0; c < from.size(); ++c) {
    moved.push_back(std::log(to[c].proportion / from[c].proportion));
    moved.push_back((to[c].mean - from[c].mean) / from[c].deviation);
    moved.push_back(std::log(to[c].deviation / from[c].deviation));
  }
  return moved;
}

Mixture Moved(Mixture mixture, const Coordinates& step) {
  double total = 0.0;
  for (std::size_t c = 0; c < mixture.size(); ++c) {
    mixture[c].proportion *= std::exp(step[3 * c]);
    mixture[c].mean += step[3 * c + 1] * mixture[c].deviation;
    mixture[c].deviation *= std::exp(step[3 * c + 2]);
    total += mixture[c].proportion;
  }
  for (Component& component : mixture) component.proportion /= total;
  return mixture;
}

// Solves the system of `rows` (each with its right-hand side as the last entry) by elimination with row
// pivots; false when it is singular.
bool SolveSystem(std::vector<Coordinates>& rows, Coordinates& solution) {
  const std::size_t n = rows.size();
  for (std::size_t k = 0; k < n; ++k) {
    const auto pivot = std::max_element(
        rows.begin() + static_cast<std::ptrdiff_t>(k), rows.end(),
        [k](const Coordinates& a, const Coordinates& b) { return std::abs(a[k]) < std::abs(b[k]); });
    std::swap(rows[k], *pivot);
    if (!(std::abs(rows[k][k]) > 1e-12)) return false;
    for (std::size_t i = k + 1; i < n; ++i) {
      const double factor = rows[i][k] / rows[k][k];
      for (std::size_t j = k; j <= n; ++j) rows[i][j] -= factor * rows[k][j];
    }
  }
  solution.assign(n, 0.0);
  for (std::size_t i = n; i-- > 0;) {
    double rest = rows[i][n];
    for (std::size_t j = i + 1; j < n; ++j) rest -= rows[i][j] * solution[j];
    solution[i] = rest / rows[i][i];
  }
  return true;
}

// Identity minus the derivative of a step at `mixture`, by differences over the climber's values, with room
// for a right-hand side.
std::vector<Coordinates> SlopesOfStep(Climber& climber, const Mixture& mixture) {
  constexpr double kDifference = 1e-6;
  const std::size_t n = 3 * mixture.size();
  Mixture image = mixture;
  climber.Step(image);
  const Coordinates there = Displacement(mixture, image);
  std::vector<Coordinates> rows(n, Coordinates(n + 1, 0.0));
  for (std::size_t j = 0; j < n; ++j) {
    // Not through Moved, which would bring the proportions back to a sum of 1.
    Mixture shifted = mixture;
    Component& component = shifted[j / 3];
    if (j % 3 == 0) component.proportion *= std::exp(kDifference);
    if (j % 3 == 1) component.mean += kDifference * component.deviation;
    if (j % 3 == 2) component.deviation *= std::exp(kDifference);
    climber.Step(shifted);
    const Coordinates moved = Displacement(mixture, shifted);
    for (std::size_t i = 0; i < n; ++i) {
      rows[i][j] = (i == j ? 1.0 : 0.0) - (moved[i] - there[i]) / kDifference;
    }
  }
  return rows;
}

// Newton's method for the mixture that a step leaves where it is, from one near: the slopes come from
// `sketch`, whose values may be a thinned sample of those of `climber` (the iteration then converges by a
// constant factor). Nothing when a move is long, loses likelihood or collapses, or when the moves do not
// vanish.
std::optional<Candidate> Polish(Climber& sketch, Climber& climber, Mixture at) {
  constexpr int kMaxMoves = 12;
  constexpr double kLongMove = 0.5;
  constexpr double kLastMove = 1e-7;  // the likelihood then lacks about its square
  constexpr double kRounding = 1e-13;
  const bool isOwnSketch = &sketch == &climber;
  std::vector<Coordinates> slopes = SlopesOfStep(sketch, at);
  Mixture image = at;
  double logLikelihood = climber.Step(image);
  for (int move = 0; move < kMaxMoves; ++move) {
    const Coordinates displacement = Displacement(at, image);
    std::vector<Coordinates> rows = slopes;
    for (std::size_t i = 0; i < rows.size(); ++i) rows[i].back() = displacement[i];
    Coordinates step;
    if (!SolveSystem(rows, step)) return std::nullopt;
    double length = 0.0;
    for (const double x : step) length = std::max(length, std::abs(x));
    if (!(length < kLongMove)) return std::nullopt;
    at = Moved(at, step);
    if (climber.IsCollapsed(at)) return std::nullopt;
    image = at;
    const double next = climber.Step(image);
    if (!(next >= logLikelihood - kRounding * std::abs(logLikelihood))) return std::nullopt;
    logLikelihood = next;
    if (length < kLastMove) return Candidate{at, logLikelihood};
    if (isOwnSketch) slopes = SlopesOfStep(sketch, at);
  }
  return std::nullopt;
}

// Until a cycle of two steps and an extrapolation gains nothing to speak of, or until Newton's method, tried
// now and then, converges; collapsed runs return nothing.
Candidate RunToTheEnd(Climber& climber, const Mixture& start) {
  constexpr int kMaxCycles = 1000;
  constexpr double kGain = 1e-12;
  constexpr int kCyclesToPolish = 15;
  constexpr int kIdleCycles = 3;  // one idle cycle may be an extrapolation that was taken back
  Mixture x0 = start;
  Candidate last;
  int idle = 0;
  for (int cycle = 0; cycle < kMaxCycles; ++cycle) {
    if (climber.IsCollapsed(x0)) return {};
    Mixture x1 = x0;
    const double logLikelihood = climber.Step(x1);
    idle = logLikelihood - last.logLikelihood < kGain ? idle + 1 : 0;
    last = {x0, logLikelihood};
    if (idle >= kIdleCycles) return last;
    if (cycle % kCyclesToPolish == kCyclesToPolish - 1) {
      if (auto end = Polish(climber, climber, x0)) return *std::move(end);
    }
    if (climber.IsCollapsed(x1)) return {};
    Mixture x2 = x1;
    climber.Step(x2);
    if (climber.IsCollapsed(x2)) return {};

    const Extrapolation extrapolation(x0, x1, x2);
    Mixture plain = x2;
    const double plainLogLikelihood = climber.Step(plain);
    x0 = plain;
    if (extrapolation.Length() <= 1.0) continue;
    Mixture far = extrapolation.At(extrapolation.Length());
    if (climber.IsCollapsed(far)) continue;
    if (climber.Step(far) > plainLogLikelihood && !climber.IsCollapsed(far)) x0 = far;
  }
  return last;
}

// The mixture of the groups [edges[c], edges[c + 1]) of sorted values.
Mixture FromGroups(std::span<const double> sorted, std::span<const std::size_t> edges, double deviation) {
  constexpr double kLeastStart = 1e-3;  // of the deviation of all, so that tied groups can grow
  Mixture mixture;
  for (std::size_t c = 0; c + 1 < edges.size(); ++c) {
    const std::span<const double> group = sorted.subspan(edges[c], edges[c + 1] - edges[c]);
    const double mean = Mean(group);
    mixture.push_back({static_cast<double>(group.size()) / static_cast<double>(sorted.size()), mean,
                       std::max(std::sqrt(MeanSquare(group, mean)), kLeastStart * deviation)});
  }
  return mixture;
}

// Edges at the given rising positions, each group at least two values wide.
std::vector<std::size_t> EdgesNear(std::span<const double> positions, std::size_t n) {
  std::vector<std::size_t> edges = {0};
  const std::size_t groups = positions.size() + 1;
  for (std::size_t c = 0; c + 1 < groups; ++c) {
    const auto wanted = static_cast<std::size_t>(std::max(0.0, positions[c]));
    edges.push_back(std::clamp(wanted, edges.back() + 2, n - 2 * (groups - 1 - c)));
  }
  edges.push_back(n);
  return edges;
}

// Groups of least within-group squares after Fisher (1958): exact for the values given, by dynamic
// programming.
std::vector<std::size_t> LeastSquaresEdges(std::span<const double> sorted, std::size_t groups) {
  const std::size_t n = sorted.size();
  const double centre = Mean(sorted);
  std::vector<double> sum(n + 1, 0.0);
  std::vector<double> squares(n + 1, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    sum[i + 1] = sum[i] + (sorted[i] - centre);
    squares[i + 1] = squares[i] + (sorted[i] - centre) * (sorted[i] - centre);
  }
  const auto within = [&](std::size_t begin, std::size_t end) {
    const double s = sum[end] - sum[begin];
    return squares[end] - squares[begin] - s * s / static_cast<double>(end - begin);
  };
  std::vector<double> cost(n + 1, kInfinity);
  cost[0] = 0.0;
  std::vector<std::vector<std::size_t>> from(groups, std::vector<std::size_t>(n + 1, 0));
  for (std::size_t c = 0; c < groups; ++c) {
    std::vector<double> next(n + 1, kInfinity);
    for (std::size_t end = 2 * (c + 1); end <= n; ++end) {
      for (std::size_t begin = 2 * c; begin + 2 <= end; ++begin) {
        const double candidate = cost[begin] + within(begin, end);
        if (!(candidate < next[end])) continue;
        next[end] = candidate;
        from[c][end] = begin;
      }
    }
    cost = std::move(next);
  }
  std::vector<std::size_t> edges(groups + 1, n);
  for (std::size_t c = groups; c-- > 0;) edges[c] = from[c][edges[c + 1]];
  return edges;
}

// Components on one mean, with deviations from narrow to wide: overlapping mixtures and heavy tails.
Mixture Concentric(double mean, double deviation, std::size_t components, double narrowest) {
  Mixture mixture;
  for (std::size_t c = 0; c < components; ++c) {
    const double place = components == 1 ? 1.0 : static_cast<double>(c) / static_cast<double>(components - 1);
    mixture.push_back({1.0 / static_cast<double>(components),
                       mean + 0.01 * deviation * static_cast<double>(c),
                       deviation * narrowest * std::pow(2.0 / narrowest, place)});
  }
  return mixture;
}

std::vector<Mixture> Starts(std::span<const double> sorted, std::size_t components, double deviation) {
  constexpr std::size_t kDivisionCount = 600;  // values among which the least-squares groups are sought
  const std::size_t n = sorted.size();
  const double mean = Mean(sorted);
  std::vector<Mixture> starts;
  const auto addAt = [&](const auto& fractionOf) {
    std::vector<double> positions;
    for (std::size_t c = 1; c < components; ++c) {
      positions.push_back(fractionOf(static_cast<double>(c) / static_cast<double>(components)) *
                          static_cast<double>(n));
    }
    starts.push_back(FromGroups(sorted, EdgesNear(positions, n), deviation));
  };

  const std::vector<double> thin = Thinned(sorted, std::max(kDivisionCount, 2 * components));
  const std::vector<std::size_t> edges = LeastSquaresEdges(thin, components);
  std::vector<double> positions;
  for (std::size_t c = 1; c < components; ++c) {
    positions.push_back(static_cast<double>(edges[c]) * static_cast<double>(n) /
                        static_cast<double>(thin.size()));
  }
  starts.push_back(FromGroups(sorted, EdgesNear(positions, n), deviation));
  // Equal, lower-heavy, upper-heavy, tail-seeking and centre-seeking groups.
  addAt([](double p) { return p; });
  for (const double power : {0.15, 0.3, 0.5, 2.0, 3.3, 6.7}) {
    addAt([power](double p) { return std::pow(p, power); });
  }
  addAt([](double p) { return 0.5 * (1.0 - std::cos(M_PI * p)); });
  addAt([](double p) { return std::acos(1.0 - 2.0 * p) / M_PI; });
  // Groups of equal width of the range.
  std::vector<double> places;
  for (std::size_t c = 1; c < components; ++c) {
    const double cut = sorted.front() + (sorted.back() - sorted.front()) * static_cast<double>(c) /
                                            static_cast<double>(components);
    places.push_back(
        static_cast<double>(std::lower_bound(sorted.begin(), sorted.end(), cut) - sorted.begin()));
  }
  starts.push_back(FromGroups(sorted, EdgesNear(places, n), deviation));
  for (const double narrowest : {0.5, 0.1, 0.02}) {
    starts.push_back(Concentric(mean, deviation, components, narrowest));
  }
  return starts;
}

// Moves a component of the mixture upon another place: where one component is split in two, another is given
// up to its neighbour. Ways out of maxima that are only local (Ueda, Nakano, Ghahramani & Hinton 2000).
std::vector<Mixture> SplitAndMerged(const Mixture& mixture) {
  constexpr std::size_t kMerges = 4;
  std::vector<std::size_t> merges;  // the first of two neighbours, the closest two first
  for (std::size_t c = 0; c + 1 < mixture.size(); ++c) merges.push_back(c);
  std::stable_sort(merges.begin(), merges.end(), [&](std::size_t left, std::size_t right) {
    const auto distance = [&](std::size_t c) {
      return (mixture[c + 1].mean - mixture[c].mean) / (mixture[c + 1].deviation + mixture[c].deviation);
    };
    return distance(left) < distance(right);
  });
  merges.resize(std::min(merges.size(), kMerges));
  std::vector<Mixture> neighbours;
  for (const std::size_t merged : merges) {
    for (std::size_t split = 0; split < mixture.size(); ++split) {
      if (split == merged || split == merged + 1) continue;
      Mixture next = mixture;
      const Component& a = mixture[merged];
      const Component& b = mixture[merged + 1];
      const double weight = a.proportion + b.proportion;
      const double mean = (a.proportion * a.mean + b.proportion * b.mean) / weight;
      const double square = (a.proportion * (a.deviation * a.deviation + (a.mean - mean) * (a.mean - mean)) +
                             b.proportion * (b.deviation * b.deviation + (b.mean - mean) * (b.mean - mean))) /
                            weight;
      next[merged] = {weight, mean, std::sqrt(square)};
      const Component& c = mixture[split];
      next[split] = {0.5 * c.proportion, c.mean - 0.8 * c.deviation, 0.6 * c.deviation};
      next[merged + 1] = {0.5 * c.proportion, c.mean + 0.8 * c.deviation, 0.6 * c.deviation};
      neighbours.push_back(std::move(next));
    }
  }
  return neighbours;
}

// The mixture with one of its components split in two, in several ways, for each component: starts for one
// component more (Verbeek, Vlassis & Krose 2003).
std::vector<Mixture> WithOneMore(const Mixture& mixture) {
  struct Split {
    double distance;  // of the halves from the mean, in standard deviations
    double narrow;    // their standard deviations
    double wide;
  };
  constexpr Split kSplits[] = {{0.8, 0.6, 0.6}, {0.8, 0.1, 1.0}, {-0.8, 0.1, 1.0},
                               {0.0, 0.2, 1.0}, {1.6, 0.2, 0.9}, {-1.6, 0.2, 0.9}};
  std::vector<Mixture> starts;
  for (std::size_t split = 0; split < mixture.size(); ++split) {
    for (const auto& [distance, narrow, wide] : kSplits) {
      Mixture next = mixture;
      const Component& c = mixture[split];
      next[split] = {0.5 * c.proportion, c.mean - distance * c.deviation, narrow * c.deviation};
      next.push_back({0.5 * c.proportion, c.mean + distance * c.deviation * wide, wide * c.deviation});
      starts.push_back(std::move(next));
    }
  }
  return starts;
}

void SortByMean(Mixture& mixture) {
  std::sort(mixture.begin(), mixture.end(), [](const Component& a, const Component& b) {
    return a.mean != b.mean ? a.mean < b.mean : a.deviation < b.deviation;
  });
}

// Two components in one place are one: a saddle of the likelihood, from which symmetric data cannot move.
bool HasTwins(const Mixture& mixture) {
  constexpr double kLeastDistance = 0.01;  // in standard deviations
  for (std::size_t a = 0; a < mixture.size(); ++a) {
    for (std::size_t b = a + 1; b < mixture.size(); ++b) {
      const double distance = std::max(std::abs(mixture[a].mean - mixture[b].mean),
                                       std::abs(mixture[a].deviation - mixture[b].deviation));
      if (distance < kLeastDistance * std::min(mixture[a].deviation, mixture[b].deviation)) return true;
    }
  }
  return false;
}

// The best short runs, best first, each a different mixture.
std::vector<Candidate> BestShortRuns(Climber& climber, const std::vector<Mixture>& starts,
                                     std::size_t count) {
  std::vector<Candidate> runs;
  for (const Mixture& start : starts) {
    Candidate run = RunShort(climber, start);
    if (run.logLikelihood > -kInfinity) runs.push_back(std::move(run));
  }
  std::stable_sort(runs.begin(), runs.end(),
                   [](const Candidate& a, const Candidate& b) { return a.logLikelihood > b.logLikelihood; });
  if (runs.size() > count) runs.resize(count);
  return runs;
}

Candidate SearchMixture(std::span<const double> sorted, std::size_t components, double deviation) {
  // A few components deserve a thorough search; with many, there is little to choose between the maxima.
  constexpr std::size_t kFew = 6;
  const bool isThorough = components <= kFew;
  const std::size_t longRuns = isThorough ? 8 : 3;
  const std::size_t neighbourRuns = isThorough ? 3 : 1;
  const int rounds = isThorough ? 3 : 1;
  const std::size_t sketchedValues = isThorough ? 4000 : 1000;  // that the short runs look at
  const std::vector<double> thin = Thinned(sorted, sketchedValues);
  Climber sketch(thin, components, deviation);
  Climber climber(sorted, components, deviation);
  Candidate best;
  const auto improve = [&](const std::vector<Mixture>& starts, std::size_t runs) {
    bool isBetter = false;
    for (const Candidate& run : BestShortRuns(sketch, starts, runs)) {
      Candidate end = RunToTheEnd(climber, run.mixture);
      if (!(end.logLikelihood > best.logLikelihood + 1e-10) || HasTwins(end.mixture)) continue;
      best = std::move(end);
      isBetter = true;
    }
    SortByMean(best.mixture);
    return isBetter;
  };
  std::vector<Mixture> starts = Starts(sorted, components, deviation);
  if (isThorough && components > 1) {
    const Candidate fewer = SearchMixture(sorted, components - 1, deviation);
    for (Mixture& start : WithOneMore(fewer.mixture)) starts.push_back(std::move(start));
  }
  improve(starts, longRuns);
  for (int round = 0; round < rounds && components > 2 && !best.mixture.empty(); ++round) {
    if (!improve(SplitAndMerged(best.mixture), neighbourRuns)) break;
  }
  return best;
}

// A large sample is searched thinned, and the mixture found is polished over samples of rising size, each
// with the slopes of the one before: their maxima lie close, as evenly placed values tell the distribution
// far better than as many random ones.
Candidate FitSorted(std::span<const double> sorted, std::size_t components, double deviation) {
  constexpr std::size_t kRise = 16;
  if (sorted.size() <= kLargeSample) return SearchMixture(sorted, components, deviation);
  std::vector<double> known = Thinned(sorted, kThinnedSample);
  Candidate best = SearchMixture(known, components, deviation);
  if (best.mixture.empty()) return SearchMixture(sorted, components, deviation);
  for (std::size_t count = known.size(); count < sorted.size();) {
    count = std::min(count * kRise, sorted.size());
    std::vector<double> thin;
    if (count < sorted.size()) thin = Thinned(sorted, count);
    Climber sketch(known, components, deviation);
    Climber climber(thin.empty() ? sorted : std::span<const double>(thin), components, deviation);
    auto end = Polish(sketch, climber, best.mixture);
    best = end ? *std::move(end) : RunToTheEnd(climber, best.mixture);
    if (best.mixture.empty()) return SearchMixture(sorted, components, deviation);
    known = std::move(thin);
  }
  SortByMean(best.mixture);
  return best;
}

}  // namespace

std::int32_t FitGaussianMixture(std::span<const double> data, std::span<double> components,
                                std::int32_t& numberOfComponents, EstimationError& error) {
  if (const EstimationError reason = CheckSample(data, 2); reason != EstimationError::kNone) {
    return Fail(reason, components, error);
  }
  const auto count = static_cast<std::size_t>(std::max(numberOfComponents, 0));
  if (count < 1 || 2 * count > data.size() || components.size() < kValuesPerComponent * count) {
    return Fail(EstimationError::kInvalidArgument, components, error);
  }
  std::vector<double> sorted;
  if (!std::ranges::is_sorted(data)) {
    sorted.assign(data.begin(), data.end());
    std::ranges::sort(sorted);
    data = sorted;
  }
  if (data.front() == data.back()) return Fail(EstimationError::kNoSpread, components, error);
  const ScaledSample sample = ScaleFrom(data, data[data.size() / 2]);
  if (estimation::IsAnyNotFinite(sample.values)) return Fail(EstimationError::kNotFinite, components, error);

  const double deviation = std::sqrt(MeanSquare(sample.values, Mean(sample.values)));
  const Candidate best = FitSorted(sample.values, count, deviation);
  if (best.mixture.empty()) return Fail(EstimationError::kNoMaximum, components, error);
  for (std::size_t c = 0; c < count; ++c) {
    components[3 * c] = best.mixture[c].proportion;
    components[3 * c + 1] = sample.origin + sample.InUnitsOfData(best.mixture[c].mean);
    components[3 * c + 2] = sample.InUnitsOfData(best.mixture[c].deviation);
  }
  return Succeed(components.first(kValuesPerComponent * count), error);
}

}  // namespace brenvolt
