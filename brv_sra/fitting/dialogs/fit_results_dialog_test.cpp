// The fit results as a person and as automation drive them: what is shown of which variable, and what is
// saved.
#include "brv_sra/fitting/dialogs/fit_results_dialog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "brv_sra/fitting/dialogs/fit_support_dialog_test.h"
#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/analysis/result_table.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace fit_results;

// Five variables: 1, 2 continuous, 3 constant, 4, 5 discrete.
struct FitResults : FitDialog {
  void SetUp() override {
    for (double& x : sheet.VariableAt(2).MutableValues()) x = 7;
    Automation().Put("ContinuousVariable", "1-3");
    Automation().Put("DiscreteVariable", "4-5");
    for (int i = 1; i <= 3; ++i) {
      Automation().Put("IsNormalDistribution", i, true);
      Automation().Put("IsWeibullDistribution", i, true);
    }
    Automation().Put("WeibullOffset", 2, 1.0);  // the least value: that fit fails
    ASSERT_TRUE(Ok());
    ASSERT_EQ(analysis->CurrentStep(), step::kFitResults);
    Said();
  }
  const Spreadsheet& Shown() { return userInterface.documents.back()->Table(); }
  std::string Property(std::size_t variable, const char* key) {
    return sheet.VariableAt(variable).Property(key).value_or("none");
  }
  std::string Order(int place) {
    const Variant index(place);
    return Automation().Get("DistributionOrder", {&index, 1}).ToText();
  }
  // The reason why a put on the automation object is refused.
  std::string Refusal(const std::string& member, const Variant& value, Variant::Array indexes) {
    try {
      Automation().Put(member, value, indexes);
    } catch (const AutomationError& error) {
      return error.Reason();
    }
    return "";
  }
};

TEST_F(FitResults, EveryMemberHasItsNumberAndMakesItsOutput) {
  const struct {
    const char* member;
    DispatchId id;
    const char* title;  // of the document or graph, or null
  } rows[] = {
      {"QuickTabVariable", 0x60030000, nullptr},
      {"QuickTabDistribution", 0x60030002, nullptr},
      {"SummaryStats", 0x60030004, "Summary statistics"},
      {"SummaryGraph", 0x60030005, "Summary of Var1"},
      {"EmpiricalCDFPlot", 0x60030006, "Empirical Distribution of Var1"},
      {"HistogramWithFit", 0x60030007, "Histogram of Var1"},
      {"CumulativeHistogram", 0x60030008, "Cumulative Histogram of Var1"},
      {"PPPlot", 0x60030009, "P-P Plot of Var1"},
      {"QQPlot", 0x6003000a, "Q-Q Plot of Var1"},
      {"BoxPlot", 0x6003000b, "Box Plot of Var1"},
      {"SaveFitTabVariable", 0x6003000c, nullptr},
      {"CorrelationMatrix", 0x6003000e, "Correlation matrix"},
      {"QuickTabDistributionSummaryStats", 0x6003000f, "Ranked by: Kolmogorov-Smirnov"},
      {"SavePlotTabDistributionSummaryStats", 0x60030010, "Ranked by: Kolmogorov-Smirnov"},
      {"SaveDistributionFit", 0x60030011, "Correlation matrix"},
      {"DistributionOrder", 0x60030012, nullptr},
      {"IsUserDefinedDistributions", 0x60030014, nullptr},
      {"UserDefinedDistributionOrder", 0x60030016, nullptr},
      {"IsDefaultDistributionSettings", 0x60030018, nullptr},
      {"UserDefinedDistributions", 0x6003001a, nullptr},
      {"IsUserDefinedTruncMin", 0x6003001c, nullptr},
      {"UserDefinedTruncMin", 0x6003001e, nullptr},
      {"IsUserDefinedTruncMax", 0x60030020, nullptr},
      {"UserDefinedTruncMax", 0x60030022, nullptr},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Automation().FindMember(row.member), row.id) << row.member;
    if (row.title == nullptr) continue;
    const auto object = Automation().Get(row.member).ToObject();
    if (const auto table = std::dynamic_pointer_cast<CAnalysisTableDoc>(object)) {
      EXPECT_EQ(table->Table().Title(), row.title) << row.member;
      EXPECT_EQ(userInterface.documents.back(), table) << row.member << " is shown as well";
    } else {
      const auto graph = std::dynamic_pointer_cast<CAnalysisGraphDoc>(object);
      ASSERT_NE(graph, nullptr) << row.member;
      EXPECT_EQ(graph->Content().title, row.title);
      EXPECT_EQ(userInterface.graphs.back(), graph) << row.member;
    }
  }
}

