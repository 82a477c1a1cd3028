// brenvolt import and export: between projects and files of other formats.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "host/jobs/exchange_jobs.h"

namespace brenvolt::cli {
namespace {

template <class Job>
struct Options {
  Job job;
  std::filesystem::path record;
};

void Import(const Options<ImportJob>& options) {
  RequireNone(options.job.Check());
  Recording recording(options.record);
  const Spreadsheet sheet = options.job.Run(recording.Job());
  const std::string what =
      sheet.Kind() == SheetKind::kMatrix
          ? "correlation matrix of " + std::to_string(sheet.VariableCount()) + " variables"
          : std::to_string(sheet.CaseCount()) + " cases of " + std::to_string(sheet.VariableCount()) +
                " variables";
  std::printf("%s imported into %s, sheet %s\n", what.c_str(), options.job.output.c_str(),
              sheet.Name().c_str());
  recording.Commit();
}

void Export(const Options<ExportJob>& options) {
  RequireNone(options.job.Check());
  Recording recording(options.record);
  options.job.Run(recording.Job());
  recording.Commit();
}

}  // namespace

void AddImportCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("import", "Import a data file into a project");
  const auto options = std::make_shared<Options<ImportJob>>();
  command
      ->add_option("FILE", options->job.file,
                   "CSV file with a header row: data, or a matrix whose first column names the rows")
      ->required();
  command->add_option("-o,--output", options->job.output, "Project, created if it does not exist")
      ->required()
      ->type_name("PROJECT.bvw");
  command->add_option("--sheet", options->job.sheet, "Name of the new sheet; default: the file's name")
      ->type_name("NAME");
  command
      ->add_option("--kind", options->job.kind,
                   "What the file holds; default: a matrix where the names of rows are those of a matrix")
      ->type_name("data|matrix");
  AddDecimalCommaOption(*command, options->job.decimalComma);
  AddRecordOption(*command, options->record);
  command->footer("Example:\n  brenvolt import examples/faithful.csv -o geyser.bvw");
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("export", "Write a sheet of a project as CSV");
  const auto options = std::make_shared<Options<ExportJob>>();
  command
      ->add_option("PROJECT[:SHEET]", options->job.source,
                   "Project (.bvw) and sheet, data or matrix; default: its first data sheet")
      ->required();
  command->add_option("-o,--output", options->job.output, "CSV file")->required()->type_name("FILE.csv");
  AddDecimalCommaOption(*command, options->job.decimalComma);
  AddRecordOption(*command, options->record);
  command->footer("Example:\n  brenvolt export geyser.bvw:faithful -o faithful.csv");
  command->callback([options] { Export(*options); });
}

}  // namespace brenvolt::cli
