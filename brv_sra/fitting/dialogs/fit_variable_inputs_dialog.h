// The tabs "Continuous variables" and "Discrete variables" of the fit specification: how the controls of one
// variable show its specification, and how they are read back.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "brv_sra/fitting/dialogs/new_specification.h"
#include "brv_sra/fitting/fit_state.h"
#include "host/controls/control_set.h"

namespace brenvolt::sra {

// Shows a specification; null means that there is no variable, and disables the controls.
void ShowInputs(ControlSet& controls, const ContinuousSpecification* shown);
void ShowInputs(ControlSet& controls, const DiscreteSpecification* shown);

// Reads the controls into `specification`. Returns 0; or the number of the message that says what is wrong,
// and then nothing has changed but the check boxes of a continuous variable, which are taken before its
// numbers are judged. An offset or number of mixtures that is empty or unreadable is an error where its
// distribution is checked, and not set otherwise; a number of trials must be readable in either case.
//
// Wrong offset: 10011. Wrong number of mixtures: 10083; its bounds depend on the valid cases and are the
// run's business. Wrong number of trials: 10159; it is needed if the binomial is checked and set to use it,
// and must be a whole number greater than 0.
std::int32_t ReadInputs(const ControlSet& controls, ContinuousSpecification& specification);
std::int32_t ReadInputs(const ControlSet& controls, DiscreteSpecification& specification);

// After a check box changed: a distribution that is checked while its offset or number of mixtures is empty
// gets the usual one, 0 or 2.
void FillUsualInput(ControlSet& controls, std::int32_t check);

// After a run: the mixtures that it took where those asked for were out of bounds become the ones specified.
// Returns which these are, "name: 2; name: 15", and nothing if there are none. `results` begins with those
// of the continuous variables, in their order.
std::string TakeOverMixtures(std::span<const VariableFit> results,
                             std::span<ContinuousSpecification> specifications);

// The check boxes of a tab, in their fixed order.
std::span<const std::int32_t> ContinuousChecks();
std::span<const std::int32_t> DiscreteChecks();

}  // namespace brenvolt::sra
