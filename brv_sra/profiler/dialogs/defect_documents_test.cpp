#include "brv_sra/profiler/dialogs/defect_documents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

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

TEST(DefectDocuments, SaturatedCountsAreNoted) {
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
    const DefectTable table = MakeDefectTable(responses);
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_DOUBLE_EQ(table.rows[0].rate, c.rate);
    EXPECT_DOUBLE_EQ(table.rows[0].partsPerMillion, c.rate * 1e6);
    EXPECT_EQ(table.rows[1].name, "Overall Rate");
    EXPECT_EQ(table.rows[1].rate, table.rows[0].rate);
    ASSERT_EQ(table.notes.size(), c.note ? 2U : 0U) << c.defects;
    if (!c.note) continue;
    EXPECT_NE(table.notes[0].find("Yield: "), std::string::npos);
    EXPECT_NE(table.notes[0].find("exactly " + std::to_string(c.defects) + " of 100000"), std::string::npos)
        << table.notes[0];
    EXPECT_NE(table.notes[1].find("Overall Rate: "), std::string::npos);
  }
}

TEST(DefectDocuments, OnlyValidSpecificationsHaveARowBesideTheOverallOne) {
  const std::vector<double> a{2, 2, 0.5, 0.5, kNan, kNan};
  const std::vector<double> b{2, 0.5, 0.5, -1, 2, kNan};
  const std::vector<double> c{9, 9, 9, 9, 9, 9};
  const std::vector<ProfiledResponse> responses{
      {"a", a, {kNan, 1, kNan}}, {"c", c, {1, 0, kNan}}, {"b", b, {0, 1, 0.5}}, {"none", c, {}}};
  const DefectTable table = MakeDefectTable(responses);
  ASSERT_EQ(table.rows.size(), 3U);
  EXPECT_EQ(table.rows[0].name, "a");
  EXPECT_DOUBLE_EQ(table.rows[0].rate, 0.5);
  EXPECT_TRUE(std::isnan(table.rows[0].lower));
  EXPECT_EQ(table.rows[0].upper, 1);
  EXPECT_EQ(table.rows[1].name, "b");
  EXPECT_DOUBLE_EQ(table.rows[1].rate, 0.6);
  EXPECT_DOUBLE_EQ(table.rows[2].rate, 0.8);
  EXPECT_TRUE(std::isnan(table.rows[2].lower) && std::isnan(table.rows[2].upper));
  ASSERT_EQ(table.notes.size(), 3U);
  EXPECT_EQ(table.notes[0], "a: 2 of 6 runs have no prediction and are left out");
}

TEST(DefectDocuments, RowsWithoutRunsHaveNoRate) {
  const std::vector<double> missing(3, kNan);
  const DefectTable table = MakeDefectTable(std::vector<ProfiledResponse>{{"a", missing, kZeroToOne}});
  EXPECT_TRUE(std::isnan(table.rows[0].rate));
  EXPECT_TRUE(std::isnan(table.rows[1].partsPerMillion));
  const DefectTable empty = MakeDefectTable({});
  ASSERT_EQ(empty.rows.size(), 1U);
  EXPECT_TRUE(std::isnan(empty.rows[0].rate));
  EXPECT_TRUE(empty.notes.empty());
}

TEST(DefectDocuments, SheetHoldsTheTable) {
  const std::vector<double> values = Values(40000, 40000);
  const auto sheet =
      MakeDefectSheet(MakeDefectTable(std::vector<ProfiledResponse>{{"Yield", values, kZeroToOne}}));
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
  EXPECT_EQ(graph.panels[1].title, "y / again");
  EXPECT_EQ(graph.panels[0].xTitle, "x");
  EXPECT_EQ(graph.panels[0].series[0].x.size(), 20U);
  EXPECT_EQ(graph.panels[0].series[0].y.back(), 1);
}

}  // namespace
}  // namespace brenvolt::sra
