#include "host/jobs/reports/result_sheets.h"

#include <cmath>
#include <iterator>
#include <string>
#include <utility>

#include "host/base/number_text.h"
#include "host/jobs/base/row_sheet.h"

namespace brenvolt {
namespace {

using namespace result_columns;

// "parameter.1" with "standard_error.1", where there are errors, and so on.
void PutParameters(const std::vector<double>& values, const std::vector<double>& errors, RowSheet& sheet) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    sheet.Put("parameter." + number, values[i]);
    if (i < errors.size()) sheet.Put("standard_error." + number, errors[i]);
  }
}

void PutInterval(const std::string& name, const ConfidenceInterval& interval, RowSheet& sheet) {
  if (IsNotSet(interval.lower)) return;
  sheet.Put(name + "_lower", interval.lower);
  sheet.Put(name + "_upper", interval.upper);
}

// "quantile.0.1" with "quantile.0.1_lower" and so on; "return_level.100" and "exceedance.4.5" in the same way.
void PutQuantiles(const FitQuantiles& found, RowSheet& sheet) {
  const auto put = [&sheet](const std::string& name, double value, const FitQuantiles::Row& row) {
    sheet.Put(name, value);
    PutInterval(name, row.byCovariance, sheet);
    PutInterval(name + "_profile", row.byProfile, sheet);
    PutInterval(name + "_bootstrap", row.byBootstrap, sheet);
  };
  for (const FitQuantiles::Row& row : found.quantiles) {
    put(row.returnPeriod ? "return_level." + ShortestNumber(*row.returnPeriod)
                         : "quantile." + ShortestNumber(row.probability),
        row.value, row);
  }
  for (const FitQuantiles::Row& row : found.exceedances)
    put("exceedance." + ShortestNumber(row.value), row.probability, row);
}

}  // namespace

Spreadsheet FitSheet(const std::vector<FittedVariable>& variables,
                     const std::vector<std::optional<FitQuantiles>>& quantiles) {
  RowSheet sheet;
  std::size_t place = 0;
  for (const FittedVariable& variable : variables) {
    double rank = 0;
    for (const FittedDistribution& fit : variable.Shown()) {
      sheet.BeginRow();
      sheet.Put("variable", variable.name);
      sheet.Put("rank", ++rank);
      sheet.Put("distribution", std::string(fit.identifier));
      sheet.Put("description", fit.description);
      sheet.Put("note", fit.note);
      sheet.Put("reason", fit.reason);
      sheet.Put(fit.statistics, kLikelihood);
      sheet.Put(fit.statistics, kReservations);
      sheet.Put(fit.statistics, kTests);
      if (fit.IsBootstrapped()) sheet.Put(fit.statistics, kBootstrap);
      sheet.Put("offset", fit.offset);
      PutParameters(fit.parameters, fit.standardErrors, sheet);
      const bool isBest = &fit == variable.Best();
      if (isBest && place < quantiles.size() && quantiles[place]) PutQuantiles(*quantiles[place], sheet);
    }
    ++place;
  }
  return std::move(sheet).Made("fits");
}

Spreadsheet CensoredSheet(const CensoredFindings& found) {
  RowSheet sheet;
  for (const CensoredVariable& variable : found.variables) {
    double rank = 0;
    for (const CensoredFit& fit : variable.fits) {
      sheet.BeginRow();
      sheet.Put("variable", variable.name);
      sheet.Put("rank", ++rank);
      sheet.Put("distribution", fit.name);
      sheet.Put("description", fit.notation);
      sheet.Put("reason", fit.reason);
      if (!fit.IsValid()) continue;
      sheet.Put(fit.Statistics(), kLikelihood);
      sheet.Put(fit.Statistics(), kCurveDistance);
      sheet.Put("offset", fit.values.offset);
      PutParameters(fit.values.values, fit.standardErrors, sheet);
      if (&fit == &variable.fits.front() && variable.quantiles) PutQuantiles(*variable.quantiles, sheet);
    }
  }
  return std::move(sheet).Made("fits");
}

Spreadsheet CapabilitySheet(const CapabilityFindings& found) {
  RowSheet sheet;
  for (const CapabilityFigure& figure : found.Figures()) {
    const double numbers[] = {figure.value, figure.interval.lower, figure.interval.upper};
    sheet.BeginRow();
    sheet.Put("response", found.response);
    sheet.Put("figure", std::string(figure.column.identifier));
    for (std::size_t i = 0; i < std::size(numbers); ++i)
      sheet.Put(kEstimates[i].identifier,
                IsNotSet(numbers[i]) || !std::isfinite(numbers[i]) ? GetDefaultMDValue() : numbers[i]);
  }
  return std::move(sheet).Made("capability");
}

}  // namespace brenvolt
