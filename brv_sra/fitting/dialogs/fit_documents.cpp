#include "brv_sra/fitting/dialogs/fit_documents.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/reach.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/dialogs/estimation_reason.h"
#include "brv_sra/fitting/save_settings.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/result_sheet.h"
#include "brv_sra/resources/strings.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

// "Ranked by: Kolmogorov-Smirnov".
std::string RankingTitle(RankingCriterion criterion) {
  switch (criterion) {
    case RankingCriterion::kChiSquare:
      return std::string(ResourceString(kTitleRankedByChiSquare));
    case RankingCriterion::kAndersonDarling:
      return std::string(ResourceString(kTitleRankedByAndersonDarling));
    case RankingCriterion::kAkaike:
      return std::string(ResourceString(kTitleRankedByAkaike));
    case RankingCriterion::kBayes:
      return std::string(ResourceString(kTitleRankedByBayes));
    case RankingCriterion::kKolmogorovSmirnov:
      break;
  }
  return std::string(ResourceString(kTitleRankedByKolmogorovSmirnov));
}

constexpr MomentColumn kMomentColumns[] = {
    {"mean"_column, &Moments::mean, 1},         {"standard_deviation"_column, &Moments::standardDeviation, 1},
    {"skewness"_column, &Moments::skewness, 3}, {"kurtosis"_column, &Moments::kurtosis, 4},
    {"minimum"_column, &Moments::minimum, 1},   {"maximum"_column, &Moments::maximum, 1}};

// A column of the ranked table with a number for every fit.
struct FitColumn {
  const ResultColumn& column;
  double (*value)(const VariableFit& variable, const DistributionFit& fit);
};

double CountOf(std::int32_t count) {
  return count == kNotSetCount ? kNotSet : static_cast<double>(count);
}

// Within the bounds that are saved with it.
Reach ReachOf(const VariableFit& variable, const DistributionFit& fit) {
  if (!fit.IsValid()) return {};
  return ReachOf(Within(variable.saving.truncation, fit.specification), variable.moments.minimum,
                 variable.moments.maximum);
}

// The place of a fit in the order in which fits are saved, from 1; kNotSet for one that is not.
double SavedPlace(const VariableFit& variable, const DistributionFit& fit) {
  const std::vector<std::size_t> order = SavedOrder(variable);
  const auto index = static_cast<std::size_t>(&fit - variable.fits.data());
  const auto place = std::ranges::find(order, index);
  return place == order.end() ? kNotSet : static_cast<double>(place - order.begin() + 1);
}

constexpr FitColumn kFitColumns[] = {
    {"ks"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.kolmogorovSmirnov.statistic; }},
    {"ks_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.kolmogorovSmirnov.pValue; }},
    {"chi_square"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.chiSquare.statistic; }},
    {"chi_square_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.chiSquare.pValue; }},
    {"chi_square_df"_column,
     [](const VariableFit&, const DistributionFit& fit) { return CountOf(fit.chiSquare.degreesOfFreedom); }},
    {"ad"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.andersonDarling.statistic; }},
    {"ad_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.andersonDarling.pValue; }},
    {"log_likelihood"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.logLikelihood; }},
    {"aic"_column, [](const VariableFit&, const DistributionFit& fit) { return fit.Aic(); }},
    {"bic"_column,
     [](const VariableFit& variable, const DistributionFit& fit) { return fit.Bic(variable.moments.count); }},
    {"without_density"_column,
     [](const VariableFit&, const DistributionFit& fit) {
       return fit.IsValid() ? static_cast<double>(fit.valuesWithoutDensity) : kNotSet;
     }},
    {"below_zero"_column, [](const VariableFit& variable,
                             const DistributionFit& fit) { return ReachOf(variable, fit).belowZero; }},
    {"above_zero"_column, [](const VariableFit& variable,
                             const DistributionFit& fit) { return ReachOf(variable, fit).aboveZero; }},
    {"infinite_moment"_column,
     [](const VariableFit& variable, const DistributionFit& fit) {
       return CountOf(ReachOf(variable, fit).infiniteMoment);
     }},
    {"saved_place"_column, SavedPlace},
    {"offset"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.specification.offset; }}};

