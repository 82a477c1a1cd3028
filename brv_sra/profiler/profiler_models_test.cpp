#include "brv_sra/profiler/profiler_models.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "brv_sra/profiler/profiler_run.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/tables/csv.h"

namespace brenvolt::sra {
namespace {

using Model = std::shared_ptr<const PredictionModel>;

constexpr const char* kInterchange = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/";

Model Load(const std::string& name) {
  return std::make_shared<const PredictionModel>(PredictionModel::Load(kInterchange + name));
}

// y = 1 + 2 x + the effect of `grade`, whose texts are in the given order; g is numbers or texts.
Model Graded(const std::string& target, const std::string& texts, const std::string& effects,
             const std::string& type = "string") {
  const std::string text =
      R"(<PMML version="4.2" xmlns="http://www.dmg.org/PMML-4_2"><Header/><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/>
<DataField name="grade" optype="categorical" dataType=")" +
      type + R"(">)" + texts + R"(</DataField>
<DataField name=")" +
      target + R"(" optype="continuous" dataType="double"/></DataDictionary>
<RegressionModel functionName="regression"><MiningSchema><MiningField name="x"/><MiningField name="grade"/>
<MiningField name=")" +
      target + R"(" usageType="target"/></MiningSchema><RegressionTable intercept="1">
<NumericPredictor name="x" coefficient="2"/>)" +
      effects + R"(</RegressionTable></RegressionModel></PMML>)";
  return std::make_shared<const PredictionModel>(PredictionModel::Parse(text, target));
}
constexpr const char* kLowHigh = R"(<Value value="low"/><Value value="high"/>)";
constexpr const char* kHighLow = R"(<Value value="high"/><Value value="low"/>)";
constexpr const char* kHighEffect = R"(<CategoricalPredictor name="grade" value="high" coefficient="100"/>)";

Variable Texts(const std::string& name, const std::vector<double>& codes,
               const std::vector<std::string>& labels) {
  Variable variable(name, 0);
  variable.AssignValues(codes);
  variable.SetType(VariableType::kText);
  for (std::size_t i = 0; i < labels.size(); ++i) variable.SetLabel(static_cast<double>(i + 1), labels[i]);
  return variable;
}

Variable Numbers(const std::string& name, const std::vector<double>& values) {
  Variable variable(name, 0);
  variable.AssignValues(values);
  return variable;
}

ProfilerDependent Dependent(const std::string& name) {
  ProfilerDependent dependent;
  dependent.name = name;
  return dependent;
}

ProfilerNotes Merge(ProfilerDesign& design, const std::vector<Model>& models,
                    const Spreadsheet* data = nullptr) {
  return *MergeModels(design, models, data);
}

TEST(ProfilerModels, FileNamesAreSplitAtBarsAndImproperTextsRefused) {
  EXPECT_EQ(*SplitFileNames("a.xml"), (std::vector<std::filesystem::path>{"a.xml"}));
  EXPECT_EQ(*SplitFileNames("a b.xml | c.xml"), (std::vector<std::filesystem::path>{"a b.xml", "c.xml"}));
  for (const char* improper : {"", " ", "|", "a.xml|", "|a.xml", "a.xml||b.xml"}) {
    EXPECT_EQ(SplitFileNames(improper).Reason(), Fault{FaultIdentifier::kInvalidFileNames}) << improper;
  }
}

TEST(ProfilerModels, PredictorsStartFromTheDataWithTheirCorrelations) {
  const Spreadsheet data = ReadCsv(std::filesystem::path(kInterchange) / "Ozone.csv");
  ProfilerDesign design;
  EXPECT_TRUE(Merge(design, {Load("RegressionOzone.pmml")}, &data).empty());
  ASSERT_EQ(design.dependents.size(), 1U);
  ASSERT_FALSE(design.predictors.empty());
  const std::size_t m = design.predictors.size();
  for (const ProfilerPredictor& predictor : design.predictors) {
    const auto place = data.FindVariable(predictor.name);
    ASSERT_TRUE(place.has_value()) << predictor.name;
    const auto values = data.VariableAt(*place).Values();
    double mean = 0;
    for (const double value : values) mean += value / static_cast<double>(values.size());
    double squares = 0;
    for (const double value : values) squares += (value - mean) * (value - mean);
    EXPECT_TRUE(predictor.IsRandom());
    EXPECT_EQ(predictor.specification.code, DistributionCode::kNormal);
    EXPECT_NEAR(predictor.specification.values[0], mean, 1e-9 * std::abs(mean));
    EXPECT_NEAR(predictor.specification.values[1],
                std::sqrt(squares / static_cast<double>(values.size() - 1)), 1e-9 * std::abs(mean) + 1e-9);
    EXPECT_EQ(predictor.lowest, *std::ranges::min_element(values));
    EXPECT_EQ(predictor.highest, *std::ranges::max_element(values));
  }
  bool anyCorrelated = false;
  for (std::size_t i = 0; i < m; ++i) {
    EXPECT_EQ(design.correlations[i * m + i], 1.0);
    for (std::size_t j = 0; j < i; ++j) {
      EXPECT_EQ(design.correlations[i * m + j], design.correlations[j * m + i]);
      anyCorrelated = anyCorrelated || std::abs(design.correlations[i * m + j]) > 0.1;
    }
  }
  EXPECT_TRUE(anyCorrelated);
}

TEST(ProfilerModels, SecondModelOfTheSameNamesAddsNothingTwiceAndKeepsSpecifications) {
  ProfilerDesign design;
  Merge(design, {Load("RegressionOzone.pmml")});
  const std::size_t predictors = design.predictors.size();
  design.predictors[0].setting = PredictorSetting::kFixed;
  design.predictors[0].fixedValue = 42;
  const Model network = Load("NeuralNetworkOzone.pmml");
  Merge(design, {network});
  EXPECT_EQ(design.dependents.size(), 1U);
  EXPECT_EQ(design.dependents[0].model, network) << "the later file predicts";
  EXPECT_GE(design.predictors.size(), predictors);
  EXPECT_EQ(design.predictors[0].fixedValue, 42);
  EXPECT_EQ(design.correlations.size(), design.predictors.size() * design.predictors.size());
  EXPECT_FALSE(design.IsNoiseMultivariate());
  Merge(design, {Load("DecisionTreeIris.pmml")});
  EXPECT_TRUE(design.IsNoiseMultivariate());
  EXPECT_EQ(design.correlationsY, (std::vector<double>{1, 0, 0, 1}));
}

// z = x, for x of a range.
Model Ranged(const std::string& target, const std::string& margins, const std::string& treatment) {
  return std::make_shared<const PredictionModel>(PredictionModel::Parse(
      R"(<PMML version="4.2" xmlns="http://www.dmg.org/PMML-4_2"><Header/><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"><Interval closure="closedClosed" )" +
          margins + R"(/></DataField><DataField name=")" + target +
          R"(" optype="continuous" dataType="double"/></DataDictionary><RegressionModel functionName="regression">
<MiningSchema><MiningField name="x" invalidValueTreatment=")" +
          treatment + R"("/><MiningField name=")" + target +
          R"(" usageType="target"/></MiningSchema><RegressionTable intercept="0">
<NumericPredictor name="x" coefficient="1"/></RegressionTable></RegressionModel></PMML>)",
      target));
}

