// What is known of one variable, beside the grid: its name, kind and missing-data code to change, how many values it has,
// and the distributions that it carries, in plain notation.
#pragma once

#include <QWidget>
#include <compare>
#include <functional>
#include <map>
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

  // Shows a variable until it is told of another one, and takes what was typed for the former one; none without a document,
  // and what was typed is given up. A distribution that cannot be taken is kept with its variable, to be mended.
  void Show(Document* document, Spreadsheet* sheet, std::size_t variable);
  // Takes what was typed and not finished, before a project is saved or closed.
  void Commit();

 signals:
  void refused(const QString& why);

 private:
  // Which variable of which sheet of which document.
  struct Place {
    const Document* document;
    std::string sheet;
    std::string variable;
    auto operator<=>(const Place&) const = default;
  };
  Place CurrentPlace() const { return {document_, sheet_->Name(), Current()->Name()}; }

  void Refresh();
  void ShowFacts(const Variable& variable);
  void ShowDistribution(const Variable& variable);
  // False if the document refuses it, which is said.
  bool Change(const QString& what, const std::function<void(VariableFacts& facts)>& change);
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
  QString described_;                // the distribution that the variable carries
  std::map<Place, QString> drafts_;  // distributions that could not be taken
  QLabel* properties_;
};

}  // namespace brenvolt::desktop
