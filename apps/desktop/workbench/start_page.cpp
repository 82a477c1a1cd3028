#include "apps/desktop/workbench/start_page.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <system_error>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {
namespace {

struct TaskCard {
  Task task;
  const char* title;
  const char* text;
};
constexpr TaskCard kTasks[] = {
    {Task::kFit, QT_TRANSLATE_NOOP("StartPage", "&Fit distributions"),
     QT_TRANSLATE_NOOP("StartPage", "Find which distributions describe the variables of your data")},
    {Task::kSimulate, QT_TRANSLATE_NOOP("StartPage", "&Simulate data"),
     QT_TRANSLATE_NOOP("StartPage", "Draw samples from the distributions saved with a project")},
    {Task::kDesign, QT_TRANSLATE_NOOP("StartPage", "&Design a simulation"),
     QT_TRANSLATE_NOOP("StartPage", "Enter distributions and correlations yourself; no data are needed")},
    {Task::kProfile, QT_TRANSLATE_NOOP("StartPage", "&Profile a model"),
     QT_TRANSLATE_NOOP("StartPage", "See what a model or a formula predicts when its inputs vary")}};

struct Example {
  const char* file;
  const char* text;
};
constexpr Example kExamples[] = {
    {"portpirie_sea_level.csv",
     QT_TRANSLATE_NOOP("StartPage", "Yearly highest sea levels at Port Pirie (65)")},
    {"groundbeef.csv", QT_TRANSLATE_NOOP("StartPage", "Servings of ground beef, in grams (254)")},
    {"danish_fire_losses.csv", QT_TRANSLATE_NOOP("StartPage", "Danish fire insurance losses (2167)")},
    {"faithful.csv", QT_TRANSLATE_NOOP("StartPage", "Eruptions of the Old Faithful geyser (272)")},
    {"toxocara.csv", QT_TRANSLATE_NOOP("StartPage", "Parasites counted in cats (53)")},
    {"ozone.csv", QT_TRANSLATE_NOOP("StartPage", "Ozone and weather at Los Angeles (330)")}};

constexpr int kCharacters = 130;
constexpr int kMostRecentShown = 6;

QString Said(const char* text) {
  return QCoreApplication::translate("StartPage", text);
}

QLabel* Heading(const QString& text, double size, bool bold) {
  auto* label = new QLabel(text);
  QFont font = label->font();
  font.setPointSizeF(font.pointSizeF() * size);
  font.setBold(bold);
  label->setFont(font);
  return label;
}

// A title with a sentence below it, in letters as large as all others.
class TaskButton : public QPushButton {
 public:
  TaskButton(const QString& title, const QString& text) {
    auto* heading = Heading(title, 1.05, true);
    heading->setBuddy(this);
    auto* sentence = new QLabel(text);
    sentence->setWordWrap(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 10, 14, 10);
    layout->setSpacing(2);
    layout->addWidget(heading);
    layout->addWidget(sentence);
    for (QLabel* label : {heading, sentence}) label->setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(QString(title).remove(QLatin1Char('&')));
    setAccessibleDescription(text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    sentence->setMinimumWidth(kCardCharacters * sentence->fontMetrics().averageCharWidth());
  }
  QSize sizeHint() const override { return layout()->totalSizeHint(); }
  QSize minimumSizeHint() const override {
    const QSize least = layout()->totalMinimumSize();
    return {least.width(), std::max(least.height(), layout()->totalHeightForWidth(least.width()))};
  }

 private:
  static constexpr int kCardCharacters = 38;
};

// A line to click on, with the whole path as its tooltip.
QPushButton* FileLink(const QString& text, const QString& file) {
  auto* link = new QPushButton(text);
  link->setFlat(true);
  link->setCursor(Qt::PointingHandCursor);
  link->setToolTip(file);
  link->setStyleSheet(
      QStringLiteral("QPushButton{text-align:left;padding:3px 6px;color:palette(link)}"
                     "QPushButton:hover,QPushButton:focus{text-decoration:underline}"));
  return link;
}

void Empty(QLayout& layout) {
  while (QLayoutItem* item = layout.takeAt(0)) {
    delete item->widget();
    delete item;
  }
}

}  // namespace

StartPage::StartPage(QWidget* parent) : QWidget(parent), recent_(new QVBoxLayout) {
  auto* content = new QWidget;
  content->setMaximumWidth(kCharacters * fontMetrics().averageCharWidth());
  auto* layout = new QVBoxLayout(content);
  layout->setContentsMargins(32, 28, 32, 28);
  layout->setSpacing(10);
  layout->addWidget(Heading(QStringLiteral("Brenvolt"), 2.2, true));
  layout->addWidget(Heading(tr("Distributions and simulation"), 1.15, false));
  layout->addSpacing(12);
  AddTasks(*layout);
  layout->addSpacing(12);

  auto* open = new QPushButton(tr("&Open a file…"));
  auto* make = new QPushButton(tr("&New project"));
  open->setToolTip(tr("A project (.bvw) or a table of data, such as CSV; or drop files on the window"));
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addWidget(open);
  buttons->addWidget(make);
  buttons->addStretch();
  connect(open, &QPushButton::clicked, this, &StartPage::openAsked);
  connect(make, &QPushButton::clicked, this, &StartPage::newAsked);
  recent_->setSpacing(2);
  recent_->setAlignment(Qt::AlignTop);
  auto* files = new QVBoxLayout;
  files->setSpacing(10);
  files->addWidget(Heading(tr("Files"), 1.15, true));
  files->addLayout(buttons);
  files->addLayout(recent_, 1);
  auto* lower = new QHBoxLayout;
  lower->setSpacing(40);
  lower->addLayout(files, 1);
  if (!ExampleFolder().empty()) {
    auto* examples = new QVBoxLayout;
    examples->setSpacing(10);
    examples->addWidget(Heading(tr("Examples"), 1.15, true));
    examples->addWidget(MakeExamples(), 1, Qt::AlignTop);
    lower->addLayout(examples, 1);
  }
  layout->addLayout(lower);
  layout->addStretch();

  auto* scroll = new QScrollArea;
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidgetResizable(true);
  auto* centred = new QWidget;
  auto* row = new QHBoxLayout(centred);
  row->addStretch(1);
  row->addWidget(content, 100);
  row->addStretch(1);
  scroll->setWidget(centred);
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins(0, 0, 0, 0);
  page->addWidget(scroll);
  SetRecentFiles({});
}

void StartPage::AddTasks(QVBoxLayout& layout) {
  auto* grid = new QGridLayout;
  grid->setSpacing(10);
  int place = 0;
  for (const TaskCard& card : kTasks) {
    auto* button = new TaskButton(Said(card.title), Said(card.text));
    button->setObjectName(QStringLiteral("task%1").arg(static_cast<int>(card.task)));
    connect(button, &QPushButton::clicked, this, [this, &card] { emit taskAsked(card.task); });
    grid->addWidget(button, place / 2, place % 2);
    ++place;
  }
  layout.addLayout(grid);
}

QWidget* StartPage::MakeExamples() {
  auto* box = new QWidget;
  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  const std::filesystem::path folder = ExampleFolder();
  for (const Example& example : kExamples) {
    const QString file = ShownPath(folder / example.file);
    if (!QFileInfo::exists(file)) continue;
    auto* link = FileLink(Said(example.text), file);
    connect(link, &QPushButton::clicked, this, [this, file] { emit fileAsked(file); });
    layout->addWidget(link);
  }
  return box;
}

void StartPage::SetRecentFiles(const QStringList& files) {
  Empty(*recent_);
  if (files.isEmpty()) {
    auto* none = new QLabel(tr("Files that you have opened appear here."));
    none->setEnabled(false);
    none->setContentsMargins(6, 3, 6, 3);
    recent_->addWidget(none);
  }
  for (const QString& file : files.mid(0, kMostRecentShown)) {
    auto* link = FileLink(QFileInfo(file).fileName(), file);
    link->setEnabled(QFileInfo::exists(file));
    connect(link, &QPushButton::clicked, this, [this, file] { emit fileAsked(file); });
    recent_->addWidget(link);
  }
}

std::filesystem::path StartPage::ExampleFolder() {
  const std::filesystem::path program = PathOf(QCoreApplication::applicationDirPath());
  for (const std::filesystem::path& folder : {program.parent_path() / "share/brenvolt/examples",
                                              program.parent_path().parent_path() / "examples"}) {
    std::error_code ignored;
    if (std::filesystem::exists(folder / kExamples[0].file, ignored)) return folder;
  }
  return {};
}

}  // namespace brenvolt::desktop