TEST_F(FitResults, ButtonsShowWhatMembersReturnAndFaultsAsMessages) {
  for (const std::int32_t button : {kHistogram, kCumulativeHistogram, kEmpiricalPlot, kProbabilityPlot,
                                    kQuantilePlot, kBoxPlot, kSummaryGraph}) {
    EXPECT_TRUE(Dialog().Press(button));
  }
  EXPECT_EQ(userInterface.graphs.size(), 7U);
  EXPECT_TRUE(Dialog().Press(kDetails));
  EXPECT_EQ(Shown().CaseName(0), "Location");
  Dialog().Select(kVariable, 2);
  const std::string notFitted(ResourceString(kMsgVariableNotFitted));
  for (const std::int32_t button : {kHistogram, kBoxPlot, kDistributionSummary, kDetails}) {
    EXPECT_FALSE(Dialog().Press(button));
    EXPECT_EQ(Said(), std::vector<std::string>{notFitted});
  }
  EXPECT_EQ(userInterface.graphs.size(), 7U);
  EXPECT_TRUE(Dialog().Press(kPrevious));
  EXPECT_FALSE(Dialog().Select(kVariable, 5));
  Dialog().Select(kDistribution, static_cast<int>(Dialog().Controls().At(kDistribution).items.size()) - 1);
  EXPECT_FALSE(Dialog().Press(kQuantilePlot));
  EXPECT_EQ(Said(), std::vector<std::string>{"The Weibull distribution could not be fitted to Var2."});
}

TEST_F(FitResults, GraphsUseTheCasesAndOptionsOfTheFit) {
  sheet.SetSelection({true, "first ten", std::vector<std::uint8_t>(kCases, 0)});
  CaseSelection selection = sheet.Selection();
  std::fill_n(selection.accepted.begin(), 10, 1);
  sheet.SetSelection(selection);
  Automation().Get("EmpiricalCDFPlot");
  const auto& steps = userInterface.graphs.back()->Content().series.at(0);
  EXPECT_EQ(steps.y.back(), 1);
  EXPECT_LE(steps.x.size(), 10U);
}

TEST_F(FitResults, RankedTableHoldsEveryTestAndSaysWhyAFitFailed) {
  Automation().Put("QuickTabVariable", 2);
  const ResultTable table = ReadResultTable(Automation().Get("QuickTabDistributionSummaryStats"));
  const ResultRow& failed = table.rows.back();
  for (const ResultColumn* column :
       {&"ks"_column, &"chi_square"_column, &"chi_square_p"_column, &"chi_square_df"_column, &"ad"_column,
        &"ad_p"_column, &"aic"_column, &"bic"_column}) {
    EXPECT_TRUE(std::isnan(failed.Number(*column)))
        << column->identifier << " of a fit that failed is missing";
  }
  const auto& fits = analysis->Fit().results[1];
  const DistributionFit& best = fits.fits[fits.ranked[0]];
  const ResultRow& first = table.rows.front();
  EXPECT_EQ(first.Number("ad"_column), best.andersonDarling.statistic);
  EXPECT_EQ(first.Number("chi_square_df"_column), best.chiSquare.degreesOfFreedom);
  EXPECT_EQ(first.Number("aic"_column), 2 * (best.estimatedParameters - best.logLikelihood));
  EXPECT_EQ(failed.name, "Weibull");
  const std::string& reason = failed.Text("reason"_column);
  EXPECT_TRUE(reason.starts_with("the value 1 in case ") && reason.ends_with(" equals the offset")) << reason;
  EXPECT_FALSE(first.Has("bootstrap_samples"_column)) << "no bootstrap was asked for";
}

