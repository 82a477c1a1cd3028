// What is refused when a model is loaded or data are bound to it, and what the person is told.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/base/error.h"
#include "host/models/prediction_model.h"
#include "host/tables/csv.h"

namespace brenvolt {
namespace {

const std::string kHead = R"(<PMML version="4.2">
<DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/>
<DataField name="c" optype="categorical" dataType="string"><Value value="u"/><Value value="v"/></DataField>
<DataField name="y" optype="continuous" dataType="double"/>
</DataDictionary>
)";
const std::string kSchema =
    R"(<MiningSchema><MiningField name="x"/><MiningField name="c"/><MiningField name="y" usageType="target"/></MiningSchema>)";
const std::string kTable = R"(<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/>
<CategoricalPredictor name="c" value="u" coefficient="5"/></RegressionTable>)";

// A regression model with something between the schema and the table.
std::string Regression(const std::string& inside, const std::string& attributes = "") {
  return kHead + "<RegressionModel functionName=\"regression\"" + attributes + ">\n" + kSchema + "\n" +
         inside + "\n" + kTable + "\n</RegressionModel>\n</PMML>\n";
}

std::string Derived(const std::string& name, const std::string& expression) {
  return "<DerivedField name=\"" + name + "\" optype=\"continuous\" dataType=\"double\">" + expression +
         "</DerivedField>";
}
std::string Local(const std::string& fields) {
  return "<LocalTransformations>\n" + fields + "\n</LocalTransformations>";
}

// "what (where)" of the refusal; empty if the text is taken.
std::string RefusalOf(const std::string& text) {
  try {
    PredictionModel::Parse(text, "m.pmml");
  } catch (const Error& error) {
    return std::string(error.what()) + " (" + error.Where() + ")";
  }
  return {};
}

struct Refused {
  std::string text;
  std::string message;
};

TEST(Pmml, RefusesByNameAndLineWhatItDoesNotKnow) {
  const std::string ref = R"(<FieldRef field="x"/>)";
  const Refused cases[] = {
      {Regression("<Surprise/>"), "the element Surprise is not supported (m.pmml, line 9)"},
      {Regression("", " surprise=\"1\""),
       "the attribute surprise of RegressionModel is not supported (m.pmml, line 7)"},
      {Regression("", " normalizationMethod=\"odd\""),
       "the attribute normalizationMethod of RegressionModel is \"odd\", which is not supported (m.pmml, "
       "line 7)"},
      {Regression(Local(Derived("d", "<Aggregate field=\"x\" function=\"sum\"/>"))),
       "the element Aggregate is not supported (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<Lag field=\"c\"/>"))),
       "a Lag of a field that is derived or treated is not supported (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<Apply function=\"odd\">" + ref + "</Apply>"))),
       "the function odd is not supported (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<Apply function=\"exp\">" + ref + ref + "</Apply>"))),
       "the function exp has the wrong number of arguments (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<FieldRef field=\"nowhere\"/>"))),
       "unknown field nowhere (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<Apply function=\"exp\"><FieldRef field=\"c\"/></Apply>"))),
       "texts cannot be used where numbers are needed (m.pmml, line 10)"},
      {Regression(Local(
           Derived("d", R"(<Apply function="matches"><FieldRef field="c"/><Constant>(</Constant></Apply>)"))),
       "the pattern \"(\" is not supported: missing ): ( (m.pmml, line 10)"},
      {Regression(Local(Derived("d", ref) + Derived("d", ref))),
       "the field d is defined twice (m.pmml, line 10)"},
      {Regression("", " isScorable=\"false\""),
       "the model declares that it is not meant for scoring (m.pmml, line 7)"},
      {kHead + "</PMML>", "the file holds no model (m.pmml, line 1)"},
      {"<PMML version=\"2.1\"/>",
       "the version 2.1 of PMML is not supported; 3.0 to 4.4 are (m.pmml, line 1)"},
      {"<PMML version=\"4.5\"/>",
       "the version 4.5 of PMML is not supported; 3.0 to 4.4 are (m.pmml, line 1)"},
      {"<html/>", "the file is not PMML: its element is html (m.pmml, line 1)"},
      {"<PMML version=\"4.1\">\n<Header>",
       "the file is not well-formed XML: Start-end tags mismatch (m.pmml, line 2)"},
      {"", "the file is not well-formed XML: No document element found (m.pmml, line 1)"},
      {"<PMML version=\"4.1\">\n\xFF</PMML>", "the file is not text in UTF-8 (m.pmml, line 2)"},
      {"<?xml version=\"1.0\" encoding=\"KOI8-R\"?><PMML/>",
       "the file is in the encoding koi8-r; UTF-8 and ISO-8859-1 are read (m.pmml)"},
      {Regression("<Extension><Node score=\"1\"/></Extension>"),
       "the element Node inside Extension is not supported (m.pmml, line 9)"},
      {kHead + "<AssociationModel functionName=\"associationRules\"/></PMML>",
       "the element AssociationModel is not supported (m.pmml, line 7)"},
  };
  for (const Refused& refused : cases) EXPECT_EQ(RefusalOf(refused.text), refused.message) << refused.text;
}

