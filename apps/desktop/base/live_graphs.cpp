#include "apps/desktop/base/live_graphs.h"

#include <algorithm>

#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::desktop {

LiveGraphs& LiveGraphs::All() {
  static LiveGraphs all;
  return all;
}

LimitMover* LiveGraphs::MoverOf(const CAnalysisGraphDoc& graph, const PictureLimit& limit) const {
  const auto found =
      std::ranges::find_if(analyses_, [&](LimitMover* analysis) { return analysis->CanMove(graph, limit); });
  return found != analyses_.end() ? *found : nullptr;
}

bool LiveGraphs::CanMove(const CAnalysisGraphDoc& graph, const PictureLimit& limit) {
  return MoverOf(graph, limit) != nullptr;
}

MovedLimit LiveGraphs::Move(const CAnalysisGraphDoc& graph, const PictureLimit& limit, double value,
                            bool isLast) {
  LimitMover* const analysis = MoverOf(graph, limit);
  return analysis != nullptr ? analysis->Move(graph, limit, value, isLast) : MovedLimit();
}

}  // namespace brenvolt::desktop
