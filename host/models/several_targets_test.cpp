// Models that predict several targets, and outputs that some data do not allow.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/models/prediction_model.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

// Predicts from x the number y and the class c; `model` has the element up to its schema, then what follows.
std::string File(const std::string& element, const std::string& attributes, const std::string& inside) {
  return R"(<PMML version="4.4">
<DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/>
<DataField name="y" optype="continuous" dataType="double"/>
<DataField name="c" optype="categorical" dataType="string"><Value value="low"/><Value value="high"/></DataField>
</DataDictionary>
<)" + element +
         " " + attributes + R"(>
<MiningSchema><MiningField name="x"/><MiningField name="y" usageType="target"/><MiningField name="c" usageType="target"/></MiningSchema>
)" + inside +
         "</" + element + ">\n</PMML>\n";
}

const std::string kOutputs = R"(<Output>
<OutputField name="of y" feature="predictedValue" targetField="y"/>
<OutputField name="certainty" feature="probability" targetField="c" value="high"/>
<OutputField name="of none" feature="predictedValue"/>
<OutputField name="of another" feature="predictedValue" targetField="z"/>
<OutputField name="residual" feature="residual" targetField="y"/>
<OutputField name="twice" feature="transformedValue"><Apply function="+"><FieldRef field="residual"/><FieldRef field="residual"/></Apply></OutputField>
</Output>
)";

// The three records nearest to x, of (1, 10, low), (2, 20, low), (3, 60, high), (9, 90, high).
std::string Neighbours() {
  return File("NearestNeighborModel", R"(functionName="mixed" numberOfNeighbors="3")",
              kOutputs + R"(<TrainingInstances isTransformed="true"><InstanceFields><InstanceField field="x"/>
<InstanceField field="y"/><InstanceField field="c"/></InstanceFields>
<InlineTable><row><x>1</x><y>10</y><c>low</c></row><row><x>2</x><y>20</y><c>low</c></row>
<row><x>3</x><y>60</y><c>high</c></row><row><x>9</x><y>90</y><c>high</c></row></InlineTable></TrainingInstances>
<ComparisonMeasure kind="distance"><euclidean/></ComparisonMeasure><KNNInputs><KNNInput field="x"/></KNNInputs>
)");
}

// y is 10 x, and c high from 3 on; one network with an output neuron for y and two for c.
std::string Network() {
  return File(
      "NeuralNetwork", R"(functionName="mixed" activationFunction="identity")",
      kOutputs + R"(<NeuralInputs><NeuralInput id="i"><DerivedField optype="continuous" dataType="double">
<FieldRef field="x"/></DerivedField></NeuralInput></NeuralInputs>
<NeuralLayer><Neuron id="n"><Con from="i" weight="10"/></Neuron><Neuron id="l" bias="3"><Con from="i" weight="0"/></Neuron>
<Neuron id="h" bias="0.5"><Con from="i" weight="1"/></Neuron></NeuralLayer>
<NeuralOutputs><NeuralOutput outputNeuron="n"><DerivedField optype="continuous" dataType="double"><FieldRef field="y"/></DerivedField></NeuralOutput>
<NeuralOutput outputNeuron="l"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="c" value="low"/></DerivedField></NeuralOutput>
<NeuralOutput outputNeuron="h"><DerivedField optype="categorical" dataType="string"><NormDiscrete field="c" value="high"/></DerivedField></NeuralOutput></NeuralOutputs>
)");
}

// A segment for each target.
std::string Chain() {
  return File("MiningModel", R"(functionName="regression")",
              R"(<Targets><Target field="y" rescaleFactor="10"/></Targets>
)" + kOutputs + R"(<Segmentation multipleModelMethod="x-multiModelChain">
<Segment id="1"><True/><RegressionModel functionName="regression"><MiningSchema><MiningField name="x"/><MiningField name="y" usageType="target"/></MiningSchema>
<RegressionTable intercept="0"><NumericPredictor name="x" coefficient="1"/></RegressionTable></RegressionModel></Segment>
<Segment id="2"><True/><TreeModel functionName="classification" missingValueStrategy="nullPrediction"><MiningSchema><MiningField name="x"/><MiningField name="c" usageType="target"/></MiningSchema>
<Node id="1"><True/><Node id="2" score="low"><SimplePredicate field="x" operator="lessThan" value="3"/><ScoreDistribution value="low" recordCount="3"/><ScoreDistribution value="high" recordCount="1"/></Node>
<Node id="3" score="high"><True/><ScoreDistribution value="low" recordCount="0"/><ScoreDistribution value="high" recordCount="4"/></Node></Node></TreeModel></Segment>
</Segmentation>
)");
}

struct Case {
  std::string model;
  std::vector<double> y;  // for x = 1 and x = 4
  std::vector<std::string> c;
  std::vector<double> certainty;
};

