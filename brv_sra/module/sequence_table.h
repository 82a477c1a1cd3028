// The sequence of the analysis: what each step opens, and where it leads.
#pragma once

#include "host/analysis/analysis_support.h"

namespace brenvolt::sra {

// Nine rows and a terminating all-zero row.
const SequenceStep* SequenceTable();

}  // namespace brenvolt::sra
