// What a person does on the dialogs' controls, recorded as a macro, and the same done again by its lines.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "brv_sra/fitting/dialogs/fit_options_dialog.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/design_editor_templates.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/automation/macro_recorder.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/tables/csv.h"

namespace brenvolt::sra {
namespace {

using Numbers = std::vector<std::int16_t>;

// An analysis at its startup dialog, over a sheet that is the same each time.
struct Desk {
  static constexpr std::size_t kCases = 40;

  HeadlessUserInterface person;
  Spreadsheet sheet{"data", kCases, 4};
  CAnalysisDoc document{person, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  Desk() {
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < kCases; ++i)
        values[i] = static_cast<double>((i * (2 * v + 3)) % 13 + 1) + (v == 1 ? 0.1 : 0);
    }
    document.SetSelectionApplier([](Spreadsheet& table, const std::string& condition) {
      CaseSelection selection{true, condition, std::vector<std::uint8_t>(table.CaseCount(), 1)};
      selection.accepted.front() = 0;
      table.SetSelection(std::move(selection));
    });
    analysis->AttachDocument(&document);
    analysis->RunSequenceStep(step::kStartup);
  }
  CAnalysisDialog& Dialog() { return *analysis->GetDialog(); }

  // Everything that stays: what was shown, and what the input carries.
  std::string Remains() const {
    std::string text;
    for (const auto& shown : person.documents) text += CsvText(shown->Table(), {});
    text += std::to_string(person.graphs.size()) + " graphs, weights " +
            std::to_string(sheet.WeightVariable().value_or(99)) + ", selection " +
            sheet.Selection().condition + "\n";
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
      for (const auto& [key, value] : sheet.VariableAt(v).Properties()) text += key + value + "\n";
    }
    return text;
  }
};

// Runs the lines that recordings of dialogs have.
class Replay {
 public:
  explicit Replay(Desk& desk) : desk_(desk) {}

  void Run(const std::string& macro) {
    for (std::size_t begin = macro.find("\n\n") + 2; begin < macro.size();) {
      const std::size_t end = macro.find('\n', begin);
      RunLine(macro.substr(begin, end - begin));
      begin = end + 1;
    }
  }

 private:
  void RunLine(const std::string& line) {
    static const std::map<std::string, std::string> kSheetLines{
        {"analysis.Sheet.weight_variable = \"Var3\"", "weights"},
        {"analysis.Sheet.selection = \"Var1 > 1\"", "selection"}};
    if (line.empty()) return;
    if (line == "dialog = analysis.Dialog") {
      dialog_ = desk_.analysis->GetDialgInterface();
    } else if (const auto found = kSheetLines.find(line); found != kSheetLines.end()) {
      if (found->second == "weights") desk_.sheet.SetWeightVariable(2);
      if (found->second == "selection") desk_.document.ApplySelection("Var1 > 1");
    } else {
      ASSERT_TRUE(line.starts_with("dialog.")) << line;
      RunCall(line.substr(line.find('.') + 1));
    }
  }
  void RunCall(const std::string& call) {
    const std::size_t nameEnd = std::min(call.find_first_of("[( "), call.size());
    const std::string name = call.substr(0, nameEnd);
    const std::size_t equals = call.find(" = ");
    std::vector<Variant> indexes;
    if (call[nameEnd] == '[')
      indexes.emplace_back(Value(call.substr(nameEnd + 1, call.find(']') - nameEnd - 1)));
    if (equals != std::string::npos) {
      dialog_->Put(name, Value(call.substr(equals + 3)), indexes);
    } else if (call.ends_with("()")) {
      const Variant result = dialog_->Call(name);
      EXPECT_TRUE(result.IsEmpty() || result.ToBoolean()) << call;
    } else {
      dialog_->Get(name, indexes);
    }
  }
  static Variant Value(const std::string& text) {
    if (text == "True" || text == "False") return text == "True";
    if (text == "Nothing") return -444;
    if (text.starts_with("Array(")) return List(text.substr(6, text.size() - 7));
    if (text.starts_with('"')) return text.substr(1, text.size() - 2);
    if (const auto number = ParseNumber(text)) return *number;
    return text;  // a constant, which goes by its name
  }

  // The elements between the brackets of an array.
  static Variant List(const std::string& elements) {
    Variant::Array values;
    std::size_t begin = 0;
    int depth = 0;
    for (std::size_t i = 0; i <= elements.size(); ++i) {
      const char c = i < elements.size() ? elements[i] : ',';
      if (c == '(') ++depth;
      if (c == ')') --depth;
      if (c != ',' || depth > 0) continue;
      if (i > begin) values.push_back(Value(elements.substr(begin, i - begin)));
      begin = i + 2;  // past the blank
    }
    return values;
  }

  Desk& desk_;
  std::shared_ptr<AutomationObject> dialog_;
};

