// The user-interface port: everything that an analysis asks of the user in front of it. Dialog logic never
// knows which implementation answers.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/controls/progress_bar.h"

namespace brenvolt {

class CAnalysisGraphDoc;
class CAnalysisModalDialog;
class CAnalysisTableDoc;

enum class MessageButtons : std::uint8_t { kOk, kOkCancel };
enum class MessageIcon : std::uint8_t { kNone, kInformation, kWarning, kError };
enum class MessageAnswer : std::uint8_t { kOk, kCancel };

// What front ends tell messages apart by.
enum class MessageKind : std::uint8_t {
  kOther,
  kReasonOfVariable  // the results of the run give it, too, as the reason why a variable has no fits
};

struct Message {
  std::string text;
  std::string where;  // what the text is about, a variable or a case; may be empty
  std::string caption;
  MessageButtons buttons = MessageButtons::kOk;
  MessageIcon icon = MessageIcon::kWarning;
  MessageKind kind = MessageKind::kOther;
};

struct FileQuestion {
  std::string title;
  std::string filter;
  std::string defaultExtension;
};

// The two-list variable selection: variables are numbered from 1.
struct VariableQuestion {
  std::string caption;
  std::string firstListCaption;
  std::string secondListCaption;
  std::vector<std::string> names;
  std::vector<std::int16_t> first;
  std::vector<std::int16_t> second;
  bool takesNames =
      false;  // new names may be added to `names`; they are chosen by their numbers as the others are
};

// The selection conditions of the input: which cases an analysis uses.
struct SelectionQuestion {
  bool enabled = false;
  std::string condition;
};

// The case weights of the input: the number of the variable that weights the cases, 0 for none.
struct WeightQuestion {
  std::vector<std::string> names;
  std::size_t variable = 0;
};

// What an analysis says of a matrix: for people, and the eigenvalues, ascending, if it has any.
struct MatrixVerdict {
  std::string text;
  std::vector<double> eigenvalues;
  std::vector<std::string> changes;  // of a repair: a line for each entry that it changes
};

// The editor of a symmetric matrix: its cells as they are typed, row by row.
struct MatrixQuestion {
  std::string title;
  std::string note;
  std::vector<std::string> names;  // of the rows and of the columns
  std::vector<std::string> cells;
  // Judges the entries of a matrix, row by row, while it is edited; a front end may call it on its own thread until the
  // question is answered. May be empty.
  std::function<MatrixVerdict(const std::vector<double>&)> judge;
};

class UserInterface : public ProgressPort {
 public:
  virtual MessageAnswer ShowMessage(const Message& message) = 0;
  // The chosen files; none when the user cancelled.
  virtual std::vector<std::filesystem::path> ChooseFiles(const FileQuestion& question) = 0;
  // Fills the two lists; false, and the lists as they were, when the user cancelled.
  virtual bool SelectVariables(VariableQuestion& question) = 0;
  // The editors of the selection conditions, of the case weights and of a matrix; the same answers. A front
  // end without them cancels.
  virtual bool EditSelection(SelectionQuestion& /*question*/) { return false; }
  virtual bool EditWeights(WeightQuestion& /*question*/) { return false; }
  virtual bool EditMatrix(MatrixQuestion& /*question*/) { return false; }
  // Lets the user act on a modal dialog until it is no longer open. A front end that returns before has
  // cancelled it.
  virtual void RunModal(CAnalysisModalDialog& dialog) = 0;
  // Show a finished document, which the receiver may keep.
  virtual void ShowDocument(std::shared_ptr<CAnalysisTableDoc> document) = 0;
  virtual void ShowGraph(std::shared_ptr<CAnalysisGraphDoc> graph) = 0;
  // Carries out a change of data that the user may be looking at: of the input table, or of a document that was shown.
  // A front end that shows them on a thread of its own does it there.
  virtual void Change(const std::function<void()>& change) { change(); }
};

}  // namespace brenvolt