TEST_F(FitResults, BootstrapColumnsAppearWhereItRan) {
  VariableFit& variable = analysis->Fit().results[0];
  variable.fits[variable.ranked[1]].bootstrap = {0.25, 0.5, kNotSet, 999};
  const ResultTable table = ReadResultTable(Automation().Get("QuickTabDistributionSummaryStats"));
  const ResultRow& second = table.rows[1];
  EXPECT_EQ(second.Number("bootstrap_ks_p"_column), 0.25);
  EXPECT_EQ(second.Number("bootstrap_chi_square_p"_column), 0.5);
  EXPECT_TRUE(std::isnan(second.Number("bootstrap_ad_p"_column)));
  EXPECT_EQ(second.Number("bootstrap_samples"_column), 999);
  EXPECT_TRUE(std::isnan(table.rows[0].Number("bootstrap_ks_p"_column))) << "not of every fit";
}

TEST_F(FitResults, OrderIsThePersonsOwnAndChecked) {
  const std::string ranked = Order(1);
  EXPECT_NE(ranked.find("Weibull;"), std::string::npos);
  const struct {
    Variant value;
    const char* order;    // afterwards; null: as it was
    const char* refusal;  // or empty
  } rows[] = {
      {"Weibull;Normal;", "Weibull;Normal;", ""},
      {Variant::Array{Variant(0), Variant("scWeibull")}, "Normal;Weibull;", ""},
      {" Weibull ", "Weibull;", ""},
      {"Normal;Normal", "Weibull;", "Normal appears twice in the order of distributions of variable Var1."},
      {"Rayleigh", "Weibull;", "Rayleigh is not a valid fit of variable Var1."},
      {Variant::Array{Variant(12)}, "Weibull;", "Poisson is not a valid fit of variable Var1."},
      {"Gauss", "Weibull;", "no distribution called Gauss"},
      {Variant(16), "Weibull;", "unknown distribution code: 16"},
      {"", nullptr, ""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Refusal("DistributionOrder", row.value, {1}), row.refusal);
    EXPECT_EQ(Order(1), row.order != nullptr ? row.order : ranked);
  }
  EXPECT_EQ(Refusal("DistributionOrder", "Weibull", {2}), "Weibull is not a valid fit of variable Var2.");
  EXPECT_EQ(Refusal("DistributionOrder", "Normal", {6}), "no variable 6 among the results");
  // The buttons.
  Automation().Put("DistributionOrder", 1, "Normal;Weibull");
  Automation().Put("SaveFitTabVariable", 1);
  Dialog().Select(kOrder, 0);
  EXPECT_TRUE(Dialog().Press(kMoveDown));
  EXPECT_EQ(Order(1), "Weibull;Normal;");
  EXPECT_EQ(Dialog().Controls().Selection(kOrder), 1) << "the moved one stays selected";
  Dialog().Press(kMoveDown);
  Dialog().Press(kLeaveOut);
  Dialog().Press(kLeaveOut);
  EXPECT_EQ(Order(1), "Weibull;") << "the last one stays";
  Dialog().Press(kDefaultOrder);
  EXPECT_EQ(Order(1), ranked);
}

TEST_F(FitResults, HistogramIsSavedOnlyByNameOrAlone) {
  EXPECT_EQ(Order(4).find("Histogram"), std::string::npos);
  Automation().Put("DistributionOrder", 4, "Histogram;Poisson");
  EXPECT_EQ(Order(4), "Histogram;Poisson;");
  Automation().Put("DistributionOrder", 4, "");
  for (DistributionFit& fit : analysis->Fit().results[3].fits) {
    if (fit.specification.code != DistributionCode::kHistogram) fit.specification.values = {kNotSet};
  }
  EXPECT_EQ(Order(4), "Histogram;");
}