TEST(ProfilerModels, StartingDistributionsKeepToTheRangesOfAllModels) {
  Spreadsheet data("data");
  data.AddVariable(Numbers("x", {1, 2, 3, 4, 5, 7}));
  const Model low = Ranged("low", R"(leftMargin="0")", "returnInvalid");
  const Model high = Ranged("high", R"(leftMargin="-5" rightMargin="8")", "returnInvalid");
  const Model any = Ranged("any", R"(leftMargin="3" rightMargin="4")", "asIs");
  ProfilerDesign design;
  Merge(design, {low, high, any}, &data);
  const auto check = [&](const DistributionSpecification& specification) {
    EXPECT_TRUE(specification.truncateBelow);
    EXPECT_EQ(specification.truncationMinimum, 0);
    EXPECT_TRUE(specification.truncateAbove);
    EXPECT_EQ(specification.truncationMaximum, 8);
  };
  check(design.predictors[0].specification);
  HeadlessUserInterface port;
  EXPECT_EQ(*FitBestDistributions(design, data, port), 1U);
  check(design.predictors[0].specification);
  ProfilerDesign free;
  Merge(free, {any}, &data);
  EXPECT_FALSE(free.predictors[0].specification.truncateBelow);
  EXPECT_FALSE(free.predictors[0].specification.truncateAbove);
}

