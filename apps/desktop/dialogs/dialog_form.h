// A dialog template as widgets: tabs, groups and rows as the template has them, every control by its number. One
// renderer for all templates; what is beside the tabs stands in a column at the right, OK and Cancel at its top.
#pragma once

#include <QWidget>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "apps/desktop/dialogs/control_widget.h"
#include "host/controls/control_set.h"
#include "host/controls/dialog_template.h"

class QGridLayout;
class QHBoxLayout;
class QTabWidget;
class QVBoxLayout;

namespace brenvolt::desktop {

class DialogForm : public QWidget {
 public:
  // `source` and what the actions refer to must outlive the form.
  DialogForm(const DialogTemplate& source, ControlActions actions);
  ~DialogForm() override;

  // Shows the states of all controls.
  void Show(const ControlSet& controls);
  // Hands over what was typed into fields and not yet handed over. False if there was nothing.
  bool Commit();
  // The control that has the keyboard first.
  void FocusFirst();
  // Null for a number that the template does not have.
  QWidget* WidgetOf(std::int32_t number) const;

 private:
  ControlWidget& Add(const ControlTemplate& control);
  QWidget* MakePage(const TabTemplate& tab);
  QWidget* MakeGroup(const GroupTemplate& group);
  QWidget* MakeColumn(const std::vector<RowTemplate>& rows);
  void FillRows(const std::vector<RowTemplate>& rows, QGridLayout& grid);
  void AddButtonRows(const std::vector<RowTemplate>& rows, std::size_t first, std::size_t end,
                     QGridLayout& grid);
  void AddRow(const RowTemplate& row, QGridLayout& grid);
  void AddToRow(ControlWidget& control, ControlKind kind, bool isLead, QHBoxLayout& layout);
  void NameAfterNeighbours(const RowTemplate& row, const QString& otherwise);
  void OrderTabs(QWidget& column);

  const DialogTemplate& template_;
  const ControlActions actions_;
  std::map<std::int32_t, std::unique_ptr<ControlWidget>> controls_;
  std::vector<ControlWidget*> inOrder_;
  // A group, and the controls in it: it is shown while one of them is.
  std::vector<std::pair<QWidget*, std::vector<std::int32_t>>> groups_;
  // A label or check box, and the control after it, which it names.
  std::vector<std::pair<QWidget*, QWidget*>> names_;
  QString place_;  // the caption under which controls are being added
};

}  // namespace brenvolt::desktop
