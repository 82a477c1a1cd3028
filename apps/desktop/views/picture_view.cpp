#include "apps/desktop/views/picture_view.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QScrollBar>
#include <QSvgRenderer>
#include <QToolTip>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "apps/desktop/base/shown_number.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/views/picture_values.h"
#include "host/base/error.h"
#include "host/jobs/base/plot.h"

namespace brenvolt::desktop {
namespace {

constexpr double kStep = 1.25;
constexpr double kLeastZoom = 0.125;
// Smaller letters could not be read.
constexpr double kLeastFitted = 0.7;
// Of an enlarged picture, in pixels of the screen.
constexpr double kMostPixels = 4e7;
// Wider pictures are not easier to read; they are enlarged instead.
constexpr int kWidest = 1400;

// The number of so many decimal digits, which a product with 0.1 would miss.
double RoundedTo(int exponent, double value) {
  const double scale = std::pow(10, std::abs(exponent));
  return exponent < 0 ? std::round(value * scale) / scale : std::round(value / scale) * scale;
}

}  // namespace

PictureView::PictureView(std::shared_ptr<const CAnalysisGraphDoc> graph, LimitMover* mover, QWidget* parent)
    : QScrollArea(parent), graph_(std::move(graph)), label_(new QLabel(this)), mover_(mover) {
  setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  setWidget(label_);
  setFrameShape(QFrame::NoFrame);
  setAccessibleName(tr("Picture: %1").arg(Shown(Content().title)));
  label_->setAccessibleName(accessibleName());
  label_->setMouseTracking(true);
  label_->installEventFilter(this);
  // While the results of one place are computed, the mouse goes on: only its last place counts.
  moves_.setSingleShot(true);
  connect(&moves_, &QTimer::timeout, this, [this] { MoveLimit(false); });
}

PictureView::~PictureView() = default;

PictureTheme PictureView::Theme() const {
  return palette().color(QPalette::Window).lightness() < 128 ? PictureTheme::kDark : PictureTheme::kLight;
}

// Panels side by side need the room that they need.
int PictureView::WantedWidth() const {
  // A bar that comes with a tall picture must not make it another picture, without which it would go again.
  const int room = maximumViewportSize().width() - verticalScrollBar()->sizeHint().width();
  return Content().panels.empty() ? std::clamp(room, kLeastPictureWidth, kWidest) : 0;
}

void PictureView::Draw() {
  drawnWidth_ = WantedWidth();
  drawn_.reset();
  try {
    FramedPicture picture = DrawFramedPicture(Content(), {PictureFormat::kSvg, Theme(), drawnWidth_});
    drawn_ = std::make_unique<QSvgRenderer>(QByteArray::fromStdString(picture.bytes));
    frames_ = std::move(picture.frames);
    FitPage();
    ShowDrawn();
  } catch (const Error& error) {
    label_->setWordWrap(true);
    label_->setText(Shown(error.what()));
    label_->resize(viewport()->size());
  }
}

void PictureView::Show(std::shared_ptr<const CAnalysisGraphDoc> graph) {
  graph_ = std::move(graph);
  setAccessibleName(tr("Picture: %1").arg(Shown(Content().title)));
  label_->setAccessibleName(accessibleName());
  if (drawn_ != nullptr) Draw();
}

void PictureView::ShowDrawn() {
  if (drawn_ == nullptr) return;
  const QSizeF size = DrawnSize() * zoom_;
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

void PictureView::FitPage() {
  if (drawn_ == nullptr || isZoomed_ || Content().panels.empty()) return;
  const int room = maximumViewportSize().width() - verticalScrollBar()->sizeHint().width();
  zoom_ = std::clamp(room / DrawnSize().width(), kLeastFitted, 1.0);
}

void PictureView::SetZoom(double zoom) {
  if (drawn_ == nullptr) return;
  isZoomed_ = true;
  const QSizeF size = DrawnSize() * devicePixelRatioF();
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
  if (drawn_ != nullptr) SetZoom(viewport()->width() / DrawnSize().width());
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

// The renderer's own size follows the millimetres in the file, at another resolution than that of screens.
QSizeF PictureView::DrawnSize() const {
  return drawn_->viewBoxF().size();
}

double PictureView::Scale() const {
  return drawn_ == nullptr || DrawnSize().isEmpty() ? 1 : label_->width() / DrawnSize().width();
}

std::vector<PictureFrame> PictureView::Frames() const {
  std::vector<PictureFrame> frames = frames_;
  for (PictureFrame& frame : frames) {
    for (PictureAxis* axis : {&frame.x, &frame.y}) {
      axis->fromPixel *= Scale();
      axis->toPixel *= Scale();
    }
  }
  return frames;
}

bool PictureView::eventFilter(QObject* watched, QEvent* event) {
  if (watched != label_ || drawn_ == nullptr) return QScrollArea::eventFilter(watched, event);
  const auto place = [event] { return static_cast<QMouseEvent*>(event)->position(); };
  const bool isLeft =
      (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton;
  if (event->type() == QEvent::MouseMove) dragged_ ? DragTo(place()) : PointAt(place());
  if (event->type() == QEvent::MouseButtonPress && isLeft) Grab(place());
  if (event->type() == QEvent::MouseButtonRelease && isLeft && dragged_) {
    if (hasMoved_) DragTo(place());
    moves_.stop();
    // A step that is being computed ends with this one.
    if (hasMoved_ && !isMoving_) MoveLimit(true);
    if (!isMoving_) dragged_.reset();
    hasMoved_ = false;
  }
  return QScrollArea::eventFilter(watched, event);
}

std::optional<PictureLimit> PictureView::LimitAt(QPointF place) const {
  if (mover_ == nullptr) return std::nullopt;
  const std::vector<PictureFrame> frames = Frames();
  const PictureFrame* const frame = FrameAt(frames, place);
  if (frame == nullptr) return std::nullopt;
  const Graph& plot = PlotOf(Content(), *frame);
  const auto marker = MarkerAt(plot, *frame, place);
  if (!marker) return std::nullopt;
  PictureLimit limit{frame->panel, plot.series[*marker].name, plot.xTitle};
  return mover_->CanMove(*graph_, limit) ? std::optional(std::move(limit)) : std::nullopt;
}

void PictureView::PointAt(QPointF place) {
  const std::vector<PictureFrame> frames = Frames();
  const PictureFrame* const frame = FrameAt(frames, place);
  const bool isLimit = LimitAt(place).has_value();
  label_->setCursor(isLimit ? Qt::SizeHorCursor : Qt::ArrowCursor);
  QString text = frame != nullptr ? ValuesAt(PlotOf(Content(), *frame), *frame, place) : QString();
  if (isLimit) text += QLatin1Char('\n') + tr("Drag the line to move it.");
  if (text.isEmpty()) return QToolTip::hideText();
  QToolTip::showText(label_->mapToGlobal(place).toPoint(), text, label_);
}

void PictureView::Grab(QPointF place) {
  if (isMoving_) return;
  dragged_ = LimitAt(place);
  hasMoved_ = false;
}

void PictureView::DragTo(QPointF place) {
  for (const PictureFrame& frame : Frames()) {
    if (frame.panel != dragged_->panel) continue;
    const double pixel = std::clamp(place.x(), frame.x.fromPixel, frame.x.toPixel);
    // As precise as the picture is.
    const double perPixel = (frame.x.to - frame.x.from) / (frame.x.toPixel - frame.x.fromPixel);
    wanted_ = RoundedTo(static_cast<int>(std::floor(std::log10(perPixel))), frame.x.ValueAt(pixel));
    hasMoved_ = true;
    if (!isMoving_) moves_.start(0);
  }
}

void PictureView::MoveLimit(bool isLast) {
  if (!dragged_ || mover_ == nullptr) return;
  const PictureLimit limit = *dragged_;
  const double value = wanted_;
  const std::shared_ptr<const CAnalysisGraphDoc> former = graph_;
  isMoving_ = true;
  const QPointer<PictureView> self(this);
  const MovedLimit moved = mover_->Move(*former, limit, value, isLast);
  if (self == nullptr) return;
  isMoving_ = false;
  if (moved.graph != nullptr) Show(moved.graph);
  QToolTip::showText(
      QCursor::pos(),
      Shown(limit.name) + QLatin1Char(' ') + ShownNumber(value) + QLatin1Char('\n') + moved.words, label_);
  emit limitMoved(former, moved, isLast);
  if (self == nullptr || isLast) return;
  // The button was let go meanwhile, or the mouse has gone on.
  if (!hasMoved_) {
    MoveLimit(true);
    dragged_.reset();
  } else if (wanted_ != value) {
    moves_.start(0);
  }
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  if (drawnWidth_ != WantedWidth()) return Draw();
  const double former = zoom_;
  FitPage();
  if (zoom_ != former) ShowDrawn();
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
