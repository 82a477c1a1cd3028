#include "apps/desktop/views/picture_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/jobs/base/plot.h"

namespace brenvolt::desktop {
namespace {

constexpr double kStep = 1.25;
constexpr double kLeastZoom = 0.125;
// Of an enlarged picture, in pixels of the screen.
constexpr double kMostPixels = 4e7;
// Wider pictures are not easier to read; they are enlarged instead.
constexpr int kWidest = 1400;

}  // namespace

PictureView::PictureView(std::shared_ptr<const CAnalysisGraphDoc> graph, QWidget* parent)
    : QScrollArea(parent), graph_(std::move(graph)), label_(new QLabel(this)) {
  setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  setWidget(label_);
  setFrameShape(QFrame::NoFrame);
  setAccessibleName(tr("Picture: %1").arg(Shown(Content().title)));
  label_->setAccessibleName(accessibleName());
}

PictureView::~PictureView() = default;

PictureTheme PictureView::Theme() const {
  return palette().color(QPalette::Window).lightness() < 128 ? PictureTheme::kDark : PictureTheme::kLight;
}

// Panels side by side need the room that they need.
int PictureView::WantedWidth() const {
  return Content().panels.empty() ? std::clamp(viewport()->width(), kLeastPictureWidth, kWidest) : 0;
}

void PictureView::Draw() {
  drawnWidth_ = WantedWidth();
  drawn_.reset();
  try {
    const std::string svg = DrawPictures({&Content(), 1}, {PictureFormat::kSvg, Theme(), drawnWidth_});
    drawn_ = std::make_unique<QSvgRenderer>(QByteArray::fromStdString(svg));
    ShowDrawn();
  } catch (const Error& error) {
    label_->setWordWrap(true);
    label_->setText(Shown(error.what()));
    label_->resize(viewport()->size());
  }
}

void PictureView::ShowDrawn() {
  if (drawn_ == nullptr) return;
  const QSizeF size = QSizeF(drawn_->defaultSize()) * zoom_;
  const double ratio = devicePixelRatioF();
  QPixmap pixmap((size * ratio).toSize());
  pixmap.setDevicePixelRatio(ratio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  drawn_->render(&painter, QRectF(QPointF(0, 0), size));
  painter.end();
  label_->setPixmap(pixmap);
  label_->resize(size.toSize());
}

void PictureView::SetZoom(double zoom) {
  if (drawn_ == nullptr) return;
  const QSizeF size = QSizeF(drawn_->defaultSize()) * devicePixelRatioF();
  zoom_ = std::clamp(zoom, kLeastZoom, std::sqrt(kMostPixels / (size.width() * size.height())));
  ShowDrawn();
}

void PictureView::ZoomIn() {
  SetZoom(zoom_ * kStep);
}

void PictureView::ZoomOut() {
  SetZoom(zoom_ / kStep);
}

void PictureView::ZoomToFit() {
  if (drawn_ != nullptr) SetZoom(static_cast<double>(viewport()->width()) / drawn_->defaultSize().width());
}

void PictureView::Copy() {
  const std::string png = DrawPictures({&Content(), 1}, {PictureFormat::kPng, Theme(), 0});
  QGuiApplication::clipboard()->setImage(QImage::fromData(QByteArray::fromStdString(png), "PNG"));
}

void PictureView::Save(const std::filesystem::path& file) const {
  Plot plot;
  plot.file = file;
  JobFaults faults;
  CheckPlot(plot, {}, faults);
  RequireNone(std::move(faults));
  WritePlot(plot, Content().title, {SinglePage(Content().title, Content())});
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  if (drawnWidth_ != WantedWidth()) Draw();
}

void PictureView::wheelEvent(QWheelEvent* event) {
  if (!event->modifiers().testFlag(Qt::ControlModifier)) return QScrollArea::wheelEvent(event);
  event->angleDelta().y() > 0 ? ZoomIn() : ZoomOut();
  event->accept();
}

void PictureView::changeEvent(QEvent* event) {
  QScrollArea::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && drawn_ != nullptr) Draw();
}

}  // namespace brenvolt::desktop
