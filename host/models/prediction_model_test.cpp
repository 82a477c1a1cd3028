#include "host/models/prediction_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "host/base/parallel.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const std::string kReference = BRENVOLT_SOURCE_DIR "/host/models/reference/";

// Texts as labels, numbers within 1e-10 relative, missing as missing.
void ExpectSame(const Variable& expected, const Variable& found) {
  ASSERT_EQ(expected.Size(), found.Size());
  for (std::size_t i = 0; i < expected.Size(); ++i) {
    ASSERT_EQ(expected.IsMissing(i), found.IsMissing(i)) << found.Name() << ", line " << i + 2;
    if (expected.IsMissing(i)) continue;
    const double y = found.Values()[i];
    if (expected.Type() == VariableType::kText) {
      ASSERT_EQ(expected.Label(expected.Values()[i]), found.Label(y)) << found.Name() << ", line " << i + 2;
      continue;
    }
    // Classes that are numbers come back from a file as numbers.
    const double number = found.Type() == VariableType::kText ? std::stod(std::string(*found.Label(y))) : y;
    const double x = expected.Values()[i];
    ASSERT_NEAR(x, number, 1e-10 * std::fabs(x) + 1e-300) << found.Name() << ", line " << i + 2;
  }
}

void ExpectAgreement(const std::string& model, const std::string& data, const std::string& answers) {
  const Spreadsheet expected = ReadCsv(kReference + answers);
  ScoreOptions options;
  options.invalid = InvalidValues::kMissing;
  options.classProbabilities = true;
  const Spreadsheet found =
      PredictionModel::Load(kReference + model).Score(ReadCsv(kReference + data), "predictions", options);
  for (std::size_t k = 0; k < expected.VariableCount(); ++k) {
    const Variable& column = expected.VariableAt(k);
    const auto index = found.FindVariable(column.Name());
    ASSERT_TRUE(index) << model << " gives no " << column.Name();
    ExpectSame(column, found.VariableAt(*index));
  }
}

struct Interchange {
  const char* model;
  const char* data;
};
class PmmlInterchangeReference : public testing::TestWithParam<Interchange> {};

TEST_P(PmmlInterchangeReference, AgreesWithTheProgramThatWroteTheModel) {
  const std::string stem = std::string("interchange/") + GetParam().model;
  ExpectAgreement(stem + ".pmml", std::string("interchange/") + GetParam().data, stem + ".expected.csv");
}
INSTANTIATE_TEST_SUITE_P(Models, PmmlInterchangeReference,
                         testing::Values(Interchange{"RegressionOzone", "Ozone.csv"},
                                         Interchange{"GeneralRegressionIris", "Iris.csv"},
                                         Interchange{"NeuralNetworkIris", "Iris.csv"},
                                         Interchange{"NeuralNetworkOzone", "Ozone.csv"},
                                         Interchange{"DecisionTreeIris", "Iris.csv"},
                                         Interchange{"SupportVectorMachineIris", "Iris.csv"}),
                         [](const auto& info) { return std::string(info.param.model); });

// Every NAME.pmml of made/ has NAME.csv and NAME.expected.csv beside it.
std::vector<std::string> MadeModels() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kReference + "made")) {
    if (entry.path().extension() == ".pmml") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}
class PmmlMadeReference : public testing::TestWithParam<std::string> {};

TEST_P(PmmlMadeReference, AgreesWithTheLibraryOrTheDefinitionWrittenOut) {
  const std::string stem = "made/" + GetParam();
  ExpectAgreement(stem + ".pmml", stem + ".csv", stem + ".expected.csv");
}
INSTANTIATE_TEST_SUITE_P(Models, PmmlMadeReference, testing::ValuesIn(MadeModels()),
                         [](const auto& info) { return info.param; });

// Two fields, one of them text, and an output that makes a new text of both.
const std::string kTextModel = R"(<PMML version="4.4"><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/><DataField name="c" optype="categorical" dataType="string"/>
</DataDictionary><RegressionModel functionName="regression">
<MiningSchema><MiningField name="x"/><MiningField name="c"/></MiningSchema>
<Output><OutputField name="both" feature="transformedValue" optype="categorical" dataType="string"><Apply function="concat">
<FieldRef field="c"/><Constant dataType="string">:</Constant><FieldRef field="x"/></Apply></OutputField></Output>
<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/></RegressionTable></RegressionModel></PMML>)";

// More rows than several threads take at a time; texts get their numbers in whatever order threads meet them.
TEST(PmmlScoring, ResultsDoNotDependOnTheNumberOfThreads) {
  constexpr std::size_t kRows = 70'000;
  constexpr std::size_t kTexts = 97;
  Variable x("x", kRows);
  Variable c("c", kRows);
  c.SetType(VariableType::kText);
  for (std::size_t k = 0; k < kTexts; ++k) c.SetLabel(static_cast<double>(k), "text " + std::to_string(k));
  for (std::size_t i = 0; i < kRows; ++i) {
    x.MutableValues()[i] = static_cast<double>(i % 13);
    c.MutableValues()[i] = static_cast<double>(i * i % kTexts);
  }
  Spreadsheet data("data");
  data.AddVariable(x);
  data.AddVariable(c);
  const PredictionModel model = PredictionModel::Parse(kTextModel, "m.pmml");
  const Spreadsheet many = model.Score(data, "out");
  const ThreadLimit one(1);
  const Spreadsheet single = model.Score(data, "out");
  EXPECT_EQ(CsvText(many), CsvText(single));
  EXPECT_EQ(many.VariableAt(1).Labels(), single.VariableAt(1).Labels());
  EXPECT_EQ(
      many.VariableAt(1).Label(many.VariableAt(1).Values()[kRows - 1]),
      "text " + std::to_string((kRows - 1) * (kRows - 1) % kTexts) + ":" + std::to_string((kRows - 1) % 13));
}

TEST(PmmlScoring, MissingDataCodesOfVariablesAreMissing) {
  Spreadsheet data = ReadCsvText("x,c\n-9,a\n3,b\n", "data");
  data.VariableAt(0).SetMissingCode(-9);
  const Spreadsheet found = PredictionModel::Parse(kTextModel, "m.pmml").Score(data, "out");
  EXPECT_TRUE(found.VariableAt(0).IsMissing(0));
  EXPECT_TRUE(found.VariableAt(1).IsMissing(0));
  EXPECT_EQ(found.VariableAt(0).Values()[1], 7);
  EXPECT_EQ(found.VariableAt(1).Label(found.VariableAt(1).Values()[1]), "b:3");
}

}  // namespace
}  // namespace brenvolt
