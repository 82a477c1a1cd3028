// Options and actions that several verbs share: reading data files, choosing a format, saving into projects.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

#include "host/application/json_text.h"
#include "host/jobs/project_files.h"

namespace brenvolt::cli {

enum class ReportFormat { kTable, kJson };

// Adds --format table|json.
void AddFormatOption(CLI::App& command, ReportFormat& format);

struct InputOptions {
  std::filesystem::path path;
  std::string sheet;
  bool decimalComma = false;

  CsvFormat Format() const { return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{}; }
};

// Adds --decimal-comma.
void AddDecimalCommaOption(CLI::App& command, InputOptions& input);

// Throws WrongCall unless `path` ends as project files do. `option` names the option that gave it.
void RequireProjectEnding(const std::filesystem::path& path, const std::string& option);
// True for a regular file, and where there is nothing yet.
bool IsRegularTarget(const std::filesystem::path& path);
// What simulated data may go to: a project, CSV or NumPy arrays by the ending, CSV to devices and pipes, or
// nothing for an empty path. Throws WrongCall otherwise; Error where a project would be replaced.
void CheckSimulatedTarget(const std::filesystem::path& path);

}  // namespace brenvolt::cli
