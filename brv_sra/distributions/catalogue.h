// The catalogue of the distributions: the keys and texts of each. What the distributions are stands in
// host/numeric/distributions/.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

// A parameter as tables, editors and messages know it: numbers of string resources, 0 if there is none.
struct Parameter {
  std::int32_t headingResource;  // over a column: "Scale"
  std::int32_t labelResource;    // beside an edit field: "Scale:"
  std::int32_t wordResource;     // inside a message: "scale"
  FaultIdentifier storedFault;   // of a stored value that is not valid
  std::string_view storedKey;    // in a property of a variable: "Scale"; empty for a bare number
};

struct CatalogueEntry {
  DistributionCode code;
  std::int32_t compactKeyResource;     // "DontTranslate!!LogNormal"
  std::int32_t spacedKeyResource;      // "DontTranslate!!Log Normal", or 0 if the name holds no blank
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
// The untranslated key without its marker: compact ("LogNormal"), and spaced if there is one, otherwise
// compact.
std::string_view CompactKey(DistributionCode code);
std::string_view SpacedKey(DistributionCode code);
bool IsContinuous(DistributionCode code);
bool HasOffset(DistributionCode code);
// The parameters of a distribution in order; of a repeated group for a user-defined one.
std::span<const Parameter> Parameters(DistributionCode code);
// The word for a parameter inside a message: "scale".
std::string_view ParameterWord(DistributionCode code, std::size_t place);
// The keys of the values in a property of a variable; none if the values are bare numbers.
std::vector<std::string_view> StoredKeys(DistributionCode code);

// The code of an untranslated key (either form, with or without its marker) or of an internal key.
std::optional<DistributionCode> CodeFromKey(std::string_view key);
// The code of any display name, or nothing.
std::optional<DistributionCode> CodeFromDisplayName(std::string_view name);

// "Normal(location=%.4f, scale=%.4f)" with the values filled in. A value that is not there is printed as not
// set.
std::string Description(DistributionCode code, std::span<const double> values);

// "Array(scNormalDistr, 1.000000e+00, 2.000000e+00, 0, 0, 0, 0)": how a macro writes it. The
// offset of types that have one follows the values as one more value; a value that is not set is "Nothing", and
// one that would not read back exactly from six decimals has more digits.
std::string MacroText(const DistributionSpecification& specification);

}  // namespace brenvolt::sra
