// For tests and measurements: every distribution with its functions in one shape, its table of
// high-precision values, and the error of a computed value against a row of it.
#pragma once

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::references {

using In = std::span<const double>;
using Out = std::span<double>;
using Parameters = std::vector<double>;
using Function = std::function<double(double, In parameters)>;
using ArrayFunction = std::function<void(In, In parameters, Out)>;
using Moment = std::function<double(In parameters)>;

// The limits that every distribution keeps.
inline constexpr double kBodyTolerance = 1e-13;
inline constexpr double kTailTolerance = 1e-10;
inline constexpr double kRoundTripTolerance = 1e-12;

struct BoundDistribution {
  const DistributionFacts* facts = nullptr;
  std::string name;
  bool isDiscrete;
  std::vector<std::size_t> origins;  // parameters that are places, to which a quantile is relative
  std::map<std::string, Function> functions;
  std::map<std::string, ArrayFunction> arrays;
  std::map<std::string, Moment> moments;

  // Of parameter i of a list, in which a threshold stands last.
  ParameterRange RangeOf(std::size_t i) const {
    const std::size_t count = facts->ParameterCount();
    if (i >= count && !facts->isUserDefined) return ParameterRange::kFinite;
    return facts->parameters[i % count].range;
  }
};

inline void PrintTo(const BoundDistribution& distribution, std::ostream* out) {
  *out << distribution.name;
}

// "GeneralPareto" as "general_pareto".
inline std::string WithUnderscores(std::string_view name) {
  std::string text;
  for (const char c : name) {
    if (std::isupper(static_cast<unsigned char>(c)) != 0 && !text.empty()) text += '_';
    text += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return text;
}

// Of the parameters of a table, a threshold stands last.
inline AnyDistribution DistributionOf(const DistributionEntry& entry, In parameters) {
  const bool hasThreshold = entry.facts.HasOffset() && !parameters.empty();
  return {entry.facts.code, hasThreshold ? parameters.first(parameters.size() - 1) : parameters,
          hasThreshold ? parameters.back() : 0.0};
}

inline const std::vector<std::pair<std::string, DistributionFunction>>& FunctionNames() {
  using enum DistributionFunction;
  static const std::vector<std::pair<std::string, DistributionFunction>> names = {
      {"Density", kDensity},       {"LogDensity", kLogDensity}, {"Cdf", kCdf},
      {"Complement", kComplement}, {"Quantile", kQuantile},     {"ComplementQuantile", kComplementQuantile}};
  return names;
}

// The parameters that are places: locations and thresholds, ends and means.
inline std::vector<std::size_t> PlacesOf(const DistributionFacts& facts) {
  constexpr std::size_t kGroups = 3;  // of repeated parameters, as many as count
  if (!facts.isContinuous) return {};
  const std::size_t count = facts.ParameterCount();
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < count * (facts.isUserDefined ? kGroups : 1); ++i) {
    const std::string_view name = facts.parameters[i % count].name;
    const bool isFolded = facts.code == DistributionCode::kFoldedNormal;  // its location is none
    if ((name == "location" && !isFolded) || name == "mean" || name == "min" || name == "max" || name == "xi")
      places.push_back(i);
  }
  if (facts.HasOffset()) places.push_back(count);
  return places;
}

inline BoundDistribution Bind(const DistributionEntry& entry) {
  BoundDistribution bound{&entry.facts,
                          WithUnderscores(entry.facts.name),
                          !entry.facts.isContinuous,
                          PlacesOf(entry.facts),
                          {},
                          {},
                          {}};
  for (const auto& [name, function] : FunctionNames()) {
    bound.functions[name] = [&entry, f = function](double x, In parameters) {
      return DistributionOf(entry, parameters).At(f, x);
    };
    bound.arrays[name] = [&entry, f = function](In x, In parameters, Out out) {
      DistributionOf(entry, parameters).At(f, x, out);
    };
  }
  bound.moments["Mean"] = [&entry](In parameters) { return DistributionOf(entry, parameters).Mean(); };
  bound.moments["Variance"] = [&entry](In parameters) {
    return DistributionOf(entry, parameters).Variance();
  };
  return bound;
}

// In the order of the codes.
inline std::vector<BoundDistribution> BoundDistributions() {
  std::vector<BoundDistribution> distributions;
  for (const DistributionEntry* entry : DistributionTable()) distributions.push_back(Bind(*entry));
  return distributions;
}

struct Row {
  std::string function;
  bool isTail;
  double argument;
  Parameters parameters;
  double value;
};

inline std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

// The fields of the lines of a file after its first, the header; none if there is no file.
inline std::vector<std::vector<std::string>> ReadFields(const std::string& path) {
  std::ifstream file(path);
  std::vector<std::vector<std::string>> lines;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) lines.push_back(Split(line, ','));
  return lines;
}

