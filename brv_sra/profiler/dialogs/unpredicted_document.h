// Why runs have no prediction, as a table.
#pragma once

#include <memory>
#include <span>

#include "brv_sra/profiler/profiler_design.h"
#include "host/models/unpredicted_cases.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// A case for each reason of each dependent, the most frequent first: dependent, reason, field, its value or the
// range of its values, and how many runs. The reasons are the identifiers of the cases. Null if every run has all
// predictions. `unpredicted` is by dependent.
std::unique_ptr<Spreadsheet> UnpredictedDocument(const ProfilerDesign& design,
                                                 std::span<const UnpredictedCases> unpredicted);

}  // namespace brenvolt::sra
