// A graph as a picture: as wide as the view, or enlarged; copied and saved.
#pragma once

#include <QScrollArea>
#include <filesystem>
#include <memory>

#include "host/analysis/analysis_graph_doc.h"
#include "host/graphs/picture.h"

class QLabel;
class QSvgRenderer;

namespace brenvolt::desktop {

class PictureView : public QScrollArea {
  Q_OBJECT

 public:
  explicit PictureView(std::shared_ptr<const CAnalysisGraphDoc> graph, QWidget* parent = nullptr);
  ~PictureView() override;

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

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  PictureTheme Theme() const;
  int WantedWidth() const;
  void SetZoom(double zoom);
  // Draws the graph for the present width of the view, and shows it.
  void Draw();
  void ShowDrawn();

  std::shared_ptr<const CAnalysisGraphDoc> graph_;
  QLabel* label_;
  std::unique_ptr<QSvgRenderer> drawn_;
  int drawnWidth_ = -1;
  double zoom_ = 1;
};

}  // namespace brenvolt::desktop
