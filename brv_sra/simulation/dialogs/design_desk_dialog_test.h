// What the tests of the design and its sub-editors share: the dialog, opened from the startup dialog over an input.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/module/simulation_and_risk.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/simulation/dialogs/design_dialog.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt::sra {

using Names = std::vector<std::string>;

inline constexpr const char* kNames = "UserDefinedDesignMatrixVariableNames";
inline constexpr const char* kValues = "UserDefinedDesignMatrixValues";
inline constexpr const char* kMeans = "UserDefinedDesignMatrixMean";
inline constexpr const char* kDeviations = "UserDefinedDesignMatrixStdDeviation";
inline constexpr const char* kOwn = "CustomDistributionSpecification";
inline constexpr const char* kSimulated = "SimulationSpecificationOfVariable";

inline Variant Texts(const Names& names) {
  Variant::Array array;
  for (const std::string& name : names) array.emplace_back(name);
  return array;
}
inline Variant Numbers(const std::vector<double>& numbers) {
  Variant::Array array;
  for (const double number : numbers) array.emplace_back(number);
  return array;
}
inline Variant Rows(const std::vector<std::vector<double>>& rows) {
  Variant::Array array;
  for (const auto& row : rows) array.push_back(Numbers(row));
  return array;
}
inline Variant Distribution(const char* key, const std::vector<double>& values) {
  Variant::Array array{key};
  for (const double value : values) array.emplace_back(value);
  return array;
}
inline std::string TextOf(const Variant& value) {
  if (!value.IsArray()) return value.IsEmpty() ? "none" : value.ToText();
  std::string text;
  for (const Variant& element : value.ToArray()) text += (text.empty() ? "" : " ") + TextOf(element);
  return "(" + text + ")";
}

// The dialog over an input; a person answers the question that opens it only if a test says so.
struct DesignDesk : testing::Test {
  HeadlessUserInterface person;
  Spreadsheet data{"data", 5, 3};
  std::unique_ptr<CAnalysisDoc> document;
  std::unique_ptr<CSimulationAndRisk> analysis{Kro6NewAnalysis()};

  DesignDesk() {
    data.VariableAt(0).SetProperty("Normal", "(Location=1.0; Scale=2.0)");
    data.VariableAt(0).SetProperty("Weibull", "(Scale=3.0; Shape=2.0; Offset=0)");
    data.VariableAt(0).SetProperty("zOrder", "Normal;Weibull;");
    data.VariableAt(0).SetProperty("zTruncProp", "(1; 0; -1; 0)");
  }
  void Open(Spreadsheet* input) {
    document = std::make_unique<CAnalysisDoc>(person, input);
    analysis->AttachDocument(document.get());
    analysis->RunSequenceStep(step::kStartup);
    Dialog().Put("TypeOfAnalysis", 2);
    ASSERT_EQ(Dialog().Call("OK").ToInteger(), 1);
    ASSERT_EQ(analysis->CurrentStep(), step::kDesign);
  }
  AutomationObject& Dialog() { return *analysis->GetDialgInterface(); }
  CAnalysisDialog& Window() { return *analysis->GetDialog(); }
  std::string Get(const char* member) { return TextOf(Dialog().Get(member)); }
  std::string Get(const char* member, int place) {
    const Variant index(place);
    return TextOf(Dialog().Get(member, {&index, 1}));
  }
  void Put(const char* member, int place, const Variant& value) {
    const Variant index(place);
    Dialog().Put(member, value, {&index, 1});
  }
  // Why a put is refused.
  std::string Refusal(const std::function<void()>& put) {
    try {
      put();
    } catch (const AutomationError& error) {
      return error.Reason() + (error.Where().empty() ? "" : " (" + error.Where() + ")");
    }
    return "taken";
  }
  std::string Property(Spreadsheet& sheet, std::size_t variable, const char* key) {
    return sheet.VariableAt(variable).Property(key).value_or("none");
  }
};

}  // namespace brenvolt::sra
