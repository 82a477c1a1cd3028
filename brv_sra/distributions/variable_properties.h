// Fitted and designed distributions as text properties of spreadsheet variables: the writer, the reader with its
// checks, and the list of fitted distributions.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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

// The host's variable properties as the module needs them: get and set of a text property by variable number
// (counted from 1) and name. Get answers nothing for a property that does not exist.
class VariablePropertyStore {
 public:
  virtual ~VariablePropertyStore() = default;
  virtual std::optional<std::string> Get(int variableNumber, std::string_view key) const = 0;
  virtual void Set(int variableNumber, std::string_view key, const std::string& value) = 0;
  virtual std::string VariableName(int variableNumber) const = 0;
};

struct Truncation {
  bool below = false;
  bool above = false;
  double minimum = kNotSet;
  double maximum = kNotSet;
};

// The distributions of one variable, best first.
struct VariableDistributions {
  int variableNumber = 0;
  std::vector<DistributionSpecification> ranked;  // each carries the variable's truncation as well
  Truncation truncation;
};

// Texts of the values.
std::string DistributionPropertyText(const DistributionSpecification& specification);
std::string TruncationPropertyText(const Truncation& truncation);

// Writes the distribution properties, then the order, then the truncation of one variable. `ranked` holds the valid
// fits only, best first. A null store writes nothing.
void WriteDistributionProperties(VariablePropertyStore* store, const VariableDistributions& distributions);

// Reads the distributions of the given variables (numbers counted from 1). The first fault ends the read of the whole
// selection with a CDispatchException that carries the message to show.
std::vector<VariableDistributions> ReadDistributionProperties(const VariablePropertyStore& store,
                                                              std::span<const int> variableNumbers);

}  // namespace brenvolt::sra
