#include "apps/desktop/port/window_interface.h"

#include <QApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QMessageBox>
#include <utility>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/dialog_window.h"
#include "apps/desktop/port/matrix_question.h"
#include "apps/desktop/port/name_question.h"
#include "apps/desktop/port/selection_question.h"
#include "apps/desktop/port/variable_question.h"
#include "apps/desktop/port/weight_question.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::desktop {
namespace {

// Cancel has to be answered within a second, and work looks at it no more often than this.
constexpr std::chrono::milliseconds kPollInterval{100};

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kInformation:
      return QMessageBox::Information;
    case MessageIcon::kWarning:
      return QMessageBox::Warning;
    case MessageIcon::kError:
      return QMessageBox::Critical;
    case MessageIcon::kNone:
      break;
  }
  return QMessageBox::NoIcon;
}

QString CaptionOf(const Message& message) {
  return message.caption.empty() ? QStringLiteral("Brenvolt") : Shown(message.caption);
}

}  // namespace

QStringList NameFilters(std::string_view filter) {
  const QStringList parts = Shown(filter).split(u'|', Qt::SkipEmptyParts);
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const qsizetype pattern = parts[i].lastIndexOf(u'(');
    const QString words = pattern > 0 ? parts[i].left(pattern).trimmed() : parts[i];
    QString patterns = parts[i + 1];
    // All files, also those whose names have no point.
    patterns.replace(QStringLiteral("*.*"), QStringLiteral("*"));
    filters.push_back(words + QStringLiteral(" (") + patterns.replace(u';', u' ') + QStringLiteral(")"));
  }
  return filters;
}

WindowInterface::WindowInterface(EngineThread& engine, DocumentSink& sink, QWidget& owner)
    : engine_(engine), sink_(sink), owner_(owner), progress_(new ProgressWindow(&owner)) {
  QObject::connect(&engine, &EngineThread::busyChanged, progress_, [this](bool isBusy) {
    if (!isBusy) progress_->Forget();
  });
}

WindowInterface::~WindowInterface() {
  delete progress_;
}

QWidget* WindowInterface::Front() const {
  if (QWidget* const modal = QApplication::activeModalWidget()) return modal;
  QWidget* const active = QApplication::activeWindow();
  return active != nullptr && active != progress_ ? active : &owner_;
}

void WindowInterface::ShowFault(const QString& what) {
  QMessageBox box(QMessageBox::Warning, QStringLiteral("Brenvolt"), what, QMessageBox::Ok, Front());
  box.setTextFormat(Qt::PlainText);
  box.exec();
}

WindowInterface::Handed WindowInterface::Quietly(const std::function<void()>& call) {
  Handed shown;
  Handed* const outer = std::exchange(quiet_, &shown);
  try {
    call();
  } catch (...) {
    quiet_ = outer;
    throw;
  }
  quiet_ = outer;
  return shown;
}

MessageAnswer WindowInterface::ShowMessage(const Message& message) {
  if (quiet_ != nullptr) {
    quiet_->message = message.text;
    return MessageAnswer::kCancel;
  }
  MessageAnswer answer = MessageAnswer::kOk;
  engine_.Ask([&] {
    QMessageBox box(IconOf(message.icon), CaptionOf(message), Shown(message.text), QMessageBox::Ok, Front());
    box.setObjectName(QStringLiteral("message"));
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (!message.where.empty()) box.setInformativeText(Shown(message.where));
    if (message.buttons == MessageButtons::kOkCancel) box.addButton(QMessageBox::Cancel);
    answer = box.exec() == QMessageBox::Ok ? MessageAnswer::kOk : MessageAnswer::kCancel;
  });
  return answer;
}

std::vector<std::filesystem::path> WindowInterface::ChooseFiles(const FileQuestion& question) {
  if (quiet_ != nullptr) return {};
  std::vector<std::filesystem::path> chosen;
  engine_.Ask([&] {
    QFileDialog dialog(Front(), Shown(question.title));
    dialog.setObjectName(QStringLiteral("files"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.setNameFilters(NameFilters(question.filter));
    dialog.setDefaultSuffix(Shown(question.defaultExtension));
    if (dialog.exec() != QDialog::Accepted) return;
    for (const QString& file : dialog.selectedFiles()) chosen.push_back(PathOf(file));
  });
  return chosen;
}

bool WindowInterface::SelectVariables(VariableQuestion& question) {
  if (quiet_ != nullptr) return false;
  bool accepted = false;
  engine_.Ask([&] {
    accepted =
        question.takesNames ? AskForNames(question, Front()) : AskForVariables(question, Input(), Front());
  });
  return accepted;
}

bool WindowInterface::EditSelection(SelectionQuestion& question) {
  if (quiet_ != nullptr) return false;
  bool accepted = false;
  const auto judge = [&](const std::string& condition) {
    ConditionVerdict verdict;
    engine_.Run([&] { verdict = VerdictOn(condition, *Input()); });
    return verdict;
  };
  engine_.Ask([&] { accepted = AskForSelection(question, Input(), judge, Front()); });
  return accepted;
}

bool WindowInterface::EditWeights(WeightQuestion& question) {
  if (quiet_ != nullptr) return false;
  bool accepted = false;
  engine_.Ask([&] { accepted = AskForWeights(question, Input(), Front()); });
  return accepted;
}

bool WindowInterface::EditMatrix(MatrixQuestion& question) {
  if (quiet_ != nullptr) return false;
  bool accepted = false;
  engine_.Ask([&] { accepted = AskForMatrix(question, Front()); });
  return accepted;
}

// The window stands until the dialog is no longer open, which its own operations bring about; they run while this call
// waits.
void WindowInterface::RunModal(CAnalysisModalDialog& dialog) {
  if (quiet_ != nullptr) return;
  engine_.Ask([&] {
    DialogWindow window(
        engine_, dialog, [&dialog] { return dialog.IsOpen(); }, Front());
    window.setWindowModality(Qt::ApplicationModal);
    QObject::connect(&window, &DialogWindow::failed, [this](const QString& what) { ShowFault(what); });
    QEventLoop loop;
    QObject::connect(&window, &DialogWindow::operated, &loop, [&] {
      if (!dialog.IsOpen()) loop.quit();
    });
    window.show();
    loop.exec();
  });
}

void WindowInterface::ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) {
  if (quiet_ != nullptr) return quiet_->tables.push_back(std::move(document));
  engine_.Ask([&] { sink_.TakeDocument(std::move(document)); });
}

void WindowInterface::ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) {
  if (quiet_ != nullptr) return quiet_->graphs.push_back(std::move(graph));
  engine_.Ask([&] { sink_.TakeGraph(std::move(graph)); });
}

void WindowInterface::Change(const std::function<void()>& change) {
  engine_.Ask([&] {
    change();
    sink_.TakeChange();
  });
}

void WindowInterface::ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) {
  engine_.Tell([window = progress_, text = Shown(caption), done, total] {
    if (window) window->ShowProgress(text, done, total);
  });
}

void WindowInterface::EndProgress() {
  engine_.Tell([window = progress_] {
    if (window) window->End();
  });
}

bool WindowInterface::IsExternallyCancelled() {
  return progress_->IsCancelled();
}

std::chrono::milliseconds WindowInterface::PollInterval() const {
  return kPollInterval;
}

}  // namespace brenvolt::desktop
