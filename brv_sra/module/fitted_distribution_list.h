// The exported list of a variable's fitted distributions.
#pragma once

#include <cstdint>

#include "host/automation/variant.h"
#include "host/base/export.h"

// Fills `result` with an array of the display names of the fitted distributions, best first, each once, of
// the variable with the given index (from 0) among the results of the fit results dialog whose automation
// object `dialog` holds, directly or by reference. Returns 0; or 2, and leaves `result` as it was, when
// `dialog` holds no such object, the dialog has no fit results, or there is no such variable. Throws
// brenvolt::CDispatchException E_OUTOFMEMORY when the array cannot be made.
extern "C" BRENVOLT_EXPORT std::int64_t GetFittedDistributionList(brenvolt::Variant dialog,
                                                                  brenvolt::Variant* result,
                                                                  std::int32_t variable);
