#include "brv_sra/fitting/dialogs/fit_documents.h"

#include <algorithm>
#include <functional>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/resources/resource_numbers.h"
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
    case RankingCriterion::kKolmogorovSmirnov:
      break;
  }
  return std::string(ResourceString(kTitleRankedByKolmogorovSmirnov));
}

double OrMissing(double value) {
  return IsNotSet(value) ? GetDefaultMDValue() : value;
}

// Appends a column whose value in each case comes from a function of the case.
void AddColumn(Spreadsheet& sheet, std::string_view name, const std::function<double(std::size_t)>& value) {
  Variable column(std::string(name), sheet.CaseCount());
  const auto cells = column.MutableValues();
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] = value(i);
  sheet.AddVariable(std::move(column));
}

void AddTextColumn(Spreadsheet& sheet, std::string_view name,
                   const std::function<std::string(std::size_t)>& text) {
  Variable column(std::string(name), sheet.CaseCount());
  column.SetType(VariableType::kText);
  const auto cells = column.MutableValues();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    cells[i] = static_cast<double>(i + 1);
    column.SetLabel(cells[i], text(i));
  }
  sheet.AddVariable(std::move(column));
}

constexpr MomentColumn kMomentColumns[] = {
    {kColumnMean, &Moments::mean, 1},         {kColumnStandardDeviation, &Moments::standardDeviation, 1},
    {kColumnSkewness, &Moments::skewness, 3}, {kColumnKurtosis, &Moments::kurtosis, 4},
    {kColumnMinimum, &Moments::minimum, 1},   {kColumnMaximum, &Moments::maximum, 1}};

// A column of the ranked table with a number for every fit.
struct FitColumn {
  std::int32_t name;
  double (*value)(const VariableFit& variable, const DistributionFit& fit);
};

double Degrees(const DistributionFit& fit) {
  const std::int32_t degrees = fit.chiSquare.degreesOfFreedom;
  return degrees == kNotSetCount ? kNotSet : static_cast<double>(degrees);
}

constexpr FitColumn kFitColumns[] = {
    {kColumnKolmogorovSmirnov,
     [](const VariableFit&, const DistributionFit& fit) { return fit.kolmogorovSmirnov.statistic; }},
    {kColumnKolmogorovSmirnovPValue,
     [](const VariableFit&, const DistributionFit& fit) { return fit.kolmogorovSmirnov.pValue; }},
    {kHeadingChiSquare,
     [](const VariableFit&, const DistributionFit& fit) { return fit.chiSquare.statistic; }},
    {kHeadingChiSquarePValue,
     [](const VariableFit&, const DistributionFit& fit) { return fit.chiSquare.pValue; }},
    {kHeadingChiSquareDegrees, [](const VariableFit&, const DistributionFit& fit) { return Degrees(fit); }},
    {kHeadingAndersonDarling,
     [](const VariableFit&, const DistributionFit& fit) { return fit.andersonDarling.statistic; }},
    {kHeadingAndersonDarlingPValue,
     [](const VariableFit&, const DistributionFit& fit) { return fit.andersonDarling.pValue; }},
    {kColumnLogLikelihood, [](const VariableFit&, const DistributionFit& fit) { return fit.logLikelihood; }},
    {kColumnAic, [](const VariableFit&, const DistributionFit& fit) { return fit.Aic(); }},
    {kColumnBic,
     [](const VariableFit& variable, const DistributionFit& fit) { return fit.Bic(variable.moments.count); }},
    {kColumnOffset, [](const VariableFit&, const DistributionFit& fit) { return fit.specification.offset; }}};

constexpr FitColumn kBootstrapColumns[] = {
    {kColumnBootstrapKolmogorovSmirnov,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.kolmogorovSmirnov; }},
    {kColumnBootstrapChiSquare,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.chiSquare; }},
    {kColumnBootstrapAndersonDarling,
     [](const VariableFit&, const DistributionFit& fit) { return fit.bootstrap.andersonDarling; }},
    {kColumnBootstrapSamples, [](const VariableFit&, const DistributionFit& fit) {
       return static_cast<double>(fit.bootstrap.samples);
     }}};

