#include "apps/desktop/workbench/macro_panel.h"

#include <QFileDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSaveFile>
#include <QSplitter>
#include <QTextBlock>
#include <QTextDocument>
#include <QToolBar>
#include <QVBoxLayout>
#include <utility>

#include "apps/desktop/base/save_question.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/workbench/macro_process.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

// What is typed is kept no more often than this.
constexpr int kPauseInMilliseconds = 200;

QPlainTextEdit* NewPage(const QString& name) {
  auto* page = new QPlainTextEdit;
  page->setAccessibleName(name);
  page->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  page->setLineWrapMode(QPlainTextEdit::NoWrap);
  page->setTabStopDistance(4 * page->fontMetrics().horizontalAdvance(QLatin1Char(' ')));
  return page;
}

void Write(const std::filesystem::path& path, const QString& text) {
  QSaveFile file(ShownPath(path));
  const QByteArray bytes = text.toUtf8();
  if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
    throw Error("the macro cannot be saved: " + Utf8(file.errorString()), path.string());
}

}  // namespace

std::optional<int> FailedLine(const QString& output, const QString& macro) {
  static const QRegularExpression place(QStringLiteral("File \"([^\"]*)\", line (\\d+)"));
  std::optional<int> line;
  for (auto match = place.globalMatch(output); match.hasNext();) {
    const QRegularExpressionMatch found = match.next();
    if (found.captured(1) == macro) line = found.captured(2).toInt();
  }
  return line;
}

MacroPanel::MacroPanel(std::filesystem::path folder, QWidget* parent)
    : QWidget(parent),
      folder_(std::move(folder)),
      kept_(folder_),
      editor_(NewPage(tr("Macro"))),
      output_(NewPage(tr("Output of the macro"))),
      title_(new QLabel) {
  editor_->setPlaceholderText(
      tr("Record what you do, open a macro, or write one: a Python program over the "
         "package brenvolt."));
  editor_->setObjectName(QStringLiteral("macro"));
  output_->setObjectName(QStringLiteral("macroOutput"));
  output_->setReadOnly(true);
  output_->setPlaceholderText(tr("What a macro prints appears here."));
  auto* tools = new QToolBar;
  record_ = tools->addAction(tr("Record"));
  record_->setCheckable(true);
  record_->setToolTip(tr("Write down what you do in dialogs as a macro"));
  run_ = tools->addAction(tr("Run"), this, &MacroPanel::Run);
  stop_ = tools->addAction(tr("Stop"), this, &MacroPanel::Stop);
  stop_->setEnabled(false);
  tools->addSeparator();
  tools->addAction(tr("Open…"), this, &MacroPanel::AskOpen);
  tools->addAction(tr("Save as…"), this, &MacroPanel::AskSave);
  tools->addSeparator();
  tools->addWidget(title_);
  title_->setContentsMargins(8, 0, 8, 0);
  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->addWidget(editor_);
  splitter->addWidget(output_);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(tools);
  layout->addWidget(splitter);
  connect(record_, &QAction::triggered, this, &MacroPanel::recordAsked);
  connect(editor_->document(), &QTextDocument::modificationChanged, this, &MacroPanel::UpdateTitle);
  connect(editor_, &QPlainTextEdit::textChanged, this, [this] { editor_->setExtraSelections({}); });
  pause_.setSingleShot(true);
  pause_.setInterval(kPauseInMilliseconds);
  connect(&pause_, &QTimer::timeout, this, &MacroPanel::KeepText);
  connect(editor_->document(), &QTextDocument::modificationChanged, this, &MacroPanel::KeepText);
  connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
    if (!pause_.isActive()) pause_.start();
  });
  UpdateTitle();
}

void MacroPanel::KeepText() {
  if (!IsModified() || Text().trimmed().isEmpty()) return kept_.Forget();
  try {
    kept_.Keep({file_, Text()});
    isUnkept_ = false;
  } catch (const Error& error) {
    if (!std::exchange(isUnkept_, true)) emit said(Shown(error.what()));
  }
}

void MacroPanel::UpdateTitle() {
  const QString name = file_.empty() ? tr("New macro") : ShownPath(file_.filename());
  title_->setText(IsModified() ? name + QStringLiteral(" *") : name);
}

void MacroPanel::Open(const std::filesystem::path& macro) {
  QFile file(ShownPath(macro));
  if (!file.open(QIODevice::ReadOnly))
    throw Error("the macro cannot be read: " + Utf8(file.errorString()), macro.string());
  Replace(QString::fromUtf8(file.readAll()));
  editor_->document()->setModified(false);
  file_ = macro;
  UpdateTitle();
}

