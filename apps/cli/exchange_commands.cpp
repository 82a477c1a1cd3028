// brenvolt import and export: between projects and files of other formats.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/application/json_text.h"
#include "host/base/visible_text.h"
#include "host/jobs/exchange/exchange_jobs.h"
#include "host/jobs/exchange/preview_job.h"
#include "host/jobs/json/preview_json.h"
#include "host/jobs/reports/preview_table.h"

namespace brenvolt::cli {
namespace {

template <class Job>
struct Options {
  Job job;
  std::filesystem::path record;
};

struct ImportOptions : Options<ImportJob> {
  bool preview = false;
  ReportFormat format = ReportFormat::kTable;
};

void Preview(const ImportOptions& options) {
  if (!options.job.output.empty() || !options.job.kind.empty() || !options.job.name.empty() ||
      !options.record.empty())
    throw WrongCall("a preview imports nothing, so -o, --name, --kind and --record cannot be given with it");
  const FilePreview preview = PreviewJob{options.job.data}.Run();
  if (options.format == ReportFormat::kJson) {
    Print(JsonText(PreviewJson(preview)));
    return;
  }
  if (options.format == ReportFormat::kCsv) return PrintCsv(PreviewSheet(preview), options.job.data);
  for (const PreviewedSheet& sheet : preview.sheets) {
    const ReportTable table = PreviewTable(sheet);
    std::printf("%s%s\n%s", &sheet == &preview.sheets.front() ? "" : "\n", VisibleLine(table.title).c_str(),
                TextOf(table).c_str());
  }
}

void Import(const ImportOptions& options) {
  if (options.preview) return Preview(options);
  if (options.job.output.empty()) throw CLI::RequiredError("--output");
  if (options.format != ReportFormat::kTable) throw WrongCall("this applies only to a preview (--format)");
  RequireNone(options.job.Check());
  Recording recording(options.record);
  const Spreadsheet sheet = options.job.Run(recording.Job());
  const std::string what =
      sheet.Kind() == SheetKind::kMatrix
          ? "correlation matrix of " + std::to_string(sheet.VariableCount()) + " variables"
          : std::to_string(sheet.CaseCount()) + " cases of " + std::to_string(sheet.VariableCount()) +
                " variables";
  std::printf("%s imported into %s, sheet %s\n", VisibleLine(what).c_str(),
              VisibleLine(options.job.output.string()).c_str(), VisibleLine(sheet.Name()).c_str());
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
  const auto options = std::make_shared<ImportOptions>();
  command
      ->add_option("FILE", options->job.data.file,
                   "Data file (text, xlsx, ods, SPSS, Stata, SAS, npz, JSON lines): data, or a matrix whose "
                   "first column names the rows")
      ->required();
  command->add_option("-o,--output", options->job.output, "Project, created if it does not exist")
      ->type_name("PROJECT.bvw");
  AddWaitOption(*command);
  command
      ->add_option("--sheet", options->job.data.sheet,
                   "Sheet of a workbook to take; default: its first one, with --preview all")
      ->type_name("NAME");
  command
      ->add_option("--name", options->job.name,
                   "Name of the new sheet; default: that of the sheet taken, or the file's name")
      ->type_name("NAME");
  command->add_flag("--preview", options->preview,
                    "Import nothing, but print what the file is read as: the types of its variables, their "
                    "missing values, and the "
                    "first cases");
  command
      ->add_option("--kind", options->job.kind,
                   "What the file holds; default: a matrix where the names of rows are those of a matrix")
      ->type_name("data|matrix");
  AddReadingOptions(*command, options->job.data);
  AddRecordOption(*command, options->record);
  AddTableFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt import examples/faithful.csv -o geyser.bvw");
  command->callback([options] { Import(*options); });
}

void AddExportCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("export", "Write a sheet of a project as a data file");
  const auto options = std::make_shared<Options<ExportJob>>();
  command
      ->add_option("PROJECT[:SHEET]", options->job.source,
                   "Project (.bvw) and sheet, data or matrix; default: its first data sheet")
      ->required();
  command
      ->add_option("-o,--output", options->job.output, "Data file, by ending: .csv, .npz, .xlsx, .sav, .dta")
      ->required()
      ->type_name("FILE");
  AddDecimalCommaOption(*command, options->job.decimalComma);
  AddSafeCellsOption(*command, options->job.safeCells);
  AddRecordOption(*command, options->record);
  command->footer("Example:\n  brenvolt export geyser.bvw:faithful -o faithful.csv");
  command->callback([options] { Export(*options); });
}

}  // namespace brenvolt::cli
