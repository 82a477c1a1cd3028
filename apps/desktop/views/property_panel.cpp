#include "apps/desktop/views/property_panel.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <cmath>
#include <limits>

#include "apps/desktop/base/shown_number.h"
#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/jobs/notation/distribution_notation.h"
#include "host/tables/editing/sheet_structure.h"

namespace brenvolt::desktop {
namespace {

struct Summary {
  std::size_t valid = 0;
  double minimum = std::numeric_limits<double>::infinity();
  double maximum = -std::numeric_limits<double>::infinity();
};

Summary SummaryOf(const Variable& variable) {
  Summary summary;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (variable.IsMissing(i)) continue;
    ++summary.valid;
    summary.minimum = std::min(summary.minimum, variable.Values()[i]);
    summary.maximum = std::max(summary.maximum, variable.Values()[i]);
  }
  return summary;
}

QLabel* NewLabel() {
  auto* label = new QLabel;
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  return label;
}

}  // namespace

PropertyPanel::PropertyPanel(Describer describer, Designer designer, QWidget* parent)
    : QWidget(parent),
      describer_(std::move(describer)),
      designer_(std::move(designer)),
      name_(new QLineEdit),
      missingCode_(new QLineEdit),
      kind_(NewLabel()),
      counts_(NewLabel()),
      range_(NewLabel()),
      distribution_(new QLineEdit),
      fault_(NewLabel()),
      properties_(NewLabel()) {
  auto* form = new QFormLayout(this);
  form->setRowWrapPolicy(QFormLayout::WrapLongRows);
  form->addRow(tr("&Name:"), name_);
  form->addRow(tr("Kind:"), kind_);
  form->addRow(tr("Values:"), counts_);
  form->addRow(tr("Range:"), range_);
  form->addRow(tr("&Missing code:"), missingCode_);
  form->addRow(tr("&Distribution:"), distribution_);
  form->addRow(fault_);
  form->addRow(tr("Properties:"), properties_);
  name_->setObjectName(QStringLiteral("variableName"));
  missingCode_->setObjectName(QStringLiteral("missingCode"));
  distribution_->setObjectName(QStringLiteral("distribution"));
  distribution_->setPlaceholderText(tr("none, or such as normal(50, 2)"));
  distribution_->setToolTip(tr(
      "What the variable is simulated from, such as normal(50, 2) or triangular(100, 180, 120) in [, 170]"));
  fault_->setObjectName(QStringLiteral("distributionFault"));
  connect(distribution_, &QLineEdit::editingFinished, this, &PropertyPanel::ChangeDistribution);
  connect(distribution_, &QLineEdit::textEdited, fault_, &QLabel::clear);
  missingCode_->setPlaceholderText(tr("none"));
  missingCode_->setToolTip(tr("A number that stands for a missing value; empty cells are always missing"));
  connect(name_, &QLineEdit::editingFinished, this, &PropertyPanel::Rename);
  connect(missingCode_, &QLineEdit::editingFinished, this, &PropertyPanel::ChangeMissingCode);
  Refresh();
}

void PropertyPanel::Show(Document* document, Spreadsheet* sheet, std::size_t variable) {
  if (document_ == document && sheet_ == sheet && variable_ == variable) return;
  if (document != nullptr) Commit();
  disconnect(connection_);
  document_ = document;
  sheet_ = sheet;
  variable_ = variable;
  if (document != nullptr) connection_ = connect(document, &Document::edited, this, &PropertyPanel::Refresh);
  for (QLineEdit* const field : {name_, missingCode_, distribution_}) field->setModified(false);
  Refresh();
}

void PropertyPanel::Commit() {
  if (name_->isModified()) Rename();
  if (missingCode_->isModified()) ChangeMissingCode();
  if (distribution_->isModified()) ChangeDistribution();
  if (const Variable* const variable = Current(); variable != nullptr && !fault_->text().isEmpty())
    emit refused(tr("%1 keeps its distribution until what was typed for it is mended: %2")
                     .arg(Shown(variable->Name()), fault_->text()));
}

const Variable* PropertyPanel::Current() const {
  if (document_ == nullptr || sheet_ == nullptr || variable_ >= sheet_->VariableCount()) return nullptr;
  return &sheet_->VariableAt(variable_);
}

void PropertyPanel::Refresh() {
  const Variable* variable = Current();
  setEnabled(variable != nullptr);
  if (variable == nullptr) {
    name_->clear();
    missingCode_->clear();
    distribution_->clear();
    for (QLabel* label : {kind_, counts_, range_, fault_, properties_}) label->clear();
    described_.clear();
    return;
  }
  ShowFacts(*variable);
  ShowDistribution(*variable);
  QStringList lines;
  for (const auto& [key, value] : variable->Properties())
    lines << Shown(key) + QStringLiteral(": ") + Shown(value);
  properties_->setText(lines.isEmpty() ? QStringLiteral("–") : lines.join(QLatin1Char('\n')));
}

