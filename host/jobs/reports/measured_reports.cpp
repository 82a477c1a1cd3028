#include "host/jobs/reports/measured_reports.h"

#include <algorithm>
#include <utility>

#include "host/base/number_text.h"
#include "host/jobs/measured/capability_plots.h"
#include "host/jobs/measured/censored_plots.h"
#include "host/jobs/reports/capability_tables.h"
#include "host/jobs/reports/censored_tables.h"
#include "host/jobs/reports/fit_tables.h"
#include "host/jobs/reports/repeating_command.h"

namespace brenvolt {
namespace {

std::string SourceOf(const JobData& data, const ReportContext& context) {
  return data.file.empty() ? context.sheet.Name() : data.file.filename().string();
}

ReportFacts AskedOf(const CapabilityJob& job, const CapabilityFindings& found) {
  ReportFacts facts;
  const auto add = [&facts](const char* name, std::string value) {
    facts.facts.emplace_back(name, std::move(value));
  };
  add("Response", found.response);
  add("Specification", LimitsText(found));
  if (job.subgroup) add("Subgroups", *job.subgroup);
  add("Deviation within", found.withinWord);
  add("Control charts", found.chartWord + ", rules of " + found.rulesWord);
  if (job.distribution) add("Distribution", *job.distribution);
  if (job.rankBy) add("Distributions ranked by", *job.rankBy);
  if (job.bootstrap) add("Bootstrap", CountText(static_cast<std::size_t>(*job.bootstrap), "sample"));
  if (job.select) add("Cases with", *job.select);
  return facts;
}

ReportSection StabilitySection(const CapabilityFindings& found) {
  ReportSection section{"Stability"};
  if (!found.IsStable()) section.Warn(kWarning, found.Warning());
  section.Show(ChartTable(found));
  for (std::string& text : SignalTexts(found)) section.Say(std::move(text));
  section.blocks.emplace_back(PicturesOf(CapabilityPlots(found, "control-charts").front()));
  return section;
}

ReportSection IndexSection(const CapabilityFindings& found) {
  ReportSection section{"Capability"};
  section.Say(MeasuredText(found) + ". " + DeviationsText(found) + ". " + NormalityText(found) + ".");
  if (found.fitted)
    section.Say("Percentiles are those of " + found.fitted->notation + ": " +
                PercentilesText(*found.fitted, found.report.sample.overall) + ".");
  section.Show(FigureTable(found));
  section.Say(ConfidenceText(found) + ".");
  section.blocks.emplace_back(PicturesOf(CapabilityPlots(found, "histogram").front()));
  return section;
}

ReportFacts AskedOf(const CensoredFitJob& job) {
  ReportFacts facts;
  const auto add = [&facts](const char* name, const std::string& value) {
    facts.facts.emplace_back(name, value);
  };
  if (job.censor) add("Known by the column", *job.censor);
  if (job.censorEvent) add("Events are coded", *job.censorEvent);
  if (job.censorUpper) add("Upper bounds", *job.censorUpper);
  add("Ranked by", job.fit.rankBy.value_or("aic"));
  if (!job.fit.distributions.empty()) add("Distributions", NamesText(job.fit.distributions));
  for (const FitJob::Offset& one : job.fit.offsets)
    add("Offset", one.variable + ", " + one.distribution + ": " + ShortestNumber(one.value));
  if (job.fit.weights) add("Cases weighted by", *job.fit.weights);
  if (job.fit.select) add("Cases with", *job.fit.select);
  return facts;
}

ReportSection VariableSection(const CensoredFindings& found, std::size_t place) {
  const CensoredVariable& variable = found.variables[place];
  ReportSection section{variable.name};
  section.Say(CensoringText(variable) + ".");
  for (const ReadingNote& note : variable.notes) section.Warn(kNote, note.message);
  section.Say(RankingText(variable) + ".");
  section.Show(CensoredRankingTable(variable));
  if (variable.quantiles)
    section.Show(QuantileTable(*variable.quantiles, SpreadOf(variable.fits.front().values)));
  section.blocks.emplace_back(PicturesOf(CensoredPlots(CensoredFindings{{variable}}, kOverview).front()));
  return section;
}

}  // namespace

Report ReportOf(const CapabilityJob& job, const CapabilityFindings& found, const ReportContext& context) {
  const std::string source = SourceOf(job.data, context);
  Report report;
  report.title = "Capability of " + found.response + " of " + source;
  report.summary = MeasuredText(found) + ", judged against " + LimitsText(found) + ".";
  report.sections.push_back(
      AskedSection("Measured values of " + found.response + " were judged against their specification.",
                   AskedOf(job, found), CommandOf(job), context.obstacle));
  report.sections.push_back(DataSection(job.data, context));
  report.sections.push_back(StabilitySection(found));
  report.sections.push_back(IndexSection(found));
  std::vector<ReportNote> notes;
  if (!found.IsStable()) notes.push_back({kWarning, found.Warning()});
  for (const std::string& note : found.notes) notes.push_back({kNote, note});
  report.sections.push_back(NotesSection(std::move(notes), context.messages));
  report.sections.push_back(MadeSection(std::nullopt));
  return report;
}

Report ReportOf(const CensoredFitJob& job, const CensoredFindings& found, const ReportContext& context) {
  const std::string source = SourceOf(job.fit.data, context);
  Report report;
  report.title = "Distributions fitted to censored values of " + source;
  report.summary = CountText(found.variables.size(), "variable") + ", fitted and ranked.";
  report.sections.push_back(AskedSection("Distributions were fitted to life data of " + source +
                                             ", of whose values some are known by bounds alone, and ranked.",
                                         AskedOf(job), CommandOf(job), context.obstacle));
  report.sections.push_back(DataSection(job.fit.data, context));
  ReportSection variables{"Variables"};
  for (std::size_t i = 0; i < found.variables.size(); ++i)
    variables.sections.push_back(VariableSection(found, i));
  report.sections.push_back(std::move(variables));
  std::string untested = UntestedText();
  std::ranges::replace(untested, '\n', ' ');
  report.sections.push_back(NotesSection({{kNote, std::move(untested)}}, context.messages));
  report.sections.push_back(MadeSection(std::nullopt));
  return report;
}

}  // namespace brenvolt