TEST(ProfilerModels, CategoricalPredictorsStartFromCodesAndCounts) {
  const Model model = Graded("y", kLowHigh, kHighEffect);
  const struct {
    const char* about;
    std::function<void(Spreadsheet&)> fill;
    std::vector<double> values;
  } rows[] = {
      {"no data: equal proportions", nullptr, {1, 0.5, 2, 0.5}},
      {"texts by their names, unknown and missing ones passed over",
       [](Spreadsheet& sheet) {
         sheet.AddVariable(Texts("grade", {1, 1, 2, 1, 3}, {"high", "low", "medium"}));
       },
       {1, 0.25, 2, 0.75}},
      {"only unknown texts: nothing",
       [](Spreadsheet& sheet) {
         sheet.AddVariable(Texts("grade", {1, 1}, {"medium"}));
       },
       {}},
  };
  for (const auto& row : rows) {
    Spreadsheet data("data");
    if (row.fill) row.fill(data);
    ProfilerDesign design;
    Merge(design, {model}, row.fill ? &data : nullptr);
    const ProfilerPredictor& grade = design.predictors[1];
    EXPECT_EQ(grade.IsRandom(), !row.values.empty()) << row.about;
    EXPECT_EQ(grade.labels, (std::map<double, std::string>{{1, "low"}, {2, "high"}}));
    if (row.values.empty()) continue;
    EXPECT_EQ(grade.specification.code, DistributionCode::kHistogram);
    EXPECT_EQ(grade.specification.values, row.values) << row.about;
    EXPECT_EQ(design.predictors[0].setting, PredictorSetting::kNone) << "neither data nor codes tell of x";
  }
}

TEST(ProfilerModels, UnsuitableDataAreNotedAndLeaveAPredictorUnspecified) {
  const struct {
    std::vector<double> values;
    PredictorSetting setting;
    ProfilerNotes notes;
  } rows[] = {
      {{4, 4, 4}, PredictorSetting::kFixed, {}},
      {{1, 2, std::numeric_limits<double>::infinity()},
       PredictorSetting::kNone,
       {{FaultIdentifier::kInfiniteData, "x"}}},
      {{std::nan(""), std::nan("")}, PredictorSetting::kNone, {{FaultIdentifier::kNoValidData, "x"}}},
      {{1, 3, std::nan("")}, PredictorSetting::kRandom, {}},
  };
  for (const auto& row : rows) {
    Spreadsheet data("data");
    data.AddVariable(Numbers("x", row.values));
    ProfilerDesign design;
    EXPECT_EQ(Merge(design, {Graded("y", kLowHigh, kHighEffect)}, &data), row.notes);
    EXPECT_EQ(design.predictors[0].setting, row.setting);
  }
}

TEST(ProfilerModels, CorrelationThatIsNotDefinedIsNotedAndTakenAsZero) {
  const double none = std::nan("");
  Spreadsheet data("data");
  data.AddVariable(Numbers("A", {1, 2, none, none}));
  data.AddVariable(Numbers("B", {none, none, 1, 5}));
  ProfilerDesign design;
  design.AddDependent(Dependent("Y"));
  EXPECT_EQ(SetFormula(design, 0, "A + B", &data),
            (ProfilerNotes{{FaultIdentifier::kCorrelationUndefined, "A", "B"}}));
  EXPECT_EQ(design.correlations, (std::vector<double>{1, 0, 0, 1}));
}

