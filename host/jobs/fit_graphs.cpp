#include "host/jobs/fit_graphs.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "host/analysis/action_recording.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/result_table.h"
#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/fit_results.h"

namespace brenvolt {
namespace {

using Json = nlohmann::ordered_json;

// Chooses on the Quick tab the fit of the shown variable, at a place among the results, that is saved first,
// and returns its name. Nothing changes if there is none.
std::string ChooseFirstSaved(AutomationObject& dialog, std::int32_t place) {
  const ResultTable ranked = ReadResultTable(dialog.Get("QuickTabDistributionSummaryStats"));
  std::vector<std::string> ranks;
  for (const ResultRow& row : ranked.rows) ranks.push_back(row.name);
  const auto first = FirstSaved(dialog, place, ranks);
  if (!first) return {};
  dialog.Put("QuickTabDistribution", static_cast<std::int32_t>(*first + 1));
  return ranks[*first];
}

// The graphs of the variable that the Quick tab shows, with the fit that it shows. A graph that cannot be
// made of this fit says why in its place.
Json GraphsJson(AutomationObject& dialog) {
  Json graphs = Json::array();
  for (const FitGraph& graph : kFitGraphs) {
    try {
      const auto document = std::dynamic_pointer_cast<CAnalysisGraphDoc>(dialog.Get(graph.member).ToObject());
      if (document == nullptr) throw Error("the analysis returned no graph");
      graphs.push_back(GraphJson(document->Content()));
    } catch (const AutomationError& error) {
      graphs.push_back({{"kind", nullptr}, {"member", graph.member}, {"error", error.Reason()}});
    }
  }
  return graphs;
}

}  // namespace

void WriteFitGraphs(CAnalysisSupport& analysis, const std::filesystem::path& path, JobRecorder& job) {
  const auto open = analysis.GetDialgInterface();
  if (open == nullptr) throw Error("the analysis has no open dialog");
  AutomationObject& dialog = *open;
  const ActionRecording whole(analysis);
  const ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  Json report = {{"variables", Json::array()}};
  for (std::size_t i = 0; i < summary.rows.size(); ++i) {
    dialog.Put("QuickTabVariable", static_cast<std::int32_t>(i + 1));
    Json variable = {{"name", summary.rows[i].name}, {"distribution", nullptr}, {"graphs", Json::array()}};
    if (dialog.Get("QuickTabDistribution").ToInteger() != 0) {
      const std::string first = ChooseFirstSaved(dialog, static_cast<std::int32_t>(i + 1));
      if (!first.empty()) variable["distribution"] = first;
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
