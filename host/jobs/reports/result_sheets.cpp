#include "host/jobs/reports/result_sheets.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <utility>

namespace brenvolt {
namespace {

using namespace result_columns;

// A sheet that grows by rows, whose columns are there once a row has one.
class RowSheet {
 public:
  void BeginRow() { ++rows_; }
  void Put(const std::string& column, double value) { Of(column).numbers.back() = value; }
  void Put(const std::string& column, const std::string& text) {
    Column& found = Of(column);
    found.isText = true;
    if (text.empty()) return;
    const auto code =
        static_cast<double>(found.codes.try_emplace(text, found.codes.size() + 1).first->second);
    found.numbers.back() = code;
  }
  // Those of the columns that the row has.
  void Put(const ResultRow& row, std::span<const ResultColumn> columns) {
    for (const ResultColumn& column : columns) {
      if (row.Has(column)) Put(std::string(column.identifier), row.Number(column));
    }
  }

  Spreadsheet Made(std::string name) && {
    Spreadsheet sheet(std::move(name));
    for (Column& column : columns_) {
      column.numbers.resize(rows_, GetDefaultMDValue());
      Variable variable(column.name, rows_);
      variable.AssignValues(std::move(column.numbers));
      if (column.isText) variable.SetType(VariableType::kText);
      for (const auto& [text, code] : column.codes) variable.SetLabel(static_cast<double>(code), text);
      sheet.AddVariable(std::move(variable));
    }
    return sheet;
  }

 private:
  struct Column {
    std::string name;
    std::vector<double> numbers = {};
    bool isText = false;
    std::map<std::string, std::size_t> codes = {};
  };

  Column& Of(const std::string& name) {
    auto found = std::ranges::find(columns_, name, &Column::name);
    if (found == columns_.end()) found = columns_.insert(columns_.end(), Column{name});
    found->numbers.resize(rows_, GetDefaultMDValue());
    return *found;
  }

  std::size_t rows_ = 0;
  std::vector<Column> columns_;
};

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

Spreadsheet SimulationSheet(const SimulationResults& results) {
  RowSheet sheet;
  for (const ResultRow& row : results.summary.rows) {
    sheet.BeginRow();
    sheet.Put("variable", row.name);
    sheet.Put(row, kMoments);
    for (const ResultTable::Heading& heading : results.summary.headings) {
      if (NumberIn(heading.identifier, "percentile"_column))
        sheet.Put(heading.identifier, row.numbers.at(heading.identifier));
    }
  }
  return std::move(sheet).Made("simulation");
}

Spreadsheet ProfileSheet(const ProfileResults& results) {
  RowSheet sheet;
  for (const ResponseResults& response : results.responses) {
    sheet.BeginRow();
    sheet.Put("response", response.name);
    sheet.Put(response.statistics, kMoments);
    if (!response.capability) continue;
    for (const ResultRow& row : response.capability->rows) {
      if (row.Has("value"_column)) sheet.Put(row.identifier, row.Number("value"_column));
    }
  }
  return std::move(sheet).Made("responses");
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
