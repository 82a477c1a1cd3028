#include "brv_sra/simulation/saved_fits.h"

#include <algorithm>
#include <utility>

#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/distributions/variable_properties.h"

namespace brenvolt::sra {
namespace {

constexpr double kTruncatedTail = 0.005;

// The extremes of a variable's selected values; without values, infinite bounds.
std::pair<double, double> ExtremesOf(const Spreadsheet& sheet, int number) {
  const Variable& variable = sheet.VariableAt(static_cast<std::size_t>(number - 1));
  std::pair<double, double> extremes{1, -1};
  bool isFirst = true;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (variable.IsMissing(i) || !sheet.IsCaseSelected(i)) continue;
    const double x = variable.Values()[i];
    extremes = {isFirst ? x : std::min(extremes.first, x), isFirst ? x : std::max(extremes.second, x)};
    isFirst = false;
  }
  return isFirst ? std::pair(-1.0, 1.0) : extremes;
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

Result<std::vector<SavedFit>> SavedFits(Spreadsheet& sheet, std::span<const std::int16_t> variables,
                                        bool truncate) {
  const SheetPropertyStore store(sheet);
  const std::vector<int> numbers(variables.begin(), variables.end());
  const auto read = ReadDistributionProperties(store, numbers);
  if (!read) return read.Reason();
  std::vector<SavedFit> fits;
  for (const VariableDistributions& variable : *read) {
    const auto [minimum, maximum] = ExtremesOf(sheet, variable.variableNumber);
    for (std::size_t i = 0; i < variable.ranked.size(); ++i) {
      const DistributionSpecification& fit = variable.ranked[i];
      const Reach reach = ReachOf(truncate ? WithinTails(fit) : fit, minimum, maximum);
      fits.push_back({variable.variableNumber, i + 1, fit, reach});
    }
  }
  return fits;
}

}  // namespace brenvolt::sra