// The text that was there can be had again by undoing.
void MacroPanel::Replace(const QString& text) {
  QTextCursor all(editor_->document());
  all.select(QTextCursor::Document);
  all.insertText(text);
  editor_->moveCursor(QTextCursor::Start);
}

bool MacroPanel::MayReplace() {
  if (!IsModified() || Text().trimmed().isEmpty()) return true;
  const auto answer = QMessageBox::question(this, QStringLiteral("Brenvolt"), tr("Save the macro?"),
                                            QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                            QMessageBox::Save);
  return answer == QMessageBox::Discard || (answer == QMessageBox::Save && AskSave());
}

void MacroPanel::SetText(const QString& text) {
  file_.clear();
  Replace(text);
  editor_->document()->setModified(true);
  UpdateTitle();
}

void MacroPanel::Restore(const MacroText& macro) {
  SetText(macro.text);
  file_ = macro.file;
  KeepText();
  UpdateTitle();
}

QString MacroPanel::Text() const {
  return editor_->toPlainText();
}

QString MacroPanel::Output() const {
  return output_->toPlainText();
}

bool MacroPanel::IsModified() const {
  return editor_->document()->isModified();
}

void MacroPanel::Save(const std::filesystem::path& macro) {
  Write(macro, Text());
  file_ = macro;
  editor_->document()->setModified(false);
  UpdateTitle();
}

void MacroPanel::SetRecording(bool recording) {
  record_->setChecked(recording);
  record_->setText(recording ? tr("Stop recording") : tr("Record"));
}

// What is run is what is shown, saved or not; the file that a person saved is not touched.
std::filesystem::path MacroPanel::FileToRun() {
  if (!file_.empty() && !IsModified()) return file_;
  std::error_code ignored;
  std::filesystem::create_directories(folder_, ignored);
  const std::filesystem::path file = folder_ / "unsaved_macro.py";
  Write(file, Text());
  return file;
}

void MacroPanel::Run() {
  if (process_ != nullptr) return;
  output_->clear();
  editor_->setExtraSelections({});
  try {
    const std::filesystem::path file = FileToRun();
    running_ = ShownPath(file);
    process_ = new MacroProcess(this);
    connect(process_, &MacroProcess::printed, this, [this](const QString& text) {
      output_->moveCursor(QTextCursor::End);
      output_->insertPlainText(text);
    });
    connect(process_, &MacroProcess::ended, this, &MacroPanel::Finish);
    run_->setEnabled(false);
    stop_->setEnabled(true);
    process_->Start(file);
  } catch (const Error& error) {
    output_->setPlainText(Shown(error.what()));
    emit ended(false);
  }
}

void MacroPanel::Stop() {
  if (process_ != nullptr) process_->Stop();
}

void MacroPanel::Finish(bool succeeded) {
  std::exchange(process_, nullptr)->deleteLater();
  run_->setEnabled(true);
  stop_->setEnabled(false);
  const auto line = succeeded ? std::nullopt : FailedLine(output_->toPlainText(), running_);
  if (line) MarkLine(*line);
  if (succeeded) {
    emit said(tr("The macro has ended."));
  } else {
    emit said(line ? tr("The macro failed in line %1.").arg(*line) : tr("The macro failed."));
  }
  emit ended(succeeded);
}

void MacroPanel::MarkLine(int line) {
  const QTextBlock block = editor_->document()->findBlockByNumber(line - 1);
  if (!block.isValid()) return;
  QTextEdit::ExtraSelection mark;
  mark.cursor = QTextCursor(block);
  mark.format.setProperty(QTextFormat::FullWidthSelection, true);
  mark.format.setBackground(QColor(0xd0, 0x40, 0x40, 0x60));
  editor_->setTextCursor(mark.cursor);
  editor_->setExtraSelections({mark});
  editor_->centerCursor();
}

void MacroPanel::AskOpen() {
  if (!MayReplace()) return;
  const QString name = QFileDialog::getOpenFileName(this, tr("Open macro"), {}, tr("Macros (*.py)"));
  if (name.isEmpty()) return;
  try {
    Open(PathOf(name));
  } catch (const Error& error) {
    emit said(Shown(error.what()));
  }
}

bool MacroPanel::AskSave() {
  const QString name = AskFileToSave(this, tr("Save macro"), ShownPath(file_), tr("Macros (*.py)"));
  if (name.isEmpty()) return false;
  try {
    Save(PathOf(name));
    return true;
  } catch (const Error& error) {
    emit said(Shown(error.what()));
    return false;
  }
}

}  // namespace brenvolt::desktop
