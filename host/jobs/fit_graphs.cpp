#include "host/jobs/fit_graphs.h"

#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/analysis/action_recording.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/result_table.h"
#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/graphs/sampling_bands.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/fit_results.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

// Chooses on the Quick tab the fit of the shown variable, at a place among the results, that is saved first,
// and returns its row. Nothing changes if there is none.
std::optional<ResultRow> ChooseFirstSaved(AutomationObject& dialog, std::int32_t place) {
  ResultTable ranked = ReadResultTable(dialog.Get("QuickTabDistributionSummaryStats"));
  std::vector<int> codes;
  for (const ResultRow& row : ranked.rows) codes.push_back(static_cast<int>(row.Number("code"_column)));
  const auto first = FirstSaved(dialog, place, codes);
  if (!first) return std::nullopt;
  dialog.Put("QuickTabDistribution", static_cast<std::int32_t>(*first + 1));
  return std::move(ranked.rows[*first]);
}

std::string_view IdentifierOf(const ResultRow& fit) {
  return kNamedDistributions.at(static_cast<std::size_t>(fit.Number("code"_column))).name;
}

// Of the variable that the Quick tab shows, with the fit that it shows.
Graph GraphOf(AutomationObject& dialog, std::string_view member) {
  const auto document = std::dynamic_pointer_cast<CAnalysisGraphDoc>(dialog.Get(member).ToObject());
  if (document == nullptr) throw Error("the analysis returned no graph");
  return document->Content();
}

// A graph that cannot be made of this fit says why in its place.
Json GraphsJson(AutomationObject& dialog) {
  Json graphs = Json::array();
  for (const FitGraph& graph : kFitGraphs) {
    try {
      graphs.push_back(GraphJson(GraphOf(dialog, graph.member)));
    } catch (const AutomationError& error) {
      graphs.push_back({{"kind", nullptr}, {"member", graph.member}, {"error", error.Reason()}});
    }
  }
  return graphs;
}

Graph TextGraph(std::vector<std::string> lines) {
  Graph graph;
  graph.kind = GraphKind::kText;
  graph.notes = std::move(lines);
  return graph;
}

Graph GraphOrReason(AutomationObject& dialog, std::string_view variable, const FitGraph& graph) {
  try {
    return GraphOf(dialog, graph.member);
  } catch (const AutomationError& error) {
    return TextGraph({std::string(variable) + ": " + std::string(graph.word), error.Reason()});
  }
}

// The histogram among the distributions has the bars of the data themselves for a curve.
bool RepeatsData(const ResultRow& fit) {
  return IdentifierOf(fit) == "histogram";
}

// The curves of the best fits by rank over the histogram with the fit that is saved first, which the Quick tab shows.
Graph ComparisonOf(AutomationObject& dialog, const std::string& variable) {
  Graph graph = GraphOrReason(dialog, variable, kFitGraphs[0]);
  if (graph.curves.empty()) return graph;
  graph.kind = GraphKind::kFitComparison;
  const Variant chosen = dialog.Get("QuickTabDistribution");
  const std::vector<ResultRow> fits = ReadResultTable(dialog.Get("QuickTabDistributionSummaryStats")).rows;
  for (std::size_t i = 0; i < fits.size() && graph.curves.size() < kComparedFits; ++i) {
    if (static_cast<std::int64_t>(i + 1) == chosen.ToInteger() || RepeatsData(fits[i])) continue;
    dialog.Put("QuickTabDistribution", static_cast<std::int32_t>(i + 1));
    for (const GraphCurve& curve : GraphOf(dialog, kFitGraphs[0].member).curves)
      graph.curves.push_back(curve);
  }
  dialog.Put("QuickTabDistribution", chosen);
  return graph;
}

// Of the fit of a continuous variable that the Quick tab shows.
void AddBand(AutomationObject& dialog, std::size_t count, Graph& graph) {
  constexpr const char* kName = "95 % of samples from the fit";
  const std::vector<ResultRow> fits = ReadResultTable(dialog.Get("QuickTabDistributionSummaryStats")).rows;
  const ResultRow& fit =
      fits.at(static_cast<std::size_t>(dialog.Get("QuickTabDistribution").ToInteger() - 1));
  const auto code = static_cast<std::size_t>(fit.Number("code"_column));
  if (graph.series.empty() || !kNamedDistributions.at(code).continuous) return;
  if (graph.kind == GraphKind::kProbabilityPlot) graph.bands.push_back(ProbabilityBand(count, kName));
  if (graph.kind != GraphKind::kQuantilePlot) return;
  const std::vector<double> parameters = fit.Numbered("parameter"_column);
  const double offset = fit.Number("offset"_column);
  const AnyDistribution distribution(static_cast<DistributionCode>(code), parameters,
                                     std::isnan(offset) ? 0 : offset);
  graph.bands.push_back(QuantileBand(
      count, [&](std::span<const double> p, std::span<double> x) { distribution.Quantile(p, x); }, kName));
}

