// Fits every distribution to one column of a separated-values file, as a run with default options does, and
// prints one line per fit, for comparison with other programs; or the time that it takes, without reading.
//   fit_file FILE COLUMN continuous|discrete            COLUMN counts from 1
//   fit_file FILE COLUMN continuous|discrete --time N   the shortest of N repetitions, in seconds
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/estimation.h"
#include "host/base/error.h"
#include "host/numeric/sorting.h"
#include "host/tables/csv.h"

namespace brenvolt::sra {
namespace {

std::vector<double> ReadColumn(const char* path, std::size_t column) {
  const Spreadsheet sheet = ReadCsv(path);
  const Variable& variable = sheet.VariableAt(column);
  std::vector<double> values;
  for (std::size_t i = 0; i < sheet.CaseCount(); ++i) {
    if (!variable.IsMissing(i)) values.push_back(variable.Values()[i]);
  }
  return values;
}

std::vector<DistributionFit> FitEverything(std::vector<double> values, bool continuous) {
  MomentAccumulator moments;
  for (const double x : values) moments.Add(x, 1);
  SortAscending(values);
  const SortedSample sample{values, moments.Finish()};
  constexpr auto kBinning = ChiSquareBinning::kEqualProbabilities;
  if (continuous) {
    ContinuousSpecification specification;
    specification.fit.fill(true);
    specification.fit[kPercentileFitFlag] = false;
    specification.offsets.fill(0);
    specification.mixtures = 2;
    return FitContinuousDistributions(sample, specification, kBinning, [] {});
  }
  DiscreteSpecification specification;
  specification.fit.fill(true);
  return FitDiscreteDistributions(sample, specification, kBinning, [] {});
}

// A value that is not set has no text.
void PrintField(double value) {
  if (IsNotSet(value)) {
    std::printf("\t");
  } else {
    std::printf("\t%.17g", value);
  }
}

void PrintFits(const std::vector<DistributionFit>& fits) {
  std::printf("distribution\tlog-likelihood\tks\tks-p\tad\tad-p\tchi-square\tdf\tp\tparameters\n");
  for (const DistributionFit& fit : fits) {
    std::printf("%s", std::string(DisplayName(fit.specification.code)).c_str());
    PrintField(fit.logLikelihood);
    for (const TestResult& test : {fit.kolmogorovSmirnov, fit.andersonDarling}) {
      PrintField(test.statistic);
      PrintField(test.pValue);
    }
    PrintField(fit.chiSquare.statistic);
    PrintField(fit.chiSquare.degreesOfFreedom == kNotSetCount ? kNotSet : fit.chiSquare.degreesOfFreedom);
    PrintField(fit.chiSquare.pValue);
    const char* separator = "\t";
    for (const double value : fit.specification.values) {
      if (fit.IsValid()) std::printf("%s%.17g", separator, value);
      separator = " ";
    }
    std::printf("\n");
  }
}

double ShortestSeconds(const std::vector<double>& values, bool continuous, int repetitions) {
  double shortest = std::numeric_limits<double>::infinity();
  for (int i = 0; i < repetitions; ++i) {
    const auto start = std::chrono::steady_clock::now();
    if (FitEverything(values, continuous).empty()) std::exit(EXIT_FAILURE);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    shortest = std::min(shortest, elapsed.count());
  }
  return shortest;
}

int Main(int argc, char** argv) {
  const bool timed = argc == 6 && std::string_view(argv[4]) == "--time";
  const std::string_view kind = argc >= 4 ? argv[3] : "";
  const long column = argc >= 4 ? std::strtol(argv[2], nullptr, 10) : 0;
  if ((argc != 4 && !timed) || column < 1 || (kind != "continuous" && kind != "discrete")) {
    std::fprintf(stderr, "usage: fit_file FILE COLUMN continuous|discrete [--time N]\n");
    return 2;
  }
  const std::vector<double> values = ReadColumn(argv[1], static_cast<std::size_t>(column - 1));
  if (timed) {
    std::printf("%.6f\n", ShortestSeconds(values, kind == "continuous", std::max(1, std::atoi(argv[5]))));
  } else {
    PrintFits(FitEverything(values, kind == "continuous"));
  }
  return 0;
}

}  // namespace
}  // namespace brenvolt::sra

int main(int argc, char** argv) {
  try {
    return brenvolt::sra::Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fit_file: %s\n", error.what());
    return 1;
  }
}
