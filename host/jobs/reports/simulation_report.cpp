#include "host/jobs/reports/simulation_report.h"

#include <utility>

#include "host/base/number_text.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/reports/repeating_command.h"
#include "host/jobs/reports/simulation_tables.h"

namespace brenvolt {
namespace {

// Pairs of a table, beyond which a reader looks at the picture or the data.
constexpr std::size_t kMostPairs = 200;

std::string CountedSamples(const SimulateJob& job) {
  return CountText(static_cast<std::size_t>(job.samples), "sample");
}

ReportFacts FactsOf(const SimulateJob& job, const SimulationFindings& found) {
  ReportFacts facts;
  facts.facts.emplace_back("Method", found.results.summary.title);
  facts.facts.emplace_back("Samples", ShortestNumber(job.samples));
  facts.facts.emplace_back("Seed", std::to_string(found.seed));
  facts.facts.emplace_back("Variables", NamesText(found.design.Names()));
  if (job.truncate) facts.facts.emplace_back("Bounds", "the 0.5 % and 99.5 % quantiles of each variable");
  if (!job.matrix.empty()) facts.facts.emplace_back("Correlations", "those of the matrix " + job.matrix);
  if (!found.file.empty()) facts.facts.emplace_back("Data written to", found.file.string());
  if (!found.outputSheet.empty()) facts.facts.emplace_back("Sheet", found.outputSheet);
  return facts;
}

ReportTable DrawnTable(const DesignText& design) {
  ReportTable table;
  table.AddText("Variable");
  table.AddText("Drawn from");
  for (const NotedVariable& variable : design.variables)
    table.AddRow({variable.name, NotationOf(variable.distribution)});
  return table;
}

std::vector<ReportNote> NotesOf(const SimulationFindings& found) {
  std::vector<ReportNote> notes;
  for (const auto& [variable, cautions] : found.cautions) {
    for (const FitCaution& caution : cautions) notes.push_back({kCaution, variable + ": " + caution.Text()});
  }
  for (std::string& note : found.Notes()) notes.push_back({kNote, std::move(note)});
  return notes;
}

ReportSection SummarySection(const SimulationFindings& found) {
  ReportSection section{"Simulated variables"};
  SummaryTables tables = TablesOf(found.results.summary);
  tables.moments.isIndex = true;
  tables.percentiles.title = "Percentiles";
  section.Show(std::move(tables.moments));
  section.Show(std::move(tables.percentiles));
  return section;
}

ReportSection CorrelationSection(const SimulationFindings& found, ReportPictures pictures) {
  ReportSection section{"Correlations"};
  ReportTable table = CorrelationTable(found.results, kMostPairs);
  std::vector<std::string> notes = std::exchange(table.notes, {});
  section.Show(std::move(table));
  for (std::string& note : notes) section.Say(std::move(note));
  section.blocks.emplace_back(std::move(pictures));
  return section;
}

}  // namespace

Report SimulationReport(const SimulateJob& job, const SimulationFindings& found,
                        const ReportContext& context) {
  const bool isByHand = !job.inputs.IsEmpty();
  const std::string source = isByHand                ? "distributions given by hand"
                             : job.data.file.empty() ? context.sheet.Name()
                                                     : job.data.file.filename().string();
  Report report;
  report.title = "Data simulated from " + source;
  report.summary = CountText(found.design.variables.size(), "variable") + ", " + CountedSamples(job) + ", " +
                   found.results.summary.title + ", seed " + std::to_string(found.seed) + ".";
  report.sections.push_back(
      AskedSection(CountedSamples(job) + " of each variable were drawn from its distribution.",
                   FactsOf(job, found), CommandOf(job, found.method, found.seed), context.obstacle));
  if (!isByHand) report.sections.push_back(DataSection(job.data, context));
  ReportSection drawn{"Distributions"};
  drawn.Show(DrawnTable(found.design));
  report.sections.push_back(std::move(drawn));
  report.sections.push_back(SummarySection(found));
  std::vector<PlotPage> pages = DataPlots(found.output->Table(), kOverview, job.Origin(found));
  if (!found.results.pairs.empty()) {
    report.sections.push_back(CorrelationSection(found, {{std::move(pages.front().page)}}));
    pages.erase(pages.begin());
  }
  report.sections.push_back(NotesSection(NotesOf(found), context.messages));
  report.sections.push_back(PicturesSection("Pictures", std::move(pages)));
  report.sections.push_back(MadeSection(found.seed));
  return report;
}

}  // namespace brenvolt
