// What the library exports besides pictures: a report in, the bytes of a PDF out.
#include <qcustomplot.h>

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <variant>
#include <vector>

#include "host/base/error.h"
#include "host/base/export.h"
#include "host/drawing/page.h"
#include "host/drawing/text_fitting.h"
#include "host/drawing/toolkit.h"
#include "host/reporting/pdf_report.h"

namespace brenvolt {
namespace {

constexpr int kResolution = 1200;
constexpr int kUsualResolution = 96;  // of what pixels are counted in
constexpr double kMillimetresPerInch = 25.4;
constexpr double kSideMargin = 18;  // millimetres
constexpr double kTopMargin = 16;
constexpr double kBottomMargin = 20;
constexpr double kTextSize = 9.5;  // points
constexpr double kTableSize = 8;
constexpr double kFootSize = 7.5;

const QColor kInk(0x1D1F23);
const QColor kFaint(0x5C626B);
const QColor kSoft(0xF1F3F6);
const QColor kLine(0xC9CFD6);

constexpr int kPicture = QTextFormat::UserObject + 1;
constexpr int kPlace = QTextFormat::UserProperty + 1;  // of a picture among all
constexpr int kShare = QTextFormat::UserProperty + 2;  // of the width of a page

// Dots of the paper for a length in millimetres.
double Dots(double millimetres) {
  return millimetres / kMillimetresPerInch * kResolution;
}

// The pictures within the text. The painter that a document draws with is the one that it was given.
class PictureObject : public QObject, public QTextObjectInterface {
 public:
  explicit PictureObject(double pageWidth) : pageWidth_(pageWidth) {}

  int Add(const Graph& graph, int width) {
    pages_.push_back(std::make_unique<Page>(graph, width));
    return static_cast<int>(pages_.size()) - 1;
  }

  // Where the pictures that are painted lie: those of other pages would show in its margins, since they clip themselves.
  void Show(const QRectF& page) { shown_ = page; }

  // What a class with slots of its own would have generated.
  void* qt_metacast(const char* name) override {
    if (std::strcmp(name, qobject_interface_iid<QTextObjectInterface*>()) == 0)
      return static_cast<QTextObjectInterface*>(this);
    return QObject::qt_metacast(name);
  }

  QSizeF intrinsicSize(QTextDocument* /*document*/, int /*position*/, const QTextFormat& format) override {
    const QSizeF size = PageOf(format).Size();
    const double width = pageWidth_ * format.doubleProperty(kShare);
    return {width, width * size.height() / size.width()};
  }

  void drawObject(QPainter* painter, const QRectF& area, QTextDocument* /*document*/, int /*position*/,
                  const QTextFormat& format) override {
    if (!shown_.contains(area.center())) return;
    const Page& page = PageOf(format);
    painter->save();
    painter->translate(area.topLeft());
    const double scale = area.width() / page.Size().width();
    painter->scale(scale, scale);
    page.Paint(ThemeOf(PictureTheme::kLight), static_cast<QCPPainter&>(*painter));
    painter->restore();
  }

 private:
  const Page& PageOf(const QTextFormat& format) const {
    return *pages_[static_cast<std::size_t>(format.intProperty(kPlace))];
  }

