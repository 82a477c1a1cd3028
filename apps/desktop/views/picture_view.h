// A graph as a picture: as wide as the view, or enlarged; copied and saved. It shows its values where a person points at
// it, and limits that an analysis can move are dragged.
#pragma once

#include <QPointF>
#include <QScrollArea>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "apps/desktop/base/limit_mover.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/graphs/framed_picture.h"

class QLabel;
class QSvgRenderer;

namespace brenvolt::desktop {

class PictureView : public QScrollArea {
  Q_OBJECT

 public:
  // `mover` may be null, and else must outlive the view.
  explicit PictureView(std::shared_ptr<const CAnalysisGraphDoc> graph, LimitMover* mover = nullptr,
                       QWidget* parent = nullptr);
  ~PictureView() override;

  // Shows another graph in the place of the former one, as large as that was.
  void Show(std::shared_ptr<const CAnalysisGraphDoc> graph);
  // The frames of the picture, in pixels of the widget that shows it.
  std::vector<PictureFrame> Frames() const;

  const Graph& Content() const { return graph_->Content(); }
  // The size of the picture against the one that fits the width of the view.
  double Zoom() const { return zoom_; }

 public slots:
  void ZoomIn();
  void ZoomOut();
  void ZoomToFit();
  void Copy();
  // A file whose ending says the format: .png, .svg or .pdf. Throws Error and WrongJob.
  void Save(const std::filesystem::path& file) const;

 signals:
  // A limit was moved, for good or on its way there.
  void limitMoved(std::shared_ptr<const CAnalysisGraphDoc> former, const MovedLimit& moved, bool isLast);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  PictureTheme Theme() const;
  int WantedWidth() const;
  void SetZoom(double zoom);
  // Makes a page of panels narrower than its own width where the view is, until a person enlarges it or makes it smaller.
  void FitPage();
  // Draws the graph for the present width of the view, and shows it.
  void Draw();
  void ShowDrawn();

  // In pixels, as the picture was drawn.
  QSizeF DrawnSize() const;
  double Scale() const;
  void PointAt(QPointF place);
  void Grab(QPointF place);
  void DragTo(QPointF place);
  void MoveLimit(bool isLast);
  std::optional<PictureLimit> LimitAt(QPointF place) const;

  std::shared_ptr<const CAnalysisGraphDoc> graph_;
  QLabel* label_;
  std::unique_ptr<QSvgRenderer> drawn_;
  std::vector<PictureFrame> frames_;  // in pixels of the picture as it was drawn
  int drawnWidth_ = -1;
  double zoom_ = 1;
  bool isZoomed_ = false;  // by a person

  LimitMover* mover_;
  std::optional<PictureLimit> dragged_;
  double wanted_ = 0;      // where the dragged limit is to be
  bool hasMoved_ = false;  // since it was grabbed
  bool isMoving_ = false;
  QTimer moves_;
};

}  // namespace brenvolt::desktop