// The number that a field states. Unlike std::stod, takes subnormal numbers and infinities as they are.
inline double ReadNumber(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0') throw std::invalid_argument("not a number: " + text);
  return number;
}

// The fields from `begin` up to the last one. A field may hold several parameters, apart by blanks.
inline Parameters ReadParameters(const std::vector<std::string>& fields, std::size_t begin) {
  Parameters parameters;
  for (std::size_t i = begin; i + 1 < fields.size(); ++i) {
    for (const std::string& parameter : Split(fields[i], ' ')) parameters.push_back(ReadNumber(parameter));
  }
  return parameters;
}

// The rows of <folder>/<name>.csv: function, region, argument, parameters…, value.
inline std::vector<Row> ReadTable(const std::string& folder, const BoundDistribution& distribution) {
  std::vector<Row> rows;
  for (const auto& fields : ReadFields(folder + "/" + distribution.name + ".csv")) {
    rows.push_back({fields.at(0), fields.at(1) == "tail", ReadNumber(fields.at(2)), ReadParameters(fields, 3),
                    ReadNumber(fields.back())});
  }
  return rows;
}

struct MomentRow {
  std::string function;
  Parameters parameters;
  double value;
};

// The rows of <folder>/<name>_moments.csv: function, parameters…, value.
inline std::vector<MomentRow> ReadMoments(const std::string& folder, const BoundDistribution& distribution) {
  std::vector<MomentRow> rows;
  for (const auto& fields : ReadFields(folder + "/" + distribution.name + "_moments.csv")) {
    rows.push_back({fields.at(0), ReadParameters(fields, 1), ReadNumber(fields.back())});
  }
  return rows;
}

// The size to which an error of a value on the axis is relative: its own, or that of the distribution's places.
inline double SizeOnAxis(const BoundDistribution& distribution, double x, In parameters) {
  double size = std::abs(x);
  for (const std::size_t i : distribution.origins) {
    if (i < parameters.size()) size = std::max(size, std::abs(parameters[i]));
  }
  return size;
}

// The error relative to the value; of a logarithm, relative to 1 where it is small; of a quantile, relative
// to the distribution's places where the sum of them and the rest is smaller.
inline double RelativeError(const BoundDistribution& distribution, const Row& row, double computed) {
  const bool isQuantile = row.function == "Quantile" || row.function == "ComplementQuantile";
  double size = isQuantile ? SizeOnAxis(distribution, row.value, row.parameters) : std::abs(row.value);
  if (row.function == "LogDensity") size = std::max(size, 1.0);
  const double error = std::abs(computed - row.value);
  return error == 0.0 ? 0.0 : error / size;
}

// The error of a mean, relative like a quantile's, or of a variance; none if both are infinite.
inline double RelativeError(const BoundDistribution& distribution, const MomentRow& row, double computed) {
  if (computed == row.value) return 0.0;
  const double size =
      row.function == "Mean" ? SizeOnAxis(distribution, row.value, row.parameters) : row.value;
  return std::abs(computed - row.value) / size;
}

// What comes of taking x to the probability of its nearer tail and back. Where the density is low the
// probability does not tell x from its neighbours; what can be asked there is that the x that comes back has
// the same probability.
struct RoundTrip {
  double error = 0.0;         // of the x that comes back, relative like a quantile's
  bool isConditioned = true;  // four units in the last place of the probability make less than the tolerance
  double probability = 0.0;   // the relative error of the probability of the x that comes back
};

// Whether a row gives an x for the round trip: once each, where the nearer tail is in the table, hence above
// 1e-300.
inline bool IsForRoundTrip(const Row& row) {
  return (row.function == "Cdf" || row.function == "Complement") && row.value <= 0.5;
}

inline RoundTrip GoRound(const BoundDistribution& distribution, double x, In parameters) {
  constexpr double kFourUlps = 4.0 * std::numeric_limits<double>::epsilon();
  const double low = distribution.functions.at("Cdf")(x, parameters);
  const double high = distribution.functions.at("Complement")(x, parameters);
  const bool isLower = low <= high;
  const double back = distribution.functions.at(isLower ? "Quantile" : "ComplementQuantile")(
      isLower ? low : high, parameters);
  const double size = SizeOnAxis(distribution, x, parameters);
  const double density = distribution.functions.at("Density")(x, parameters);
  const double p = std::min(low, high);
  const double again = distribution.functions.at(isLower ? "Cdf" : "Complement")(back, parameters);
  const double error = std::abs(back - x);
  return {error == 0.0 ? 0.0 : error / size, kFourUlps * p < kRoundTripTolerance * density * size,
          std::abs(again - p) / p};
}

}  // namespace brenvolt::references
