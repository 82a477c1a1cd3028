// What the reports of all jobs have in common. A report of a further kind is one function that fills a Report from
// the results of its job: its sections are these and its own, and WriteReport (host/reporting/report_file.h) does the rest.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/user_interface.h"
#include "host/jobs/base/job_data.h"
#include "host/jobs/base/plot.h"
#include "host/reporting/report.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt {

// Variables or responses that a report shows one by one, with pictures; an index has all.
inline constexpr std::size_t kMostShown = 50;

// What a job was run on and said meanwhile, where results do not tell.
struct ReportContext {
  const Spreadsheet& sheet;
  const std::vector<Message>& messages;  // of the run
  std::string obstacle{};                // why no command repeats it; empty if one that opens the file does
};

// Obstacles.
inline constexpr const char* kFromProgram =
    "The data or functions came from a program, so that no command repeats this.";
inline constexpr const char* kChangedSinceOpened =
    "The data were changed after they were opened, and are in no file as they are now, so that no command "
    "repeats this. Save them and make the report again to have the command.";
inline constexpr const char* kFileChanged =
    "Another program changed the file after it was opened, so that no command repeats this.";
inline constexpr const char* kTreatedApart =
    "The variables are treated in different ways, which one command cannot say.";

// The command, which may be empty where none can say it, or what stands in its way.
void SayCommand(const std::string& command, const std::string& obstacle, ReportSection& section);
// What was asked, in words: a sentence, and what was said besides; then the command that repeats it, or `obstacle`.
ReportSection AskedSection(std::string sentence, ReportFacts facts, const std::string& command,
                           const std::string& obstacle = {});
// Where the data are from, how many they are, and which of them count.
ReportSection DataSection(const JobData& data, const ReportContext& context);
// The program and its version, the time, and the seed where there is one.
ReportSection MadeSection(const std::optional<std::int32_t>& seed);
// "Notes and warnings": what is known of the whole, and what the run said. A section without any says so.
ReportSection NotesSection(std::vector<ReportNote> notes, const std::vector<Message>& messages);

// "a, b and c"; of many the first, and how many more there are.
std::string NamesText(std::span<const std::string> names);
// "1 case", "2 cases".
std::string CountText(std::size_t count, const std::string& noun);

// The graphs of a page one by one; none of a page of text alone.
ReportPictures PicturesOf(PlotPage page);
// A section for each of the first pages, kMostShown at most, under its name.
ReportSection PicturesSection(std::string title, std::vector<PlotPage> pages);

}  // namespace brenvolt