  double pageWidth_;
  QRectF shown_;
  std::vector<std::unique_ptr<Page>> pages_;
};

QTextCharFormat Letters(double points, bool bold = false, const QColor& colour = kInk) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPointSizeF(points);
  font.setBold(bold);
  font.setHintingPreference(QFont::PreferNoHinting);
  // Text with any spacing has no ligatures, which searches would not find.
  font.setLetterSpacing(QFont::AbsoluteSpacing, 0.02);
  QTextCharFormat format;
  format.setFont(font);
  format.setForeground(colour);
  return format;
}

QTextBlockFormat Spaced(double above, double below) {
  QTextBlockFormat format;
  format.setTopMargin(above);
  format.setBottomMargin(below);
  format.setLineHeight(115, QTextBlockFormat::ProportionalHeight);
  return format;
}

class ReportPages {
 public:
  explicit ReportPages(const Report& report)
      : page_(QPageSize(QPageSize::A4).sizePixels(kResolution)),
        area_(Dots(kSideMargin), Dots(kTopMargin), page_.width() - 2 * Dots(kSideMargin),
              page_.height() - Dots(kTopMargin) - Dots(kBottomMargin)),
        title_(Shown(report.title)),
        pictures_(area_.width()),
        writer_(&buffer_),
        cursor_(&document_) {
    buffer_.open(QIODevice::WriteOnly);
    writer_.setResolution(kResolution);
    writer_.setPageSize(QPageSize(QPageSize::A4));
    writer_.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer_.setTitle(title_);
    writer_.setCreator(QStringLiteral("Brenvolt"));
    document_.setUndoRedoEnabled(false);
    document_.documentLayout()->setPaintDevice(&writer_);
    document_.documentLayout()->registerHandler(kPicture, &pictures_);
    document_.setDocumentMargin(0);
    document_.setPageSize(area_.size());
    cursor_.beginEditBlock();
    AddLine(title_, Spaced(0, 4), Letters(19, true));
    AddLine(Shown(report.summary), Spaced(0, 14), Letters(kTextSize, false, kFaint));
    AddLine(QStringLiteral("Contents"), Spaced(0, 2), Letters(11.5, true));
    AddContents(report.sections, 0);
    for (const ReportSection& section : report.sections) AddSection(section, 0);
    cursor_.endEditBlock();
    KeepHeadingsWithText();
    NumberContents();
  }

  QByteArray Bytes() {
    {
      QCPPainter painter;
      if (!painter.begin(&writer_)) throw Error("the report cannot be painted");
      painter.setMode(QCPPainter::pmVectorized);
      painter.setMode(QCPPainter::pmNoCaching);
      const int count = document_.pageCount();
      for (int number = 0; number < count; ++number) {
        if (number > 0) writer_.newPage();
        PaintPage(number, count, painter);
      }
    }
    return buffer_.data();
  }

 private:
  // A heading and the line of the contents that leads to it.
  struct Heading {
    QTextBlock line;
    QTextBlock place;
  };

  void AddLine(const QString& text, const QTextBlockFormat& block, const QTextCharFormat& letters) {
    if (isBegun_) cursor_.insertBlock();
    isBegun_ = true;
    cursor_.setBlockFormat(block);
    cursor_.setBlockCharFormat(letters);
    cursor_.insertText(text, letters);
  }

  // Of two levels, the second where it is no long list, which the index is for.
  void AddContents(const std::vector<ReportSection>& sections, int level) {
    constexpr std::size_t kLongest = 24;
    if (level > 1 || (level > 0 && sections.size() > kLongest)) return;
    for (const ReportSection& section : sections) {
      QTextBlockFormat block = Spaced(level == 0 ? 3 : 0, 0);
      const double indent = 16.0 * level;
      block.setLeftMargin(indent);
      // In pixels, as margins are.
      const double width = area_.width() / kResolution * kUsualResolution;
      block.setTabPositions({QTextOption::Tab(width - indent - 2, QTextOption::RightTab)});
      AddLine(Elided(Shown(section.title), Letters(kTextSize).font(), 560) + QLatin1Char('\t'), block,
              Letters(kTextSize));
      headings_.push_back({cursor_.block(), {}});
      lines_.insert({&section, headings_.size() - 1});
      AddContents(section.sections, level + 1);
    }
  }

  void AddSection(const ReportSection& section, int level) {
    constexpr double kSizes[] = {14, 11.5, 10};
    AddLine(Shown(section.title), Spaced(level == 0 ? 22 : 16, 5), Letters(kSizes[std::min(level, 2)], true));
    places_.push_back(cursor_.block());
    if (const auto line = lines_.find(&section); line != lines_.end())
      headings_[line->second].place = places_.back();
    for (const ReportBlock& block : section.blocks) std::visit([this](const auto& one) { Add(one); }, block);
    for (const ReportSection& one : section.sections) AddSection(one, level + 1);
  }

  void Add(const ReportParagraph& paragraph) {
    AddLine(Shown(paragraph.text), Spaced(3, 3), Letters(kTextSize));
  }

  void Add(const ReportNote& note) {
    QTextBlockFormat block = Spaced(4, 4);
    block.setBackground(kSoft);
    block.setLeftMargin(6);
    AddLine(Shown(note.kind) + QStringLiteral(": "), block, Letters(kTextSize, true));
    cursor_.insertText(Shown(note.text), Letters(kTextSize));
  }

