#include "apps/cli/fit_json.h"

#include <cmath>

#include "apps/cli/wrong_call.h"
#include "host/analysis/result_columns.h"
#include "host/application/result_table.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;
using namespace result_column;

Json NumberOrNull(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json ListOrNull(const std::vector<double>& values) {
  return values.empty() ? Json(nullptr) : Json(values);
}

Json WholeOrNull(double value) {
  return std::isfinite(value) ? Json(static_cast<std::int64_t>(value)) : Json(nullptr);
}

// The covariance of a fit's values, row by row, or null where the estimator gives none.
Json CovarianceJson(AutomationObject& dialog, std::size_t row) {
  dialog.Put("QuickTabDistribution", static_cast<std::int32_t>(row + 1));
  const Variant document = dialog.Get("DistributionDetails");
  const ResultTable details(TableOf(document));
  Json rows = Json::array();
  for (std::size_t i = 0; i < details.RowCount(); ++i) {
    const std::vector<double> covariances = details.Numbered(kCovariance, i);
    if (!covariances.empty()) rows.push_back(covariances);
  }
  return rows.empty() ? Json(nullptr) : rows;
}

Json BootstrapJson(const ResultTable& table, std::size_t row) {
  if (!table.Has(kBootstrapSamples)) return nullptr;
  const double samples = table.Number(kBootstrapSamples, row);
  if (!(samples > 0)) return nullptr;
  return {{"samples", static_cast<std::int64_t>(samples)},
          {"kolmogorovSmirnov", NumberOrNull(table.Number(kBootstrapKolmogorovSmirnov, row))},
          {"chiSquare", NumberOrNull(table.Number(kBootstrapChiSquare, row))},
          {"andersonDarling", NumberOrNull(table.Number(kBootstrapAndersonDarling, row))}};
}

Json FitJson(AutomationObject& dialog, const ResultTable& table, std::size_t row) {
  const auto number = [&](std::string_view column) { return NumberOrNull(table.Number(column, row)); };
  const std::vector<double> parameters = table.Numbered(kParameter, row);
  return {{"rank", row + 1},
          {"code", static_cast<int>(table.Number(kCode, row))},
          {"distribution", table.RowName(row)},
          {"description", table.Text(kDescription, row)},
          {"parameters", ListOrNull(parameters)},
          {"reason", parameters.empty() ? Json(table.Text(kReason, row)) : Json(nullptr)},
          {"offset", number(kOffset)},
          {"standardErrors", ListOrNull(table.Numbered(kStandardError, row))},
          {"covariance", parameters.empty() ? Json(nullptr) : CovarianceJson(dialog, row)},
          {"logLikelihood", number(kLogLikelihood)},
          {"aic", number(kAic)},
          {"bic", number(kBic)},
          {"kolmogorovSmirnov",
           {{"statistic", number(kKolmogorovSmirnov)}, {"pValue", number(kKolmogorovSmirnovPValue)}}},
          {"chiSquare",
           {{"statistic", number(kChiSquare)},
            {"degreesOfFreedom", WholeOrNull(table.Number(kChiSquareDegrees, row))},
            {"pValue", number(kChiSquarePValue)}}},
          {"andersonDarling",
           {{"statistic", number(kAndersonDarling)}, {"pValue", number(kAndersonDarlingPValue)}}},
          {"bootstrap", BootstrapJson(table, row)}};
}

}  // namespace

Json VariableJson(AutomationObject& dialog, const Spreadsheet& summary, std::size_t variable,
                  const std::optional<Spreadsheet>& ranked, const std::string& rankedBy) {
  const ResultTable table(summary);
  const auto number = [&](std::string_view column) { return NumberOrNull(table.Number(column, variable)); };
  Json fits = Json::array();
  for (std::size_t row = 0; ranked && row < ranked->CaseCount(); ++row) {
    fits.push_back(FitJson(dialog, ResultTable(*ranked), row));
  }
  return {{"name", table.RowName(variable)},
          {"kind", table.Text(kKind, variable)},
          {"n", static_cast<std::int64_t>(table.Number(kCount, variable))},
          {"missing", static_cast<std::int64_t>(table.Number(kMissing, variable))},
          {"mean", number(kMean)},
          {"standardDeviation", number(kStandardDeviation)},
          {"skewness", number(kSkewness)},
          {"kurtosis", number(kKurtosis)},
          {"minimum", number(kMinimum)},
          {"maximum", number(kMaximum)},
          {"rankedBy", rankedBy},
          {"fits", fits}};
}

}  // namespace brenvolt::cli
