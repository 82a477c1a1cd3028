#include "apps/cli/data_options.h"

#include "apps/cli/session.h"

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

void RequireProjectEnding(const std::filesystem::path& path, const std::string& option) {
  if (!HasProjectEnding(path)) throw WrongCall(option + " wants a file ending in .bvw, not " + path.string());
}

}  // namespace brenvolt::cli