// Data that no distribution fits are shown without one, with the reason.
PlotPage UnfittedPage(const Spreadsheet& sheet, const ResultRow& summary, std::string_view kind) {
  const std::string reason = summary.Text("reason"_column);
  const std::string note = reason.empty() ? "nothing could be fitted" : reason;
  const auto place = sheet.FindVariable(summary.name);
  const bool isWhole = kind == kOverview || kind == kFitSummaryGraph.word;
  const bool isOfData = isWhole || kind == kFitComparison || kind == "histogram" || kind == "box-plot";
  if (!place || !isOfData) return SinglePage(summary.name, TextGraph({summary.name, note}));
  const std::string_view shown = isWhole ? kOverview : kind == kFitComparison ? "histogram" : kind;
  PlotPage page = DataPage(sheet, sheet.VariableAt(*place), shown);
  page.page.notes.push_back(note);
  page.cell.notes.push_back(note);
  return page;
}

// In an overview the comparison stands for the histogram.
PlotPage PageOf(AutomationObject& dialog, const ResultRow& summary, const Plot& plot) {
  const std::string& variable = summary.name;
  const std::string_view kind = plot.Kind();
  const bool isWhole = kind == kOverview;
  std::vector<Graph> graphs;
  if (kind == kFitSummaryGraph.word) graphs.push_back(GraphOrReason(dialog, variable, kFitSummaryGraph));
  if (isWhole || kind == kFitComparison) graphs.push_back(ComparisonOf(dialog, variable));
  for (const FitGraph& graph : kFitGraphs) {
    if (graph.word != kind && (!isWhole || graph.word == kFitGraphs[0].word)) continue;
    graphs.push_back(GraphOrReason(dialog, variable, graph));
    if (plot.band) AddBand(dialog, static_cast<std::size_t>(summary.Number("n"_column)), graphs.back());
  }
  return CompoundPage(variable, std::move(graphs));
}

}  // namespace

PlotPage FitPlotOf(AutomationObject& dialog, const ResultTable& summary, std::size_t variable,
                   const Spreadsheet& sheet, const Plot& plot) {
  const auto place = static_cast<std::int32_t>(variable + 1);
  const ResultRow& row = summary.rows[variable];
  dialog.Put("QuickTabVariable", place);
  if (dialog.Get("QuickTabDistribution").ToInteger() == 0) return UnfittedPage(sheet, row, plot.Kind());
  ChooseFirstSaved(dialog, place);
  return PageOf(dialog, row, plot);
}

std::vector<PlotPage> FitPlots(AutomationObject& dialog, const Spreadsheet& sheet, const Plot& plot) {
  std::vector<PlotPage> pages;
  const ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  for (std::size_t i = 0; i < summary.rows.size(); ++i)
    pages.push_back(FitPlotOf(dialog, summary, i, sheet, plot));
  return pages;
}

Graph FitGraphOf(CAnalysisSupport& analysis, std::int32_t variable, std::int32_t fit, const Plot& plot) {
  const auto open = analysis.GetDialgInterface();
  if (open == nullptr) throw Error("the analysis has no open dialog");
  const ActionRecording none(analysis);
  const ResultTable summary = ReadResultTable(open->Get("SummaryStats"));
  const auto place = static_cast<std::size_t>(variable - 1);
  const ResultRow& row = summary.rows.at(place);
  if (fit == 0) return FitPlotOf(*open, summary, place, *analysis.InputTable(), plot).page;
  open->Put("QuickTabVariable", variable);
  open->Put("QuickTabDistribution", fit);
  return PageOf(*open, row, plot).page;
}

void WriteFitGraphs(CAnalysisSupport& analysis, const std::filesystem::path& path, JobRecorder& job) {
  const auto open = analysis.GetDialgInterface();
  if (open == nullptr) throw Error("the analysis has no open dialog");
  AutomationObject& dialog = *open;
  const ActionRecording whole(analysis);
  const ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  Json report = {{"variables", Json::array()}};
  for (std::size_t i = 0; i < summary.rows.size(); ++i) {
    dialog.Put("QuickTabVariable", static_cast<std::int32_t>(i + 1));
    Json variable = {{"name", summary.rows[i].name},
                     {"distribution", nullptr},
                     {"identifier", nullptr},
                     {"graphs", Json::array()}};
    if (dialog.Get("QuickTabDistribution").ToInteger() != 0) {
      if (const auto first = ChooseFirstSaved(dialog, static_cast<std::int32_t>(i + 1))) {
        variable["distribution"] = first->name;
        variable["identifier"] = IdentifierOf(*first);
      }
      variable["graphs"] = GraphsJson(dialog);
    }
    report["variables"].push_back(std::move(variable));
  }
  OutputFile file(path);
  file.Write(JsonText(report));
  file.Commit();
  job.Called(nullptr, "WriteFitGraphs", {job.NameOf(&analysis), PythonPath(path)});
}

}  // namespace brenvolt
