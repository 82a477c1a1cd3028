// The pictures that open dialogs can still change. Who shows pictures and who computes them know each other by nothing
// but the graphs.
#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "apps/desktop/base/limit_mover.h"

namespace brenvolt::desktop {

// For the window's thread.
class LiveGraphs : public QObject, public LimitMover {
  Q_OBJECT

 public:
  // Those of the process.
  static LiveGraphs& All();

  // An analysis that moves the limits of its pictures; it must be removed before it ends.
  void Add(LimitMover& analysis) { analyses_.push_back(&analysis); }
  void Remove(LimitMover& analysis) { std::erase(analyses_, &analysis); }

  // The picture that a person looks at; null if it is none.
  void LookAt(const std::shared_ptr<CAnalysisGraphDoc>& graph) { lookedAt_ = graph; }
  bool IsLookedAt(const std::shared_ptr<CAnalysisGraphDoc>& graph) const {
    return graph != nullptr && lookedAt_.lock() == graph;
  }

  bool CanMove(const CAnalysisGraphDoc& graph, const PictureLimit& limit) override;
  MovedLimit Move(const CAnalysisGraphDoc& graph, const PictureLimit& limit, double value,
                  bool isLast) override;

 signals:
  // One graph takes the place of another.
  void replaced(std::shared_ptr<CAnalysisGraphDoc> former, std::shared_ptr<CAnalysisGraphDoc> now);

 private:
  LimitMover* MoverOf(const CAnalysisGraphDoc& graph, const PictureLimit& limit) const;

  std::vector<LimitMover*> analyses_;
  std::weak_ptr<CAnalysisGraphDoc> lookedAt_;
};

}  // namespace brenvolt::desktop
