#include "brv_sra/simulation/saved_fits.h"

#include <iterator>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/truncated_tail.h"
#include "host/numeric/goodness_of_fit/kolmogorov_smirnov.h"
#include "host/numeric/vector/sorting.h"

namespace brenvolt::sra {
namespace {

// How often a case counts; 0 for a weight that is none.
std::size_t CopiesOf(const Spreadsheet& sheet, std::size_t at) {
  constexpr double kMost = 1'000'000;
  if (!sheet.WeightVariable()) return 1;
  const Variable& weights = sheet.VariableAt(*sheet.WeightVariable());
  const double weight = weights.IsMissing(at) ? 0 : weights.Values()[at];
  return weight >= 1 && weight <= kMost ? static_cast<std::size_t>(weight) : 0;
}

// The selected values of a variable, ascending, each as often as its weight.
std::vector<double> SortedValues(const Spreadsheet& sheet, int number) {
  const Variable& variable = sheet.VariableAt(static_cast<std::size_t>(number - 1));
  std::vector<double> values;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (variable.IsMissing(i) || !sheet.IsCaseSelected(i)) continue;
    values.insert(values.end(), CopiesOf(sheet, i), variable.Values()[i]);
  }
  SortAscending(values);
  return values;
}

double KsPValueOf(const DistributionSpecification& fit, std::span<const double> sorted) {
  const double offset = HasOffset(fit.code) && !IsNotSet(fit.offset) ? fit.offset : 0;
  const SpecifiedDistribution distribution(fit.code, fit.values, 0);
  if (!distribution.IsValid()) return kNotSet;
  const auto statistic = TestKolmogorovSmirnov(distribution, sorted, offset);
  return statistic ? *KolmogorovSmirnovPValue(std::ssize(sorted), *statistic) : kNotSet;
}

// With the narrower of each pair of bounds.
DistributionSpecification WithinTails(DistributionSpecification specification) {
  const SpecifiedDistribution distribution(specification);
  const double low = distribution.Quantile(kTruncatedTail);
  const double high = distribution.ComplementQuantile(kTruncatedTail);
  if (!specification.truncateBelow || specification.truncationMinimum < low)
    specification.truncationMinimum = low;
  if (!specification.truncateAbove || specification.truncationMaximum > high)
    specification.truncationMaximum = high;
  specification.truncateBelow = specification.truncateAbove = true;
  return specification;
}

}  // namespace

Result<std::vector<SavedFit>> SavedFits(const SheetPropertyStore& input,
                                        std::span<const std::int16_t> variables, bool truncate) {
  const std::vector<int> numbers(variables.begin(), variables.end());
  const auto read = ReadDistributionProperties(input, numbers);
  if (!read) return read.Reason();
  std::vector<SavedFit> fits;
  for (const VariableDistributions& variable : *read) {
    const std::vector<double> sorted = SortedValues(input.Sheet(), variable.variableNumber);
    // Of no values, extremes that rule nothing out.
    const double minimum = sorted.empty() ? -1 : sorted.front();
    const double maximum = sorted.empty() ? 1 : sorted.back();
    for (std::size_t i = 0; i < variable.ranked.size(); ++i) {
      const DistributionSpecification& fit = variable.ranked[i];
      const Reach reach = ReachOf(truncate ? WithinTails(fit) : fit, minimum, maximum);
      fits.push_back({variable.variableNumber, i + 1, fit, reach, KsPValueOf(fit, sorted)});
    }
  }
  return fits;
}

}  // namespace brenvolt::sra