void Specify(Desk& desk) {
  using namespace fit_dialog;
  using enum DistributionCode;
  desk.person.variableAnswers.emplace_back([](VariableQuestion& question) {
    question.first = Numbers{1, 2};
    question.second = Numbers{};
  });
  EXPECT_TRUE(desk.Dialog().Press(kVariables));
  EXPECT_TRUE(desk.Dialog().Check(CheckOf(kWeibull), true));
  EXPECT_TRUE(desk.Dialog().Enter(FieldOf(kWeibull), "0.125"));
  EXPECT_TRUE(desk.Dialog().Press(kContinuousNext));
  EXPECT_TRUE(desk.Dialog().Press(kContinuousClearAll));
  EXPECT_TRUE(desk.Dialog().Check(CheckOf(kNormal), true));
  EXPECT_TRUE(desk.Dialog().Check(CheckOf(kLogNormal), true));
  EXPECT_TRUE(desk.Dialog().Check(kCasewise, true));
  desk.person.modalAnswers.emplace_back([](CAnalysisModalDialog& options) {
    options.Check(fit_options::kContinuousAndersonDarling, true);
    options.Press(kControlOk);
  });
  EXPECT_TRUE(desk.Dialog().Press(kOptions));
  ASSERT_TRUE(desk.Dialog().Press(kControlOk)) << desk.person.messages.back().text;
}

void LookAndSave(Desk& desk) {
  using namespace fit_results;
  EXPECT_TRUE(desk.Dialog().Press(kNext));
  EXPECT_TRUE(desk.Dialog().Select(kDistribution, 1));
  EXPECT_TRUE(desk.Dialog().Press(kQuantilePlot));
  EXPECT_TRUE(desk.Dialog().Press(kDistributionSummary));
  EXPECT_TRUE(desk.Dialog().Press(kSaveNext));
  EXPECT_TRUE(desk.Dialog().Press(kMoveDown));
  EXPECT_TRUE(desk.Dialog().Check(kTruncateBelow, true));
  EXPECT_TRUE(desk.Dialog().Enter(kTruncationMinimum, "0.5"));
  EXPECT_TRUE(desk.Dialog().Press(kSaveFit));
  EXPECT_TRUE(desk.Dialog().Press(kControlCancel));
  EXPECT_TRUE(desk.Dialog().Press(kControlCancel));
}

void Simulate(Desk& desk) {
  using namespace simulation_dialog;
  EXPECT_TRUE(desk.Dialog().Check(kImanConover, true));
  EXPECT_TRUE(desk.Dialog().Check(kLatinHypercube, true));
  EXPECT_TRUE(desk.Dialog().Enter(kNumberOfSamples, "25"));
  EXPECT_TRUE(desk.Dialog().Check(kSeedSwitch, true));
  EXPECT_TRUE(desk.Dialog().Enter(kSeed, "7"));
  EXPECT_TRUE(desk.Dialog().Press(kSimulate));
  EXPECT_TRUE(desk.Dialog().Press(kControlOk));
}

TEST(Recording, ActionsOnControlsReplayToTheSameResults) {
  Desk desk;
  MacroRecorder recorder;
  desk.analysis->SetRecorder(&recorder);
  desk.person.weightAnswers.emplace_back([](WeightQuestion& question) { question.variable = 3; });
  desk.person.selectionAnswers.emplace_back([](SelectionQuestion& question) {
    question.enabled = true;
    question.condition = "Var1 > 1";
  });
  EXPECT_TRUE(desk.Dialog().Press(define_task::kCaseWeights));
  EXPECT_TRUE(desk.Dialog().Press(define_task::kSelectionConditions));
  EXPECT_TRUE(desk.Dialog().Select(define_task::kTaskList, 0));
  EXPECT_TRUE(desk.Dialog().DoubleClick(define_task::kTaskList));
  ASSERT_NO_FATAL_FAILURE(Specify(desk));
  LookAndSave(desk);
  EXPECT_TRUE(desk.Dialog().Press(define_task::kRunSimulation));
  Simulate(desk);
  EXPECT_TRUE(desk.person.messages.empty());
  const std::string macro = recorder.Text("a person");

  Desk other;
  Replay(other).Run(macro);
  EXPECT_EQ(other.Remains(), desk.Remains()) << macro;
  EXPECT_EQ(other.analysis->CurrentStep(), desk.analysis->CurrentStep());
  EXPECT_GE(desk.person.documents.size(), 4U);
  EXPECT_EQ(desk.person.graphs.size(), 1U);
}

