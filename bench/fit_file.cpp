// Fits every distribution to one column of a separated-values file, as a run with default options does, and
// prints one line per fit, for comparison with other programs; or the time that it takes, without reading.
//   fit_file FILE COLUMN continuous|discrete            COLUMN counts from 1
//   fit_file FILE COLUMN continuous|discrete --time N   the shortest of N repetitions, in seconds
//   fit_file FILE COLUMN continuous --time N CODE…      the same for the distributions of these codes alone
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/fitting/estimation.h"
#include "host/base/error.h"
#include "host/numeric/vector/sorting.h"
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

// All distributions if `codes` is empty.
std::vector<DistributionFit> FitTypes(std::vector<double> values, bool continuous,
                                      std::span<const DistributionCode> codes) {
  MomentAccumulator moments;
  for (const double x : values) moments.Add(x, 1);
  SortAscending(values);
  const SortedSample sample{values, moments.Finish()};
  constexpr auto kBinning = ChiSquareBinning::kEqualProbabilities;
  if (continuous) {
    ContinuousSpecification specification;
    specification.fit.fill(codes.empty());
    for (const DistributionCode code : codes) specification.fit[PlaceInKind(code)] = true;
    specification.offsets.fill(0);
    specification.mixtures = 2;
    return *FitContinuousDistributions(sample, specification, kBinning, [] {});
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
    std::printf("%s", std::string(SpacedKey(fit.specification.code)).c_str());
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

double ShortestSeconds(const std::vector<double>& values, bool continuous,
                       std::span<const DistributionCode> codes, int repetitions) {
  double shortest = std::numeric_limits<double>::infinity();
  for (int i = 0; i < repetitions; ++i) {
    const auto start = std::chrono::steady_clock::now();
    if (FitTypes(values, continuous, codes).empty()) std::exit(EXIT_FAILURE);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    shortest = std::min(shortest, elapsed.count());
  }
  return shortest;
}

int Main(std::span<char*> arguments) {
  constexpr std::size_t kTimed = 6;  // arguments of a timed run without codes
  const std::size_t count = arguments.size();
  const bool timed = count >= kTimed && std::string_view(arguments[4]) == "--time";
  const std::string_view kind = count >= 4 ? arguments[3] : "";
  const long column = count >= 4 ? std::strtol(arguments[2], nullptr, 10) : 0;
  const bool isContinuous = kind == "continuous";
  const bool areCodesOutOfPlace = count > kTimed && !isContinuous;
  if ((count != 4 && !timed) || column < 1 || (!isContinuous && kind != "discrete") || areCodesOutOfPlace) {
    std::fprintf(stderr, "usage: fit_file FILE COLUMN continuous|discrete [--time N [CODE...]]\n");
    return 2;
  }
  const std::vector<double> values = ReadColumn(arguments[1], static_cast<std::size_t>(column - 1));
  if (!timed) {
    PrintFits(FitTypes(values, isContinuous, {}));
    return 0;
  }
  std::vector<DistributionCode> codes;
  for (const char* code : arguments.subspan(kTimed)) {
    const auto known = CodeFromNumber(std::atoi(code));
    if (!known || !IsContinuous(*known)) throw Error("no continuous distribution has this code", code);
    codes.push_back(*known);
  }
  const int repetitions = std::max(1, std::atoi(arguments[5]));
  std::printf("%.6f\n", ShortestSeconds(values, isContinuous, codes, repetitions));
  return 0;
}

}  // namespace
}  // namespace brenvolt::sra

int main(int argc, char** argv) {
  try {
    return brenvolt::sra::Main({argv, static_cast<std::size_t>(argc)});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fit_file: %s\n", error.what());
    return 1;
  }
}
