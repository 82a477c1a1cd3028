// What a fault of an estimate and the origin of a fit read like for a person.
#pragma once

#include <string>

#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// Why a fit failed, with the value, its case and the bound if there are such; empty for a valid fit.
std::string FailureReason(const DistributionFit& fit);

// Why a variable has no fits at all; empty if it has.
std::string FailureReason(const VariableFit& variable);

// What speaks against a valid fit, or against its bootstrap; empty if nothing does: it is from moments because the
// likelihood has no maximum, a component of a mixture describes a few close values, the bootstrap p-values of a
// Johnson fit by moments do not hold.
std::string NoteOn(const VariableFit& variable, const DistributionFit& fit);

}  // namespace brenvolt::sra