  void Add(const ReportCode& code) {
    QTextCharFormat letters = Letters(kTableSize);
    QFont font = letters.font();
    font.setFamilies({QStringLiteral("DejaVu Sans Mono")});
    letters.setFont(font);
    QTextBlockFormat block = Spaced(0, 0);
    block.setBackground(kSoft);
    const QString text = QString::fromUtf8(code.text.data(), static_cast<qsizetype>(code.text.size()));
    for (const QString& line : text.trimmed().split(QLatin1Char('\n'))) AddLine(line, block, letters);
  }

  void Add(const ReportFacts& facts) {
    if (facts.facts.empty()) return;
    QTextTable* table = InsertTable(static_cast<int>(facts.facts.size()), 2, 0);
    QTextTableFormat format = table->format();
    format.setColumnWidthConstraints(
        {QTextLength(QTextLength::VariableLength, 0), QTextLength(QTextLength::PercentageLength, 75)});
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    table->setFormat(format);
    for (int row = 0; row < static_cast<int>(facts.facts.size()); ++row) {
      const auto& [name, value] = facts.facts[static_cast<std::size_t>(row)];
      Fill(*table, row, 0, Shown(name), Letters(kTextSize, false, kFaint), Qt::AlignLeft);
      Fill(*table, row, 1, Shown(value), Letters(kTextSize), Qt::AlignLeft);
    }
  }

  void Add(const ReportTable& table) {
    if (!table.title.empty()) AddLine(Shown(table.title), Spaced(8, 2), Letters(kTextSize, true));
    const auto columns = static_cast<int>(table.columns.size());
    const double size = columns <= 9 ? kTableSize : std::max(3.5, kTableSize * 10 / (columns + 1));
    QTextTable* lines = InsertTable(static_cast<int>(table.rows.size()) + 1, columns, 1);
    const std::size_t noted = table.NotedColumn();
    for (int c = 0; c < columns; ++c) {
      const ReportColumn& column = table.columns[static_cast<std::size_t>(c)];
      Fill(*lines, 0, c, Shown(column.heading), Letters(size, true), AlignmentOf(column));
      Rule(*lines, 0, c, true);
    }
    for (std::size_t r = 0; r < table.rows.size(); ++r) {
      const ReportRow& row = table.rows[r];
      const int at = static_cast<int>(r) + 1;
      for (int c = 0; c < columns; ++c) {
        const auto place = static_cast<std::size_t>(c);
        const QString text = place < row.cells.size() ? Shown(row.cells[place]) : QString();
        QTextCursor cell = Fill(*lines, at, c, text, Letters(size), AlignmentOf(table.columns[place]));
        Rule(*lines, at, c, false);
        for (const std::string& note : row.notes) {
          if (place != noted) continue;
          cell.insertBlock();
          cell.insertText(Shown(note), Letters(size - 1, false, kFaint));
        }
      }
    }
    for (const std::string& note : table.notes) AddLine(Shown(note), Spaced(2, 2), Letters(kTableSize));
  }

  // The first over the whole width, the others two by two.
  void Add(const ReportPictures& pictures) {
    constexpr int kMainWidth = 720;
    constexpr int kSmallWidth = 420;
    constexpr double kHalf = 0.49;
    for (std::size_t i = 0; i < pictures.graphs.size(); ++i) {
      const Graph& graph = pictures.graphs[i];
      const bool isMain = i == 0;
      if (isMain || i % 2 == 1) AddLine({}, Spaced(6, 2), Letters(kTextSize));
      QTextCharFormat format;
      format.setObjectType(kPicture);
      const int width = !graph.panels.empty() ? 0 : isMain ? kMainWidth : kSmallWidth;
      format.setProperty(kPlace, pictures_.Add(graph, width));
      format.setProperty(kShare, isMain ? 0.9 : kHalf);
      cursor_.insertText(QString(QChar::ObjectReplacementCharacter), format);
    }
  }

  static Qt::Alignment AlignmentOf(const ReportColumn& column) {
    return column.isNumber ? Qt::AlignRight : Qt::AlignLeft;
  }