TEST(ProfilerModels, FieldThatIsTextInOneModelAndNumberInAnotherIsRefusedAndNothingChanges) {
  ProfilerDesign design;
  Merge(design, {Graded("y", kLowHigh, kHighEffect)});
  const Model numbers = Graded("z", R"(<Value value="1"/><Value value="2"/>)",
                               R"(<CategoricalPredictor name="grade" value="2" coefficient="7"/>)", "double");
  const Model models[] = {Load("RegressionOzone.pmml"), numbers};
  EXPECT_EQ(MergeModels(design, models, nullptr).Reason(),
            (Fault{FaultIdentifier::kFieldTypesDiffer, "grade"}));
  EXPECT_EQ(design.predictors.size(), 2U);
  EXPECT_EQ(design.dependents.size(), 1U);
}

// The second model numbers the same texts the other way round, and knows one more.
TEST(ProfilerModels, TextsMeanTheSameInEveryModel) {
  const std::string more = std::string(kHighLow) + R"(<Value value="top"/>)";
  const std::string effects =
      std::string(kHighEffect) + R"(<CategoricalPredictor name="grade" value="top" coefficient="7"/>)";
  ProfilerDesign design;
  Merge(design, {Graded("y", kLowHigh, kHighEffect), Graded("z", more, effects)});
  EXPECT_EQ(design.predictors[1].labels,
            (std::map<double, std::string>{{1, "low"}, {2, "high"}, {3, "top"}}));
  design.predictors[0].setting = PredictorSetting::kFixed;
  design.predictors[0].fixedValue = 5;
  design.predictors[1].specification.values = {1, 0.25, 2, 0.25, 3, 0.5};
  design.seeded = true;
  HeadlessUserInterface port;
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  const Spreadsheet& sheet = *run.output;
  EXPECT_EQ(sheet.VariableAt(1).Type(), VariableType::kText);
  EXPECT_EQ(sheet.VariableAt(1).Label(3), "top");
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    const double grade = sheet.VariableAt(1).Values()[i];
    const double y = sheet.VariableAt(2).Values()[i];
    const double z = sheet.VariableAt(3).Values()[i];
    if (grade == 3) {
      EXPECT_EQ(z, 18);
      continue;
    }
    EXPECT_EQ(y, grade == 2 ? 111 : 11);
    EXPECT_EQ(z, y);
  }
}

TEST(ProfilerModels, PredictionsOfARunAreThoseOfScoring) {
  const Spreadsheet data = ReadCsv(std::filesystem::path(kInterchange) / "Ozone.csv");
  const Model model = Load("NeuralNetworkOzone.pmml");
  ProfilerDesign design;
  Merge(design, {model}, &data);
  design.seeded = true;
  design.runs = 300;
  HeadlessUserInterface port;
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  const Spreadsheet scored = model->Score(*run.output, "scored");
  for (std::size_t i = 0; i < 300; ++i) {
    EXPECT_EQ(run.output->VariableAt(design.predictors.size()).Values()[i], scored.VariableAt(0).Values()[i]);
  }
}

