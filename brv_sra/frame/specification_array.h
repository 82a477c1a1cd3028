// Distribution specifications as automation and macros write them, their checks, and how lists show them.
//
// A specification is an array: the key of a distribution ("scNormalDistr", "Normal", or its code), its values in
// catalogue order, the offset if the type has one, then its truncation: below (0 or 1), minimum, above (0 or 1),
// maximum. The truncation may be left out, but for the user-defined discrete distribution, whose values come in pairs;
// a value that is left out is empty.
#pragma once

#include <span>
#include <string>

#include "brv_sra/distributions/specification.h"
#include "host/automation/variant.h"

namespace brenvolt::sra {

// The code of a distribution by its key, its display name or its number. Throws Error for any other.
DistributionCode CodeFromVariant(const Variant& key);

// Throws Error for a key that names no distribution; the values are not checked. The array must not be empty.
DistributionSpecification SpecificationFromArray(std::span<const Variant> array);
Variant::Array ArrayOf(const DistributionSpecification& specification);

// Whether the truncation bounds in force are numbers and do not cross.
bool AreBoundsInOrder(const DistributionSpecification& specification);

// The checks of a specification that a person applies: of its values, that its bounds are in order, and that they leave
// something of the distribution. Throws Error with the message.
void CheckEnteredSpecification(const DistributionSpecification& specification);
// The specification that a person puts as an array. Throws Error whose where() begins with the `owner`.
DistributionSpecification EnteredSpecification(std::span<const Variant> array, const std::string& owner);

// "Normal(location=1.0000, scale=2.0000) [0, 5]"; the values of user-defined distributions and an offset are listed after the
// name.
std::string SpecificationText(const DistributionSpecification& specification);

}  // namespace brenvolt::sra
