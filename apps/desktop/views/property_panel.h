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

  // The properties of the variable once it is simulated from a distribution in that notation. Throws as PropertiesWith
  // does (host/jobs/dialogs/variable_design.h).
  using Designer = std::function<std::vector<std::pair<std::string, std::string>>(
      const Variable& variable, const std::string& distribution)>;

  PropertyPanel(Describer describer, Designer designer, QWidget* parent = nullptr);

  // Shows a variable until it is told of another one; none without a document.
  void Show(Document* document, Spreadsheet* sheet, std::size_t variable);

 signals:
  void refused(const QString& why);

 private:
  void Refresh();
  void Change(const QString& what, const std::function<void(VariableFacts& facts)>& change);
  void Rename();
  void ChangeMissingCode();
  void ChangeDistribution();
  void PointAt(const QString& fault, std::size_t character);
  const Variable* Current() const;

  Describer describer_;
  Designer designer_;
  Document* document_ = nullptr;
  Spreadsheet* sheet_ = nullptr;
  std::size_t variable_ = 0;
  QMetaObject::Connection connection_;
  QLineEdit* name_;
  QLineEdit* missingCode_;
  QLabel* kind_;
  QLabel* counts_;
  QLabel* range_;
  QLineEdit* distribution_;
  QLabel* fault_;
  QString described_;  // the distribution that the variable carries
  QLabel* properties_;
};

}  // namespace brenvolt::desktop
