#include "brv_sra/fitting/fit_documents.h"

#include <algorithm>
#include <functional>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/ranking.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

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

// A moment exists from a least number of values on; its value says nothing about that.
struct MomentColumn {
  std::int32_t name;
  double Moments::*member;
  std::int64_t leastCount;
};
constexpr MomentColumn kMomentColumns[] = {
    {kColumnMean, &Moments::mean, 1},         {kColumnStandardDeviation, &Moments::standardDeviation, 1},
    {kColumnSkewness, &Moments::skewness, 3}, {kColumnKurtosis, &Moments::kurtosis, 4},
    {kColumnMinimum, &Moments::minimum, 1},   {kColumnMaximum, &Moments::maximum, 1}};

}  // namespace

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
      return moments.count >= column.leastCount ? moments.*column.member : GetDefaultMDValue();
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
  std::size_t parameters = 0;
  for (const DistributionFit* candidate : order) {
    names.emplace_back(DisplayName(candidate->specification.code));
    if (candidate->IsValid()) parameters = std::max(parameters, candidate->specification.values.size());
  }
  sheet->SetCaseNames(std::move(names));
  const auto specification = [&](std::size_t i) -> const DistributionSpecification& {
    return order[i]->specification;
  };
  AddColumn(*sheet, ResourceString(kColumnCode),
            [&](std::size_t i) { return static_cast<double>(specification(i).code); });
  AddTextColumn(*sheet, ResourceString(kColumnDescription), [&](std::size_t i) {
    return order[i]->IsValid() ? Description(specification(i).code, specification(i).values)
                               : std::string(DisplayName(specification(i).code));
  });
  AddColumn(*sheet, ResourceString(kColumnKolmogorovSmirnov),
            [&](std::size_t i) { return OrMissing(order[i]->kolmogorovSmirnov.statistic); });
  AddColumn(*sheet, ResourceString(kColumnKolmogorovSmirnovPValue),
            [&](std::size_t i) { return OrMissing(order[i]->kolmogorovSmirnov.pValue); });
  AddColumn(*sheet, ResourceString(kColumnLogLikelihood),
            [&](std::size_t i) { return OrMissing(order[i]->logLikelihood); });
  AddColumn(*sheet, ResourceString(kColumnOffset),
            [&](std::size_t i) { return OrMissing(specification(i).offset); });
  for (std::size_t p = 0; p < parameters; ++p) {
    AddColumn(*sheet, std::string(ResourceString(kColumnParameter)) + std::to_string(p + 1),
              [&](std::size_t i) {
                return order[i]->IsValid() && p < specification(i).values.size() ? specification(i).values[p]
                                                                                 : GetDefaultMDValue();
              });
  }
  return sheet;
}

}  // namespace brenvolt::sra