// Another edit leaves what is being typed.
void PropertyPanel::ShowFacts(const Variable& variable) {
  const Summary summary = SummaryOf(variable);
  const bool isText = variable.Type() == VariableType::kText;
  if (!name_->isModified()) name_->setText(Shown(variable.Name()));
  kind_->setText(isText ? tr("text, %n different", nullptr, static_cast<int>(variable.Labels().size()))
                        : tr("numbers"));
  counts_->setText(tr("%L1 valid, %L2 missing").arg(summary.valid).arg(variable.Size() - summary.valid));
  range_->setText(isText || summary.valid == 0
                      ? QStringLiteral("–")
                      : tr("%1 to %2").arg(ShownInFull(summary.minimum), ShownInFull(summary.maximum)));
  if (!missingCode_->isModified())
    missingCode_->setText(std::isnan(variable.MissingCode()) ? QString()
                                                             : ShownInFull(variable.MissingCode()));
}

void PropertyPanel::ShowDistribution(const Variable& variable) {
  described_ = variable.Properties().empty() ? QString() : describer_(variable);
  distribution_->setEnabled(variable.Type() != VariableType::kText);
  if (distribution_->isModified()) return;
  fault_->clear();
  const auto draft = drafts_.find(CurrentPlace());
  distribution_->setText(draft != drafts_.end() ? draft->second : described_);
  distribution_->setCursorPosition(0);
  if (draft != drafts_.end()) ChangeDistribution();
}

bool PropertyPanel::Change(const QString& what, const std::function<void(VariableFacts& facts)>& change) {
  const Variable* variable = Current();
  if (variable == nullptr) return false;
  SetFacts edit{sheet_->Name(), {{variable_, FactsOf(*variable)}}};
  change(edit.variables[0].second);
  if (AreSame(edit.variables[0].second, FactsOf(*variable))) return true;
  Edits edits;
  edits.emplace_back(std::move(edit));
  try {
    document_->Do(what, std::move(edits));
    return true;
  } catch (const Error& error) {
    emit refused(Shown(error.what()));
    return false;
  }
}

void PropertyPanel::Rename() {
  const Variable* const variable = Current();
  const std::string name = Utf8(name_->text().trimmed());
  name_->setModified(false);
  if (variable == nullptr) return;
  try {
    RequireFreeName(*sheet_, variable_, name);
    const auto draft = drafts_.extract(CurrentPlace());
    Change(tr("Rename variable"), [&](VariableFacts& facts) { facts.name = name; });
    if (!draft.empty()) drafts_[CurrentPlace()] = draft.mapped();
  } catch (const Error& error) {
    emit refused(Shown(error.what()));
  }
  Refresh();
}

void PropertyPanel::ChangeMissingCode() {
  const std::string text = Utf8(missingCode_->text().trimmed());
  std::optional<double> code = text.empty() ? GetDefaultMDValue() : ParseNumber(text, UserNumberLocale());
  missingCode_->setModified(false);
  if (!code) {
    emit refused(tr("Missing code: expected a number, got '%1'").arg(Shown(text)));
  } else {
    Change(tr("Change missing code"), [&](VariableFacts& facts) { facts.missingCode = *code; });
  }
  Refresh();
}

// What is wrong stays to be mended, with the cursor where it is.
void PropertyPanel::PointAt(const QString& fault, std::size_t character) {
  fault_->setText(fault);
  if (drafts_.insert_or_assign(CurrentPlace(), distribution_->text()).second) {
    connect(document_, &QObject::destroyed, this, [this, document = document_] {
      std::erase_if(drafts_, [&](const auto& draft) { return draft.first.document == document; });
    });
  }
  const auto place = std::min(static_cast<int>(character), static_cast<int>(distribution_->text().size()));
  distribution_->setSelection(place, 1);
}

// An empty text takes the distribution away.
void PropertyPanel::ChangeDistribution() {
  const Variable* variable = Current();
  const QString text = distribution_->text().trimmed();
  if (variable == nullptr || !fault_->text().isEmpty()) return;
  distribution_->setModified(false);
  if (text == described_) {
    drafts_.erase(CurrentPlace());
    return;
  }
  distribution_->setText(text);
  try {
    auto properties = designer_(*variable, Utf8(text));
    const bool isDone = Change(text.isEmpty() ? tr("Remove distribution") : tr("Change distribution"),
                               [&](VariableFacts& facts) { facts.properties = std::move(properties); });
    if (!isDone) return PointAt(tr("The distribution was not taken."), 0);
    drafts_.erase(CurrentPlace());
    Refresh();
  } catch (const NotationError& error) {
    PointAt(Shown(error.Where()) + QStringLiteral(": ") + Shown(error.what()), error.Place());
  } catch (const std::exception& error) {
    PointAt(Shown(error.what()), 0);
  }
}

}  // namespace brenvolt::desktop
