// The catalogue of the sixteen distribution types: names, keys, parameters, descriptions, validity. One table;
// everything here derives from it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

struct CatalogueEntry {
  DistributionCode code;
  std::string_view internalKey;      // "scLogNormal"
  std::int32_t compactKeyResource;   // "DontTranslate!!LogNormal"
  std::int32_t spacedKeyResource;    // "DontTranslate!!Log Normal", or 0 where the name holds no blank
  std::int32_t displayNameResource;  // "Log Normal"
  bool continuous;
  bool hasOffset;
  int valueCount;        // parameters held; for a user-defined type, values per repeated group
  bool repeatedGroups;   // Gaussian mixture and histogram: any number of groups
  std::string_view descriptionFormat;  // one "%.4f" per value, or none
};

// Lookups. A code outside 0 to 15 has no entry.
const CatalogueEntry& Entry(DistributionCode code);
std::optional<DistributionCode> CodeFromNumber(std::int32_t number);
std::string_view DisplayName(DistributionCode code);
// The untranslated key without its marker: compact ("LogNormal"), and spaced where there is one, else compact.
std::string_view CompactKey(DistributionCode code);
std::string_view SpacedKey(DistributionCode code);
bool IsContinuous(DistributionCode code);
bool HasOffset(DistributionCode code);

// The code of an untranslated key (either form, with or without its marker) or of an internal key.
std::optional<DistributionCode> CodeFromKey(std::string_view key);
// The code of the display name of a continuous type, compared as whole strings in code order. Throws
// CDispatchException "Invalid distribution string" (10292) for any other name.
DistributionCode ContinuousCodeFromDisplayName(std::string_view name);
// The code of any display name, or nothing.
std::optional<DistributionCode> CodeFromDisplayName(std::string_view name);

// "Normal(location=%.4f, scale=%.4f)" with the values filled in.
std::string Description(DistributionCode code, std::span<const double> values);

// Why a set of values is not valid: the text to show, and which value it is about (an index into `values`, or the
// number of values for the offset).
struct ValidityFault {
  std::string message;
  std::size_t valueIndex;
};
// Nothing when the values are valid. The rules stand in the definition.
std::optional<ValidityFault> CheckValues(DistributionCode code, std::span<const double> values);
// The same including the offset of types that have one.
std::optional<ValidityFault> CheckSpecification(const DistributionSpecification& specification);

// "Array(scNormalDistr, 1.000000e+00, 2.000000e+00, 0, 0, 0, 0)": how a macro writes the specification.
std::string MacroText(const DistributionSpecification& specification);

}  // namespace brenvolt::sra
