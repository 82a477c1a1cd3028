#include "host/jobs/profile/profile_graphs.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/analysis/action_recording.h"
#include "host/application/graph_json.h"
#include "host/application/json_text.h"
#include "host/base/files/output_file.h"

namespace brenvolt {
namespace {

// The histogram with its best fit and the tornado graph of a response, by its place from 0.
std::vector<Graph> SummaryOf(AnalysisSession& session, AutomationObject& dialog, std::size_t response) {
  const Variant::Object made = session.Attempt([&] {
    dialog.Put("DependentforResult", static_cast<std::int32_t>(response + 1));
    return dialog.Get("SummaryGraph").ToObject();
  });
  const auto document = std::dynamic_pointer_cast<CAnalysisGraphDoc>(made);
  if (document == nullptr) throw Error("the analysis returned no graph");
  return document->Content().panels;
}

}  // namespace

// A response without any prediction has no graphs of its own.
void MakeGraphs(AnalysisSession& session, ProfileFindings& found) {
  if (!found.graphs.empty()) return;
  const ActionRecording none(session.Analysis());
  const auto dialog = session.Dialog();
  SharedGraphs& shared = found.shared;
  if (shared.profiles) AddProfileBands(found.simulated->Table(), *shared.profiles);
  for (std::size_t i = 0; i < found.results.responses.size(); ++i) {
    const ResponseResults& response = found.results.responses[i];
    ResponseGraphs graphs;
    graphs.name = response.name;
    graphs.notes = found.graphNotes;
    if (response.IsPredicted()) {
      graphs.graphs = SummaryOf(session, *dialog, i);
      graphs.capability = CapabilityLines(response);
    }
    if (shared.profiles) graphs.profiles = PanelsOf(*shared.profiles, response.name);
    if (shared.defects) graphs.defectProfiles = PanelsOf(*shared.defects, response.name);
    found.graphs.push_back(std::move(graphs));
  }
}

void WriteGraphs(const std::filesystem::path& path, const ProfileFindings& found) {
  using Json = nlohmann::ordered_json;
  Json report = {{"responses", Json::array()}};
  for (const ResponseGraphs& response : found.graphs) {
    Json graphs = Json::array();
    for (const Graph& graph : response.graphs) graphs.push_back(GraphJson(graph));
    report["responses"].push_back({{"name", response.name}, {"graphs", std::move(graphs)}});
  }
  if (found.shared.profiles) report["profiles"] = GraphJson(*found.shared.profiles);
  if (found.shared.defects) report["defectProfile"] = GraphJson(*found.shared.defects);
  if (!found.graphNotes.empty()) report["notes"] = found.graphNotes;
  OutputFile file(path);
  file.Write(JsonText(report));
  file.Commit();
}

}  // namespace brenvolt
