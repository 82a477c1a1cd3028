#include "apps/desktop/port/analysis_run.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "apps/desktop/base/live_graphs.h"
#include "apps/desktop/base/text.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/analysis/dialog_automation.h"
#include "host/base/number_text.h"
#include "host/jobs/base/result_files.h"
#include "host/tables/editing/cell_text.h"

namespace brenvolt::desktop {
namespace {

constexpr int kProfile = 3;

// Whether a dialog of the sequence is the one that is open: another one may have taken its address, but not its
// automation object.
std::function<bool()> OpenTest(const CAnalysisSupport& analysis, CAnalysisDialog& dialog) {
  const auto automation = dialog.AutomationInterface();
  auto* const pointer = dynamic_cast<DialogAutomationBase*>(automation.get());
  return [&analysis, &dialog, automation, pointer] {
    return analysis.GetDialog() == &dialog && (pointer == nullptr || pointer->PointedDialog() == &dialog);
  };
}

// The members that make the rates of what misses a specification, and the pictures of what is selected.
constexpr const char* kRates = "DefectProfile";
constexpr const char* kSummary = "SummaryGraph";

// What is done while one exists is no line of a macro.
class Unrecorded {
 public:
  explicit Unrecorded(CAnalysisSupport& analysis) : analysis_(analysis), recorder_(analysis.Recorder()) {
    analysis_.SetRecorder(nullptr);
  }
  ~Unrecorded() { analysis_.SetRecorder(recorder_); }
  Unrecorded(const Unrecorded&) = delete;
  Unrecorded& operator=(const Unrecorded&) = delete;

