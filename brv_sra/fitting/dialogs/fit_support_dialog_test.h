// What the tests of the fit specification share: an analysis over a small sheet, with the dialog open.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt::sra {

using Numbers = std::vector<std::int16_t>;

inline constexpr const char* kOffsetsText =
    "One or more invalid offset values found. Please enter valid offset values.";

struct FitDialog : testing::Test {
  static constexpr std::size_t kCases = 30;

  HeadlessUserInterface userInterface;
  Spreadsheet sheet{"data", kCases, 5};
  CAnalysisDoc document{userInterface, &sheet};
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  FitDialog() {
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
      const auto values = sheet.VariableAt(v).MutableValues();
      for (std::size_t i = 0; i < kCases; ++i) values[i] = static_cast<double>((i * (v + 3)) % 11 + 1);
    }
    analysis->AttachDocument(&document);
    analysis->RunSequenceStep(step::kStartup);
    StartFit();
  }
  void StartFit() { analysis->GetDialog()->Press(define_task::kFitDistribution); }
  CAnalysisDialog& Dialog() { return *analysis->GetDialog(); }
  AutomationObject& Automation() { return *analysis->GetDialgInterface(); }
  FitSpecification& Specification() { return analysis->Fit().specification; }
  bool Ok() { return Dialog().Press(kControlOk); }
  bool Checked(std::int32_t control) { return Dialog().Controls().IsChecked(control); }
  std::string Text(std::int32_t control) { return Dialog().Controls().Text(control); }
  // The messages since the last call.
  std::vector<std::string> Said() { return userInterface.TakeTexts(); }
  void Answer(const Numbers& continuous, const Numbers& discrete) {
    userInterface.variableAnswers.emplace_back([=](VariableQuestion& question) {
      question.first = continuous;
      question.second = discrete;
    });
  }
};

}  // namespace brenvolt::sra
