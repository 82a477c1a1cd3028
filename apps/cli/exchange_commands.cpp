// brenvolt import and export: between projects and files of other formats.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/wrong_call.h"
#include "host/base/quoted.h"
#include "host/base/utf8.h"
#include "host/jobs/exchange.h"

namespace brenvolt::cli {
namespace {

struct ImportOptions {
  JobData input;
  std::filesystem::path project;
  std::string kind;  // "data" or "matrix"; empty: the file decides
  std::filesystem::path record;
};

struct ExportOptions {
  std::string source;  // PROJECT.bvw or PROJECT.bvw:SHEET
  std::filesystem::path output;
  JobData format;
  std::filesystem::path record;
};

void Import(const ImportOptions& options) {
  RequireProjectEnding(options.project, "-o");
  if (!options.kind.empty() && options.kind != "data" && options.kind != "matrix")
    throw WrongJob("kind", "expected data or matrix, got " + Quoted(options.kind));
  if (!IsText(options.input.sheet)) throw WrongCall("the sheet's name is not UTF-8 text");
  Recording recording(options.record);
  const Spreadsheet sheet = ImportIntoProject(
      {options.input.file, options.input.Format(), options.input.sheet, options.kind}, options.project);
  recording.Job().Called(nullptr, "Import",
                         {PythonPath(options.input.file), PythonPath(options.project),
                          options.input.sheet.empty() ? "" : "sheet=" + PythonText(options.input.sheet),
                          options.kind.empty() ? "" : "kind=" + PythonText(options.kind),
                          DecimalCommaArgument(options.input.decimalComma)});
  const std::string what =
      sheet.Kind() == SheetKind::kMatrix
          ? "correlation matrix of " + std::to_string(sheet.VariableCount()) + " variables"
          : std::to_string(sheet.CaseCount()) + " cases of " + std::to_string(sheet.VariableCount()) +
                " variables";
  std::printf("%s imported into %s, sheet %s\n", what.c_str(), options.project.c_str(), sheet.Name().c_str());
  recording.Commit();
}

void Export(const ExportOptions& options) {
  Recording recording(options.record);
  ExportFromProject(options.source, options.output, options.format.Format());
  recording.Job().Called(nullptr, "Export",
                         {PythonText(options.source), PythonPath(options.output),
                          DecimalCommaArgument(options.format.decimalComma)});
  recording.Commit();
}

}  // namespace

void AddImportCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("import", "Import a data file into a project");
  const auto options = std::make_shared<ImportOptions>();
  command
      ->add_option("FILE", options->input.file,
                   "CSV file with a header row: data, or a matrix whose first column names the rows")
      ->required();
  command->add_option("-o,--output", options->project, "Project, created if it does not exist")
      ->required()
      ->type_name("PROJECT.bvw");
  command->add_option("--sheet", options->input.sheet, "Name of the new sheet; default: the file's name")
      ->type_name("NAME");
  command
      ->add_option("--kind", options->kind,
                   "What the file holds; default: a matrix where the names of rows are those of a matrix")
      ->type_name("data|matrix");
  AddDecimalCommaOption(*command, options->input);
  AddRecordOption(*command, options->record);
  command->footer("Example:\n  brenvolt import examples/faithful.csv -o geyser.bvw");
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("export", "Write a sheet of a project as CSV");
  const auto options = std::make_shared<ExportOptions>();
  command
      ->add_option("PROJECT[:SHEET]", options->source,
                   "Project (.bvw) and sheet, data or matrix; default: its first data sheet")
      ->required();
  command->add_option("-o,--output", options->output, "CSV file")->required()->type_name("FILE.csv");
  AddDecimalCommaOption(*command, options->format);
  AddRecordOption(*command, options->record);
  command->footer("Example:\n  brenvolt export geyser.bvw:faithful -o faithful.csv");
  command->callback([options] { Export(*options); });
}

}  // namespace brenvolt::cli