// "Parameter 3" for index 2.
std::string Numbered(std::int32_t name, std::size_t index) {
  return std::string(ResourceString(name)) + std::to_string(index + 1);
}

// Columns "Parameter 1", "Parameter 2", … as many as the longest list of a fit.
void AddNumbered(Spreadsheet& sheet, std::int32_t name, std::span<const DistributionFit* const> order,
                 const std::function<std::span<const double>(const DistributionFit&)>& list) {
  std::size_t most = 0;
  for (const DistributionFit* fit : order) most = std::max(most, list(*fit).size());
  for (std::size_t p = 0; p < most; ++p) {
    AddColumn(sheet, Numbered(name, p), [&](std::size_t i) {
      const std::span<const double> numbers = list(*order[i]);
      return p < numbers.size() ? OrMissing(numbers[p]) : GetDefaultMDValue();
    });
  }
}

// The headings of the values of a specification; those of repeated groups are numbered.
std::vector<std::string> ValueNames(const DistributionSpecification& specification) {
  const auto parameters = Parameters(specification.code);
  const bool grouped = Facts(specification.code).isUserDefined;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < specification.values.size(); ++i) {
    std::string name(Trim(ResourceString(parameters[i % parameters.size()].headingResource)));
    if (grouped) name += " " + std::to_string(i / parameters.size() + 1);
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

std::span<const MomentColumn> MomentColumns() {
  return kMomentColumns;
}

std::unique_ptr<Spreadsheet> SummaryTable(std::span<const VariableFit> results) {
  auto sheet = std::make_unique<Spreadsheet>(std::string(ResourceString(kFitResultsSummary)), results.size());
  std::vector<std::string> names;
  for (const VariableFit& fit : results) names.push_back(fit.name);
  sheet->SetTitle(sheet->Name());
  sheet->SetCaseNames(std::move(names));
  AddTextColumn(*sheet, ResourceString(kColumnKind), [&](std::size_t i) {
    return std::string(ResourceString(results[i].continuous ? kKindContinuous : kKindDiscrete));
  });
  AddColumn(*sheet, ResourceString(kColumnCount),
            [&](std::size_t i) { return static_cast<double>(results[i].moments.count); });
  AddColumn(*sheet, ResourceString(kColumnMissing),
            [&](std::size_t i) { return static_cast<double>(results[i].moments.missing); });
  for (const MomentColumn& column : kMomentColumns) {
    AddColumn(*sheet, ResourceString(column.name), [&](std::size_t i) {
      const Moments& moments = results[i].moments;
      return column.ExistsFor(moments) ? moments.*column.member : GetDefaultMDValue();
    });
  }
  return sheet;
}

std::unique_ptr<Spreadsheet> RankedTable(const VariableFit& fit, RankingCriterion criterion) {
  std::vector<const DistributionFit*> order;
  for (const std::size_t index : fit.ranked) order.push_back(&fit.fits[index]);
  auto sheet = std::make_unique<Spreadsheet>(fit.name, order.size());
  sheet->SetTitle(RankingTitle(criterion));
  std::vector<std::string> names;
  for (const DistributionFit* candidate : order)
    names.emplace_back(DisplayName(candidate->specification.code));
  sheet->SetCaseNames(std::move(names));

  AddColumn(*sheet, ResourceString(kColumnCode),
            [&](std::size_t i) { return static_cast<double>(order[i]->specification.code); });
  AddTextColumn(*sheet, ResourceString(kColumnDescription), [&](std::size_t i) {
    const DistributionSpecification& specification = order[i]->specification;
    return order[i]->IsValid() ? Description(specification.code, specification.values)
                               : std::string(DisplayName(specification.code));
  });
  for (const FitColumn& column : kFitColumns) {
    AddColumn(*sheet, ResourceString(column.name),
              [&](std::size_t i) { return OrMissing(column.value(fit, *order[i])); });
  }
  const bool bootstrapped = std::ranges::any_of(
      fit.fits, [](const DistributionFit& candidate) { return candidate.bootstrap.samples > 0; });
  for (const FitColumn& column : kBootstrapColumns) {
    if (!bootstrapped) break;
    AddColumn(*sheet, ResourceString(column.name),
              [&](std::size_t i) { return OrMissing(column.value(fit, *order[i])); });
  }
  AddNumbered(*sheet, kColumnParameter, order, [](const DistributionFit& candidate) {
    return candidate.IsValid() ? std::span<const double>(candidate.specification.values)
                               : std::span<const double>();
  });
  AddNumbered(*sheet, kColumnStandardError, order, [](const DistributionFit& candidate) {
    return std::span<const double>(candidate.standardErrors);
  });
  AddTextColumn(*sheet, ResourceString(kColumnReason),
                [&](std::size_t i) { return FailureReason(fit, *order[i]); });
  return sheet;
}

std::unique_ptr<Spreadsheet> DetailsTable(const VariableFit& variable, const DistributionFit& fit) {
  const DistributionSpecification& specification = fit.specification;
  if (!fit.IsValid()) {
    throw CDispatchException(
        FormatResource(kMsgNotFittedHere, DisplayName(specification.code), variable.name));
  }
  const std::size_t count = specification.values.size();
  std::vector<double> values = specification.values;
  std::vector<std::string> names = ValueNames(specification);
  if (HasOffset(specification.code)) {
    values.push_back(IsNotSet(specification.offset) ? 0.0 : specification.offset);
    names.emplace_back(ResourceString(kColumnOffset));
  }
  const std::string title = FormatResource(kTitleDetailsOf, DisplayName(specification.code), variable.name);
  auto sheet = std::make_unique<Spreadsheet>(title, values.size());
  sheet->SetTitle(title);
  sheet->SetCaseNames(std::move(names));
  const auto known = [](std::span<const double> numbers, std::size_t i) {
    return i < numbers.size() ? OrMissing(numbers[i]) : GetDefaultMDValue();
  };
  AddColumn(*sheet, ResourceString(kColumnValue), [&](std::size_t i) { return values[i]; });
  AddColumn(*sheet, Trim(ResourceString(kColumnStandardError)),
            [&](std::size_t i) { return known(fit.standardErrors, i); });
  for (std::size_t v = 0; v < count && fit.covariance.size() == count * count; ++v) {
    AddColumn(*sheet, Numbered(kColumnCovariance, v), [&](std::size_t i) {
      return i < count ? OrMissing(fit.covariance[i * count + v]) : GetDefaultMDValue();
    });
  }
  return sheet;
}

std::string FailureReason(const VariableFit& variable, const DistributionFit& fit) {
  if (fit.IsValid()) return {};
  using enum DistributionCode;
  const DistributionSpecification& specification = fit.specification;
  const Moments& moments = variable.moments;
  const auto reason = [](std::int32_t number, const std::string& argument = {}) {
    return FormatResource(number, argument);
  };
  // A value on the border is allowed by some of these types and not by others; none fits it when it fails.
  if (HasOffset(specification.code) && moments.minimum <= specification.offset) {
    return reason(kReasonOffset, ShortestNumber(specification.offset));
  }
  if (specification.code == kBernoulli && (moments.minimum < 0 || moments.maximum > 1)) {
    return reason(kReasonZeroOrOne);
  }
  const bool counts = !IsContinuous(specification.code) && specification.code != kHistogram;
  if (counts && moments.minimum < 0) return reason(kReasonNegative);
  return reason(kReasonEstimator);
}

}  // namespace brenvolt::sra
