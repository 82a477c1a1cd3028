// The catalogue of the distributions: the keys and texts of each, and what is said of values that are not
// valid. What the distributions are stands in host/numeric/distributions/.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/distributions/specification.h"
#include "host/numeric/distributions/distribution_facts.h"

namespace brenvolt::sra {

// A parameter as tables, editors and messages know it: numbers of string resources, 0 where there is none.
struct Parameter {
  std::int32_t headingResource;        // over a column: "Scale"
  std::int32_t labelResource;          // beside an edit field: "Scale:"
  std::int32_t wordResource;           // inside a message: "scale"
  std::int32_t storedMessageResource;  // of a stored value that is not valid: "Invalid scale value for %s …"
  std::string_view storedKey;          // in a property of a variable: "Scale"; empty for a bare number
};

struct CatalogueEntry {
  DistributionCode code;
  std::int32_t compactKeyResource;     // "DontTranslate!!LogNormal"
  std::int32_t spacedKeyResource;      // "DontTranslate!!Log Normal", or 0 where the name holds no blank
  std::int32_t displayNameResource;    // "Log Normal"
  std::string_view descriptionFormat;  // one "%.4f" per value, or none
  std::array<Parameter, DistributionFacts::kMostParameters> parameters;
  const char* storedFormat = "%.12e";  // of the values in a property of a variable
};

// Lookups. A code that is none has no entry: std::out_of_range.
const CatalogueEntry& Entry(DistributionCode code);
const DistributionFacts& Facts(DistributionCode code);
// "scLogNormal"
std::string_view InternalKey(DistributionCode code);
std::optional<DistributionCode> CodeFromNumber(std::int32_t number);
std::string_view DisplayName(DistributionCode code);
// The untranslated key without its marker: compact ("LogNormal"), and spaced where there is one, else
// compact.
std::string_view CompactKey(DistributionCode code);
std::string_view SpacedKey(DistributionCode code);
bool IsContinuous(DistributionCode code);
bool HasOffset(DistributionCode code);
// The parameters of a distribution in order; of a repeated group for a user-defined one.
std::span<const Parameter> Parameters(DistributionCode code);
// The keys of the values in a property of a variable; none where the values are bare numbers.
std::vector<std::string_view> StoredKeys(DistributionCode code);

// The code of an untranslated key (either form, with or without its marker) or of an internal key.
std::optional<DistributionCode> CodeFromKey(std::string_view key);
// The code of any display name, or nothing.
std::optional<DistributionCode> CodeFromDisplayName(std::string_view name);

// "Normal(location=%.4f, scale=%.4f)" with the values filled in. A value that is not there is printed as not
// set.
std::string Description(DistributionCode code, std::span<const double> values);

inline constexpr std::size_t kMinimumMixtures = 2;
inline constexpr std::size_t kMaximumMixtures = 20;

// Who asks: some faults have a text of their own during a fit or a simulation.
enum class CheckPurpose : std::uint8_t { kEntry, kFit, kSimulation };

// Why a set of values is not valid: the text to show, and which value it is about (an index into `values`, or
// the number of values for the offset and for a rule about all values together).
struct ValidityFault {
  std::string message;
  std::size_t valueIndex;
};
// Nothing when the values are valid, else the first fault in the order of the values. The rules:
//
// - Each parameter is given (not kNotSet) and in the range of the distribution's facts.
// - A distribution holds exactly its values; the last group of a user-defined one is complete.
// - Triangular: minimum <= mode <= maximum; all three may be equal, though no function has a value then.
// - Histogram: the proportions add up to 1 within kTotalTolerance; no class at all adds up to 0.
// - Gaussian mixture: 2 to 20 components; the coefficients add up to 1 within kTotalTolerance.
//
// The text names the parameter and the distribution, as in "Invalid scale parameter entry for Normal
// distribution. " with its trailing blank; it is, for a proportion, followed by "Proportion should be between
// 0 and 1."; totals, component counts and, in a simulation, numbers of trials have a text of their own.
std::optional<ValidityFault> CheckValues(DistributionCode code, std::span<const double> values,
                                         CheckPurpose purpose = CheckPurpose::kEntry);
// The same including the offset of types that have one: it must be given and finite.
std::optional<ValidityFault> CheckSpecification(const DistributionSpecification& specification,
                                                CheckPurpose purpose = CheckPurpose::kEntry);

// "Array(scNormalDistr, 1.000000e+00, 2.000000e+00, 0, 0, 0, 0)": how a macro writes it. The
// offset of types that have one follows the values as one more value; a value that is not set is "Nothing", and
// one that would not read back exactly from six decimals has more digits.
std::string MacroText(const DistributionSpecification& specification);

}  // namespace brenvolt::sra
