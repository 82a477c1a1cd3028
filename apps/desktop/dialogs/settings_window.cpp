#include "apps/desktop/dialogs/settings_window.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/variant_text.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

constexpr int kListCharacters = 38;
constexpr int kFieldCharacters = 34;

// A get with an index that makes a document: the index names where it goes.
bool Makes(const MemberDescription& member) {
  return !Allows(member, CallKind::kPut) && !member.indexes.empty() && Allows(member, CallKind::kGet);
}

}  // namespace

QString WordsOf(std::string_view name) {
  QString words;
  const QString letters = Shown(name);
  for (qsizetype i = 0; i < letters.size(); ++i) {
    const bool isNew = i > 0 && letters[i].isUpper() &&
                       (letters[i - 1].isLower() || (i + 1 < letters.size() && letters[i + 1].isLower()));
    const bool isOfInitials = letters[i].isUpper() && i + 1 < letters.size() && letters[i + 1].isUpper();
    if (isNew) words += u' ';
    words += isNew && !isOfInitials ? letters[i].toLower() : letters[i];
  }
  return words;
}

bool SettingsWindow::IsSetting(const MemberDescription& member) {
  return (Allows(member, CallKind::kPut) && member.put != AutomationType::kObject) || Makes(member);
}

SettingsWindow::SettingsWindow(EngineThread& engine, std::shared_ptr<AutomationObject> dialog,
                               const InterfaceDescription& interface, QWidget* parent)
    : QDialog(parent), engine_(engine), dialog_(std::move(dialog)) {
  setObjectName(QStringLiteral("settings"));
  setWindowTitle(tr("All Settings"));
  for (const MemberDescription& member : interface.members) {
    if (IsSetting(member)) members_.push_back(&member);
  }
  auto* const columns = new QHBoxLayout;
  columns->addWidget(MakeList(), 1);
  columns->addWidget(MakeEditor(), 1);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* const layout = new QVBoxLayout(this);
  layout->addLayout(columns, 1);
  layout->addWidget(buttons);
  connect(list_, &QListWidget::currentRowChanged, this, &SettingsWindow::ShowMember);
  if (!members_.empty()) list_->setCurrentRow(0);
}

QWidget* SettingsWindow::MakeList() {
  auto* const column = new QWidget;
  auto* const layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* const search = new QLineEdit;
  search->setObjectName(QStringLiteral("search"));
  search->setPlaceholderText(tr("Search"));
  search->setAccessibleName(tr("Search"));
  list_ = new QListWidget;
  list_->setObjectName(QStringLiteral("members"));
  list_->setAccessibleName(tr("Settings"));
  list_->setMinimumWidth(kListCharacters * list_->fontMetrics().averageCharWidth());
  for (const MemberDescription* member : members_) {
    auto* const item = new QListWidgetItem(WordsOf(member->name), list_);
    item->setToolTip(Shown(member->name));
  }
  connect(search, &QLineEdit::textChanged, this, [this](const QString& part) {
    QString letters = part;
    letters.remove(u' ');
    for (int i = 0; i < list_->count(); ++i)
      list_->setRowHidden(i, !list_->item(i)->toolTip().contains(letters, Qt::CaseInsensitive));
  });
  layout->addWidget(search);
  layout->addWidget(list_, 1);
  return column;
}

QWidget* SettingsWindow::MakeEditor() {
  auto* const column = new QWidget;
  auto* const layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  help_ = new WrappedLabel;
  form_ = new QFormLayout;
  verdict_ = new WrappedLabel;
  verdict_->setObjectName(QStringLiteral("verdict"));
  set_ = new QPushButton;
  set_->setObjectName(QStringLiteral("set"));
  connect(set_, &QPushButton::clicked, this, &SettingsWindow::Set);
  layout->addWidget(help_);
  layout->addLayout(form_);
  auto* const row = new QHBoxLayout;
  row->addWidget(set_);
  row->addStretch(1);
  layout->addLayout(row);
  layout->addWidget(verdict_);
  layout->addStretch(1);
  return column;
}

void SettingsWindow::ShowMember(int row) {
  shown_ = row >= 0 ? members_[static_cast<std::size_t>(row)] : nullptr;
  while (form_->rowCount() > 0) form_->removeRow(0);
  indexes_.clear();
  value_ = nullptr;
  verdict_->clear();
  if (shown_ == nullptr) return;
  help_->setText(Shown(shown_->help));
  const auto addField = [this](const QString& caption, const QString& name) {
    auto* const field = new QLineEdit;
    field->setObjectName(name);
    field->setAccessibleName(caption);
    field->setMinimumWidth(kFieldCharacters * field->fontMetrics().averageCharWidth());
    form_->addRow(caption, field);
    return field;
  };
  for (const ArgumentDescription& index : shown_->indexes) {
    indexes_.push_back(addField(Shown(index.name), QStringLiteral("index%1").arg(indexes_.size() + 1)));
    if (index.type == AutomationType::kInteger) indexes_.back()->setText(QStringLiteral("1"));
    connect(indexes_.back(), &QLineEdit::editingFinished, this, &SettingsWindow::Read);
  }
  if (!Makes(*shown_)) value_ = addField(tr("Value"), QStringLiteral("value"));
  set_->setText(Makes(*shown_) ? tr("&Make") : tr("&Set"));
  Read();
}

std::vector<Variant> SettingsWindow::Indexes() const {
  std::vector<Variant> indexes;
  for (std::size_t i = 0; i < indexes_.size(); ++i)
    indexes.push_back(ValueOf(indexes_[i]->text(), shown_->indexes[i].type));
  return indexes;
}

bool SettingsWindow::Carry(const std::function<std::function<void()>()>& prepare) {
  verdict_->clear();
  try {
    if (engine_.IsBusy()) return false;
    engine_.Run(prepare());
    return true;
  } catch (const AutomationError& error) {
    verdict_->setText(Shown(error.Reason().empty() ? error.what() : error.Reason()));
  } catch (const Error& error) {
    verdict_->setText(Shown(error.Where().empty() ? error.what() : error.Where() + ": " + error.what()));
  } catch (const std::exception& error) {
    verdict_->setText(Shown(error.what()));
  }
  return false;
}

void SettingsWindow::Read() {
  if (shown_ == nullptr || value_ == nullptr || !Allows(*shown_, CallKind::kGet)) return;
  QString text;
  const bool done =
      Carry([&] { return [&, indexes = Indexes()] { text = TextOf(dialog_->Get(shown_->name, indexes)); }; });
  value_->setText(done ? text : QString());
}

void SettingsWindow::Set() {
  if (shown_ == nullptr) return;
  const bool makes = value_ == nullptr;
  const bool done = Carry([&] {
    const Variant value = makes ? Variant() : ValueOf(value_->text(), shown_->put);
    return [&, value, indexes = Indexes()] {
      makes ? void(dialog_->Get(shown_->name, indexes)) : dialog_->Put(shown_->name, value, indexes);
    };
  });
  if (done) Read();
  if (done) verdict_->setText(tr("Done."));
  emit changed();
}

}  // namespace brenvolt::desktop
