#include "host/models/prediction_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

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

// Paths are in the folder of references.
void ExpectAgreement(const PredictionModel& model, const std::string& data, const std::string& answers) {
  const Spreadsheet expected = ReadCsv(kReference + answers);
  ScoreOptions options;
  options.invalid = InvalidValues::kMissing;
  options.classProbabilities = true;
  const Spreadsheet found = model.Score(ReadCsv(kReference + data), "predictions", options);
  for (std::size_t k = 0; k < expected.VariableCount(); ++k) {
    const Variable& column = expected.VariableAt(k);
    const auto index = found.FindVariable(column.Name());
    ASSERT_TRUE(index) << "there is no " << column.Name();
    ExpectSame(column, found.VariableAt(*index));
  }
}

// The time that a model takes to read grows as the model does: 100,000 categories took seconds, 300,000 ten times as many.
TEST(PredictionModel, ManyCategoriesAreReadInTheTimeOfTheirBytes) {
  constexpr int kCategories = 200'000;
  std::string values;
  std::string terms;
  for (int i = 0; i < kCategories; ++i) {
    const std::string value = "value=\"k" + std::to_string(i) + "\"";
    values += "<Value " + value + "/>";
    terms += "<CategoricalPredictor name=\"c\" " + value + " coefficient=\"" + std::to_string(i) + "\"/>";
  }
  const std::string text =
      "<PMML version=\"4.4\" xmlns=\"http://www.dmg.org/PMML-4_4\"><Header/><DataDictionary>"
      "<DataField name=\"c\" optype=\"categorical\" dataType=\"string\">" +
      values +
      "</DataField><DataField name=\"y\" optype=\"continuous\" dataType=\"double\"/></DataDictionary>"
      "<RegressionModel functionName=\"regression\"><MiningSchema><MiningField name=\"c\"/>"
      "<MiningField name=\"y\" usageType=\"target\"/></MiningSchema><RegressionTable intercept=\"1\">" +
      terms + "</RegressionTable></RegressionModel></PMML>";
  const std::clock_t start = std::clock();
  const PredictionModel model = PredictionModel::Parse(text, "many.pmml");
  EXPECT_LT(std::clock() - start, 6 * CLOCKS_PER_SEC);
  ASSERT_EQ(model.Predictors().size(), 1U);
  EXPECT_EQ(model.Predictors()[0].labels.size(), std::size_t{kCategories});
}

struct Interchange {
  const char* model;
  const char* data;
};
class PmmlInterchangeReference : public testing::TestWithParam<Interchange> {};

TEST_P(PmmlInterchangeReference, AgreesWithTheProgramThatWroteTheModel) {
  const std::string stem = std::string("interchange/") + GetParam().model;
  ExpectAgreement(PredictionModel::Load(kReference + stem + ".pmml"),
                  std::string("interchange/") + GetParam().data, stem + ".expected.csv");
}
INSTANTIATE_TEST_SUITE_P(Models, PmmlInterchangeReference,
                         testing::Values(Interchange{"RegressionOzone", "Ozone.csv"},
                                         Interchange{"GeneralRegressionIris", "Iris.csv"},
                                         Interchange{"NeuralNetworkIris", "Iris.csv"},
                                         Interchange{"NeuralNetworkOzone", "Ozone.csv"},
                                         Interchange{"DecisionTreeIris", "Iris.csv"},
                                         Interchange{"SupportVectorMachineIris", "Iris.csv"}),
                         [](const auto& info) { return std::string(info.param.model); });

// In a folder of references with its own table of cases.
struct MadeCase {
  std::string folder;
  std::string name;
  std::string data;
};
// GoogleTest would print the bytes of the strings.
void PrintTo(const MadeCase& made, std::ostream* out) {
  *out << made.name;
}

std::vector<MadeCase> MadeCases() {
  std::vector<MadeCase> cases;
  for (const std::string folder : {"made/", "exports/"}) {
    std::ifstream table(kReference + folder + "cases.csv");
    std::string line;
    std::getline(table, line);
    while (std::getline(table, line)) {
      const std::size_t comma = line.find(',');
      cases.push_back({folder, line.substr(0, comma), line.substr(comma + 1)});
    }
  }
  return cases;
}

void ExpectMadeAgreement(const PredictionModel& model, const MadeCase& made) {
  ExpectAgreement(model, made.folder + "data/" + made.data + ".csv",
                  made.folder + "expected/" + made.name + ".csv");
}

class PmmlMadeReference : public testing::TestWithParam<MadeCase> {};

TEST_P(PmmlMadeReference, AgreesWithTheLibraryOrTheDefinitionWrittenOut) {
  const MadeCase& made = GetParam();
  ExpectMadeAgreement(PredictionModel::Load(kReference + made.folder + "models/" + made.name + ".pmml"),
                      made);
}
INSTANTIATE_TEST_SUITE_P(Models, PmmlMadeReference, testing::ValuesIn(MadeCases()),
                         [](const auto& info) { return info.param.name; });

