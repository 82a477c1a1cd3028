#include "host/numeric/estimation/mixture/mixture_starts.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/special/bracketed_root.h"

namespace brenvolt::mixture {
namespace {

using estimation::Mean;
using estimation::MeanSquare;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The component of a group of a sample of `count` values.
Component FromGroup(std::span<const double> group, std::size_t count, double deviation) {
  constexpr double kLeastStart = 1e-3;  // of the deviation of all, so that tied groups can grow
  const double mean = Mean(group);
  return {static_cast<double>(group.size()) / static_cast<double>(count), mean,
          std::max(std::sqrt(MeanSquare(group, mean)), kLeastStart * deviation)};
}

// The mixture of the groups [edges[c], edges[c + 1]) of sorted values.
Mixture FromGroups(std::span<const double> sorted, std::span<const std::size_t> edges, double deviation) {
  Mixture mixture;
  for (std::size_t c = 0; c + 1 < edges.size(); ++c) {
    mixture.push_back(FromGroup(sorted.subspan(edges[c], edges[c + 1] - edges[c]), sorted.size(), deviation));
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

}  // namespace

std::vector<Mixture> Starts(std::span<const double> sorted, std::size_t components, double deviation) {
  constexpr std::size_t kDivisionCount = 200;  // values among which the least-squares groups are sought
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

std::vector<Mixture> WithTail(const Mixture& mixture, std::span<const double> sorted, std::size_t most,
                              double deviation) {
  constexpr std::size_t kFewest = 4;
  std::vector<Mixture> starts;
  for (std::size_t count = kFewest; count <= most && 2 * count <= sorted.size(); count *= 4) {
    for (const auto& group : {sorted.first(count), sorted.last(count)}) {
      const Component tail = FromGroup(group, sorted.size(), deviation);
      Mixture start = mixture;
      for (Component& component : start) component.proportion *= 1.0 - tail.proportion;
      start.push_back(tail);
      starts.push_back(std::move(start));
    }
  }
  return starts;
}

}  // namespace brenvolt::mixture
