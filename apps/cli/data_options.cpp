#include "apps/cli/data_options.h"

#include "apps/cli/session.h"
#include "host/base/error.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt::cli {
void AddFormatOption(CLI::App& command, ReportFormat& format) {
  command
      .add_option_function<std::string>(
          "--format",
          [&format](const std::string& name) {
            format = name == "json" ? ReportFormat::kJson : ReportFormat::kTable;
          },
          "table for people (default), json for programs")
      ->check(CLI::IsMember({"table", "json"}).description(""))
      ->type_name("table|json");
}

void AddDecimalCommaOption(CLI::App& command, InputOptions& input) {
  command.add_flag("--decimal-comma", input.decimalComma,
                   "CSV with decimal commas, semicolons between the fields");
}

bool IsRegularTarget(const std::filesystem::path& path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return !std::filesystem::exists(status) || std::filesystem::is_regular_file(status);
}

void CheckSimulatedTarget(const std::filesystem::path& path) {
  if (path.empty() || HasProjectEnding(path)) return;
  RefuseProjectTarget(path);
  if (HasEnding(path, ".csv") || IsNumpyArchiveName(path) || !IsRegularTarget(path)) return;
  throw WrongCall("-o wants a file ending in .csv, .npz or .bvw, not " + path.string());
}

void RequireProjectEnding(const std::filesystem::path& path, const std::string& option) {
  if (!HasProjectEnding(path)) throw WrongCall(option + " wants a file ending in .bvw, not " + path.string());
}

}  // namespace brenvolt::cli
