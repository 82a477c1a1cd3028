// What the library exports: graphs in, the bytes of a file out.
#include <qcustomplot.h>

#include <QBuffer>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <memory>

#include "host/base/error.h"
#include "host/base/export.h"
#include "host/drawing/page.h"
#include "host/drawing/text_fitting.h"
#include "host/drawing/toolkit.h"
#include "host/graphs/framed_picture.h"

namespace brenvolt {
namespace {

constexpr int kPixelsPerInch = 96;
constexpr int kPixelsPerMetre = 3780;

std::vector<PictureFrame> Paint(const Page& page, const Theme& theme, bool isVector, QPaintDevice& device) {
  QCPPainter painter;
  if (!painter.begin(&device)) throw Error("the picture cannot be painted");
  painter.setMode(QCPPainter::pmVectorized, isVector);
  painter.setMode(QCPPainter::pmNoCaching, true);
  painter.setRenderHint(QPainter::Antialiasing);
  return page.Paint(theme, painter);
}

QByteArray Png(const Graph& graph, const PictureStyle& style) {
  const Page page(graph, style.width);
  QImage image(page.Size(), QImage::Format_RGB32);
  if (image.isNull()) throw Error("not enough memory for a picture of this size");
  image.setDotsPerMeterX(kPixelsPerMetre);
  image.setDotsPerMeterY(kPixelsPerMetre);
  Paint(page, ThemeOf(style.theme), false, image);
  QBuffer buffer;
  if (!image.save(&buffer, "PNG")) throw Error("the picture cannot be written as PNG");
  return buffer.data();
}

// Rules by which a picture in light colours is dark where its reader prefers that. They name the colours, of which two
// that are the same in light are the same in dark.
QByteArray DarkRules() {
  const QList<QColor> light = ColoursOf(ThemeOf(PictureTheme::kLight));
  const QList<QColor> dark = ColoursOf(ThemeOf(PictureTheme::kDark));
  QByteArray rules;
  QList<QRgb> named;
  for (qsizetype i = 0; i < light.size(); ++i) {
    if (named.contains(light[i].rgb())) continue;
    named.append(light[i].rgb());
    for (const char* of : {"fill", "stroke"}) {
      rules += QByteArray(".brenvolt [") + of + "=\"" + light[i].name().toLatin1() + "\"]{" + of + ":" +
               dark[i].name().toLatin1() + "}";
    }
  }
  return "<style>@media screen and (prefers-color-scheme:dark){" + rules + "}</style>";
}

struct SvgPicture {
  QByteArray bytes;
  std::vector<PictureFrame> frames;
};

SvgPicture Svg(const Graph& graph, const PictureStyle& style) {
  const Page page(graph, style.width);
  QBuffer buffer;
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(page.Size());
  generator.setViewBox(QRect(QPoint(0, 0), page.Size()));
  generator.setResolution(kPixelsPerInch);
  // The toolkit writes it between tags as it stands.
  generator.setTitle(Shown(graph.title).toHtmlEscaped());
  generator.setDescription(QString());
  std::vector<PictureFrame> frames = Paint(page, ThemeOf(style.theme), true, generator);
  QByteArray bytes = buffer.data();
  if (style.theme == PictureTheme::kReader) {
    bytes.replace("<defs>", DarkRules() + "<defs>");
    bytes.replace("<svg ", "<svg class=\"brenvolt\" ");
  }
  return {std::move(bytes), std::move(frames)};
}

QByteArray Pdf(std::span<const Graph> graphs, const PictureStyle& style) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(kPixelsPerInch);
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(Shown(graphs.front().title));
    writer.setCreator(QStringLiteral("Brenvolt"));
    std::unique_ptr<QCPPainter> painter;
    for (const Graph& graph : graphs) {
      const Page page(graph, style.width);
      constexpr double kPointsPerPixel = 72.0 / kPixelsPerInch;
      writer.setPageSize(QPageSize(QSizeF(page.Size()) * kPointsPerPixel, QPageSize::Point, QString(),
                                   QPageSize::ExactMatch));
      if (painter == nullptr) {
        painter = std::make_unique<QCPPainter>();
        if (!painter->begin(&writer)) throw Error("the picture cannot be painted");
        painter->setMode(QCPPainter::pmVectorized);
        painter->setMode(QCPPainter::pmNoCaching);
      } else {
        writer.newPage();
      }
      page.Paint(ThemeOf(style.theme), *painter);
    }
  }
  return buffer.data();
}

std::string Draw(std::span<const Graph> graphs, const PictureStyle& style) {
  RequireToolkit();
  if (graphs.size() > 1 && style.format != PictureFormat::kPdf)
    throw Error("only PDF has a page for each of several graphs");
  const QByteArray bytes = style.format == PictureFormat::kPdf   ? Pdf(graphs, style)
                           : style.format == PictureFormat::kSvg ? Svg(graphs.front(), style).bytes
                                                                 : Png(graphs.front(), style);
  return bytes.toStdString();
}

// Programs that draw pictures into windows ask for them as SVG.
FramedPicture DrawFramed(const Graph& graph, const PictureStyle& style) {
  RequireToolkit();
  if (style.format != PictureFormat::kSvg) throw Error("only an SVG is drawn with its frames");
  SvgPicture picture = Svg(graph, style);
  return {picture.bytes.toStdString(), std::move(picture.frames)};
}

}  // namespace

}  // namespace brenvolt

extern "C" BRENVOLT_EXPORT brenvolt::PictureFunction* BrenvoltPictures() {
  return &brenvolt::Draw;
}

extern "C" BRENVOLT_EXPORT brenvolt::FramedPictureFunction* BrenvoltFramedPicture() {
  return &brenvolt::DrawFramed;
}