TEST(Pmml, TakesWhatTheStandardLeavesToOthers) {
  EXPECT_EQ(
      RefusalOf(Regression("<Extension><Whatever x=\"1\"/></Extension><ModelStats/><ModelVerification/>",
                           " x-note=\"1\" xmlns:q=\"urn:q\" q:note=\"2\"")),
      "");
  EXPECT_EQ(
      RefusalOf(Regression("<Extension><v:Node xmlns:v=\"urn:v\"/><Node xmlns=\"urn:v\"/></Extension>")), "");
  const std::string slip = "<DerivedField name=\"d\" optype=\"continuous\" dateType=\"double\"";
  const std::string rest = "><FieldRef field=\"x\"/></DerivedField>";
  EXPECT_EQ(RefusalOf(Regression(Local(slip + " dataType=\"double\"" + rest))), "");
  EXPECT_EQ(
      RefusalOf(Regression(Local("<DerivedField name=\"d\" optype=\"continuous\" typ=\"double\"" + rest))),
      "the attribute typ of DerivedField is not supported (m.pmml, line 10)");
  std::string prefixed = Regression("");
  for (std::size_t at = 0; (at = prefixed.find('<', at)) != std::string::npos; ++at) {
    prefixed.insert(at + (prefixed[at + 1] == '/' ? 2 : 1), "p:");
  }
  EXPECT_EQ(RefusalOf(prefixed), "");
  for (const char* version : {"3.0", "3.2", "4.0", "4.2.1", "4.3", "4.4", "4.4.1"}) {
    std::string text = Regression("");
    text.replace(text.find("4.2"), 3, version);
    EXPECT_EQ(RefusalOf(text), "") << version;
  }
  std::string untyped = Regression("");
  const std::string type = " dataType=\"string\"";
  untyped.erase(untyped.find(type), type.size());
  EXPECT_EQ(RefusalOf(untyped), "");
}

TEST(Pmml, ReadsLatin1AsItDeclares) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" + Regression("", " modelName=\"Temp\xE9rature\"");
  EXPECT_EQ(PredictionModel::Parse(text, "m.pmml").Name(), "Temp\xC3\xA9rature");
  EXPECT_EQ(PredictionModel::Parse("\xEF\xBB\xBF" + Regression("", " modelName=\"x\""), "m.pmml").Name(),
            "x");
}

std::string Repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

TEST(Pmml, RefusesHostileFilesBeforeTheyTakeMemoryOrTime) {
  constexpr int kMany = 1000;
  const std::string deep =
      Repeated("<Apply function=\"exp\">", kMany) + "<FieldRef field=\"x\"/>" + Repeated("</Apply>", kMany);
  const Refused cases[] = {
      {"<!DOCTYPE PMML [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>\n" + Regression(""),
       "document type declarations are not allowed (m.pmml, line 1)"},
      {Regression(Local(Derived("d", deep))), "elements are nested too deeply (m.pmml, line 10)"},
      {Regression("", " modelName=\"" + std::string(100000, 'a') + "\""),
       "an attribute is too long (m.pmml, line 7)"},
      {Regression("", Repeated(" a=\"1\"", 70)), "an element has too many attributes (m.pmml, line 7)"},
      {Regression(Local(Derived("d", "<FieldRef field=\"d\"/>"))),
       "the field d is defined by itself (m.pmml, line 10)"},
      {Regression(Local(Derived("d", "<FieldRef field=\"e\"/>") + Derived("e", "<FieldRef field=\"d\"/>"))),
       "the field d is defined by itself (m.pmml, line 10)"},
  };
  for (const Refused& refused : cases) EXPECT_EQ(RefusalOf(refused.text), refused.message);
}

