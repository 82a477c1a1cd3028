#include "host/jobs/dialogs/shown_results.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "host/analysis/action_recording.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/result_table.h"
#include "host/base/error.h"
#include "host/jobs/data_plots.h"

namespace brenvolt {
namespace {

constexpr std::size_t kMostShown = 12;

std::shared_ptr<AutomationObject> DialogOf(CAnalysisSupport& analysis) {
  auto dialog = analysis.GetDialgInterface();
  if (dialog == nullptr) throw Error("the analysis has no open dialog");
  return dialog;
}

bool IsSpecified(AutomationObject& dialog) {
  return std::ranges::any_of(std::initializer_list<const char*>{"LSL", "USL", "Target"},
                             [&](const char* member) { return !dialog.Get(member).ToText().empty(); });
}

}  // namespace

void ShowFits(CAnalysisSupport& analysis) {
  const ActionRecording none(analysis);
  const auto dialog = DialogOf(analysis);
  const std::size_t fitted = ReadResultTable(dialog->Get("SummaryStats")).rows.size();
  for (std::size_t i = 1; i <= std::min(fitted, kMostShown); ++i) {
    dialog->Put("QuickTabVariable", static_cast<std::int32_t>(i));
    dialog->Get("QuickTabDistributionSummaryStats");
    dialog->Get("SummaryGraph");
  }
  if (fitted > 1) dialog->Put("QuickTabVariable", std::int32_t{1});
}

void ShowSimulated(CAnalysisSupport& analysis, const Spreadsheet& data) {
  const ActionRecording none(analysis);
  DialogOf(analysis)->Call("OK");
  std::vector<PlotPage> pages = DataPlots(data, kOverview);
  pages.resize(std::min(pages.size(), kMostShown));
  for (PlotPage& page : pages)
    analysis.Interface().ShowGraph(std::make_shared<CAnalysisGraphDoc>(std::move(page.page)));
}

void ShowResponses(CAnalysisSupport& analysis, int selected) {
  const ActionRecording none(analysis);
  const auto dialog = DialogOf(analysis);
  const std::size_t responses = dialog->Get("Dependents").ToArray().size();
  bool anySpecified = false;
  for (std::size_t i = 1; i <= std::min(responses, kMostShown); ++i) {
    dialog->Put("DependentforResult", static_cast<std::int32_t>(i));
    dialog->Get("SummaryStats");
    dialog->Get("SummaryGraph");
    if (!IsSpecified(*dialog)) continue;
    dialog->Get("CapabilityStats");
    if (!std::exchange(anySpecified, true)) dialog->Get("DefectProfile");
  }
  if (selected > 0) dialog->Put("DependentforResult", std::int32_t{selected});
}

}  // namespace brenvolt