TEST(ProfilerModels, FormulaBringsItsNamesAndGoesBackToTheOneBefore) {
  Spreadsheet data("data");
  data.AddVariable(Numbers("A", {1, 2, 3}));
  data.AddVariable(Texts("Kind", {1, 2, 2}, {"old", "new"}));
  ProfilerDesign design;
  design.AddDependent(Dependent("Y"));
  (void)SetFormula(design, 0, "A + 2 * Pi + 'wait time' * Kind + v1", &data);
  ASSERT_EQ(design.predictors.size(), 3U);
  EXPECT_EQ(design.predictors[0].specification.values, (std::vector<double>{2, 1}));
  EXPECT_EQ(design.predictors[1].name, "wait time");
  EXPECT_EQ(design.predictors[1].setting, PredictorSetting::kNone);
  EXPECT_EQ(design.predictors[2].labels.size(), 2U);
  (void)SetFormula(design, 0, "A +", &data);
  EXPECT_EQ(design.dependents[0].formula, "A +") << "the run judges it";
  EXPECT_EQ(design.predictors.size(), 3U) << "what a formula that is not valid reads is not known";
  EXPECT_TRUE(UndoFormula(design, 0, &data).has_value());
  EXPECT_EQ(design.dependents[0].formula, "A + 2 * Pi + 'wait time' * Kind + v1");
  EXPECT_TRUE(UndoFormula(design, 0, &data).has_value());
  EXPECT_EQ(design.dependents[0].formula, "");
  EXPECT_TRUE(design.predictors.empty());
  EXPECT_FALSE(UndoFormula(design, 0, &data).has_value());
}

TEST(ProfilerModels, PredictorsThatNothingReadsGoAndReturnAsTheyWereSpecified) {
  Spreadsheet data("data");
  data.AddVariable(Numbers("A", {1, 2, 3, 5}));
  data.AddVariable(Numbers("B", {4, 1, 2, 2}));
  ProfilerDesign design;
  design.AddDependent(Dependent("Y"));
  (void)SetFormula(design, 0, "A + Bb + B", &data);
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"A", "Bb", "B"}));
  const double correlation = design.correlations[2];
  EXPECT_NE(correlation, 0);
  (void)SetFormula(design, 0, "A + B", &data);
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"A", "B"}));
  EXPECT_EQ(design.correlations, (std::vector<double>{1, correlation, correlation, 1}));
  design.predictors[0].setting = PredictorSetting::kFixed;
  design.predictors[0].fixedValue = 42;
  (void)SetFormula(design, 0, "B", &data);
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"B"}));
  EXPECT_TRUE(UndoFormula(design, 0, &data).has_value());
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"B", "A"}));
  EXPECT_EQ(design.predictors[1].fixedValue, 42);
  (void)SetFormula(design, 0, "v2 + 1", &data);
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"B", "A"})) << "v2 stays A";
}

// A field that a model lists and never reads needs no distribution.
TEST(ProfilerModels, FieldsThatNoModelReadsAreNoPredictors) {
  ProfilerDesign design;
  Merge(design, {Graded("y", kLowHigh, "")});
  EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"x"}));
  design.predictors[0].setting = PredictorSetting::kRandom;
  design.predictors[0].specification.values = {0, 1};
  HeadlessUserInterface port;
  const ProfilerRun run = *RunProfiler(design, port);
  for (std::size_t i = 0; i < 10; ++i)
    EXPECT_DOUBLE_EQ(run.output->VariableAt(1).Values()[i], 1 + 2 * run.output->VariableAt(0).Values()[i]);
}

// grade is "high" where x is above 0, and "low" elsewhere, in another order than the models that read it have.
Model GradeOfX() {
  return std::make_shared<const PredictionModel>(PredictionModel::Parse(
      R"(<PMML version="4.2" xmlns="http://www.dmg.org/PMML-4_2"><Header/><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/>
<DataField name="grade" optype="categorical" dataType="string"><Value value="high"/><Value value="low"/></DataField>
</DataDictionary><TreeModel functionName="classification"><MiningSchema><MiningField name="x"/>
<MiningField name="grade" usageType="target"/></MiningSchema><Node score="low"><True/>
<Node score="high"><SimplePredicate field="x" operator="greaterThan" value="0"/></Node>
<Node score="low"><SimplePredicate field="x" operator="lessOrEqual" value="0"/></Node></Node>
</TreeModel></PMML>)",
      "grade"));
}