// f1 calls f0 twice, f2 calls f1 twice, …: a page of text that means 2^60 operations.
TEST(Pmml, RefusesFunctionsThatUnfoldWithoutEnd) {
  std::string functions;
  constexpr int kFunctions = 60;
  for (int i = 0; i < kFunctions; ++i) {
    const std::string call = i == 0
                                 ? "<FieldRef field=\"a\"/>"
                                 : "<Apply function=\"f" + std::to_string(i - 1) + "\"><Apply function=\"f" +
                                       std::to_string(i - 1) + "\"><FieldRef field=\"a\"/></Apply></Apply>";
    functions += "<DefineFunction name=\"f" + std::to_string(i) + "\"><ParameterField name=\"a\"/>" + call +
                 "</DefineFunction>\n";
  }
  const std::string field = Derived("d", "<Apply function=\"f59\"><FieldRef field=\"x\"/></Apply>");
  EXPECT_TRUE(RefusalOf(Regression(Local(functions + field)))
                  .starts_with("the model's definitions expand to too many expressions"));
  const std::string own =
      "<DefineFunction name=\"g\"><ParameterField name=\"a\"/><Apply function=\"g\"><FieldRef "
      "field=\"a\"/></Apply>"
      "</DefineFunction>";
  EXPECT_TRUE(RefusalOf(Regression(Local(
                            own + Derived("d", "<Apply function=\"g\"><FieldRef field=\"x\"/></Apply>"))))
                  .starts_with("the function g calls itself"));
}

// Inputs in extensions that the reader does not know must not end in predictions from the priors alone.
TEST(Pmml, ANaiveBayesModelWithoutInputsThatAreUnderstoodIsRefused) {
  const auto model = [](const std::string& inputs) {
    return kHead +
           R"(<NaiveBayesModel functionName="classification" threshold="0.1"><MiningSchema><MiningField name="x"/>
<MiningField name="c" usageType="target"/></MiningSchema>
<BayesInputs>)" +
           inputs +
           R"(</BayesInputs><BayesOutput fieldName="c"><TargetValueCounts><TargetValueCount value="u" count="1"/>
<TargetValueCount value="v" count="1"/></TargetValueCounts></BayesOutput></NaiveBayesModel></PMML>)";
  };
  EXPECT_EQ(RefusalOf(model("<Extension><Inputs/></Extension>")),
            "the model has no inputs that are understood (m.pmml, line 9)");
  EXPECT_EQ(RefusalOf(model("<BayesInput fieldName=\"x\"><Extension><Stats/></Extension></BayesInput>")),
            "the input has neither counts nor distributions (m.pmml, line 9)");
}

