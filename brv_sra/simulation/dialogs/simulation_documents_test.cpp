#include "brv_sra/simulation/dialogs/simulation_documents.h"

#include <gtest/gtest.h>

namespace brenvolt::sra {
namespace {

TEST(SimulationDocuments, AnOutputIsTitledByItsMethod) {
  const struct {
    SimulationMethod method;
    const char* title;
  } methods[] = {{SimulationMethod::kMonteCarlo, "Monte Carlo method"},
                 {SimulationMethod::kLatinHypercube, "Latin Hypercube Sampling method"},
                 {SimulationMethod::kImanConover, "Iman Conover method"},
                 {SimulationMethod::kLatinHypercubeImanConover, "LHS with Iman Conover method"}};
  for (const auto& method : methods) {
    Spreadsheet output("", 2, 1);
    TitleOutput(output, method.method);
    EXPECT_EQ(output.Title(), method.title);
    EXPECT_EQ(output.Name(), method.title);
    EXPECT_EQ(output.Header(), "Sample #");
  }
  EXPECT_EQ(MethodTitle(SimulationMethod::kNormalToAnything), "");
}

TEST(SimulationDocuments, CorrelationsAreListedByPairs) {
  Spreadsheet output("", 2, 3);
  for (const std::size_t c : {0U, 1U, 2U}) output.VariableAt(c).SetName(std::string(1, "abc"[c]));
  SimulatedCorrelations asked;
  asked.asked = {1, 0.12, 0.13, 0.12, 1, 0.23, 0.13, 0.23, 1};
  asked.repair.emplace().matrix = {1, 0.2, 0.3, 0.2, 1, 0.4, 0.3, 0.4, 1};
  const auto sheet =
      CorrelationSummary(output, asked, {{1, 5, 6, 5, 1, 7, 6, 7, 1}, {1, 8, 9, 8, 1, 10, 9, 10, 1}});
  ASSERT_EQ(sheet->CaseCount(), 3U);
  EXPECT_EQ(sheet->CaseName(1), "a, c");
  const double columns[4][3] = {{0.12, 0.13, 0.23}, {0.2, 0.3, 0.4}, {5, 6, 7}, {8, 9, 10}};
  for (std::size_t c = 0; c < 4; ++c) {
    for (std::size_t row = 0; row < 3; ++row)
      EXPECT_EQ(sheet->VariableAt(c).Values()[row], columns[c][row]) << c << ", " << row;
  }
}

}  // namespace
}  // namespace brenvolt::sra
