// Fitted and designed distributions as text properties of spreadsheet variables: the writer, and the reader
// with its checks.
//
// A variable carries one property per distribution, named by its display name ("Log Normal"); "zOrder", the
// names in rank order, each followed by ";"; and "zTruncProp", "(below; above; minimum; maximum)" with flags
// 0 or 1. Display names are translated with the user interface; a reader knows the untranslated ones as well.
//
// The value of a distribution is "(" + items + ")", items separated by "; ". Most distributions have one item
// "Key=number" per value ("%.12e") and "Offset=…" last if the type has one. Three have bare numbers:
// - Gaussian Mixture: coefficient, mean and deviation per component;
// - Johnson: type, gamma, delta, lambda and xi;
// - Histogram: code and proportion per class, "%.12e", so that the proportions still add up to 1.
// Values of the first two are written with "%e". If these digits, or those of "%.12e", do not hold every quantile
// from 1e-6 to 1 - 1e-6 within 1e-9 of the spread, as many more are written as that takes. Bounds are written with
// "%e" if that holds them exactly, otherwise with all digits.
// The Folded Normal keeps its location under "Scale" and its scale under "Shape".
//
// Numbers are written with the user's decimal separator and read with a decimal point or comma, so that a project can
// be used wherever it goes. A value that the format rounds to -444 reads back as not set.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

namespace property_key {
inline constexpr std::string_view kOrder = "zOrder";
inline constexpr std::string_view kTruncation = "zTruncProp";
inline constexpr std::string_view kInvalidFit = "InvalidFit";
inline constexpr std::string_view kLocation = "Location";
inline constexpr std::string_view kScale = "Scale";
inline constexpr std::string_view kShape = "Shape";
inline constexpr std::string_view kOffset = "Offset";
inline constexpr std::string_view kMean = "Mean";
inline constexpr std::string_view kProportion = "Proportion";
inline constexpr std::string_view kNumberOfTrials = "NumberOfTrials";
inline constexpr std::string_view kMin = "Min";
inline constexpr std::string_view kMax = "Max";
inline constexpr std::string_view kMode = "Mode";
}  // namespace property_key

// The host's variable properties as the module needs them: get, set and removal of a text property by variable
// number (counted from 1) and name. Get answers nothing for a property that does not exist; Set leaves a
// property that the host refuses as it was.
//
// A distribution's property bears the name by which people know the distribution, in the language of their user interface.
class VariablePropertyStore {
 public:
  virtual ~VariablePropertyStore() = default;
  virtual std::optional<std::string> Get(int variableNumber, std::string_view key) const = 0;
  virtual void Set(int variableNumber, std::string_view key, const std::string& value) = 0;
  virtual void Remove(int variableNumber, std::string_view key) = 0;
  virtual std::string VariableName(int variableNumber) const = 0;
  virtual std::string_view NameOf(DistributionCode code) const = 0;
};

struct Truncation {
  bool below = false;
  bool above = false;
  double minimum = kNotSet;
  double maximum = kNotSet;
};

// The distributions of one variable, best first, each at most once.
struct VariableDistributions {
  int variableNumber = 0;
  std::vector<DistributionSpecification> ranked;  // each carries the variable's truncation as well
  Truncation truncation;
};

// Texts of the values. An offset that is not set is written as 0: no shift. A bound in force that is not
// finite bounds nothing and is written as not in force and not set.
std::string DistributionPropertyText(const DistributionSpecification& specification);
// The specification with its values and offset as a reader takes them from that text.
DistributionSpecification StoredForm(const DistributionSpecification& specification);
std::string TruncationPropertyText(const Truncation& truncation);

// Writes the distribution properties, then the order, then the truncation of one variable. A fit whose values
// are not valid once they are rounded to the format is skipped. A variable without any valid fit gets an
// empty order, which no reader accepts, and "InvalidFit" 1, which tells people why; a later write with a
// valid fit puts an existing "InvalidFit" to 0. Properties of distributions that are no longer in the order
// are removed, under either name: people would take them for fits. A null store writes nothing.
void WriteDistributionProperties(VariablePropertyStore* store, const VariableDistributions& distributions);

// Reads the distributions of the given variables (numbers counted from 1). The first fault ends the read of
// the whole selection: kInvalidProperties with the variable's name, and its cause.
//
// Causes: truncation missing, not of four items, a flag other than 0 and 1, a bound in force that is not set,
// bounds in force that cross: kTruncationPropertyInvalid. Order missing or empty: kOrderPropertyInvalid. A name
// without its property: kPropertyMissing; with a property, but no distribution's name: kOrderPropertyInvalid;
// the property empty or "()": kPropertyValueMissing. A name twice: kOrderCountsDiffer. Items too few, too many,
// unknown, repeated or not a finite number: kPropertyValuesInvalid, but a missing Offset counts as 0. A value
// that is not valid: the fault of its parameter (a deviation and lambda as scale, gamma and delta as shape, xi
// as location), otherwise the fault of the check. Bounds that are not in force are read and kept.
Result<std::vector<VariableDistributions>> ReadDistributionProperties(const VariablePropertyStore& store,
                                                                      std::span<const int> variableNumbers);

// The truncation that a variable carries; none in force if it carries none or an invalid one.
Truncation StoredTruncation(const VariablePropertyStore& store, int variableNumber);
// True when a variable carries an order of distributions that names any.
bool HasStoredOrder(const VariablePropertyStore& store, int variableNumber);

}  // namespace brenvolt::sra