TEST(SeveralTargets, EachIsAResponseOfItsOwn) {
  const Case cases[] = {{Neighbours(), {30, 30}, {"low", "low"}, {1 / 3.0, 1 / 3.0}},
                        {Network(), {10, 40}, {"low", "high"}, {1.5, 4.5}},
                        {Chain(), {10, 40}, {"low", "high"}, {0.25, 1}}};
  for (const Case& wanted : cases) {
    const PredictionModel model = PredictionModel::Parse(wanted.model, "m.pmml");
    ASSERT_EQ(model.Dependents().size(), 2U);
    EXPECT_EQ(model.Dependents()[0].Type(), "Out;Cont");
    EXPECT_EQ(model.Dependents()[1].Type(), "Out;Cat");
    const Spreadsheet data = ReadCsvText("x,y\n1,11\n4,33\n", "data");
    const Spreadsheet found = model.Score(data, "out", {.classProbabilities = true});
    std::string columns;
    for (std::size_t k = 0; k < found.VariableCount(); ++k) columns += found.VariableAt(k).Name() + ";";
    EXPECT_EQ(columns, "y;c;of y;certainty;residual;twice;probability(c=low);probability(c=high);");
    for (std::size_t i = 0; i < 2; ++i) {
      const auto at = [&](std::size_t column) { return found.VariableAt(column).Values()[i]; };
      EXPECT_EQ(at(0), wanted.y[i]);
      EXPECT_EQ(found.VariableAt(1).Label(at(1)), wanted.c[i]);
      EXPECT_EQ(at(2), wanted.y[i]);
      EXPECT_EQ(at(3), wanted.certainty[i]);
      EXPECT_EQ(at(4), data.VariableAt(1).Values()[i] - wanted.y[i]);
      EXPECT_EQ(at(5), 2 * at(4));
      EXPECT_EQ(at(7), wanted.certainty[i]);
    }
  }
}

std::string NotesOf(const PredictionModel& model, const std::string& data) {
  std::string notes;
  for (const UnavailableOutput& output : model.UnavailableOutputs(ReadCsvText(data, "data")))
    notes += output.name + ": " + output.reason + "\n";
  return notes;
}

TEST(SeveralTargets, OutputsSayWhichTargetTheyAreOf) {
  const PredictionModel model = PredictionModel::Parse(Network(), "m.pmml");
  EXPECT_EQ(NotesOf(model, "x,y\n1,2\n"),
            "of none: the model has several targets: targetField must name one of y, c (m.pmml, line 12)\n"
            "of another: the field z is not a target of the model (m.pmml, line 13)\n");
}

// What was observed is for outputs alone to read.
TEST(SeveralTargets, DataWithoutTheTargetLoseItsResidualAndNothingElse) {
  const PredictionModel model = PredictionModel::Parse(Chain(), "m.pmml");
  EXPECT_EQ(model.Score(ReadCsvText("x\n1\n", "data"), "out").VariableCount(), 4U);
  EXPECT_NE(NotesOf(model, "x\n1\n")
                .find("residual: it needs fields that the data lack: y\n"
                      "twice: it needs fields that the data lack: y\n"),
            std::string::npos);
}

std::string Line(const std::string& attributes) {
  return File(
      "RegressionModel", R"(functionName="regression")" + attributes,
      R"(<Targets><Target field="y" rescaleFactor="2"/><Target field="c"><TargetValue value="low" priorProbability="1"/></Target></Targets>
<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/></RegressionTable>)");
}

TEST(SeveralTargets, AModelOfOneNumberPredictsTheTargetThatItNames) {
  const PredictionModel model = PredictionModel::Parse(Line(R"( targetFieldName="y")"), "m.pmml");
  ASSERT_EQ(model.Dependents().size(), 1U);
  EXPECT_EQ(model.Dependents()[0].name, "y");
  EXPECT_EQ(model.Score(ReadCsvText("x\n1\n", "data"), "out").VariableAt(0).Values()[0], 6);
  EXPECT_EQ(NotesOf(model, "x\n1\n"), "c: nothing in the model predicts this target (m.pmml, line 7)\n");
  try {
    PredictionModel::Parse(Line(""), "m.pmml");
    FAIL();
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "the model has the targets y, c and does not say which of them it predicts");
  }
}

// A case without x has a number, the target's default, and no class.
TEST(SeveralTargets, EachHasItsOwnReasonsForMissingPredictions) {
  std::string text = Chain();
  const std::string adjusted = "rescaleFactor=\"10\"/>";
  text.replace(text.find(adjusted), adjusted.size(),
               "rescaleFactor=\"10\"><TargetValue defaultValue=\"7\"/></Target>");
  const PredictionModel model = PredictionModel::Parse(text, "m.pmml");
  const std::vector<double> x{1, NAN};
  std::vector<double> y(2);
  std::vector<double> c(2);
  std::vector<UnpredictedCases> unpredicted(2);
  model.Predict(std::vector<std::span<const double>>{x}, std::vector<std::span<double>>{y, c},
                {.labels = {}, .unpredicted = unpredicted});
  EXPECT_EQ(y[1], 7);
  EXPECT_EQ(unpredicted[0].Total(), 0U);
  EXPECT_EQ(unpredicted[1].Total(), 1U);
}

}  // namespace
}  // namespace brenvolt