TEST(ProfilerModels, PredictionsAreWhatOtherModelsAndFormulasRead) {
  const Model reads = Graded("y", kLowHigh, kHighEffect);
  for (const bool together : {true, false}) {
    ProfilerDesign design;
    if (together) {
      Merge(design, {reads, GradeOfX()});
    } else {
      Merge(design, {reads});
      EXPECT_EQ(design.predictors.size(), 2U);
      Merge(design, {GradeOfX()});
    }
    design.AddDependent(Dependent("z"));
    design.AddDependent(Dependent("w"));
    (void)SetFormula(design, 2, "w + y", nullptr);
    (void)SetFormula(design, 3, "10 * y", nullptr);
    EXPECT_EQ(NamesOf(design.predictors), (std::vector<std::string>{"x"}));
    design.predictors[0].setting = PredictorSetting::kRandom;
    design.predictors[0].specification.values = {0, 1};
    HeadlessUserInterface port;
    const ProfilerRun run = *RunProfiler(design, port);
    const auto value = [&](const char* name, std::size_t i) {
      return run.output->VariableAt(run.output->FindVariable(name).value()).Values()[i];
    };
    for (std::size_t i = 0; i < 50; ++i) {
      const double x = value("x", i);
      EXPECT_DOUBLE_EQ(value("y", i), 1 + 2 * x + (x > 0 ? 100 : 0));
      EXPECT_DOUBLE_EQ(value("z", i), 11 * value("y", i));
    }
    (void)SetFormula(design, 3, "z - 1", nullptr);
    const auto refused = RunProfiler(design, port);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Reason().identifier, FaultIdentifier::kPredictedFromItself);
    (void)SetFormula(design, 3, "2", nullptr);
    const std::size_t grade = design.FindDependent("grade").value();
    (void)SetFormula(design, grade, "x > 0", nullptr);
    EXPECT_EQ(RunProfiler(design, port).Reason(), (Fault{FaultIdentifier::kFieldTypesDiffer, "grade"}))
        << "a formula predicts numbers";
  }
}

TEST(ProfilerModels, FormulaTakesPrecedenceOverTheModel) {
  ProfilerDesign design;
  Merge(design, {Graded("y", kLowHigh, kHighEffect)});
  (void)SetFormula(design, 0, "x ^ 2", nullptr);
  design.predictors[0].setting = PredictorSetting::kRandom;
  design.predictors[0].specification.values = {0, 1};
  Merge(design, {Graded("y", kLowHigh, kHighEffect)});
  HeadlessUserInterface port;
  const ProfilerRun run = *RunProfiler(design, port);
  ASSERT_NE(run.output, nullptr);
  for (std::size_t i = 0; i < 50; ++i) {
    const double x = run.output->VariableAt(0).Values()[i];
    EXPECT_DOUBLE_EQ(run.output->VariableAt(2).Values()[i], x * x);
  }
}

TEST(ProfilerModels, BestFitsReplaceSpecificationsOfPredictorsInTheData) {
  std::vector<double> skewed(400);
  for (std::size_t i = 0; i < skewed.size(); ++i)
    skewed[i] = 3 * std::pow(-std::log(1 - (static_cast<double>(i) + 0.5) / 400), 1 / 1.5);  // Weibull
  Spreadsheet data("data");
  data.AddVariable(Numbers("x", skewed));
  ProfilerDesign design;
  Merge(design, {Graded("y", kLowHigh, kHighEffect)}, &data);
  EXPECT_EQ(design.predictors[0].specification.code, DistributionCode::kNormal);
  HeadlessUserInterface port;
  EXPECT_EQ(*FitBestDistributions(design, data, port), 1U);
  EXPECT_EQ(design.predictors[0].specification.code, DistributionCode::kWeibull);
  EXPECT_NEAR(design.predictors[0].specification.values[0], 3, 0.1);
  const Spreadsheet empty("empty", 5, 1);
  EXPECT_EQ(FitBestDistributions(design, empty, port).Reason(), Fault{FaultIdentifier::kNoPredictorFitted});
  EXPECT_EQ(design.predictors[0].specification.code, DistributionCode::kWeibull);
}

}  // namespace
}  // namespace brenvolt::sra
