// Options and actions that several commands share: from the words of a call to the structure of a job, whose
// fields they fill.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/application/json_text.h"
#include "host/jobs/base/command_words.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/plot.h"
#include "host/jobs/design_job.h"

namespace brenvolt::cli {

enum class ReportFormat { kTable, kJson, kCsv };

// Adds --format table|json.
void AddFormatOption(CLI::App& command, ReportFormat& format);
// The same with csv, the rows of the tables with all digits.
void AddTableFormatOption(CLI::App& command, ReportFormat& format);
// Adds --decimal-comma.
void AddDecimalCommaOption(CLI::App& command, bool& decimalComma);

// Adds DATA, which `about` may say more of, and --sheet. Returns the former.
CLI::Option* AddDataOptions(CLI::App& command, JobData& data, const std::string& about = {});

// Adds --decimal-comma and the other options that say how a text file is laid out; what is found of a file by looking is
// said on standard error.
void AddReadingOptions(CLI::App& command, JobData& data);

// Adds --safe-cells.
void AddSafeCellsOption(CLI::App& command, bool& safeCells);

// A table of results on standard output, its texts safe for spreadsheet programs.
void PrintCsv(const Spreadsheet& sheet, const JobData& data);

// Adds --wait.
void AddWaitOption(CLI::App& command);

// Adds --yes.
void AddYesOption(CLI::App& command, JobData& data);

// Adds --plot with what says how it is drawn. `kinds` are the words for the graphs of the command.
void AddPlotOptions(CLI::App& command, Plot& plot, std::span<const std::string_view> kinds);
// "Pictures written to FILE", for people; nothing without a plot.
void ReportPlot(const Plot& plot);

// Adds --report.
void AddReportOption(CLI::App& command, std::filesystem::path& report, const std::string& more = {});
// "Report written to FILE", for people; nothing without a report.
void SayReportWritten(const std::filesystem::path& report);

// Adds --chart.
void AddChartOption(CLI::App& command, bool& chart);
// Where standard output is a terminal, the graphs in characters, in its width.
void PrintCharts(const std::vector<PlotPage>& pages);

// Adds --variable, --correlation and --from.
void AddHandInputs(CLI::App& command, HandInputs& inputs);

// What the words of the call already show to be wrong, beside what the job's check tells. Throws WrongJob with all of it if
// there is any of the former; else the job checks itself.
JobFaults& FaultyWords();
template <class Job>
void RequireWords(const Job& job) {
  if (FaultyWords().empty()) return;
  JobFaults faults = FaultyWords();
  Append(job.Check(), faults);
  throw WrongJob(std::move(faults));
}
// Carries out what reads a word; a fault is kept.
template <class Read>
void KeepingFaults(const Read& read) {
  try {
    read();
  } catch (const WrongJob& wrong) {
    Append(wrong.Faults(), FaultyWords());
  }
}

// An option with one argument for each occurrence: it must not swallow the name of the data file. Names of a
// list are separated by commas.
void AddList(CLI::App& command, const std::string& name, std::vector<std::string>& list,
             const std::string& type, const std::string& help);

// A number as a person wrote it. Throws WrongJob for anything else.
double NumberIn(const std::string& field, const std::string& text);
template <class Number>
CLI::Option* AddNumber(CLI::App& command, const std::string& name, const std::string& field, Number& number,
                       const std::string& type, const std::string& help) {
  return command
      .add_option_function<std::string>(
          name,
          [&number, field](const std::string& text) {
            KeepingFaults([&] { number = NumberIn(field, text); });
          },
          help)
      ->type_name(type);
}

// "NAME=VALUE" taken apart at its last equals sign: a name may itself hold some. `form` says what the option
// takes. Throws WrongJob if there is none.
std::pair<std::string, std::string> SplitEntry(const std::string& field, const std::string& form,
                                               const std::string& text);
std::vector<std::string> SplitAtCommas(const std::string& text);
// "LOW:HIGH" or "LOW,HIGH", either left out if there is none; `text` is the whole entry.
std::pair<std::optional<double>, std::optional<double>> BoundsIn(const std::string& field,
                                                                 const std::string& form,
                                                                 const std::string& text,
                                                                 const std::string& bounds);
[[noreturn]] void RefuseEntry(const std::string& field, const std::string& form, const std::string& text);

// An option that may be repeated. `parse` makes an entry of a job from the words of each; lists are not
// taken, since a name may contain a comma.
template <class Entry>
CLI::Option* AddEntries(CLI::App& command, const std::string& name, std::vector<Entry>& entries,
                        Entry (*parse)(const std::string& text), const std::string& type,
                        const std::string& help) {
  return command
      .add_option_function<std::vector<std::string>>(
          name,
          [&entries, parse](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) KeepingFaults([&] { entries.push_back(parse(text)); });
          },
          help)
      ->allow_extra_args(false)
      ->type_name(type);
}

}  // namespace brenvolt::cli
