#include "host/analysis/analysis_graph_doc.h"

#include <gtest/gtest.h>

#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"

namespace brenvolt {
namespace {

Graph Summary() {
  Graph panel;
  panel.kind = GraphKind::kCumulativeHistogram;
  panel.title = "Panel";
  panel.xTitle = "Hours";
  panel.curves.push_back({"Fit", "=2*1*iNormal(x,0,1)", -1, 1, false});
  Graph graph;
  graph.kind = GraphKind::kSummary;
  graph.title = "Summary";
  graph.panels.push_back(panel);
  graph.notes = {"Mean 2"};
  return graph;
}

TEST(GraphDocument, ProgramsReadItsTextsPanelsAndData) {
  HeadlessUserInterface person;
  person.ShowGraph(std::make_shared<CAnalysisGraphDoc>(Summary()));
  ASSERT_EQ(person.graphs.size(), 1U);
  CAnalysisGraphDoc& document = *person.graphs[0];
  EXPECT_EQ(document.Get("Kind").ToText(), "summary");
  const Variant first[] = {1};
  EXPECT_EQ(document.Get("Note", first).ToText(), "Mean 2");
  EXPECT_EQ(document.Get("NumberOfPanels").ToInteger(), 1);
  const auto panel = document.Get("Panel", first).ToObject();
  EXPECT_EQ(panel->Get("Kind").ToText(), "cumulative-histogram");
  EXPECT_EQ(panel->Get("XAxisTitle").ToText(), "Hours");
  EXPECT_EQ(panel->Get("CurveName", first).ToText(), "Fit");
  EXPECT_EQ(panel->Get("CurveFormula", first).ToText(), "=2*1*iNormal(x,0,1)");
  const auto data = document.Get("Data").ToObject();
  EXPECT_EQ(data->InterfaceName(), "Spreadsheet");
  const Variant middle[] = {101, 2};
  EXPECT_EQ(data->Get("Value", middle).ToReal(), 1);
}

TEST(GraphDocument, CallsThatItDoesNotOfferFail) {
  CAnalysisGraphDoc document(Summary());
  const Variant second[] = {2};
  const Variant zero[] = {0};
  EXPECT_THROW(document.Get("Panel", second), Error);
  EXPECT_THROW(document.Get("Note", zero), Error);
  EXPECT_THROW(document.Get("Note"), Error);
  EXPECT_THROW(document.Get("Bars"), Error);
  EXPECT_THROW(document.Put("Title", "Other"), Error);
}

}  // namespace
}  // namespace brenvolt
