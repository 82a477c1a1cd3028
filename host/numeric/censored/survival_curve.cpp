#include "host/numeric/censored/survival_curve.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <tuple>

namespace brenvolt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<SurvivalStep> KaplanMeier(std::vector<double> exact, std::vector<double> right) {
  std::ranges::sort(exact);
  std::ranges::sort(right);
  std::vector<SurvivalStep> steps;
  double survival = 1;
  std::size_t censored = 0;
  for (std::size_t i = 0; i < exact.size();) {
    const double x = exact[i];
    std::size_t end = i;
    while (end < exact.size() && exact[end] == x) ++end;
    // What is censored at a value was still running there.
    while (censored < right.size() && right[censored] < x) ++censored;
    const auto atRisk = static_cast<double>(exact.size() - i + right.size() - censored);
    const double before = 1 - survival;
    survival *= 1 - static_cast<double>(end - i) / atRisk;
    steps.push_back({x, x, before, 1 - survival});
    i = end;
  }
  return steps;
}

// An end of what is known of a value, in the order of the real line: an exact value begins and ends at itself, what ends at
// a bound holds it, what begins there does not.
enum class EndKind : std::uint8_t { kClosedBegin, kEnd, kOpenBegin };
struct End {
  double at;
  EndKind kind;

  bool IsBegin() const { return kind != EndKind::kEnd; }
  bool operator<(const End& other) const { return std::tie(at, kind) < std::tie(other.at, other.kind); }
  bool operator==(const End& other) const { return at == other.at && kind == other.kind; }
};

struct Known {
  End begin;
  End end;
};

std::vector<Known> KnownOf(const CensoredSample& sample) {
  std::vector<Known> known;
  for (const double x : sample.exact) known.push_back({{x, EndKind::kClosedBegin}, {x, EndKind::kEnd}});
  for (const double x : sample.right) known.push_back({{x, EndKind::kOpenBegin}, {kInfinity, EndKind::kEnd}});
  for (const double x : sample.left) known.push_back({{-kInfinity, EndKind::kOpenBegin}, {x, EndKind::kEnd}});
  for (std::size_t i = 0; i < sample.from.size(); ++i)
    known.push_back({{sample.from[i], EndKind::kOpenBegin}, {sample.to[i], EndKind::kEnd}});
  return known;
}

// The innermost intervals, a beginning with the end that follows it at once: no other place can hold any mass.
std::vector<Known> InnermostOf(const std::vector<Known>& known) {
  std::vector<End> ends;
  for (const Known& one : known) {
    ends.push_back(one.begin);
    ends.push_back(one.end);
  }
  std::ranges::sort(ends, [](const End& a, const End& b) { return a < b; });
  std::vector<Known> innermost;
  for (std::size_t i = 1; i < ends.size(); ++i) {
    if (ends[i - 1].IsBegin() && !ends[i].IsBegin()) innermost.push_back({ends[i - 1], ends[i]});
  }
  return innermost;
}

// The innermost intervals that lie within what is known of a value: a range of their places.
struct Range {
  std::size_t first;
  std::size_t end;
};

std::vector<Range> RangesOf(const std::vector<Known>& known, const std::vector<Known>& innermost) {
  std::vector<Range> ranges;
  for (const Known& one : known) {
    const auto first =
        std::ranges::partition_point(innermost, [&](const Known& k) { return k.begin < one.begin; });
    const auto end =
        std::partition_point(first, innermost.end(), [&](const Known& k) { return !(one.end < k.end); });
    ranges.push_back({static_cast<std::size_t>(first - innermost.begin()),
                      static_cast<std::size_t>(end - innermost.begin())});
  }
  return ranges;
}

// Each value gives its share to the places that it may have in proportion to their masses, which are the sums of these
// shares again.
std::vector<double> SelfConsistent(const std::vector<Range>& ranges, std::size_t places) {
  constexpr double kTolerance = 1e-12;
  constexpr int kMostSteps = 100'000;
  std::vector<double> masses(places, 1 / static_cast<double>(places));
  for (int step = 0; step < kMostSteps; ++step) {
    std::vector<double> sums(places + 1);
    for (std::size_t j = 0; j < places; ++j) sums[j + 1] = sums[j] + masses[j];
    std::vector<double> changes(places + 1);  // of what a unit of mass gets, from place to place
    for (const Range& range : ranges) {
      const double share = 1 / (sums[range.end] - sums[range.first]);
      changes[range.first] += share;
      changes[range.end] -= share;
    }
    double factor = 0;
    double moved = 0;
    for (std::size_t j = 0; j < places; ++j) {
      factor += changes[j];
      const double mass = masses[j] * factor / static_cast<double>(ranges.size());
      moved = std::max(moved, std::abs(mass - masses[j]));
      masses[j] = mass;
    }
    if (moved < kTolerance) break;
  }
  return masses;
}

}  // namespace

std::vector<SurvivalStep> SurvivalCurve(const CensoredSample& sample) {
  if (sample.left.empty() && sample.from.empty()) return KaplanMeier(sample.exact, sample.right);
  const std::vector<Known> known = KnownOf(sample);
  const std::vector<Known> innermost = InnermostOf(known);
  const std::vector<double> masses = SelfConsistent(RangesOf(known, innermost), innermost.size());
  constexpr double kNoMass = 1e-12;
  std::vector<SurvivalStep> steps;
  double before = 0;
  for (std::size_t j = 0; j < innermost.size(); ++j) {
    if (masses[j] < kNoMass) continue;
    steps.push_back({innermost[j].begin.at, innermost[j].end.at, before, before + masses[j]});
    before += masses[j];
  }
  return steps;
}

std::vector<PlottingPosition> PlottingPositions(const std::vector<SurvivalStep>& curve) {
  std::vector<PlottingPosition> positions;
  for (const SurvivalStep& step : curve) {
    if (std::isinf(step.from) || std::isinf(step.to)) continue;
    positions.push_back({(step.from + step.to) / 2, (step.before + step.after) / 2});
  }
  return positions;
}

}  // namespace brenvolt
