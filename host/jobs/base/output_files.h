// Where the data go that a job made: projects, CSV, NumPy arrays, by the ending of the name.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/jobs/base/analysis_session.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/job_recorder.h"

namespace brenvolt {

// True for a regular file or a path that does not exist.
bool IsRegularTarget(const std::filesystem::path& path);
// Adds a fault of the field unless data may go to `path`: a project or a data file by the ending
// (data_file_writer.h), CSV to devices and pipes, or nothing for an empty path.
void CheckDataTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults);
// Adds a fault where a file of that ending does not take so many cases.
void CheckSize(std::string_view field, const std::filesystem::path& path, double cases, JobFaults& faults);
// The same for the data of graphs: JSON, by the ending, or a device or pipe.
void CheckGraphsTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults);

// The same without a project.
void CheckTableTarget(std::string_view field, const std::filesystem::path& path, JobFaults& faults);
// Adds a fault where the folder of an output does not exist or takes no file, which would be found only when the work is
// done.
void CheckFolder(std::string_view field, const std::filesystem::path& path, JobFaults& faults);

// A file that a job reads or writes, and the field that names it. An empty path is no file.
struct JobFile {
  std::string_view field;
  std::filesystem::path path;
};
// Adds a fault for each output that would replace what the job reads or what it writes elsewhere. A project may be
// read and added to.
void CheckTargetsApart(const std::vector<JobFile>& inputs, const std::vector<JobFile>& outputs,
                       JobFaults& faults);

// Throws Error if data of another format would replace a project.
void RefuseReplacedProject(const std::filesystem::path& path);

// Writes a document by the ending of the name, CSV where there is no other. Throws Error, and writes nothing, where a
// project would be replaced.
void WriteTable(const std::filesystem::path& path, const CAnalysisTableDoc& table, JobRecorder& recorder);
// Records that a document was written; of a workbook of results a macro writes the document alone.
void RecordTable(const std::filesystem::path& path, const CAnalysisTableDoc& table, JobRecorder& recorder);
// Adds documents to the project at `path`, which is created if missing. Returns their names there.
std::vector<std::string> AppendTables(const std::filesystem::path& path, const std::vector<Table>& tables,
                                      JobRecorder& recorder);

}  // namespace brenvolt
