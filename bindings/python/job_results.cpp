#include "bindings/python/job_results.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "host/base/number_text.h"

namespace py = pybind11;
using namespace pybind11::literals;

namespace brenvolt::python {
namespace {

using namespace result_columns;
using Groups = std::initializer_list<std::span<const ResultColumn>>;

// The numbers of those of the columns that a row has, in the order of frames.
py::dict NumbersOf(const ResultRow& row, Groups groups) {
  py::dict numbers;
  for (const auto& columns : groups) {
    for (const ResultColumn& column : columns) {
      if (row.Has(column)) numbers[py::str(std::string(column.identifier))] = row.Number(column);
    }
  }
  return numbers;
}

py::dict FitDict(const FittedDistribution& fit) {
  return py::dict(
      "code"_a = fit.code, "identifier"_a = fit.identifier, "name"_a = fit.name,
      "parameters"_a = fit.parameters, "offset"_a = fit.offset, "standard_errors"_a = fit.standardErrors,
      "reason"_a = fit.reason, "origin"_a = fit.origin, "note"_a = fit.note,
      "statistics"_a = NumbersOf(fit.statistics, {kTests, kLikelihood, kReservations, kBootstrap}));
}

// What a row is called: by people, or by programs where it is a statistic, or by its number where it is one of a kind.
py::object NameOf(const ResultRow& row) {
  if (const auto percent = NumberIn(row.identifier, "percentile"_column))
    return py::float_(ParseNumber(*percent).value_or(std::numeric_limits<double>::quiet_NaN()));
  return py::str(row.identifier.empty() ? row.name : row.identifier);
}

// A frame's rows: their names and their numbers.
py::list RowList(std::span<const ResultRow> rows, Groups groups) {
  py::list list;
  for (const ResultRow& row : rows) list.append(py::make_tuple(NameOf(row), NumbersOf(row, groups)));
  return list;
}

py::object CapabilityOf(const ResponseResults& response) {
  if (!response.capability) return py::none();
  const ResultRow& first = response.capability->Row("low_point"_column);
  return py::dict("rows"_a = RowList(response.capability->rows, {kEstimates}),
                  "distribution"_a = first.Text("description"_column));
}

// The columns of a frame.
py::dict UnpredictedOf(const ResponseResults& response) {
  py::dict columns;
  TakeFields(UnpredictedRuns(), [&](const char* name, const auto& /*value*/) { columns[name] = py::list(); });
  for (const UnpredictedRuns& one : response.unpredicted)
    TakeFields(one, [&](const char* name, const auto& value) { columns[name].attr("append")(value); });
  return columns;
}

// The values of a predictor and the means of the response there, by predictor.
py::dict ProfilesOf(const ResponseResults& response) {
  py::dict profiles;
  for (const PredictedProfile& profile : response.profiles) {
    const py::object values = profile.names.empty() ? py::cast(profile.values) : py::cast(profile.names);
    profiles[py::str(profile.predictor)] = py::dict("value"_a = values, "mean"_a = profile.means);
  }
  return profiles;
}

py::dict ResponseDict(const ResponseResults& response) {
  return py::dict("name"_a = response.name, "statistics"_a = NumbersOf(response.statistics, {kMoments}),
                  "percentiles"_a = RowList(response.percentiles, {kEstimates}),
                  "frequencies"_a = RowList(response.frequencies, {kFrequencies}),
                  "correlations"_a = RowList(response.correlations, {kCorrelations}),
                  "sensitivity"_a = RowList(response.sensitivity, {kSensitivity}),
                  "r_squared"_a = response.allPredictors.Number("linear_contribution"_column),
                  "profiles"_a = ProfilesOf(response), "unpredicted"_a = UnpredictedOf(response),
                  "capability"_a = CapabilityOf(response));
}

// What speaks against the fit that is simulated.
std::vector<std::string> TextsOf(const std::vector<FitCaution>& cautions) {
  std::vector<std::string> texts;
  for (const FitCaution& caution : cautions) texts.push_back(caution.Text());
  return texts;
}

}  // namespace

py::list FitDicts(const std::vector<FittedVariable>& variables) {
  py::list list;
  for (const FittedVariable& variable : variables) {
    py::list fits;
    for (const FittedDistribution& fit : variable.Shown()) fits.append(FitDict(fit));
    list.append(py::dict("name"_a = variable.name, "reason"_a = variable.reason,
                         "continuous"_a = variable.isContinuous,
                         "moments"_a = NumbersOf(variable.moments, {kMoments}), "fits"_a = fits,
                         "cautions"_a = TextsOf(variable.Cautions()), "notes"_a = variable.Notes()));
  }
  return list;
}

py::dict ColumnPlaces() {
  py::dict groups;
  const auto add = [&groups](const char* name, std::span<const ResultColumn> columns) {
    py::dict places;
    for (const ResultColumn& column : columns) {
      py::list keys;
      for (std::string_view rest = column.json; !rest.empty();) {
        const std::size_t end = std::min(rest.find('/', 1), rest.size());
        keys.append(std::string(rest.substr(1, end - 1)));
        rest.remove_prefix(end);
      }
      places[py::str(std::string(column.identifier))] = keys;
    }
    groups[name] = places;
  };
  add("read_off", kReadOff);
  add("likelihood", kLikelihood);
  add("distance", kCurveDistance);
  add("steps", kCurveSteps);
  add("positions", kPlottingPositions);
  add("levels", kChartLevels);
  add("signals", kSignals);
  return groups;
}

py::dict CautionTexts(const std::vector<VariableCautions>& variables) {
  py::dict texts;
  for (const auto& [variable, cautions] : variables) texts[py::str(variable)] = TextsOf(cautions);
  return texts;
}

py::dict PairDicts(const SimulationResults& results) {
  py::dict kinds;
  for (const ResultColumn& column : kCorrelations) {
    py::dict numbers;
    for (const SimulatedPair& pair : results.pairs) {
      if (pair.correlations.Has(column))
        numbers[py::make_tuple(pair.first, pair.second)] = pair.correlations.Number(column);
    }
    if (!numbers.empty()) kinds[py::str(std::string(column.identifier))] = numbers;
  }
  return kinds;
}

py::object RepairedMatrix(const SimulationResults& results) {
  if (!results.Repair()) return py::none();
  py::dict matrix;
  for (const std::string& name : results.variables) {
    py::dict row;
    row[py::str(name)] = 1.0;
    matrix[py::str(name)] = row;
  }
  for (const SimulatedPair& pair : results.pairs) {
    const double used = pair.correlations.Number("used"_column);
    matrix[py::str(pair.first)][py::str(pair.second)] = used;
    matrix[py::str(pair.second)][py::str(pair.first)] = used;
  }
  return matrix;
}

py::dict ProfileDict(const ProfileResults& results) {
  py::list responses;
  for (const ResponseResults& response : results.responses) responses.append(ResponseDict(response));
  py::dict predictors;
  py::dict fixed;
  for (const PredictorUse& one : results.predictors) {
    predictors[py::str(one.name)] = one.distribution;
    if (one.fixed) fixed[py::str(one.name)] = *one.fixed;
  }
  py::dict correlations;
  for (const NotedCorrelation& pair : results.correlations)
    correlations[py::make_tuple(pair.first, pair.second)] = pair.value;
  py::list defects;
  if (results.defects) defects = RowList(results.defects->rows, {kDefects});
  return py::dict("runs"_a = results.runs, "method"_a = results.method, "predictors"_a = predictors,
                  "fixed"_a = fixed, "correlations"_a = correlations, "responses"_a = responses,
                  "defects"_a = defects, "notes"_a = results.notes);
}

}  // namespace brenvolt::python
