#include "host/jobs/reports/result_sheets.h"

#include <nlohmann/json.hpp>
#include <string>
#include <utility>

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

// A row of a figure, its value with the limits of its interval.
void PutFigure(const std::string& name, const nlohmann::ordered_json& figure, const CapabilityFindings& found,
               RowSheet& sheet) {
  sheet.BeginRow();
  sheet.Put("response", found.response);
  sheet.Put("figure", name);
  for (const auto& [key, value] : figure.items()) {
    if (value.is_number() || value.is_null())
      sheet.Put(key, value.is_number() ? value.get<double>() : GetDefaultMDValue());
  }
}

}  // namespace

Spreadsheet FitSheet(const std::vector<FittedVariable>& variables) {
  RowSheet sheet;
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
    }
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
      sheet.Put("log_likelihood", fit.logLikelihood);
      sheet.Put("aic", fit.aic);
      sheet.Put("bic", fit.bic);
      sheet.Put("distance", fit.distance);
      sheet.Put("offset", fit.values.offset);
      PutParameters(fit.values.values, fit.standardErrors, sheet);
    }
  }
  return std::move(sheet).Made("fits");
}

Spreadsheet CapabilitySheet(const CapabilityFindings& found) {
  RowSheet sheet;
  const nlohmann::ordered_json report = CapabilityJson(found);
  for (const auto& [name, figure] : report["indices"].items()) PutFigure(name, figure, found, sheet);
  const nlohmann::ordered_json& fitted = report["percentiles"];
  for (const char* name : {"pp", "ppl", "ppu", "ppk"}) {
    if (!fitted.is_null()) PutFigure(std::string("percentiles_") + name, fitted[name], found, sheet);
  }
  for (const auto& [basis, parts] : report["ppm"].items()) {
    for (const auto& [side, figure] : parts.items())
      PutFigure("ppm_" + basis + "_" + side, figure, found, sheet);
  }
  return std::move(sheet).Made("capability");
}

}  // namespace brenvolt