// A fault in one output leaves the definitions that it asked for usable.
TEST(Pmml, OutputsThatCannotBeGivenAreLeftOutOneByOne) {
  const std::string model = Regression(
      "<Output><OutputField name=\"error\" feature=\"standardError\"/>\n"
      "<OutputField name=\"bad\" feature=\"transformedValue\"><Apply function=\"f\"><FieldRef "
      "field=\"c\"/></Apply></OutputField>"
      "<OutputField name=\"good\" feature=\"transformedValue\"><Apply function=\"f\"><FieldRef "
      "field=\"x\"/></Apply></OutputField>"
      "<OutputField name=\"many\" isMultiValued=\"1\"/>"
      "<OutputField name=\"share\" feature=\"probability\" value=\"u\"/>"
      "<OutputField name=\"cluster\" feature=\"clusterId\"/>"
      "<OutputField name=\"ofError\" feature=\"transformedValue\"><FieldRef "
      "field=\"error\"/></OutputField></Output>" +
      Local("<DefineFunction name=\"f\"><ParameterField name=\"a\"/><Apply function=\"exp\"><FieldRef "
            "field=\"a\"/></Apply>"
            "</DefineFunction>"));
  const PredictionModel loaded = PredictionModel::Parse(model, "m.pmml");
  const Spreadsheet found = loaded.Score(ReadCsvText("x,c\n0,u\n", "data"), "out");
  ASSERT_EQ(found.VariableCount(), 2U);
  EXPECT_EQ(found.VariableAt(1).Name(), "good");
  EXPECT_EQ(found.VariableAt(1).Values()[0], 1);
  std::string faults;
  for (const UnavailableOutput& output : loaded.UnavailableOutputs(ReadCsvText("x,c\n0,u\n", "data")))
    faults += output.name + ": " + output.reason + "\n";
  EXPECT_EQ(faults,
            "error: the feature standardError is not supported (m.pmml, line 9)\n"
            "bad: texts cannot be used where numbers are needed (m.pmml, line 11)\n"
            "many: an output of several values is not supported (m.pmml, line 10)\n"
            "share: the model has no probabilities (m.pmml, line 10)\n"
            "cluster: the model has no winning rule, node, segment, cluster or neighbour (m.pmml, line 10)\n"
            "ofError: the feature standardError is not supported (m.pmml, line 9)\n");
}

// Each text is twice the one before: after forty of them no memory would hold it.
TEST(Pmml, TextsThatGrowWithoutEndAreMissing) {
  std::string fields;
  std::string former = "c";
  constexpr int kDoublings = 40;
  for (int i = 0; i < kDoublings; ++i) {
    const std::string name = "t" + std::to_string(i);
    const std::string ref = "<FieldRef field=\"" + former + "\"/>";
    fields += "<DerivedField name=\"" + name +
              "\" optype=\"categorical\" dataType=\"string\"><Apply function=\"concat\">" + ref + ref +
              "</Apply></DerivedField>\n";
    former = name;
  }
  const auto output = [](const std::string& field) {
    return "<OutputField name=\"" + field +
           "\" feature=\"transformedValue\" dataType=\"string\"><FieldRef field=\"" + field +
           "\"/></OutputField>";
  };
  const std::string model =
      Regression("<Output>" + output("t3") + output("t39") + "</Output>" + Local(fields));
  const Spreadsheet found =
      PredictionModel::Parse(model, "m.pmml").Score(ReadCsvText("x,c\n0,u\n", "data"), "out");
  EXPECT_EQ(found.VariableAt(1).Label(found.VariableAt(1).Values()[0]), std::string(16, 'u'));
  EXPECT_TRUE(found.VariableAt(2).IsMissing(0));
}

// "what (where)" of a failed scoring of CSV text.
std::string FailureOf(const std::string& model, const std::string& data) {
  const PredictionModel loaded = PredictionModel::Parse(model, "m.pmml");
  try {
    loaded.Score(ReadCsvText(data, "data"), "out");
  } catch (const Error& error) {
    return std::string(error.what()) + " (" + error.Where() + ")";
  }
  return {};
}

TEST(Pmml, ScoringSaysWhatIsWrongWithTheData) {
  const std::string model = Regression("");
  EXPECT_EQ(FailureOf(model, "z\n1\n"), "the data lack fields that the model needs: x, c (data)");
  EXPECT_EQ(FailureOf(model, "x,c\n1,u\nmany,v\n"),
            "the model needs numbers in the field x, which has the text \"many\" in case 2 (x)");
  EXPECT_EQ(
      FailureOf(model, "x,c\n1,u\n2,never\n3,other\n"),
      "the model refuses the value \"never\" of field c in case 2, which it does not know as valid (data)");
  EXPECT_EQ(FailureOf(model, "x,c\n1,u\n,\n"), "");
}

TEST(Pmml, FieldsThatTheModelOnlyListsAreNotNeeded) {
  const std::string model =
      kHead + "<RegressionModel functionName=\"regression\">" + kSchema +
      Local(Derived("unused", "<FieldRef field=\"y\"/>")) +
      "<RegressionTable intercept=\"1\"><NumericPredictor name=\"x\" coefficient=\"2\"/>"
      "</RegressionTable></RegressionModel></PMML>";
  EXPECT_EQ(FailureOf(model, "x\n3\n"), "");
  const PredictionModel loaded = PredictionModel::Parse(model, "m.pmml");
  ASSERT_EQ(loaded.Predictors().size(), 2U);
  EXPECT_TRUE(loaded.Predictors()[0].isUsed);
  EXPECT_FALSE(loaded.Predictors()[1].isUsed);
}