 private:
  CAnalysisSupport& analysis_;
  MacroRecorder* recorder_;
};

}  // namespace

AnalysisRun::AnalysisRun(EngineThread& engine, DocumentSink& sink, Spreadsheet& sheet, QWidget& owner)
    : engine_(engine),
      owner_(owner),
      sink_(*this, sink),
      interface_(engine, sink_, owner),
      application_(interface_),
      input_(interface_, &sheet) {
  OfferResultFiles(input_);
  interface_.SetInput([this] { return input_.InputTable(); });
  input_.SetDataOpener([this, &sink](const std::filesystem::path& path) {
    Spreadsheet* opened = nullptr;
    engine_.Ask([&] { opened = sink.OpenData(path); });
    return opened;
  });
  engine_.Run([this] { analysis_ = application_.NewAnalysis(input_); });
  LiveGraphs::All().Add(*this);
}

AnalysisRun::~AnalysisRun() {
  LiveGraphs::All().Remove(*this);
  delete window_;
  isOpen_ = nullptr;
  engine_.Run([this] { analysis_.reset(); });
}

void AnalysisRun::Show() {
  if (window_ != nullptr && isOpen_ && isOpen_()) {
    window_->Refresh();
    window_->show();
    window_->raise();
    return;
  }
  Follow();
}

bool AnalysisRun::Begin(int task) {
  bool began = false;
  engine_.Run([&] {
    const auto dialog = analysis_->GetDialgInterface();
    if (dialog == nullptr) return;
    dialog->Put("TypeOfAnalysis", std::int32_t{task});
    // A person may type formulas as well as load models.
    if (task == kProfile) dialog->Put("AutoProfiler", std::int32_t{1});
    began = dialog->Call("OK").ToInteger() != 0;
  });
  Show();
  return began;
}

void AnalysisRun::OpenWindow(CAnalysisDialog& dialog, const QPoint* place) {
  isOpen_ = OpenTest(*analysis_, dialog);
  window_ = new DialogWindow(engine_, dialog, isOpen_, &owner_);
  window_->setAttribute(Qt::WA_DeleteOnClose, false);
  connect(window_, &DialogWindow::operated, this, &AnalysisRun::Follow);
  connect(window_, &DialogWindow::rowChosen, this, &AnalysisRun::FollowChoice);
  connect(window_, &DialogWindow::failed, this, [this](const QString& what) { interface_.ShowFault(what); });
  if (place != nullptr) window_->move(*place);
  window_->show();
}

// The next dialog stands where the last one stood.
void AnalysisRun::Follow() {
  if (window_ != nullptr && isOpen_ && isOpen_()) return;
  QPoint place;
  const bool hasPlace = window_ != nullptr;
  made_.clear();
  if (hasPlace) {
    place = window_->pos();
    window_->Forget();
    window_->hide();
    // The window is in the middle of telling that it is done.
    window_->deleteLater();
    window_ = nullptr;
  }
  CAnalysisDialog* const open = analysis_->GetDialog();
  if (open != nullptr) {
    OpenWindow(*open, hasPlace ? &place : nullptr);
    emit windowChanged();
  } else {
    isOpen_ = nullptr;
    emit ended();
  }
}

void AnalysisRun::RememberingSink::TakeDocument(std::shared_ptr<CAnalysisTableDoc> document) {
  const std::int32_t button = run_.window_ != nullptr ? run_.window_->PressedButton() : 0;
  if (button != 0) withTables_ = button;
  sink_.TakeDocument(std::move(document));
}

void AnalysisRun::RememberingSink::TakeGraph(std::shared_ptr<CAnalysisGraphDoc> graph) {
  const std::int32_t button = run_.window_ != nullptr ? run_.window_->PressedButton() : 0;
  if (button != 0 && button != withTables_) {
    run_.made_.push_back({graph, button});
  } else if (graph->Content().kind == GraphKind::kSummary) {
    run_.made_.push_back({graph, 0});
  }
  sink_.TakeGraph(std::move(graph));
}

AnalysisRun::MadeGraph* AnalysisRun::MadeOf(const CAnalysisGraphDoc& graph) {
  const auto found =
      std::ranges::find_if(made_, [&](const MadeGraph& one) { return one.graph.get() == &graph; });
  return found != made_.end() ? &*found : nullptr;
}

WindowInterface::Handed AnalysisRun::MakeQuietly(std::int32_t button) {
  const Unrecorded unrecorded(*analysis_);
  return interface_.Quietly([&] {
    if (button == 0) {
      analysis_->GetDialgInterface()->Get(kSummary);
    } else if (CAnalysisDialog* const dialog = analysis_->GetDialog()) {
      dialog->Press(button);
    }
  });
}

// The picture that is looked at shows what is chosen now, and otherwise the one that was made last. Those that were shown
// unasked belong to other choices, and stay.
void AnalysisRun::FollowChoice() {
  std::vector<MadeGraph> asked;
  std::ranges::copy_if(made_, std::back_inserter(asked),
                       [](const MadeGraph& one) { return one.button != 0; });
  if (asked.empty() || engine_.IsBusy() || !isOpen_ || !isOpen_()) return;
  const auto looked = std::ranges::find_if(
      asked, [](const MadeGraph& one) { return LiveGraphs::All().IsLookedAt(one.graph); });
  const MadeGraph wanted = looked != asked.end() ? *looked : asked.back();
  WindowInterface::Handed shown;
  engine_.Run([&] { shown = MakeQuietly(wanted.button); });
  MadeGraph* const made = MadeOf(*wanted.graph);
  if (made == nullptr || shown.graphs.size() != 1 || !shown.tables.empty()) return;
  made->graph = shown.graphs.front();
  emit LiveGraphs::All().replaced(wanted.graph, shown.graphs.front());
}

bool AnalysisRun::CanMove(const CAnalysisGraphDoc& graph, const PictureLimit& limit) {
  if (engine_.IsBusy() || MadeOf(graph) == nullptr || !isOpen_ || !isOpen_()) return false;
  const auto automation = analysis_->GetDialgInterface();
  const auto* const described = dynamic_cast<const DialogAutomationBase*>(automation.get());
  return described != nullptr &&
         std::ranges::any_of(described->Interface().members, [&](const MemberDescription& member) {
           return member.name == limit.name && Allows(member, CallKind::kPut);
         });
}

// The limit is a setting of the dialog, like any that is typed; one that the dialog refuses, or that leaves no rates, is
// taken back.
MovedLimit AnalysisRun::Move(const CAnalysisGraphDoc& graph, const PictureLimit& limit, double value,
                             bool isLast) {
  MovedLimit moved;
  if (!CanMove(graph, limit)) return moved;
  MadeGraph& made = *MadeOf(graph);
  try {
    engine_.Run([&] {
      const auto dialog = analysis_->GetDialgInterface();
      const auto select = [&] { dialog->Put("ResultsVariables", Variant::Array{limit.about}); };
      const auto put = [&](const Variant& wanted) {
        select();
        dialog->Put(limit.name, wanted);
      };
      Variant former;
      {
        const Unrecorded unrecorded(*analysis_);
        select();
        former = dialog->Get(limit.name);
        put(value);
        moved = Remake(made, limit);
        if (moved.graph == nullptr || isLast) put(former);
      }
      if (moved.graph != nullptr && isLast) put(value);
    });
  } catch (const std::exception& error) {
    moved.words = Shown(error.what());
  }
  if (window_ != nullptr) window_->Refresh();
  return moved;
}

namespace {

// The row of a table that its first column says to be about a variable, in words.
QString RowOf(const Spreadsheet& table, const std::string& variable) {
  constexpr std::size_t kMostColumns = 3;
  QStringList lines;
  const auto textOf = [&](std::size_t column, std::size_t row) {
    return CellText(table.VariableAt(column), row, UserNumberLocale());
  };
  for (std::size_t row = 0; row < table.CaseCount() && lines.isEmpty(); ++row) {
    if (table.VariableCount() == 0 || textOf(0, row) != variable) continue;
    for (std::size_t i = 1; i < std::min(table.VariableCount(), kMostColumns + 1); ++i)
      lines << Shown(table.VariableAt(i).Name()) + QStringLiteral(": ") + Shown(textOf(i, row));
  }
  return lines.join(u'\n');
}

}  // namespace

MovedLimit AnalysisRun::Remake(MadeGraph& made, const PictureLimit& limit) {
  MovedLimit moved;
  WindowInterface::Handed picture = MakeQuietly(made.button);
  WindowInterface::Handed rates;
  std::string refusal;
  try {
    rates = interface_.Quietly([&] { analysis_->GetDialgInterface()->Get(kRates); });
  } catch (const AutomationError& error) {
    refusal = error.Reason().empty() ? error.what() : error.Reason();
  }
  if (picture.graphs.size() != 1 || !refusal.empty()) {
    moved.words = Shown(refusal.empty() ? picture.message : refusal);
    return moved;
  }
  moved.tables = std::move(rates.tables);
  if (!moved.tables.empty()) moved.words = RowOf(moved.tables.front()->Table(), limit.about);
  moved.graph = made.graph = picture.graphs.front();
  return moved;
}

}  // namespace brenvolt::desktop
