#include "brv_sra/simulation/sampling/candidate_draws.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "brv_sra/simulation/sampling/reference_generator_test.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/sampling/sampled_distributions_test.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt::sra {
namespace {

struct Case {
  const char* name;
  SimulationVariable variable;
  double minimum;
  double maximum;
};

const Case kCases[] = {
    {"one draw, few rejected", VariableOf(DistributionCode::kNormal, {0, 1}), -2.5, 2.5},
    {"one draw, most rejected", VariableOf(DistributionCode::kNormal, {0, 1}), 2, 9},
    {"one draw, all rejected", VariableOf(DistributionCode::kNormal, {0, 1}), 7, 9},
    {"two draws", VariableOf(DistributionCode::kGaussianMixture, {0.5, 0, 1, 0.5, 9, 2}), -1, 10},
    {"table", VariableOf(DistributionCode::kPoisson, {4.5}), 0.5, 8.5}};

DistributionSpecification Specification(const Case& c) {
  DistributionSpecification specification = c.variable.specification;
  specification.truncateBelow = specification.truncateAbove = true;
  specification.truncationMinimum = c.minimum;
  specification.truncationMaximum = c.maximum;
  return specification;
}

// Parts end before, at and after the ends of windows.
TEST(CandidateDraws, ValuesInPartsAreThoseOfOneDrawAfterAnother) {
  constexpr std::size_t kValues = 70'000;
  constexpr std::uint64_t kStart = 5;
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    const DistributionSpecification specification = Specification(c);
    const reference::Variable plain(specification, false, ParameterSource::kUserSpecified);
    std::vector<double> expected(kValues);
    SeedProcessStream(8);
    SetProcessStreamPosition(kStart);
    for (double& x : expected) x = plain.MonteCarlo();
    const VariableSampler sampler(specification, false);
    ASSERT_FALSE(sampler.FixedDraws().has_value());
    for (const std::size_t part : {std::size_t{999}, std::size_t{32'768}, kValues}) {
      CandidateDraws draws(sampler, RandomStream(8), kStart);
      std::vector<double> values(kValues);
      for (std::size_t from = 0; from < kValues; from += part)
        draws.Draw(std::span(values).subspan(from, std::min(part, kValues - from)));
      EXPECT_EQ(values, expected) << part;
      EXPECT_EQ(draws.Position(), ProcessStreamPosition()) << part;
    }
  }
}

// Columns with and without rejected candidates, more of the former than are drawn together; and a single one,
// which is drawn into the matrix itself.
TEST(CandidateDraws, ColumnsOfAMatrixGoToTheirPlaces) {
  HeadlessUserInterface port;
  for (const std::size_t columns : {1, 2, 3, 7}) {
    SimulationDesign design;
    design.numberOfSamples = 300;
    for (std::size_t c = 0; c < columns; ++c) {
      SimulationVariable variable = kCases[0].variable;
      if (c != 3) variable.specification = Specification(kCases[c % std::size(kCases)]);
      design.variables.push_back(variable);
    }
    if (columns == 7) design.excluded = {5};
    std::vector<double> matrix(300 * columns);
    const auto progress = std::make_unique<ProgressBar>(port, "", 1);
    SeedProcessStream(8);
    ASSERT_TRUE(GenerateMonteCarlo(design, matrix, *progress));
    const auto position = ProcessStreamPosition();
    SeedProcessStream(8);
    EXPECT_EQ(matrix, reference::Generate(design, false)) << columns;
    EXPECT_EQ(position, ProcessStreamPosition());
  }
}

}  // namespace
}  // namespace brenvolt::sra