TEST_F(FitResults, SaveWritesOrderTruncationAndMarks) {
  Automation().Put("DistributionOrder", 1, "Weibull;Normal");
  Automation().Put("IsUserDefinedTruncMin", 1, true);
  EXPECT_THROW(Automation().Get("SaveDistributionFit"), Error) << "no bound yet";
  EXPECT_EQ(Property(0, "zOrder"), "none") << "and nothing is written";
  Automation().Put("UserDefinedTruncMin", 1, 2.5);
  Automation().Put("IsUserDefinedTruncMax", 1, true);
  Automation().Put("UserDefinedTruncMax", 1, 2.5000001);
  EXPECT_THROW(Automation().Get("SaveDistributionFit"), Error) << "the bounds meet once they are stored";
  Automation().Put("UserDefinedTruncMax", 1, 9.0);
  Dialog().Select(kSaveVariable, 1);
  Dialog().Enter(kTruncationMaximum, "8.5");
  Dialog().Check(kTruncateAbove, true);
  EXPECT_TRUE(Dialog().Press(kSaveFit));
  EXPECT_EQ(Property(0, "zOrder"), "Weibull;Normal;");
  EXPECT_EQ(Property(0, "zTruncProp"), "(1; 1; 2.500000e+00; 9.000000e+00)");
  EXPECT_EQ(Property(1, "zTruncProp"), "(0; 1; -4.440000e+02; 8.500000e+00)");
  EXPECT_EQ(Property(1, "Weibull"), "none") << "a fit that failed is not written";
  EXPECT_EQ(Property(2, "InvalidFit"), "1");
  EXPECT_EQ(Property(2, "zOrder"), "");
  EXPECT_EQ(Property(3, "Histogram"), "none");
  EXPECT_EQ(Shown().VariableCount(), 4U) << "the constant variable has no place in the matrix";
  const Result<MatrixFile> matrix = ReadMatrixFile(Shown());
  ASSERT_TRUE(matrix);
  EXPECT_EQ(matrix->variables, (std::vector<std::string>{"Var1", "Var2", "Var4", "Var5"}));
}

TEST_F(FitResults, OwnValuesAreSavedWhenAskedFor) {
  const auto own = [&](const char* name) {
    const Variant::Array indexes{1, name};
    std::vector<double> values;
    for (const Variant& value : Automation().Get("UserDefinedDistributions", indexes).ToArray())
      values.push_back(value.ToReal());
    return values;
  };
  const auto isDefault = [&](const char* name) {
    const Variant::Array indexes{1, name};
    return Automation().Get("IsDefaultDistributionSettings", indexes).ToInteger();
  };
  const auto put = [&](const char* name, Variant::Array values) {
    return Refusal("UserDefinedDistributions", std::move(values), {1, name});
  };
  EXPECT_EQ(own("Weibull").size(), 3U) << "scale, shape and offset of the fit";
  EXPECT_EQ(own("Rayleigh"), std::vector<double>{});
  EXPECT_EQ(put("Rayleigh", {2.5}), "");
  EXPECT_EQ(put("Weibull", {3.0, 2.0, -1.0}), "");
  EXPECT_EQ(put("Normal", {3.0, 0.0}), "Invalid scale parameter entry for Normal distribution. ");
  EXPECT_EQ(put("Poisson", {3.0}), "Poisson is not a distribution for variable Var1.");
  EXPECT_EQ(own("Rayleigh"), (std::vector<double>{2.5, 0}));
  EXPECT_EQ(isDefault("Rayleigh"), 0);
  EXPECT_EQ(isDefault("Normal"), 1);
  Automation().Get("SaveDistributionFit");
  EXPECT_EQ(Property(0, "Rayleigh"), "none") << "not asked for yet";
  Automation().Put("IsUserDefinedDistributions", 1);
  Automation().Put("UserDefinedDistributionOrder", 1, "Rayleigh;Weibull;Normal");
  EXPECT_EQ(Refusal("UserDefinedDistributionOrder", "Half Normal", {1}),
            "Half Normal is not a valid fit of variable Var1.");
  Automation().Get("SaveDistributionFit");
  EXPECT_EQ(Property(0, "zOrder"), "Rayleigh;Weibull;Normal;");
  EXPECT_EQ(Property(0, "Weibull"),
            "(Scale=3.000000000000e+00; Shape=2.000000000000e+00; Offset=-1.000000000000e+00)");
  EXPECT_EQ(Refusal("IsDefaultDistributionSettings", true, {1, "Rayleigh"}), "");
  const Variant first(1);
  EXPECT_EQ(Automation().Get("UserDefinedDistributionOrder", {&first, 1}).ToText(), "Weibull;Normal;");
}