// Codes that a file holds as numbers are texts to the model.
TEST(Pmml, NumbersInAFieldOfTextsAreTheTextsThatSpellThem) {
  std::string model = Regression("");
  model.replace(model.find("\"u\""), 3, "\"1.0\"");
  model.replace(model.find("\"v\""), 3, "\"2\"");
  model.replace(model.find("\"u\""), 3, "\"1.0\"");
  const Spreadsheet found =
      PredictionModel::Parse(model, "m.pmml").Score(ReadCsvText("x,c\n0,1\n0,2\n", "data"), "out");
  EXPECT_EQ(found.VariableAt(0).Values()[0], 6);
  EXPECT_EQ(found.VariableAt(0).Values()[1], 1);
}

TEST(Pmml, DescribesItsFieldsToTheProfiler) {
  const std::string quality =
      R"(<ModelExplanation><PredictiveModelQuality targetField="y" dataUsage="training" rootMeanSquaredError="3"/></ModelExplanation>)";
  const std::string stats =
      R"(<ModelStats><UnivariateStats field="c"><DiscrStats><Array type="string" n="2">u v</Array><Array type="int" n="2">30 10</Array></DiscrStats></UnivariateStats></ModelStats>)";
  const PredictionModel model =
      PredictionModel::Parse(Regression(stats + quality, " modelName=\"line\""), "m.pmml");
  EXPECT_EQ(model.Name(), "line");
  ASSERT_EQ(model.Predictors().size(), 2U);
  EXPECT_EQ(model.Predictors()[0].Type(), "In;Cont");
  EXPECT_EQ(model.Predictors()[1].Type(), "In;Cat");
  EXPECT_EQ(model.Predictors()[1].codes, (std::vector<double>{1, 2}));
  EXPECT_EQ(model.Predictors()[1].labels, (std::vector<std::string>{"u", "v"}));
  EXPECT_EQ(model.Predictors()[1].frequencies, (std::vector<double>{0.75, 0.25}));
  ASSERT_EQ(model.Dependents().size(), 1U);
  EXPECT_EQ(model.Dependents()[0].name, "y");
  EXPECT_EQ(model.Dependents()[0].Type(), "Out;Cont");
  EXPECT_EQ(model.MeanSquaredError(0), 9);
}

// The profiler's form: codes in, an unknown code or missing value gives no prediction.
TEST(Pmml, PredictsColumnsFromColumnsOfCodes) {
  const PredictionModel model = PredictionModel::Parse(Regression(""), "m.pmml");
  const std::vector<double> x{1, 1, 1, NAN};
  const std::vector<double> c{1, 2, 3, 1};
  std::vector<double> y(4);
  const std::vector<std::span<const double>> predictors{x, c};
  const std::vector<std::span<double>> dependents{y};
  model.Predict(predictors, dependents);
  EXPECT_EQ(y[0], 8);
  EXPECT_EQ(y[1], 3);
  EXPECT_TRUE(std::isnan(y[2]));
  EXPECT_TRUE(std::isnan(y[3]));
  EXPECT_THROW(model.Predict(std::span(predictors).first(1), dependents), Error);
}

// A number from 0 to 10, one without a range, and a text; `attributes` are those of the first's mining field.
std::string Ranged(const std::string& attributes) {
  return R"(<PMML version="4.4"><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"><Interval closure="closedClosed" leftMargin="0" rightMargin="10"/></DataField>
<DataField name="z" optype="continuous" dataType="double"/>
<DataField name="c" optype="categorical" dataType="string"><Value value="u"/><Value value="v"/></DataField>
</DataDictionary><RegressionModel functionName="regression"><MiningSchema><MiningField name="x")" +
         attributes + R"(/><MiningField name="z"/><MiningField name="c"/></MiningSchema>
