// Options and actions that several verbs share: reading data files, choosing a format, saving into projects.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>

#include "host/application/application.h"

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

// Opens an existing project; throws Error when the file is none.
DataFile OpenProject(const std::filesystem::path& path);

// What to do with a sheet of the same name that a project already has.
enum class NameClash {
  kNewName,  // keep both: the new one gets a number behind its name
  kRefuse  // keep the old one and throw, unless the two hold the same data: then the new one takes its place
};

// Puts a sheet into the project at `path`, which is made when there is none, and saves it. Returns the
// sheet's name in the project.
std::string AddToProject(const std::filesystem::path& path, std::unique_ptr<Spreadsheet> sheet,
                         NameClash clash);

// Tells project files by their ending.
bool HasProjectEnding(const std::filesystem::path& path);

}  // namespace brenvolt::cli