// What sub-editors do is recorded as puts of what they changed.
TEST(Recording, DesignByItsEditorsReplaysToTheSameInput) {
  Desk desk;
  MacroRecorder recorder;
  desk.person.messageAnswers = {MessageAnswer::kCancel};  // no matrix file is made of the data
  EXPECT_TRUE(desk.Dialog().Press(define_task::kDesignSimulation));
  desk.analysis->SetRecorder(&recorder);
  const auto edit = [&](std::int32_t button, int variable, const auto& act) {
    desk.Dialog().Select(design_dialog::kVariableList, variable);
    desk.person.modalAnswers.emplace_back([act](CAnalysisModalDialog& editor) {
      act(editor);
      EXPECT_TRUE(editor.Press(kControlOk));
    });
    EXPECT_TRUE(desk.Dialog().Press(button));
  };
  edit(design_dialog::kEditDistribution, 1, [](CAnalysisModalDialog& editor) {
    editor.Enter(design_distribution::kParameter, "5");
    editor.Enter(design_distribution::kParameter + 1, "2");
    editor.Enter(design_distribution::kMinimum, "0");
  });
  edit(design_dialog::kEditDistribution, 2, [](CAnalysisModalDialog& editor) {
    editor.Select(design_distribution::kTypes, static_cast<int>(DistributionCode::kPoisson));
    editor.Enter(design_distribution::kParameter, "3");
  });
  edit(design_dialog::kEditCorrelations, 0, [](CAnalysisModalDialog& editor) {
    editor.Select(design_correlations::kFirst, 2);
    editor.Enter(design_correlations::kCorrelation, "0.5");
    editor.Enter(design_correlations::kMean, "4");
  });
  edit(design_dialog::kEditDefaults, 0, [](CAnalysisModalDialog& editor) {
    editor.Select(design_defaults::kVariables, 3);
    editor.Check(design_defaults::kTakesPart, false);
    editor.Check(design_defaults::kUseFitted, true);
  });
  EXPECT_TRUE(desk.Dialog().Press(design_dialog::kSaveToInput));
  EXPECT_TRUE(desk.Dialog().Press(design_dialog::kCorrelationMatrix));
  const std::string macro = recorder.Text("a person");
  desk.analysis->SetRecorder(nullptr);
  EXPECT_NE(macro.find("dialog.IsVariableLeftOut[4] = True\n"), std::string::npos) << macro;

  Desk other;
  other.analysis->RunSequenceStep(step::kDesign);
  Replay(other).Run(macro);
  EXPECT_EQ(other.Remains(), desk.Remains()) << macro;
  EXPECT_NE(desk.Remains().find("zOrder"), std::string::npos);
}

// Continuing with the old data would be another job.
TEST(Recording, MacroStopsWhereOtherDataWereOpenedFromADialog) {
  Desk desk;
  Spreadsheet other{"other", 3, 1};
  desk.document.SetDataOpener([&](const std::filesystem::path&) { return &other; });
  MacroRecorder recorder;
  desk.analysis->SetRecorder(&recorder);
  desk.person.fileAnswers.push_back({"other.csv"});
  EXPECT_TRUE(desk.Dialog().Press(define_task::kOpenData));
  EXPECT_TRUE(recorder.Text("x").starts_with("# x\nfrom brenvolt import *\n\nraise SystemExit("));
  desk.analysis->SetRecorder(nullptr);
}

// The lines themselves: nothing for what changes nothing, or is refused; nothing of actions inside actions.
TEST(Recording, OnlyWhatAnActionChangedBecomesALine) {
  Desk desk;
  desk.Dialog().Press(define_task::kFitDistribution);
  desk.analysis->GetDialgInterface()->Put("ContinuousVariable", "1-2");
  MacroRecorder recorder;
  desk.analysis->SetRecorder(&recorder);
  using namespace fit_dialog;
  using enum DistributionCode;
  CAnalysisDialog& dialog = desk.Dialog();
  dialog.Check(CheckOf(kNormal), true);   // it is checked already
  dialog.Press(kContinuousNext);          // shows another variable
  dialog.Select(kContinuousVariable, 9);  // refused
  desk.analysis->GetDialgInterface()->Get("IsWeibullDistribution", std::vector<Variant>{1});
  EXPECT_TRUE(recorder.IsEmpty()) << recorder.Text("");
  dialog.Press(kContinuousNext);  // the question showed the first variable
  dialog.Check(CheckOf(kNormal), false);
  dialog.Check(kCasewise, true);
  desk.analysis->GetDialgInterface()->Put("IsNormalDistribution", 1, 1);
  desk.analysis->GetDialgInterface()->Put("BootstrapSamples", 5.0);
  EXPECT_THROW(desk.analysis->GetDialgInterface()->Put("BootstrapSamples", -1), Error);
  EXPECT_EQ(recorder.Text("x"),
            "# x\nfrom brenvolt import *\n\ndialog = analysis.Dialog\n"
            "dialog.IsNormalDistribution[2] = False\n"
            "dialog.IsCasewise = 1\n"
            "dialog.IsNormalDistribution[1] = True\n"
            "dialog.BootstrapSamples = 5\n");
  desk.analysis->SetRecorder(nullptr);
}

}  // namespace
}  // namespace brenvolt::sra
