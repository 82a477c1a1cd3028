#include "brv_sra/profiler/dialogs/defect_documents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <vector>

#include "host/analysis/result_table.h"

namespace brenvolt::sra {
namespace {

const double kNan = std::numeric_limits<double>::quiet_NaN();
const SpecificationLimits kZeroToOne{0, 1, kNan};

// `defects` values outside 0 to 1, on both sides in turn, then values inside, both limits among them.
std::vector<double> Values(std::size_t runs, std::size_t defects) {
  std::vector<double> values(runs, 0.5);
  for (std::size_t i = 0; i < defects; ++i) values[i] = i % 2 == 0 ? 1.5 : -0.5;
  if (defects < runs) values[defects] = 1;
  if (defects + 1 < runs) values[defects + 1] = 0;
  return values;
}

// The title without its first line, which names the table.
std::string NotesOf(const Spreadsheet& sheet) {
  const std::string title = sheet.Title();
  return title.substr(std::min(title.find('\n'), title.size()));
}

ResultTable Rates(std::span<const ProfiledResponse> responses) {
  return ReadResultTable(*MakeDefectSheet(responses, CountDefects(responses)));
}
ResultTable Counts(std::span<const ProfiledResponse> responses, bool independent = true) {
  return ReadResultTable(*MakeDefectCountSheet(responses, CountDefects(responses), independent));
}

TEST(DefectDocuments, SaturatedCountsAreNotedAndTheExactOnesStandInATableOfTheirOwn) {
  struct Case {
    std::size_t runs;
    std::size_t defects;
    double rate;  // the count of at most 32767 over the runs
    bool note;
  };
  const Case cases[] = {{5000, 50, 0.01, false},
                        {5000, 0, 0, false},
                        {100000, 32767, 0.32767, false},
                        {100000, 32768, 0.32767, true},
                        {100000, 80000, 0.32767, true}};
  for (const Case& c : cases) {
    const std::vector<double> values = Values(c.runs, c.defects);
    const std::vector<ProfiledResponse> responses{{"Yield", values, kZeroToOne}};
    const auto sheet = MakeDefectSheet(responses, CountDefects(responses));
    const ResultTable rates = ReadResultTable(*sheet);
    const ResultTable counts = Counts(responses);
    ASSERT_EQ(rates.rows.size(), 2U);
    ASSERT_EQ(counts.rows.size(), 2U);
    const double exact = static_cast<double>(c.defects) / static_cast<double>(c.runs);
    for (const std::size_t row : {0U, 1U}) {
      EXPECT_DOUBLE_EQ(rates.rows[row].Number("table_rate"_column), c.rate);
      EXPECT_DOUBLE_EQ(rates.rows[row].Number("table_ppm"_column), c.rate * 1e6);
      EXPECT_EQ(counts.rows[row].Number("defects"_column), c.defects);
      EXPECT_EQ(counts.rows[row].Number("defect_runs"_column), c.runs);
      EXPECT_DOUBLE_EQ(counts.rows[row].Number("defect_rate"_column), exact);
      EXPECT_DOUBLE_EQ(counts.rows[row].Number("defect_ppm"_column), exact * 1e6);
      EXPECT_LE(counts.rows[row].Number("rate_lower"_column), exact);
      EXPECT_GT(counts.rows[row].Number("rate_upper"_column), exact);
      EXPECT_DOUBLE_EQ(counts.rows[row].Number("ppm_upper"_column),
                       counts.rows[row].Number("rate_upper"_column) * 1e6);
    }
    EXPECT_EQ(rates.rows[1].Text("response"_column), "Overall Rate");
    const std::string notes = NotesOf(*sheet);
    EXPECT_EQ(std::ranges::count(notes, '\n'), c.note ? 2 : 0) << c.defects;
    if (!c.note) continue;
    EXPECT_NE(notes.find("\nYield: "), std::string::npos);
    EXPECT_NE(notes.find("exactly " + std::to_string(c.defects) + " of 100000"), std::string::npos) << notes;
    EXPECT_NE(notes.find("\nOverall Rate: "), std::string::npos);
  }
}

// 3 of 10: the interval of R's binom.test.
TEST(DefectDocuments, RatesOfIndependentRunsAloneHaveLimits) {
  std::vector<double> values(10, 0.5);
  std::fill_n(values.begin(), 3, 2.0);
  const std::vector<ProfiledResponse> responses{{"Yield", values, kZeroToOne}};
  const ResultRow row = Counts(responses).rows[0];
  EXPECT_NEAR(row.Number("rate_lower"_column), 0.0667395111777345, 1e-14);
  EXPECT_NEAR(row.Number("ppm_upper"_column), 652452.8500599972, 1e-7);
  const ResultTable stratified = Counts(responses, false);
  for (const ResultColumn* limit :
       {&"rate_lower"_column, &"rate_upper"_column, &"ppm_lower"_column, &"ppm_upper"_column})
    EXPECT_TRUE(std::isnan(stratified.rows[0].Number(*limit))) << limit->identifier;
  EXPECT_DOUBLE_EQ(stratified.rows[0].Number("defect_rate"_column), 0.3);
  EXPECT_NE(stratified.title.find("\nNo confidence limits and p-values are given"), std::string::npos);
}

TEST(DefectDocuments, OnlyValidSpecificationsHaveARowBesideTheOverallOne) {
  const std::vector<double> a{2, 2, 0.5, 0.5, kNan, kNan};
  const std::vector<double> b{2, 0.5, 0.5, -1, 2, kNan};
  const std::vector<double> c{9, 9, 9, 9, 9, 9};
  const std::vector<ProfiledResponse> responses{
      {"a", a, {kNan, 1, kNan}}, {"c", c, {1, 0, kNan}}, {"b", b, {0, 1, 0.5}}, {"none", c, {}}};
  for (const ResultTable& table : {Rates(responses), Counts(responses)}) {
    ASSERT_EQ(table.rows.size(), 3U);
    const bool exact = table.rows[0].Has("defect_rate"_column);
    const ResultColumn& rate = exact ? "defect_rate"_column : "table_rate"_column;
    const double rates[] = {0.5, 0.6, 0.8};
    const char* names[] = {"a", "b", "Overall Rate"};
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(table.rows[i].Text("response"_column), names[i]);
      EXPECT_DOUBLE_EQ(table.rows[i].Number(rate), rates[i]);
    }
    EXPECT_TRUE(std::isnan(table.rows[0].Number("defect_lsl"_column)));
    EXPECT_EQ(table.rows[0].Number("defect_usl"_column), 1);
    EXPECT_TRUE(std::isnan(table.rows[2].Number("defect_lsl"_column)));
    EXPECT_NE(table.title.find("\na: 2 of 6 runs have no prediction and are left out"), std::string::npos);
    EXPECT_EQ(std::ranges::count(table.title, '\n'), 3);
  }
}

TEST(DefectDocuments, RowsWithoutRunsHaveNoRate) {
  const std::vector<double> missing(3, kNan);
  const std::vector<ProfiledResponse> responses{{"a", missing, kZeroToOne}};
  EXPECT_TRUE(std::isnan(Rates(responses).rows[0].Number("table_rate"_column)));
  EXPECT_TRUE(std::isnan(Rates(responses).rows[1].Number("table_ppm"_column)));
  EXPECT_TRUE(std::isnan(Counts(responses).rows[0].Number("rate_upper"_column)));
  const ResultTable empty = Rates({});
  ASSERT_EQ(empty.rows.size(), 1U);
  EXPECT_TRUE(std::isnan(empty.rows[0].Number("table_rate"_column)));
  EXPECT_EQ(empty.title, "Defect Profiler");
}

TEST(DefectDocuments, SheetHoldsTheTable) {
  const std::vector<double> values = Values(40000, 40000);
  const std::vector<ProfiledResponse> responses{{"Yield", values, kZeroToOne}};
  const auto sheet = MakeDefectSheet(responses, CountDefects(responses));
  EXPECT_EQ(sheet->Name(), "Defect Profiler");
  EXPECT_NE(sheet->Title().find("40000"), std::string::npos);
  const char* names[] = {"Response", "Defect Rate", "PPM", "LSL", "USL"};
  ASSERT_EQ(sheet->VariableCount(), 5U);
  for (std::size_t v = 0; v < 5; ++v) EXPECT_EQ(sheet->VariableAt(v).Name(), names[v]);
  EXPECT_EQ(sheet->VariableAt(0).Label(sheet->VariableAt(0).Values()[1]), "Overall Rate");
  EXPECT_DOUBLE_EQ(sheet->VariableAt(2).Values()[0], 32767.0 / 40000 * 1e6);
  EXPECT_EQ(sheet->VariableAt(4).Values()[0], 1);
  EXPECT_TRUE(sheet->VariableAt(4).IsMissing(1));
}

TEST(DefectDocuments, GraphHasAPanelForEachProfile) {
  std::vector<double> x;
  for (int i = 0; i < 2000; ++i) x.push_back((i + 0.5) / 2000);
  const std::vector<ProfiledResponse> responses{{"unlimited", x, {}}, {"y", x, {kNan, 0.75, kNan}}};
  const std::vector<ProfiledPredictor> predictors{{"x", x}, {"again", x}};
  const Graph graph = MakeDefectGraph(responses, predictors);
  EXPECT_EQ(graph.title, "Defect Profiler");
  ASSERT_EQ(graph.panels.size(), 2U);
  EXPECT_EQ(graph.panels[1].title, "Defect Rate: y / again");
  EXPECT_EQ(graph.panels[0].xTitle, "x");
  EXPECT_EQ(graph.panels[0].series[0].x.size(), 20U);
  EXPECT_EQ(graph.panels[0].series[0].y.back(), 1);
}

}  // namespace
}  // namespace brenvolt::sra
