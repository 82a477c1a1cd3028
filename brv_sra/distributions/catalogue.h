// The catalogue of the distributions: the keys by which macros, programs and properties of variables know each and its
// values. What the distributions are stands in host/numeric/distributions/, what people call them in
// brv_sra/frame/distribution_texts.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

// Lookups. A code that is none has no entry: std::out_of_range.
const DistributionFacts& Facts(DistributionCode code);
bool IsContinuous(DistributionCode code);
bool HasOffset(DistributionCode code);
std::optional<DistributionCode> CodeFromNumber(std::int32_t number);

// "scLogNormal"
std::string_view InternalKey(DistributionCode code);
// The untranslated key without its marker: compact ("LogNormal"), and with blanks between its words ("Log Normal").
std::string_view CompactKey(DistributionCode code);
std::string_view SpacedKey(DistributionCode code);
// The code of an untranslated key (either form, with or without its marker) or of an internal key.
std::optional<DistributionCode> CodeFromKey(std::string_view key);

// Values as properties of a variable hold them, by their places among the values of a distribution; a place in a
// repeated group is that in any. The key of a value is empty for a bare number.
std::string_view StoredKey(DistributionCode code, std::size_t place);
const char* StoredFormat(DistributionCode code);
FaultIdentifier StoredFault(DistributionCode code, std::size_t place);

// "Normal(location=%.4f, scale=%.4f)" with the values filled in. A value that is not there is printed as not
// set.
std::string Description(DistributionCode code, std::span<const double> values);

// "Array(scNormalDistr, 1.000000e+00, 2.000000e+00, 0, 0, 0, 0)": how a macro writes it. The
// offset of distributions that have one follows the values as one more value; a value that is not set is "Nothing", and
// one that would not read back exactly from six decimals has more digits.
std::string MacroText(const DistributionSpecification& specification);

}  // namespace brenvolt::sra