// The forests of made/forests/, a line per tree, every node before its branches: a split as its field and
// threshold, a leaf as its number, or as its class and the shares of all classes.
class Forest {
 public:
  // `target` is the field that is predicted, `function` the functionName of models of it.
  Forest(std::string target, std::string function, std::vector<std::string> classes)
      : target_(std::move(target)), function_(std::move(function)), classes_(std::move(classes)) {}

  // The model that combines the trees of a file by a multipleModelMethod; tree i has the weight 1 + i % 3.
  std::string Model(const std::string& file, const std::string& method) const {
    std::ifstream lines(kReference + "made/forests/" + file + ".txt");
    std::string segments;
    std::string line;
    for (int tree = 0; std::getline(lines, line); ++tree) {
      std::istringstream words(line);
      segments += "<Segment weight=\"" + std::to_string(1 + tree % 3) +
                  "\"><True/><TreeModel functionName=\"" + function_ + "\">" + Schema("") +
                  Node(words, "<True/>") + "</TreeModel></Segment>";
    }
    return "<PMML version=\"4.4\"><DataDictionary>" + Dictionary() +
           "</DataDictionary><MiningModel functionName=\"" + function_ + "\">" +
           Schema("<MiningField name=\"" + target_ + "\" usageType=\"target\"/>") +
           "<Segmentation multipleModelMethod=\"" + method + "\">" + segments +
           "</Segmentation></MiningModel></PMML>";
  }

 private:
  static constexpr std::string_view kFields = "abcd";

  // The trees were grown for predictors in single precision.
  std::string Dictionary() const {
    std::string text;
    for (const char field : kFields)
      text += std::string("<DataField name=\"") + field + "\" optype=\"continuous\" dataType=\"float\"/>";
    if (classes_.empty())
      return text + "<DataField name=\"" + target_ + "\" optype=\"continuous\" dataType=\"double\"/>";
    text += "<DataField name=\"" + target_ + "\" optype=\"categorical\" dataType=\"string\">";
    for (const std::string& name : classes_) text += "<Value value=\"" + name + "\"/>";
    return text + "</DataField>";
  }

  static std::string Schema(const std::string& target) {
    std::string text = "<MiningSchema>";
    for (const char field : kFields) text += std::string("<MiningField name=\"") + field + "\"/>";
    return text + target + "</MiningSchema>";
  }

  std::string Node(std::istringstream& words, const std::string& predicate) const {
    std::string word;
    words >> word;
    if (word.size() > 1 || kFields.find(word) == std::string_view::npos) {
      return "<Node score=\"" + word + "\">" + predicate + Shares(words) + "</Node>";
    }
    std::string threshold;
    words >> threshold;
    const auto test = [&](const std::string& comparison) {
      return "<SimplePredicate field=\"" + word + "\" operator=\"" + comparison + "\" value=\"" + threshold +
             "\"/>";
    };
    const std::string left = Node(words, test("lessOrEqual"));
    return "<Node>" + predicate + left + Node(words, test("greaterThan")) + "</Node>";
  }

  std::string Shares(std::istringstream& words) const {
    std::string text;
    for (const std::string& name : classes_) {
      std::string share;
      words >> share;
      text += "<ScoreDistribution value=\"" + name + "\" recordCount=\"" + share + "\"/>";
    }
    return text;
  }

  std::string target_;
  std::string function_;
  std::vector<std::string> classes_;
};

struct ForestCase {
  const char* name;
  const char* data;
  const char* method;
};
class PmmlForestReference : public testing::TestWithParam<ForestCase> {};

TEST_P(PmmlForestReference, CombinesItsTreesAsTheLibraryOrTheDefinitionDoes) {
  const auto& [name, data, method] = GetParam();
  const Forest forest = std::string(data) == "Iris"
                            ? Forest("species", "classification", {"setosa", "versicolor", "virginica"})
                            : Forest("y", "regression", {});
  ExpectMadeAgreement(PredictionModel::Parse(forest.Model(data, method), name), {"made/", name, data});
}
INSTANTIATE_TEST_SUITE_P(
    Models, PmmlForestReference,
    testing::Values(ForestCase{"ForestAverage", "Iris", "average"},
                    ForestCase{"ForestVote", "Iris", "majorityVote"},
                    ForestCase{"ForestWeightedAverage", "Iris", "weightedAverage"},
                    ForestCase{"ForestWeightedVote", "Iris", "weightedMajorityVote"},
                    ForestCase{"ForestNumberAverage", "Diabetes", "average"},
                    ForestCase{"ForestNumberSum", "Diabetes", "sum"},
                    ForestCase{"ForestNumberMedian", "Diabetes", "median"},
                    ForestCase{"ForestNumberMax", "Diabetes", "max"},
                    ForestCase{"ForestNumberWeightedAverage", "Diabetes", "weightedAverage"},
                    ForestCase{"ForestNumberWeightedSum", "Diabetes", "weightedSum"},
                    ForestCase{"ForestNumberWeightedMedian", "Diabetes", "weightedMedian"}),
    [](const auto& info) { return std::string(info.param.name); });

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
