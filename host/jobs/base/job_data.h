// Where the data of a job are, and what every job that was run leaves.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/jobs/base/analysis_session.h"
#include "host/jobs/base/job_recorder.h"
#include "host/tables/csv.h"

namespace brenvolt {

inline CsvFormat FormatOf(bool decimalComma) {
  return decimalComma ? CsvFormat::DecimalComma() : CsvFormat{};
}

struct JobData {
  std::filesystem::path file;  // "-" is standard input
  std::string sheet;           // empty: the first data sheet
  bool decimalComma = false;   // semicolons between the fields, unless the options say otherwise
  TextOptions text;            // how a text file is laid out; what is not said is found by looking
  std::function<void(const DataFile&)> tell;  // takes what was found; may be empty
  bool yes = false;  // questions are answered with OK; without, a job that asks one is refused

  CsvFormat Format() const { return FormatOf(decimalComma); }
};

// What is wrong with how the file of the data is to be read.
void CheckReading(const JobData& data, JobFaults& faults);
// The same as arguments of a macro's call.
JobRecorder::Arguments ReadingArguments(const JobData& data);
// "data.csv has fields separated by tabs": what was found that is not as usual; empty if there is nothing.
std::string ReadAsText(const DataFile& file);

// Throws Error for a matrix, whose rows are no cases.
void RequireCases(const Spreadsheet& sheet);

// A seed for a job that was given none, from 1 to 2147483647, from the system's source of random numbers: jobs that
// start within one tick of the clock also differ. All of a crew get the same.
std::int32_t DrawSeed();
// The seed that a job was given, which has been checked, or else a drawn one.
inline std::int32_t ChosenSeed(const std::optional<double>& given) {
  return given ? AsInteger(*given) : DrawSeed();
}

// Data that are open: what a job works on, whichever front end holds them.
struct JobInput {
  Spreadsheet& sheet;
  DataFile* home;                           // the workbook that the sheet lies in; null if there is none
  const void* recorded;                     // the object that the sheet is for the recorder
  std::function<AnalysisSession&()> start;  // an analysis over the sheet, whose startup dialog is open
  bool isLent = false;  // the sheet keeps its own case weights and selection when the job has ended
};

// Opens the file of the data and tells what was found. Throws WrongJob for options that the file shows to be wrong, and
// Error.
DataFile OpenJobData(const JobData& data);
// Starts the analysis of a job.
AnalysisSession& Start(const JobInput& input, const JobData& data);

// Limits the cases to those that meet a condition, or to none if it is empty. Throws WrongJob about the field select for a
// condition that is wrong or that no case meets.
void SelectCases(Spreadsheet& sheet, const std::string& select);

// What limits and weighs the cases of a sheet, put back as it was at the end of the scope.
class FormerConditions {
 public:
  explicit FormerConditions(Spreadsheet& sheet)
      : sheet_(sheet), weight_(sheet.WeightVariable()), selection_(sheet.Selection()) {}
  FormerConditions(const FormerConditions&) = delete;
  FormerConditions& operator=(const FormerConditions&) = delete;
  ~FormerConditions();

 private:
  Spreadsheet& sheet_;
  std::optional<std::size_t> weight_;
  CaseSelection selection_;
};

// What a job leaves that opened its data itself. The results are those of the open dialog.
struct JobRun {
  DataFile data;
  Spreadsheet* sheet = nullptr;  // lies in the data
  std::unique_ptr<AnalysisSession> session;

  // The sheet, once it is open, as input of a job. What is referred to must outlive the input.
  JobInput Input(ProgramInterface& interface, JobRecorder& recorder);
};

// The correlation matrix of that name (NamedMatrix), otherwise the one saved with the fits of the input; null without. Throws
// Error.
std::unique_ptr<Spreadsheet> MatrixFor(const std::string& name, const JobInput& input);
// The document of what MatrixFor found, which a macro finds in the same way; null without.
Table RecordedMatrix(const std::string& name, std::unique_ptr<Spreadsheet> matrix, const JobInput& input,
                     JobRecorder& recorder);

// A macro may name what the analysis has shown.
void RecordShown(AnalysisSession& session, JobRecorder& recorder);

}  // namespace brenvolt