<RegressionTable intercept="1"><NumericPredictor name="x" coefficient="2"/><NumericPredictor name="z" coefficient="1"/>
<CategoricalPredictor name="c" value="u" coefficient="5"/></RegressionTable></RegressionModel></PMML>)";
}

TEST(Pmml, TheRangeOfAFieldIsThatInWhichItHasPredictions) {
  struct Case {
    std::string attributes;
    std::optional<double> lowest;
    std::optional<double> highest;
    bool predictsInvalid;
    std::optional<double> replacement;
  };
  const Case cases[] = {
      {"", 0, 10, false, {}},
      {R"( invalidValueTreatment="asIs")", 0, 10, true, {}},
      {R"( invalidValueTreatment="asMissing")", 0, 10, false, {}},
      {R"( invalidValueTreatment="asMissing" missingValueReplacement="3")", 0, 10, true, 3},
      {R"( invalidValueTreatment="asValue" invalidValueReplacement="3")", 0, 10, true, {}},
      {R"( outliers="asMissingValues" lowValue="-5" highValue="7")", 0, 7, false, {}},
      {R"( outliers="asMissingValues" lowValue="2" highValue="7" invalidValueTreatment="asIs")",
       2,
       7,
       false,
       {}},
      {R"( outliers="asExtremeValues" lowValue="2" highValue="7")", 0, 10, false, {}},
      {R"( missingValueTreatment="returnInvalid" missingValueReplacement="3")", 0, 10, false, {}},
  };
  for (const Case& wanted : cases) {
    const PredictionModel model = PredictionModel::Parse(Ranged(wanted.attributes), "m.pmml");
    const ModelField& x = model.Predictors()[0];
    EXPECT_EQ(x.lowest, wanted.lowest) << wanted.attributes;
    EXPECT_EQ(x.highest, wanted.highest) << wanted.attributes;
    EXPECT_EQ(x.predictsInvalid, wanted.predictsInvalid) << wanted.attributes;
    EXPECT_EQ(x.replacement, wanted.replacement) << wanted.attributes;
    EXPECT_FALSE(model.Predictors()[1].lowest);
    EXPECT_TRUE(x.parts.empty() && !x.isListed) << wanted.attributes;
  }
}

TEST(Pmml, RangesWithGapsAndListedNumbersAreToldApart) {
  std::string text = Ranged("");
  const std::string interval = R"(<Interval closure="closedClosed" leftMargin="0" rightMargin="10"/>)";
  const auto described = [&](const std::string& domain) {
    std::string changed = text;
    changed.replace(changed.find(interval), interval.size(), domain);
    return PredictionModel::Parse(changed, "m.pmml").Predictors()[0];
  };
  const ModelField parts = described(
      R"(<Interval closure="openOpen" leftMargin="5" rightMargin="7"/><Value value="20"/>)" + interval +
      R"(<Interval closure="openClosed" leftMargin="12"/><Interval closure="openClosed" rightMargin="-3"/>)");
  ASSERT_EQ(parts.parts.size(), 3U);
  EXPECT_EQ(parts.parts[0].high, -3);
  EXPECT_EQ(parts.parts[1].low, 0);
  EXPECT_EQ(parts.parts[1].high, 10);
  EXPECT_EQ(parts.parts[2].low, 12);
  EXPECT_FALSE(parts.lowest || parts.highest || parts.isListed);
  const ModelField listed = described(R"(<Value value="3"/><Value value="1"/>)");
  EXPECT_TRUE(listed.isListed && listed.parts.empty());
  EXPECT_EQ(listed.codes, (std::vector<double>{3, 1}));
  EXPECT_EQ(listed.lowest, 1);
  EXPECT_EQ(listed.highest, 3);
}

// "field reason values cases", a line for each.
std::string LinesOf(const UnpredictedCases& unpredicted) {
  std::string lines;
  for (const UnpredictedReason& reason : unpredicted.Reasons()) {
    lines += reason.field + " " + std::string(NoPredictionName(reason.reason)) + " " + reason.Values() + " " +
             std::to_string(reason.cases) + "\n";
  }
  return lines;
}