  // Behind it the text goes on in a block of its own.
  QTextTable* InsertTable(int rows, int columns, int headings) {
    AddLine({}, Spaced(0, 0), Letters(1));
    QTextTableFormat format;
    format.setBorder(0);
    format.setCellSpacing(0);
    format.setCellPadding(3.5);
    format.setBorderCollapse(true);
    format.setHeaderRowCount(headings);
    QTextTable* table = cursor_.insertTable(rows, columns, format);
    cursor_.movePosition(QTextCursor::End);
    cursor_.setBlockFormat(Spaced(0, 0));
    cursor_.setBlockCharFormat(Letters(1));
    return table;
  }

  static QTextCursor Fill(QTextTable& table, int row, int column, const QString& text,
                          const QTextCharFormat& letters, Qt::Alignment alignment) {
    QTextCursor cursor = table.cellAt(row, column).firstCursorPosition();
    QTextBlockFormat block;
    block.setAlignment(alignment);
    cursor.setBlockFormat(block);
    cursor.insertText(text, letters);
    return cursor;
  }

  // The line below a cell.
  static void Rule(QTextTable& table, int row, int column, bool isHeading) {
    QTextTableCell cell = table.cellAt(row, column);
    QTextTableCellFormat format = cell.format().toTableCellFormat();
    format.setBottomBorder(isHeading ? 1 : 0.5);
    format.setBottomBorderBrush(kLine);
    format.setBottomBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    if (isHeading) format.setBackground(kSoft);
    cell.setFormat(format);
  }

  int PageOf(const QTextBlock& block) const {
    return static_cast<int>(document_.documentLayout()->blockBoundingRect(block).top() / area_.height());
  }

  // A heading at the foot of a page goes to the next one with what it heads.
  void KeepHeadingsWithText() {
    constexpr double kLeast = 30;  // millimetres
    for (const QTextBlock& place : places_) {
      const QRectF area = document_.documentLayout()->blockBoundingRect(place);
      const double left = area_.height() - std::fmod(area.bottom(), area_.height());
      QTextBlock next = place.next();
      while (next.isValid() && next.text().isEmpty()) next = next.next();
      const bool isApart = next.isValid() && PageOf(next) != PageOf(place);
      if (!isApart && left > Dots(kLeast)) continue;
      QTextBlockFormat format = place.blockFormat();
      format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
      QTextCursor(place).setBlockFormat(format);
    }
  }

  void NumberContents() {
    std::vector<QString> numbers;
    for (const Heading& heading : headings_) numbers.push_back(QString::number(PageOf(heading.place) + 1));
    for (std::size_t i = 0; i < headings_.size(); ++i) {
      QTextCursor line(headings_[i].line);
      line.movePosition(QTextCursor::EndOfBlock);
      line.insertText(numbers[i], Letters(kTextSize));
    }
  }

  void PaintPage(int number, int count, QCPPainter& painter) {
    painter.save();
    painter.translate(area_.left(), area_.top() - number * area_.height());
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0, number * area_.height(), area_.width(), area_.height());
    context.palette.setColor(QPalette::Text, kInk);
    painter.setClipRect(context.clip);
    pictures_.Show(context.clip);
    document_.documentLayout()->draw(&painter, context);
    painter.restore();
    const QTextCharFormat letters = Letters(kFootSize, false, kFaint);
    painter.setFont(letters.font());
    painter.setPen(kFaint);
    const QRectF foot(area_.left(), area_.bottom() + Dots(6), area_.width(), Dots(6));
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, Elided(title_, letters.font(), 500));
    painter.drawText(foot, Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("%1 of %2").arg(number + 1).arg(count));
  }

  QSizeF page_;
  QRectF area_;  // of the text
  QString title_;
  PictureObject pictures_;
  QBuffer buffer_;
  QPdfWriter writer_;
  QTextDocument document_;
  QTextCursor cursor_;
  bool isBegun_ = false;
  std::vector<Heading> headings_;
  std::map<const ReportSection*, std::size_t> lines_;
  std::vector<QTextBlock> places_;  // of all headings
};

std::string LayOut(const Report& report) {
  RequireToolkit();
  return ReportPages(report).Bytes().toStdString();
}

}  // namespace

}  // namespace brenvolt

extern "C" BRENVOLT_EXPORT brenvolt::ReportFunction* BrenvoltReport() {
  return &brenvolt::LayOut;
}