constexpr FitColumn kBootstrapColumns[] = {
    {"bootstrap_ks_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.kolmogorovSmirnov; }},
    {"bootstrap_chi_square_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.chiSquare; }},
    {"bootstrap_ad_p"_column,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.andersonDarling; }},
    {"bootstrap_samples"_column, [](const VariableFit&, const DistributionFit& fit) {
       return static_cast<double>(fit.bootstrap.samples);
     }}};

// The kind of each variable, by a code that does not depend on its text.
void AddKindColumn(Spreadsheet& sheet, std::span<const VariableFit> results) {
  AddColumn(sheet, "kind"_column,
            [&](std::size_t i) { return results[i].continuous ? kContinuousKind : kDiscreteKind; });
  Variable& kinds = sheet.VariableAt(sheet.VariableCount() - 1);
  kinds.SetType(VariableType::kText);
  for (const VariableFit& fit : results) {
    kinds.SetLabel(fit.continuous ? kContinuousKind : kDiscreteKind,
                   std::string(ResourceString(fit.continuous ? kKindContinuous : kKindDiscrete)));
  }
}

// What the values of each fit come from, by codes that do not depend on their texts.
void AddOriginColumn(Spreadsheet& sheet, std::span<const DistributionFit* const> order) {
  constexpr std::pair<EstimateOrigin, std::int32_t> kLabels[] = {
      {EstimateOrigin::kLikelihood, kOriginLikelihood},
      {EstimateOrigin::kMoments, kOriginMoments},
      {EstimateOrigin::kPercentiles, kOriginPercentiles},
      {EstimateOrigin::kExtremes, kOriginExtremes}};
  AddColumn(sheet, "origin"_column, [&](std::size_t i) {
    return order[i]->IsValid() ? static_cast<double>(order[i]->origin) : GetDefaultMDValue();
  });
  Variable& origins = sheet.VariableAt(sheet.VariableCount() - 1);
  origins.SetType(VariableType::kText);
  for (const auto& [origin, text] : kLabels)
    origins.SetLabel(static_cast<double>(origin), std::string(ResourceString(text)));
}

// Columns "Parameter 1", "Parameter 2", … as many as the longest list of a fit.
void AddNumbered(Spreadsheet& sheet, const ResultColumn& column,
                 std::span<const DistributionFit* const> order,
                 const std::function<std::span<const double>(const DistributionFit&)>& list) {
  std::size_t most = 0;
  for (const DistributionFit* fit : order) most = std::max(most, list(*fit).size());
  for (std::size_t p = 0; p < most; ++p) {
    const auto cell = [&](std::size_t i) {
      const std::span<const double> numbers = list(*order[i]);
      return p < numbers.size() ? OrMissing(numbers[p]) : GetDefaultMDValue();
    };
    AddColumn(sheet, column, cell, std::to_string(p + 1));
  }
}

// The headings of the values of a specification; those of repeated groups are numbered.
std::vector<std::string> ValueNames(const DistributionSpecification& specification) {
  const DistributionFacts& facts = Facts(specification.code);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < specification.values.size(); ++i) {
    std::string name(Trim(ResourceString(TextsOf(facts.code, i).heading)));
    if (facts.isUserDefined) name += " " + std::to_string(i / facts.ParameterCount() + 1);
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

std::span<const MomentColumn> MomentColumns() {
  return kMomentColumns;
}

std::unique_ptr<Spreadsheet> SummaryTable(std::span<const VariableFit> results) {
  std::vector<std::string> names;
  for (const VariableFit& fit : results) names.push_back(fit.name);
  auto sheet = NewResultSheet(std::string(ResourceString(kFitResultsSummary)), std::move(names));
  AddKindColumn(*sheet, results);
  AddColumn(*sheet, "n"_column, [&](std::size_t i) { return static_cast<double>(results[i].moments.count); });
  AddColumn(*sheet, "missing"_column,
            [&](std::size_t i) { return static_cast<double>(results[i].moments.missing); });
  for (const MomentColumn& moment : kMomentColumns) {
    AddColumn(*sheet, moment.column, [&](std::size_t i) {
      const Moments& moments = results[i].moments;
      return moment.ExistsFor(moments) ? moments.*moment.member : GetDefaultMDValue();
    });
  }
  AddColumn(*sheet, "distinct"_column, [&](std::size_t i) {
    return results[i].distinctValues > 0 ? static_cast<double>(results[i].distinctValues)
                                         : GetDefaultMDValue();
  });
  AddTextColumn(*sheet, "reason"_column, [&](std::size_t i) { return FailureReason(results[i]); });
  return sheet;
}

std::unique_ptr<Spreadsheet> RankedTable(const VariableFit& fit, RankingCriterion criterion) {
  std::vector<const DistributionFit*> order;
  for (const std::size_t index : fit.ranked) order.push_back(&fit.fits[index]);
  std::vector<std::string> names;
  for (const DistributionFit* candidate : order)
    names.emplace_back(DisplayName(candidate->specification.code));
  auto sheet = NewResultSheet(fit.name, std::move(names));
  sheet->SetTitle(RankingTitle(criterion));

  AddColumn(*sheet, "code"_column,
            [&](std::size_t i) { return static_cast<double>(order[i]->specification.code); });
  AddTextColumn(*sheet, "description"_column, [&](std::size_t i) {
    const DistributionSpecification& specification = order[i]->specification;
    return order[i]->IsValid() ? Description(specification.code, specification.values)
                               : std::string(SpacedKey(specification.code));
  });
  const auto addColumns = [&](std::span<const FitColumn> columns) {
    for (const FitColumn& one : columns) {
      AddColumn(*sheet, one.column, [&](std::size_t i) { return OrMissing(one.value(fit, *order[i])); });
    }
  };
  addColumns(kFitColumns);
  const bool bootstrapped = std::ranges::any_of(
      fit.fits, [](const DistributionFit& candidate) { return candidate.bootstrap.samples > 0; });
  if (bootstrapped) addColumns(kBootstrapColumns);
  AddNumbered(*sheet, "parameter"_column, order, [](const DistributionFit& candidate) {
    return candidate.IsValid() ? std::span<const double>(candidate.specification.values)
                               : std::span<const double>();
  });
  AddNumbered(*sheet, "standard_error"_column, order, [](const DistributionFit& candidate) {
    return std::span<const double>(candidate.standardErrors);
  });
  AddTextColumn(*sheet, "reason"_column, [&](std::size_t i) { return FailureReason(*order[i]); });
  AddOriginColumn(*sheet, order);
  AddTextColumn(*sheet, "note"_column, [&](std::size_t i) { return NoteOn(fit, *order[i]); });
  return sheet;
}

namespace {

void RequireValid(const VariableFit& variable, const DistributionFit& fit) {
  if (fit.IsValid()) return;
  throw CDispatchException(
      FormatResource(kMsgNotFittedHere, DisplayName(fit.specification.code), variable.name),
      FailureReason(fit));
}

}  // namespace

std::unique_ptr<Spreadsheet> DetailsTable(const VariableFit& variable, const DistributionFit& fit) {
  RequireValid(variable, fit);
  const DistributionSpecification& specification = fit.specification;
  const std::size_t count = specification.values.size();
  std::vector<double> values = specification.values;
  std::vector<std::string> names = ValueNames(specification);
  if (HasOffset(specification.code)) {
    values.push_back(IsNotSet(specification.offset) ? 0.0 : specification.offset);
    names.emplace_back(ResourceString("offset"_column.heading));
  }
  auto sheet = NewResultSheet(FormatResource(kTitleDetailsOf, DisplayName(specification.code), variable.name),
                              std::move(names));
  const auto known = [](std::span<const double> numbers, std::size_t i) {
    return i < numbers.size() ? OrMissing(numbers[i]) : GetDefaultMDValue();
  };
  AddColumn(*sheet, "value"_column, [&](std::size_t i) { return values[i]; });
  AddColumn(*sheet, "standard_error"_column, [&](std::size_t i) { return known(fit.standardErrors, i); });
  Variable& errors = sheet->VariableAt(sheet->VariableCount() - 1);
  errors.SetName(std::string(Trim(errors.Name())));  // no number follows
  for (std::size_t v = 0; v < count && fit.covariance.size() == count * count; ++v) {
    const auto cell = [&](std::size_t i) {
      return i < count ? OrMissing(fit.covariance[i * count + v]) : GetDefaultMDValue();
    };
    AddColumn(*sheet, "covariance"_column, cell, std::to_string(v + 1));
  }
  return sheet;
}

std::unique_ptr<Spreadsheet> PointsTable(const VariableFit& variable, const DistributionFit& fit,
                                         std::span<const double> points) {
  RequireValid(variable, fit);
  const SpecifiedDistribution distribution(fit.specification);
  std::vector<std::string> names;
  for (std::size_t i = 1; i <= points.size(); ++i) names.push_back(std::to_string(i));
  auto sheet = NewResultSheet(
      FormatResource(kTitlePointsOf, DisplayName(fit.specification.code), variable.name), std::move(names));
  AddColumn(*sheet, "value"_column, [&](std::size_t i) { return points[i]; });
  AddColumn(*sheet, "density"_column, [&](std::size_t i) { return distribution.Density(points[i]); });
  AddColumn(*sheet, "cumulative"_column, [&](std::size_t i) { return distribution.Cdf(points[i]); });
  AddColumn(*sheet, "quantile"_column, [&](std::size_t i) {
    return points[i] >= 0 && points[i] <= 1 ? distribution.Quantile(points[i]) : GetDefaultMDValue();
  });
  return sheet;
}

}  // namespace brenvolt::sra
