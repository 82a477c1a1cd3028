#include "host/jobs/base/plot.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/base/error.h"
#include "host/base/files/temporary_folder_support_test.h"
#include "host/graphs/picture.h"

namespace brenvolt {
namespace {

constexpr std::string_view kKinds[] = {kOverview, "histogram"};

std::vector<std::string> FaultsOf(const Plot& plot) {
  JobFaults faults;
  CheckPlot(plot, kKinds, faults);
  std::vector<std::string> texts;
  for (const JobFault& fault : faults) texts.push_back(fault.field + ": " + fault.message);
  return texts;
}

Graph Points(const std::string& title) {
  Graph graph;
  graph.kind = GraphKind::kScatter;
  graph.title = title;
  graph.series = {{"points", SeriesStyle::kPoints, {1, 2, 3}, {2, 1, 4}}};
  return graph;
}

TEST(Plot, WhatCannotBeDrawnIsRefusedBeforeAnyWork) {
  const struct {
    Plot plot;
    std::string fault;
  } kRows[] = {
      {{"x.gif", {}, {}, {}}, "plot: expected a file ending in .png, .svg or .pdf, got x.gif"},
      {{"x", {}, {}, {}}, "plot: expected a file ending in .png, .svg or .pdf, got x"},
      {{"", "histogram", {}, {}},
       "plotKind: this affects only a picture; give the file of the picture as well"},
      {{"", {}, "dark", {}}, "plotTheme: this affects only a picture; give the file of the picture as well"},
      {{"", {}, {}, 640}, "plotWidth: this affects only a picture; give the file of the picture as well"},
      {{"x.png", "pie", {}, {}}, "plotKind: expected one of histogram, overview; got 'pie'"},
      {{"x.png", {}, "blue", {}}, "plotTheme: expected one of dark, light; got 'blue'"},
      {{"x.png", {}, {}, 12}, "plotWidth: expected a whole number from 320 to 8000, got 12"},
      {{"no/such/x.png", {}, {}, {}}, "plot: the folder of no/such/x.png does not exist"}};
  for (const auto& row : kRows) {
    const std::vector<std::string> faults = FaultsOf(row.plot);
    EXPECT_NE(std::ranges::find(faults, row.fault), faults.end()) << row.fault;
  }
}

TEST(Plot, NothingIsAskedForByDefault) {
  EXPECT_EQ(FaultsOf({}), std::vector<std::string>{});
}

TEST(Plot, AWordInBracesThatStandsForNothingIsRefused) {
  EXPECT_EQ(
      FaultsOf({"{nmae}.svg", {}, {}, {}}),
      std::vector<std::string>{"plot: {nmae} has no meaning in the name of a picture; expected {name}, the "
                               "variable or response"});
  for (const char* name : {"{name}.svg", "a{}b.svg", "{1}.svg", "{.svg", "of {name} {name}.png"})
    EXPECT_EQ(FaultsOf({name, {}, {}, {}}), std::vector<std::string>{}) << name;
}

struct PlotFiles : testing::Test {
  void SetUp() override {
    if (const std::string why = WhyNoPictures(); !why.empty()) GTEST_SKIP() << why;
  }
  TemporaryFolder folder;
};

TEST_F(PlotFiles, NamesOfVariablesBecomeNamesOfFilesThatDiffer) {
  WritePlot({folder / "fit of {name}.svg", {}, {}, {}}, "",
            {SinglePage("a/b", Points("1")), SinglePage("a:b", Points("2")), SinglePage("..", Points("3")),
             SinglePage(std::string(300, 'x'), Points("4")), SinglePage("{name}", Points("5"))});
  EXPECT_EQ(folder.Names(),
            (std::vector<std::string>{"fit of _...svg", "fit of a_b-2.svg", "fit of a_b.svg",
                                      "fit of " + std::string(120, 'x') + ".svg", "fit of {name}.svg"}));
  EXPECT_NE(BytesOf(folder / "fit of a_b-2.svg").find(">2</text>"), std::string::npos);
}

TEST_F(PlotFiles, SeveralPagesAreOnePictureOrTheCellsOfOne) {
  std::vector<PlotPage> pages;
  for (int i = 0; i < 150; ++i) pages.push_back(SinglePage("v", Points("title " + std::to_string(i))));
  WritePlot({folder / "grid.svg", {}, {}, {}}, "All", pages);
  const std::string grid = BytesOf(folder / "grid.svg");
  EXPECT_NE(grid.find(">title 99</text>"), std::string::npos);
  EXPECT_EQ(grid.find(">title 100</text>"), std::string::npos);
  EXPECT_NE(grid.find("the first 100 of 150 are shown; a PDF, or {name} in the name of the file, shows all"),
            std::string::npos);
  WritePlot({folder / "pages.pdf", {}, {}, {}}, "All", pages);
  EXPECT_NE(BytesOf(folder / "pages.pdf").find("/Count 150"), std::string::npos);
  pages[7].showsAll = true;
  WritePlot({folder / "one.svg", {}, {}, {}}, "All", pages);
  EXPECT_EQ(BytesOf(folder / "one.svg").find(">title 8</text>"), std::string::npos);
}

TEST_F(PlotFiles, AFullDiskIsAnErrorThatNamesTheFile) {
  std::filesystem::create_symlink("/dev/full", folder / "full.png");
  try {
    WritePlot({folder / "full.png", {}, {}, {}}, "", {SinglePage("v", Points("p"))});
    ADD_FAILURE() << "nothing was thrown";
  } catch (const Error& error) {
    EXPECT_NE(error.Where().find("full"), std::string::npos) << error.Where();
  }
  EXPECT_THROW(WritePlot({folder / "x.png", {}, {}, {}}, "", {}), Error);
}

}  // namespace
}  // namespace brenvolt
