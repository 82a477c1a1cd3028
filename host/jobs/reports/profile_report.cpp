#include "host/jobs/reports/profile_report.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

#include "host/base/number_text.h"
#include "host/jobs/profile/profile_plots.h"
#include "host/jobs/reports/profile_tables.h"
#include "host/jobs/reports/repeating_command.h"

namespace brenvolt {
namespace {

std::string LimitText(double limit) {
  return std::isnan(limit) ? "none" : ShortestNumber(limit);
}

ReportFacts FactsOf(const ProfileJob& job, const ProfileFindings& found) {
  ReportFacts facts;
  const auto add = [&facts](const char* name, std::string value) {
    facts.facts.emplace_back(name, std::move(value));
  };
  add("Runs", std::to_string(found.results.runs));
  add("Seed", std::to_string(found.seed));
  for (const auto& model : job.models) add("Model", model.string());
  for (const std::string& formula : job.formulas) add("Formula", formula);
  for (const auto& function : job.functions) add("Function", function->name);
  for (const ResponseSpecification& one : job.specifications) {
    add("Specification", one.response + ": lower limit " + LimitText(one.limits.lower) + ", target " +
                             LimitText(one.limits.target) + ", upper limit " + LimitText(one.limits.upper));
  }
  for (const ProfileJob::Noise& one : job.noise)
    add("Noise", one.response + ": normal, standard deviation " + ShortestNumber(one.standardDeviation));
  for (const std::string& pair : job.noiseCorrelations) add("Correlation of noise", pair);
  if (job.correlated) add("Correlated", "as the columns or the saved matrix are");
  if (job.fitBest) add("Distributions", "what fits the column of each predictor best");
  if (!job.output.empty()) add("Data written to", job.output.string());
  return facts;
}

ReportSection PredictorSection(const ProfileResults& results) {
  ReportSection section{"Predictors"};
  ReportTable table;
  table.AddText("Predictor");
  table.AddText("Drawn from");
  for (const PredictorUse& one : results.predictors) table.AddRow({one.name, one.distribution});
  section.Show(std::move(table));
  ReportTable pairs;
  pairs.title = "Correlations";
  pairs.AddText("Predictor");
  pairs.AddText("and");
  pairs.AddNumber("Correlation");
  for (const NotedCorrelation& pair : results.correlations)
    pairs.AddRow({pair.first, pair.second, FormatNumber("%.4f", pair.value)});
  section.Show(std::move(pairs));
  return section;
}

void AddRefused(const ResponseResults& response, std::vector<ReportNote>& notes) {
  for (const UnpredictedRuns& unpredicted : response.unpredicted) {
    notes.push_back({kWarning, response.name + ": " +
                                   CountText(static_cast<std::size_t>(unpredicted.runs), "run") +
                                   " without a prediction (" + ReasonText(unpredicted) + ")"});
  }
}

std::vector<ReportNote> NotesOf(const ProfileResults& results) {
  std::vector<ReportNote> notes;
  for (const ResponseResults& response : results.responses) AddRefused(response, notes);
  for (const std::string& note : results.notes) notes.push_back({kNote, note});
  return notes;
}

// The pictures are those of the page of its name.
ReportSection ResponseSection(const ResponseResults& response, std::vector<PlotPage>& pages) {
  ReportSection section{response.name};
  section.blocks.emplace_back(MomentFacts(response.statistics));
  std::vector<ReportNote> refused;
  AddRefused(response, refused);
  for (ReportNote& note : refused) section.blocks.emplace_back(std::move(note));
  if (!response.IsPredicted()) return section;
  ReportTable sensitivity = SensitivityTable(response);
  sensitivity.title = "What drives it";
  section.Show(std::move(sensitivity));
  if (response.capability) {
    for (std::string& term : CapabilityTerms(*response.capability)) section.Say(std::move(term));
    section.Show(CapabilityTable(*response.capability));
  }
  const auto page = std::ranges::find(pages, response.name, &PlotPage::name);
  if (page != pages.end()) section.blocks.emplace_back(PicturesOf(std::move(*page)));
  ReportTable values = ValuesTable(response);
  values.title = "Values";
  section.Show(std::move(values));
  section.Show(ProfilesTable(response));
  return section;
}

ReportTable IndexOf(const ProfileResults& results) {
  ReportTable table;
  table.isIndex = true;
  table.AddText("Response");
  for (const char* heading : {"n", "Missing", "Mean", "Std.Dev.", "Minimum", "Maximum"})
    table.AddNumber(heading);
  for (const ResponseResults& response : results.responses) {
    const ReportFacts facts = MomentFacts(response.statistics);
    std::vector<std::string> cells{response.name};
    for (const char* name : {"n", "missing", "mean", "std.dev.", "minimum", "maximum"}) {
      const auto found = std::ranges::find(facts.facts, name, &std::pair<std::string, std::string>::first);
      cells.push_back(found == facts.facts.end() ? "-" : found->second);
    }
    table.AddRow(std::move(cells));
  }
  return table;
}

}  // namespace

ReportFacts DrawnFacts(const ProfileJob& job, const ProfileResults& results) {
  ReportFacts facts;
  facts.facts.emplace_back("method", results.method);
  for (const NotedCorrelation& pair : results.correlations) {
    facts.facts.emplace_back("correlation",
                             pair.first + ", " + pair.second + " = " + ShortestNumber(pair.value));
  }
  for (const ProfileJob::Noise& one : job.noise)
    facts.facts.emplace_back("noise", one.response + " = " + ShortestNumber(one.standardDeviation));
  for (const std::string& pair : job.noiseCorrelations) facts.facts.emplace_back("noise correlation", pair);
  for (const auto& model : job.models) facts.facts.emplace_back("model", model.string());
  for (const std::string& formula : job.formulas) facts.facts.emplace_back("formula", formula);
  return facts;
}

Report ProfileReport(const ProfileJob& job, const ProfileFindings& found, const ReportContext& context) {
  const ProfileResults& results = found.results;
  std::vector<std::string> names;
  for (const ResponseResults& response : results.responses) names.push_back(response.name);
  Report report;
  report.title = "How " + NamesText(names) + (names.size() == 1 ? " varies" : " vary");
  report.summary = std::to_string(results.runs) + " simulated runs of " +
                   CountText(results.predictors.size(), "predictor") + ", seed " +
                   std::to_string(found.seed) + ".";
  report.sections.push_back(
      AskedSection("Predictors were drawn at random, and what is predicted from them was "
                   "summarized and compared with its specification.",
                   FactsOf(job, found), CommandOf(job, found.seed), context.obstacle));
  if (context.sheet.CaseCount() > 0) report.sections.push_back(DataSection(job.data, context));
  ReportSection summary{"Summary"};
  summary.Show(IndexOf(results));
  if (results.defects) summary.Show(DefectsTable(*results.defects));
  report.sections.push_back(std::move(summary));
  report.sections.push_back(NotesSection(NotesOf(results), context.messages));
  report.sections.push_back(PredictorSection(results));
  ReportSection responses{"Responses"};
  std::vector<PlotPage> pages = ProfilePlots(found.graphs, kOverview);
  const std::size_t shown = std::min(results.responses.size(), kMostShown);
  if (shown < results.responses.size())
    responses.Warn(kNote, "The first " + std::to_string(shown) + " of " +
                              std::to_string(results.responses.size()) + " responses are shown.");
  for (std::size_t i = 0; i < shown; ++i)
    responses.sections.push_back(ResponseSection(results.responses[i], pages));
  report.sections.push_back(std::move(responses));
  report.sections.push_back(MadeSection(found.seed));
  return report;
}

}  // namespace brenvolt
