// Every member of every dialog, driven by the type library: each is read and written, each refuses what is
// wrong, and none reaches a dialog that is closed.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/loaded_module.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/automation/automation_failure.h"
#include "host/automation/conversion.h"
#include "host/automation/dialog_interface.h"

namespace brenvolt::sra {
namespace {

using enum AutomationType;

// Two continuous variables and one discrete one; each dialog opens ready for its work.
struct Automation : testing::Test {
  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", 60, 3};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  Automation() {
    for (std::size_t v = 0; v < 3; ++v) {
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = static_cast<double>((i * (v + 3) * 7) % 23 + 1);
    }
    analysis->AttachDocument(&document);
    analysis->RunSequenceStep(step::kInit);
  }
  std::shared_ptr<AutomationObject> Dialog() { return analysis->GetDialgInterface(); }
  void OpenFit() {
    analysis->RunSequenceStep(step::kFit);
    Dialog()->Put("Variables", "1-2 | 3");
  }
  void OpenResults() {
    OpenFit();
    EXPECT_EQ(Dialog()->Call("OK").ToInteger(), 1);
  }
  void OpenSimulation() {
    OpenResults();
    Dialog()->Get("SaveDistributionFit");
    analysis->RunSequenceStep(step::kSimulation);
  }
  void OpenSimulationResults() {
    OpenSimulation();
    EXPECT_EQ(Dialog()->Call("OK").ToInteger(), 1);
  }
  // A model whose predictors the data lack, one of them random, a formula, and one simulation.
  void OpenProfiler() {
    analysis->RunSequenceStep(step::kProfiler);
    Dialog()->Put("LoadModels",
                  BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/RegressionOzone.pmml");
    const std::size_t predictors = Dialog()->Get("Predictors").ToArray().size();
    for (std::size_t j = 1; j <= predictors; ++j) {
      const std::vector<Variant> place{static_cast<std::int32_t>(j)};
      Dialog()->Put("VariableDistributionParams", Variant::Array{"Fixed", 1.0}, std::span(place));
    }
    const std::vector<Variant> first{1};
    Dialog()->Put("VariableDistributionParams", Variant::Array{"Normal", 10.0, 2.0}, std::span(first));
    Dialog()->Put("PredictionFormula", "Other = Var1");  // a predictor that the data have
    Dialog()->Put("LSL", -100);
    Dialog()->Put("USL", 100);
    Dialog()->Put("Target", 0);
    Dialog()->Put("StdDevY", 1);
    Dialog()->Get("SimulationResults");
  }
  struct Opening {
    const char* interface;
    std::function<void()> open;
  };
  std::vector<Opening> Openings() {
    return {{"SRAStartup",
             [this] {
               analysis->RunSequenceStep(step::kStartup);
               Dialog()->Put("TypeOfAnalysis", "scSRASimulationProfiler");
             }},
            {"SRASimulation", [this] { analysis->SimulationStartupDialog(); }},
            {"SRAFitDistribution", [this] { OpenFit(); }},
            {"SRAFitDistributionResults", [this] { OpenResults(); }},
            {"SRASimulationFromDistribution", [this] { OpenSimulation(); }},
            {"SRASimulationResults", [this] { OpenSimulationResults(); }},
            {"SRASimulationProfiler", [this] { OpenProfiler(); }}};
  }

  static bool IsFileName(const ArgumentDescription& index) { return index.name == "sFileName"; }
  // Arguments that a call on the member takes: place 1, the normal distribution, no file.
  static std::vector<Variant> Arguments(const MemberDescription& member) {
    std::vector<Variant> arguments;
    for (const ArgumentDescription& index : member.indexes) {
      const char* text = IsFileName(index) ? "" : "Normal";
      arguments.push_back(index.type == kText ? Variant(text) : Variant(1));
    }
    return arguments;
  }
  static AutomationCode CodeOf(const std::function<void()>& call) {
    try {
      call();
    } catch (const AutomationFailure& failure) {
      return failure.Code();
    } catch (const AutomationError&) {
      return AutomationCode::kException;
    }
    return AutomationCode::kNone;
  }
};

// Values as texts, the elements of arrays separated by blanks.
std::string Shown(const Variant& value) {
  if (value.IsEmpty()) return "nothing";
  if (value.IsObject()) return value.ToObject() != nullptr ? "object" : "no object";
  if (!value.IsArray()) return value.ToText();
  std::string text;
  for (const Variant& element : value.ToArray()) text += Shown(element) + " ";
  return text;
}

TEST_F(Automation, EveryMemberIsReadAndTakesBackWhatWasRead) {
  std::size_t read = 0;
  std::size_t put = 0;
  for (const Opening& opening : Openings()) {
    opening.open();
    const auto dialog = Dialog();
    ASSERT_EQ(dialog->InterfaceName(), opening.interface);
    for (const MemberDescription& member : FindInterface(opening.interface)->members) {
      SCOPED_TRACE(std::string(opening.interface) + "." + std::string(member.name));
      std::vector<Variant> arguments = Arguments(member);
      Variant value(1);  // for what cannot be read
      if (member.name == "InputCorrMatrix") value = dialog->Get("UserDefinedDesignMatrixValues");
      if (Allows(member, CallKind::kGet)) {
        const std::size_t shown = userInterface.documents.size() + userInterface.graphs.size();
        ASSERT_NO_THROW(value = dialog->Invoke(member.id, CallKind::kGet, arguments));
        ++read;
        if (member.get == kObject) {
          EXPECT_NE(value.ToObject(), nullptr);
          EXPECT_GT(userInterface.documents.size() + userInterface.graphs.size(), shown)
              << "shown as by its button";
        }
      }
      if (!Allows(member, CallKind::kPut)) continue;
      arguments.push_back(value);
      ASSERT_NO_THROW(dialog->Invoke(member.id, CallKind::kPut, arguments));
      ++put;
      if (!Allows(member, CallKind::kGet)) continue;
      arguments.pop_back();
      EXPECT_EQ(Shown(dialog->Invoke(member.id, CallKind::kGet, arguments)), Shown(value));
    }
  }
  EXPECT_EQ(read, 118U);
  EXPECT_EQ(put, 94U);
  EXPECT_TRUE(analysis->AutoProfiler());
}

// What results_members_test.cpp shows has a meaning where it is listed; all else is refused and says why.
TEST_F(Automation, PutsOfResultsWithoutAMeaningAreNotAvailable) {
  const std::string all =
      "ResultsSelection ResultsSelectionOption ResultsVariables ResultsOption ResultsCodes "
      "ResultsSaveFileName ResultsValues ResultsOutputFields ";
  std::string withoutValues = all;
  withoutValues.erase(withoutValues.find("ResultsValues "), 14);
  const std::map<std::string, std::string> meanings{
      {"SRAFitDistributionResults", all},
      {"SRASimulationFromDistribution", "ResultsVariables ResultsSaveFileName "},
      {"SRASimulationResults", withoutValues},
      {"SRASimulationProfiler", withoutValues}};
  for (const Opening& opening : Openings()) {
    opening.open();
    const auto found = meanings.find(opening.interface);
    const std::string meant = found != meanings.end() ? found->second : std::string();
    std::string name;
    for (std::size_t begin = 0; begin < all.size(); begin += name.size() + 1) {
      name = all.substr(begin, all.find(' ', begin) - begin);
      Variant value;
      if (name == "ResultsOption") value = 6;  // the summary, which all have
      if (name == "ResultsSaveFileName") value = "x.csv";
      const AutomationCode code = CodeOf([&] { Dialog()->Put(name, value); });
      EXPECT_EQ(code == AutomationCode::kNotAvailable, meant.find(name + " ") == std::string::npos)
          << opening.interface << "." << name;
    }
  }
}

TEST_F(Automation, EveryMemberRefusesWrongArgumentsAndKeepsItsValue) {
  for (const Opening& opening : Openings()) {
    opening.open();
    const auto dialog = Dialog();
    const std::size_t shown = userInterface.documents.size();
    for (const MemberDescription& member : FindInterface(opening.interface)->members) {
      SCOPED_TRACE(std::string(opening.interface) + "." + std::string(member.name));
      const std::vector<Variant> arguments = Arguments(member);
      const auto invoke = [&](CallKind kind, std::vector<Variant> given) {
        return CodeOf([&] { dialog->Invoke(member.id, kind, given); });
      };
      std::vector<Variant> tooMany = arguments;
      tooMany.insert(tooMany.end(), 2, Variant(1));
      for (const CallKind kind : {CallKind::kGet, CallKind::kPut}) {
        const auto expected =
            Allows(member, kind) ? AutomationCode::kException : AutomationCode::kMemberNotFound;
        EXPECT_EQ(invoke(kind, tooMany), expected);
      }
      if (Allows(member, CallKind::kMethod)) continue;
      EXPECT_EQ(invoke(CallKind::kMethod, {}), AutomationCode::kMemberNotFound);
      const bool readable = Allows(member, CallKind::kGet) && member.get != kObject;
      const Variant before = readable ? dialog->Invoke(member.id, CallKind::kGet, arguments) : Variant();
      for (std::size_t i = 0; i < arguments.size(); ++i) {
        std::vector<Variant> wrongs{Variant("nonsense"), Variant(0), Variant(99), Variant(Variant::Array{})};
        if (IsFileName(member.indexes[i]))
          wrongs = {Variant("no/such/folder/x.csv"), Variant(Variant::Array{})};
        for (const Variant& wrong : wrongs) {
          std::vector<Variant> given = arguments;
          given[i] = wrong;
          EXPECT_EQ(invoke(CallKind::kGet, given), AutomationCode::kException) << Shown(wrong);
          given.push_back(before);
          EXPECT_EQ(invoke(CallKind::kPut, given), Allows(member, CallKind::kPut)
                                                       ? AutomationCode::kException
                                                       : AutomationCode::kMemberNotFound)
              << Shown(wrong);
        }
      }
      if (!Allows(member, CallKind::kPut)) continue;
      std::vector<Variant> wrong{Variant("nonsense")};
      if (member.name == "PredictionFormula") wrong.clear();  // takes any text; the run judges it
      if (member.put != kVariant && !member.variableList) wrong.emplace_back(Variant::Array{1, 2});
      if (member.put == kInteger && !member.variableList) wrong.emplace_back(1.5);
      if (member.put == kEnumeration) wrong.emplace_back(4);
      if (member.put == kReal) wrong.insert(wrong.end(), {Variant(INFINITY), Variant(NAN)});
      for (const Variant& value : wrong) {
        std::vector<Variant> given = arguments;
        given.push_back(value);
        EXPECT_EQ(invoke(CallKind::kPut, given), AutomationCode::kException) << Shown(value);
      }
      if (!readable) continue;
      EXPECT_EQ(Shown(dialog->Invoke(member.id, CallKind::kGet, arguments)), Shown(before));
    }
    EXPECT_EQ(userInterface.documents.size(), shown) << "a refused call made an output";
  }
}

TEST_F(Automation, EveryMemberOfAClosedDialogFailsAndChangesNothing) {
  for (const Opening& opening : Openings()) {
    opening.open();
    const auto closed = Dialog();
    analysis->RunSequenceStep(step::kFit);
    Dialog()->Put("Variables", "1-2 | 3");
    analysis->SetAutoProfiler(false);
    const std::string options = Shown(Dialog()->Get("Variables"));
    const std::size_t shown = userInterface.documents.size() + userInterface.graphs.size();
    const std::int32_t samples = analysis->Simulation().options.numberOfSamples;
    for (const auto& members : {kDialogInterface.members, FindInterface(opening.interface)->members}) {
      for (const MemberDescription& member : members) {
        for (const CallKind kind : {CallKind::kGet, CallKind::kPut, CallKind::kMethod}) {
          if (!Allows(member, kind)) continue;
          std::vector<Variant> arguments = Arguments(member);
          if (kind == CallKind::kPut) arguments.emplace_back(3);
          EXPECT_EQ(CodeOf([&] { closed->Invoke(member.id, kind, arguments); }),
                    AutomationCode::kDialogClosed)
              << opening.interface << "." << member.name;
        }
      }
    }
    EXPECT_EQ(analysis->CurrentStep(), step::kFit);
    EXPECT_EQ(Shown(Dialog()->Get("Variables")), options);
    EXPECT_EQ(userInterface.documents.size() + userInterface.graphs.size(), shown);
    EXPECT_EQ(analysis->Simulation().options.numberOfSamples, samples);
    EXPECT_FALSE(analysis->AutoProfiler());
  }
}

TEST_F(Automation, DialogsThatAreNotOpenAreNamed) {
  const auto parent = Dialog()->Get("Parent").ToObject();
  EXPECT_EQ(parent->Get("Name").ToText(), " Simulation and Risk Analysis and Variable Screening");
  EXPECT_EQ(parent->Get("ID").ToInteger(), 25693);
  EXPECT_EQ(parent->Get("Dialog").ToObject(), Dialog());
  const auto of = [&](const char* interface) {
    const Variant name[] = {Variant(interface)};
    return parent->Get("DialogInterface", name).ToObject();
  };
  EXPECT_EQ(of("SRAStartup"), Dialog());
  const auto closed = of("SRAFitDistribution");
  for (const MemberDescription& member : FindInterface("SRAFitDistribution")->members) {
    const CallKind kind = member.kind == MemberKind::kMethod ? CallKind::kMethod
                          : member.get != kNone              ? CallKind::kGet
                                                             : CallKind::kPut;
    EXPECT_EQ(closed->FindMember(member.name), member.id);
    EXPECT_EQ(CodeOf([&] { closed->Invoke(member.id, kind, {}); }), AutomationCode::kDialogClosed)
        << member.name;
  }
}

TEST_F(Automation, DisabledControlsRefuseAndKeepTheirState) {
  struct Row {
    std::function<void()> open;
    std::int32_t control;
    const char* member;
    Variant value;
    std::vector<Variant> indexes;
  };
  using namespace fit_dialog;
  using enum DistributionCode;
  const std::vector<Variant> first{1};
  const auto fit = [this] { OpenFit(); };
  const auto simulation = [this] { OpenSimulation(); };
  const Row rows[] = {{fit, kCasewise, "IsCasewise", true, {}},
                      {fit, CheckOf(kWeibull), "IsWeibullDistribution", true, first},
                      {fit, FieldOf(kWeibull), "WeibullOffset", 2.0, first},
                      {fit, kMixtures, "NumberOfMixtures", 3, first},
                      {simulation, simulation_dialog::kLatinHypercube, "LHSMethod", 1, {}},
                      {simulation, simulation_dialog::kNumberOfSamples, "NumberOfSamples", 7, {}},
                      {simulation, simulation_dialog::kTruncate, "TruncateSimulationData", 1, {}}};
  for (const Row& row : rows) {
    row.open();
    const std::string before = Shown(Dialog()->Get(row.member, row.indexes));
    analysis->GetDialog()->Controls().Enable(row.control, false);
    EXPECT_EQ(CodeOf([&] { Dialog()->Put(row.member, row.value, std::span(row.indexes)); }),
              AutomationCode::kControlRefused)
        << row.member;
    EXPECT_EQ(Shown(Dialog()->Get(row.member, row.indexes)), before) << row.member;
  }
}

TEST_F(Automation, ConstantsOfDistributionsAreTheCataloguesKeys) {
  const auto keys = FindEnumeration("SupportedDistributionsType")->constants;
  ASSERT_EQ(keys.size(), 16U);
  for (std::size_t code = 0; code < keys.size(); ++code) {
    EXPECT_EQ(CodeFromKey(std::string(keys[code])), CodeFromNumber(static_cast<std::int32_t>(code)))
        << keys[code];
  }
}

TEST_F(Automation, ResultsVariablesSelectWhereResultsAreOfChosenVariables) {
  OpenResults();
  Dialog()->Put("ResultsVariables", "2 | 3");
  EXPECT_EQ(Dialog()->Get("Variables").ToText(), "2 | 3");
  analysis->RunSequenceStep(step::kFit);
  EXPECT_EQ(CodeOf([&] { Dialog()->Put("ResultsVariables", "1"); }), AutomationCode::kNotAvailable);
}

}  // namespace
}  // namespace brenvolt::sra
