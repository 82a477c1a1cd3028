#include "host/analysis/result_request.h"

#include <gtest/gtest.h>

#include "host/automation/dialog_interface.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

using namespace common_member;

Spreadsheet Sheet() {
  Spreadsheet sheet("data", 6, 2);
  sheet.VariableAt(0).SetName("x");
  sheet.VariableAt(1).SetName("group");
  sheet.VariableAt(0).AssignValues({1, 2, 3, 4, 5, 6});
  sheet.VariableAt(1).AssignValues({1, 1, 2, 2, 3, GetDefaultMDValue()});
  sheet.VariableAt(1).SetLabel(3, "late");
  sheet.VariableAt(0).SetIdentifier("value");
  sheet.NumberCases();
  return sheet;
}

std::string Flags(const std::vector<std::uint8_t>& chosen) {
  std::string text;
  for (const std::uint8_t flag : chosen) text += flag != 0 ? '1' : '0';
  return text;
}

std::string FaultOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.what();
  }
  return "none";
}

TEST(ResultRequest, CasesAreChosenByConditionNumbersAndCodes) {
  const Variant nothing;
  const struct {
    Variant selection;
    Variant option;
    Variant codes;
    const char* chosen;
  } rows[] = {
      {"x > 4", nothing, nothing, "000011"},
      {"x > 4", 1, nothing, "111100"},
      {Variant::Array{2, 6}, 0, nothing, "010001"},
      {3, 1, nothing, "110111"},
      {nothing, nothing, Variant::Array{"group", 2, "late"}, "001110"},
      {"x < 2", 1, Variant::Array{2, 1}, "010000"},  // the option is about the selection
      {"x > 1", 0, Variant::Array{"group", "1"}, "010000"},
      {"group > 0", nothing, nothing, "111110"},  // a missing value meets no condition
  };
  for (const auto& row : rows) {
    ResultRequest request;
    request.Take(kResultsSelection, row.selection);
    request.Take(kResultsSelectionOption, row.option);
    request.Take(kResultsCodes, row.codes);
    EXPECT_EQ(Flags(ChosenCases(request.cases, Sheet())), row.chosen);
  }
}

TEST(ResultRequest, FaultsAreNamedAndChangeNothing) {
  ResultRequest request;
  const auto take = [&](DispatchId member, const Variant& value) {
    return FaultOf([&] { request.Take(member, value); });
  };
  EXPECT_EQ(take(kResultsSelectionOption, 2),
            "expected 0, which takes the selected cases, or 1, which takes all others, got 2");
  EXPECT_EQ(take(kResultsCodes, Variant::Array{"group"}), "expected a variable and its codes, got no code");
  EXPECT_EQ(take(kResultsValues, Variant::Array{1.0, INFINITY}), "expected finite numbers, got inf");
  EXPECT_FALSE(request.cases.IsGiven());
  EXPECT_TRUE(request.values.empty());
  const auto choose = [](CaseChoice choice) { return FaultOf([&] { ChosenCases(choice, Sheet()); }); };
  EXPECT_EQ(choose({"x > 9", {}, false, {}, {}}), "no case is chosen");
  EXPECT_EQ(choose({{}, {7}, false, {}, {}}), "there is no case 7; there are 6");
  const char* alone =
      "ResultsSelectionOption has no effect without ResultsSelection, whose cases it leaves out";
  EXPECT_EQ(choose({{}, {}, true, {}, {}}), alone);
  EXPECT_EQ(choose({{}, {}, true, "group", {1}}), alone);
  EXPECT_EQ(choose({{}, {}, false, "z", {1}}), "there is no variable z");
  EXPECT_EQ(choose({{}, {}, false, "group", {"early"}}), "there is no code early");
  EXPECT_NE(choose({"y > 1", {}, false, {}, {}}), "none");
  EXPECT_EQ(FaultOf([] {
              PlacesOfColumns(Sheet(), {"group", "mean"});
            }),
            "there is no column mean; there are value, group");
}

TEST(ResultRequest, WhatAResultLeavesUnusedHasNoMeaningForIt) {
  const std::pair<DispatchId, const char*> rows[] = {{kResultsOption, "ResultsOption"},
                                                     {kResultsOutputFields, "ResultsOutputFields"},
                                                     {kResultsSelection, "ResultsSelection"},
                                                     {kResultsSelectionOption, "ResultsSelectionOption"},
                                                     {kResultsValues, "ResultsValues"}};
  for (const auto& [member, name] : rows) {
    ResultRequest request;
    request.Take(member, 1);
    EXPECT_EQ(FaultOf([&] { request.RequireUsed(); }), std::string(name) + " has no meaning for this result");
  }
  ResultRequest saved;
  saved.Take(kResultsSaveFileName, "x.csv");
  EXPECT_EQ(FaultOf([&] { saved.RequireUsed(); }), "none");
}

TEST(ResultRequest, PartHasTheChosenColumnsAndCases) {
  const auto part = PartOf(Sheet(), PlacesOfColumns(Sheet(), {"group", "x"}), {0, 1, 0, 0, 1, 0});
  EXPECT_EQ(part->VariableAt(0).Name(), "group");
  EXPECT_EQ(part->VariableAt(0).Label(3), "late");
  EXPECT_EQ(part->VariableAt(1).Identifier(), "value");
  EXPECT_EQ(part->VariableAt(1).Values()[1], 5);
  EXPECT_EQ(part->CaseName(1), "5");
}

}  // namespace
}  // namespace brenvolt