// Several blocks and threads; each case counts once, by the first of its reasons.
TEST(Pmml, CasesWithoutPredictionAreCountedByFieldAndValue) {
  constexpr std::size_t kRows = 50'000;
  std::vector<double> x(kRows, 5);
  std::vector<double> z(kRows, 1);
  std::vector<double> c(kRows, 1);
  const std::map<double, std::string> labels{{1, "v"}, {2, "w"}, {3, "u"}};
  for (std::size_t i = 0; i < kRows; i += 1000) x[i] = i == 0 ? -0.5 : 10 + static_cast<double>(i) / 1000;
  for (std::size_t i = 1; i < kRows; i += 10'000) z[i] = NAN;
  for (std::size_t i = 2; i < kRows; i += 5000) c[i] = 2;
  x[2] = 11;  // and an unknown text in the same case
  const std::vector<std::span<const double>> predictors{x, z, c};
  std::vector<double> y(kRows);
  const std::vector<std::span<double>> dependents{y};
  const std::vector<const std::map<double, std::string>*> texts{nullptr, nullptr, &labels};
  for (const char* attributes : {"", R"( invalidValueTreatment="asMissing")"}) {
    UnpredictedCases unpredicted;
    PredictionModel::Parse(Ranged(attributes), "m.pmml")
        .Predict(predictors, dependents, {texts, {&unpredicted, 1}});
    EXPECT_EQ(y[3], 12);
    EXPECT_EQ(unpredicted.Total(), static_cast<std::size_t>(std::ranges::count_if(
                                       y, [](double value) { return std::isnan(value); })));
    EXPECT_EQ(LinesOf(unpredicted), std::string(attributes).empty()
                                        ? "x outside-range -0.5 to 59 51\nc unknown w 9\nz missing  5\n"
                                        : "x outside-range -0.5 to 59 50\nc unknown w 10\nz missing  5\n");
  }
}

// A class is its place in the dictionary, whatever the order in the model or the data.
TEST(Pmml, ClassesKeepTheOrderOfTheDictionary) {
  const std::string path = BRENVOLT_SOURCE_DIR "/host/models/reference/interchange/";
  const PredictionModel model = PredictionModel::Load(path + "GeneralRegressionIris.pmml");
  const Spreadsheet found = model.Score(ReadCsv(path + "Iris.csv"), "out");
  const Variable& species = found.VariableAt(0);
  EXPECT_EQ(species.Type(), VariableType::kText);
  EXPECT_EQ(species.Values()[0], 1);
  EXPECT_EQ(species.Label(2), "versicolor");
  EXPECT_EQ(species.Values()[149], 3);
}

// The priors name a class that no table predicts, and it is the likeliest where nothing else is known.
TEST(Pmml, PriorsMayNameAClassThatTheModelHasNoColumnFor) {
  const std::string model = R"(<PMML version="4.2"><DataDictionary>
<DataField name="x" optype="continuous" dataType="double"/>
<DataField name="t" optype="categorical" dataType="string"><Value value="A"/><Value value="B"/><Value value="C"/></DataField>
</DataDictionary><RegressionModel functionName="classification" normalizationMethod="logit">
<MiningSchema><MiningField name="x"/><MiningField name="t" usageType="target"/></MiningSchema>
<Output><OutputField name="p" feature="probability"/><OutputField name="sure" feature="confidence"/></Output>
<Targets><Target field="t"><TargetValue value="D" priorProbability="0.6"/><TargetValue value="C" priorProbability="0.4"/></Target></Targets>
<RegressionTable intercept="1" targetCategory="A"><NumericPredictor name="x" coefficient="2"/></RegressionTable>
<RegressionTable intercept="0" targetCategory="B"/></RegressionModel></PMML>)";
  const Spreadsheet found =
      PredictionModel::Parse(model, "m.pmml").Score(ReadCsvText("x,z\n-0.5,1\n,2\n", "data"), "out");
  EXPECT_EQ(found.VariableAt(0).Label(found.VariableAt(0).Values()[0]), "A");
  EXPECT_EQ(found.VariableAt(0).Label(found.VariableAt(0).Values()[1]), "D");
  EXPECT_EQ(found.VariableAt(1).Values()[0], 0.5);
  EXPECT_EQ(found.VariableAt(1).Values()[1], 0.6);
  EXPECT_TRUE(found.VariableAt(2).IsMissing(1));
}

}  // namespace
}  // namespace brenvolt