// As recorded macros write them. The constant goes by its value, as scripts pass it.
TEST_F(FitResults, OwnValuesAreTakenAsMacroText) {
  const struct {
    const char* name;
    Variant::Array values;
    const char* refusal;
  } rows[] = {
      {"Weibull", {5, 3.0, 2.0, -1.0, 0, 0, 0, 0}, ""},
      {"GaussianMixture", {6, 0.5, 1.0, 2.0, 0.5, 3.0, 1.0, 0, 0, 0, 0}, ""},
      {"Normal", {5, 3.0, 2.0, 0, 0, 0, 0}, "values of another distribution: Weibull"},
      {"Normal",
       {0, 3.0, 2.0, 1, 1.0, 0, 0},
       "bounds are put by UserDefinedTruncMin and UserDefinedTruncMax"},
      {"Normal", {0, 3.0, 0.0, 0, 0, 0, 0}, "Invalid scale parameter entry for Normal distribution. "},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Refusal("UserDefinedDistributions", row.values, {1, row.name}), row.refusal);
    if (*row.refusal != '\0') continue;
    const Variant::Array indexes{1, row.name};
    const auto own = Automation().Get("UserDefinedDistributions", indexes).ToArray();
    ASSERT_EQ(own.size(), row.values.size() - 5) << row.name;
    for (std::size_t i = 0; i < own.size(); ++i) EXPECT_EQ(own[i].ToReal(), row.values[i + 1].ToReal());
  }
}

TEST_F(FitResults, SelectedVariablesAloneAreSavedAndSummarised) {
  EXPECT_EQ(Automation().Get("Variables").ToText(), "1-3 | 4-5");
  EXPECT_EQ(Refusal("Variables", "1 | 2", {}), "Variable Var2 is not among the fitted ones.");
  EXPECT_NE(Refusal("Variables", " | ", {}), "");
  Automation().Put("Variables", "2 | 5");
  Automation().Get("SummaryStats");
  EXPECT_EQ(Shown().CaseCount(), 2U);
  Automation().Get("SaveDistributionFit");
  EXPECT_EQ(Property(0, "zOrder"), "none");
  EXPECT_NE(Property(1, "zOrder"), "none");
  Automation().Put("Variables", "1 | ");
  Automation().Get("CorrelationMatrix");
  EXPECT_EQ(Shown().VariableCount(), 1U);
  Automation().Get("SaveDistributionFit");
  EXPECT_EQ(ReadMatrixFile(Shown())->variables, (std::vector<std::string>{"Var1", "Var2", "Var5"}))
      << "the matrix covers what was saved before";
}

TEST_F(FitResults, UndefinedCorrelationsAreReported) {
  const double none = GetDefaultMDValue();
  for (std::size_t i = 0; i < kCases; ++i) sheet.VariableAt(i < 15 ? 0 : 1).MutableValues()[i] = none;
  Automation().Put("Variables", "1-2 | ");
  Automation().Get("CorrelationMatrix");
  EXPECT_EQ(Said(),
            std::vector<std::string>{"The correlation of Var1 and Var2 is not defined and is taken as 0."});
  EXPECT_TRUE(ReadMatrixFile(Shown()));
}

TEST_F(FitResults, SimulationIsReachedAndComesBack) {
  EXPECT_TRUE(Dialog().Press(kSimulate));
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulation);
  EXPECT_TRUE(Property(0, "zOrder").starts_with("Normal;")) << "the fits are saved";
  Automation().Put("ImanConoverMethod", true);
  EXPECT_EQ(Automation().Call("OK").ToInteger(), 1) << "it goes on with the saved matrix";
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulationResults);
  Automation().Call("Cancel");
  EXPECT_EQ(analysis->CurrentStep(), step::kSimulation);
  Automation().Call("Cancel");
  EXPECT_EQ(analysis->CurrentStep(), step::kFitResults) << "where it was opened from";
  Said();
  Automation().Put("Variables", "3");
  EXPECT_EQ(Automation().Call("RunSimulation").ToInteger(), 0);
  EXPECT_EQ(Said().size(), 1U) << "it has no valid fit";
  EXPECT_EQ(analysis->CurrentStep(), step::kFitResults);
}

}  // namespace
}  // namespace brenvolt::sra
