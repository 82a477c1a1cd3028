#include "host/jobs/reports/report_parts.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <ctime>
#include <system_error>
#include <utility>

#include "host/base/number_text.h"
#include "host/jobs/base/project_files.h"

namespace brenvolt {
namespace {

std::string TimeText(std::time_t time, const char* form) {
  std::array<char, 64> text{};
  const std::tm* const parts = std::localtime(&time);
  if (parts == nullptr) return {};
  return {text.data(), std::strftime(text.data(), text.size(), form, parts)};
}

std::string SizeText(std::uintmax_t bytes) {
  constexpr double kThousand = 1000;
  constexpr std::array<const char*, 5> kUnits{"bytes", "kB", "MB", "GB", "TB"};
  auto size = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; size >= kThousand && unit + 1 < kUnits.size(); ++unit) size /= kThousand;
  return FormatNumber(unit == 0 ? "%.0f" : "%.3g", size) + " " + kUnits[unit];
}

// When the file was changed and how long it is, so that a reader knows whether he has the same one.
void AddFile(const std::filesystem::path& file, ReportFacts& facts) {
  facts.facts.emplace_back("File", file.string());
  std::error_code code;
  const auto size = std::filesystem::file_size(file, code);
  if (code) return;
  facts.facts.emplace_back("Size", SizeText(size));
  const auto changed = std::filesystem::last_write_time(file, code);
  if (code) return;
  const auto clock = std::chrono::file_clock::to_sys(changed);
  facts.facts.emplace_back(
      "Last changed", TimeText(std::chrono::system_clock::to_time_t(
                                   std::chrono::time_point_cast<std::chrono::system_clock::duration>(clock)),
                               "%Y-%m-%d %H:%M %Z"));
}

}  // namespace

void SayCommand(const std::string& command, const std::string& obstacle, ReportSection& section) {
  if (!obstacle.empty()) return section.Say(obstacle);
  if (command.empty())
    return section.Say(
        "The data or functions came from a program, or names have characters that separate names in lists, "
        "so "
        "that no command repeats this.");
  section.Say("This command repeats it:");
  section.blocks.emplace_back(ReportCode{command});
}

ReportSection AskedSection(std::string sentence, ReportFacts facts, const std::string& command,
                           const std::string& obstacle) {
  ReportSection section{"What was asked"};
  section.Say(std::move(sentence));
  if (!facts.facts.empty()) section.blocks.emplace_back(std::move(facts));
  SayCommand(command, obstacle, section);
  return section;
}

ReportSection DataSection(const JobData& data, const ReportContext& context) {
  const Spreadsheet& sheet = context.sheet;
  ReportFacts facts;
  if (!data.file.empty()) AddFile(data.file, facts);
  if (data.file.empty()) facts.facts.emplace_back("File", "none, the data came from a program");
  if (data.file.empty() || HasProjectEnding(data.file)) facts.facts.emplace_back("Sheet", sheet.Name());
  facts.facts.emplace_back("Cases", std::to_string(sheet.CaseCount()));
  facts.facts.emplace_back("Variables", std::to_string(sheet.VariableCount()));
  if (sheet.WeightVariable())
    facts.facts.emplace_back("Cases weighted by", sheet.VariableAt(*sheet.WeightVariable()).Name());
  if (sheet.Selection().enabled) facts.facts.emplace_back("Cases with", sheet.Selection().condition);
  ReportSection section{"Data"};
  section.blocks.emplace_back(std::move(facts));
  return section;
}

ReportSection MadeSection(const std::optional<std::int32_t>& seed) {
  ReportFacts facts;
  facts.facts.emplace_back("Program", "Brenvolt Distributions & Simulation " BRENVOLT_VERSION);
  facts.facts.emplace_back("Made", TimeText(std::time(nullptr), "%Y-%m-%d %H:%M %Z"));
  if (seed) facts.facts.emplace_back("Seed", std::to_string(*seed) + ", which gives the same numbers again");
  ReportSection section{"How this was made"};
  section.blocks.emplace_back(std::move(facts));
  return section;
}

ReportSection NotesSection(std::vector<ReportNote> notes, const std::vector<Message>& messages) {
  for (const Message& message : messages) {
    if (message.buttons != MessageButtons::kOk) continue;
    notes.push_back({kWarning, message.text + (message.where.empty() ? "" : " (" + message.where + ")")});
  }
  constexpr std::size_t kMost = 200;
  ReportSection section{"Notes and warnings"};
  if (notes.empty()) section.Say("There are none.");
  if (notes.size() > kMost) {
    section.Say("The first " + std::to_string(kMost) + " of " + std::to_string(notes.size()) + " are shown.");
    notes.erase(notes.begin() + static_cast<std::ptrdiff_t>(kMost), notes.end());
  }
  for (ReportNote& note : notes) section.blocks.emplace_back(std::move(note));
  return section;
}

std::string NamesText(std::span<const std::string> names) {
  constexpr std::size_t kMost = 12;
  const std::size_t shown = names.size() > kMost ? kMost - 2 : names.size();
  std::string text;
  for (std::size_t i = 0; i < shown; ++i) {
    const bool isLast = i + 1 == names.size();
    text += (i == 0 ? "" : isLast ? " and " : ", ") + names[i];
  }
  if (shown == names.size()) return text;
  return text + " and " + std::to_string(names.size() - shown) + " more";
}

std::string CountText(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

ReportPictures PicturesOf(PlotPage page) {
  ReportPictures pictures;
  const auto add = [&pictures](Graph graph) {
    if (graph.kind != GraphKind::kText) pictures.graphs.push_back(std::move(graph));
  };
  if (page.page.kind != GraphKind::kSummary) {
    add(std::move(page.page));
    return pictures;
  }
  for (Graph& panel : page.page.panels) add(std::move(panel));
  return pictures;
}

ReportSection PicturesSection(std::string title, std::vector<PlotPage> pages) {
  ReportSection section{std::move(title)};
  const std::size_t shown = std::min(pages.size(), kMostShown);
  if (shown < pages.size()) {
    section.Warn(
        kNote, "The first " + std::to_string(shown) + " of " + std::to_string(pages.size()) + " are shown.");
  }
  for (std::size_t i = 0; i < shown; ++i) {
    ReportSection& one = section.sections.emplace_back(ReportSection{pages[i].name});
    ReportPictures pictures = PicturesOf(std::move(pages[i]));
    if (pictures.graphs.empty()) one.Say("There is nothing to draw: no values.");
    one.blocks.emplace_back(std::move(pictures));
  }
  return section;
}

}  // namespace brenvolt
