// Results of an analysis as files, whose endings say the format: tables as CSV, NumPy arrays or sheets of a project,
// graphs as JSON.
#pragma once

#include <filesystem>

#include "host/analysis/analysis_doc.h"

namespace brenvolt {

// What saves them. Throw Error, and write nothing, for a name that says no format, or none of this kind.
void SaveResultTable(const CAnalysisTableDoc& table, const std::filesystem::path& path);
void SaveResultGraph(const CAnalysisGraphDoc& graph, const std::filesystem::path& path);

// Lets the dialogs over the document save their results.
void OfferResultFiles(CAnalysisDoc& document);

}  // namespace brenvolt
