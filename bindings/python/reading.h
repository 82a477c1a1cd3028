// How data files are read from Python.
#pragma once

#include <filesystem>

#include "host/jobs/base/job_data.h"

namespace brenvolt::python {

// The data of a file, with a warning for each doubt about how it is laid out.
JobData DataOf(const std::filesystem::path& file, bool decimalComma, const TextOptions& text);

// Warns, in Python, of what could be otherwise in a file that was read. Called without the interpreter.
void WarnOfDoubts(const DataFile& file);

}  // namespace brenvolt::python
