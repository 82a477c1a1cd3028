// What is known of one variable, beside the grid: its name, kind and missing-data code to change, how many values it has,
// and the distributions that it carries, in plain notation.
#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "apps/desktop/documents/document.h"

class QLabel;
class QLineEdit;

namespace brenvolt::desktop {

class PropertyPanel : public QWidget {
  Q_OBJECT

 public:
  // What a variable is simulated from, in the notation of distributions; empty if it carries none.
  using Describer = std::function<QString(const Variable& variable)>;

  explicit PropertyPanel(Describer describer, QWidget* parent = nullptr);

  // Shows a variable until it is told of another one; none without a document.
  void Show(Document* document, Spreadsheet* sheet, std::size_t variable);

 signals:
  void refused(const QString& why);

 private:
  void Refresh();
  void Change(const QString& what, const std::function<void(VariableFacts& facts)>& change);
  void Rename();
  void ChangeMissingCode();
  const Variable* Current() const;

  Describer describer_;
  Document* document_ = nullptr;
  Spreadsheet* sheet_ = nullptr;
  std::size_t variable_ = 0;
  QMetaObject::Connection connection_;
  QLineEdit* name_;
  QLineEdit* missingCode_;
  QLabel* kind_;
  QLabel* counts_;
  QLabel* range_;
  QLabel* distribution_;
  QLabel* properties_;
};

}  // namespace brenvolt::desktop
