// Times one simulation job of n samples of k variables, all alike, for comparison with other programs; what
// is timed begins with the allocation of the sample matrix and ends when it is filled, as in a run.
//   simulate_matrix JOB N K REPETITIONS [FILE]
// JOB: monte-carlo-normal, monte-carlo-truncated, monte-carlo-weibull, latin-hypercube-normal, iman-conover
// (Weibull variables, every pair's target 0.5), or csv, which fills a sheet with normal values and times its
// writing to FILE. Prints the shortest time of the repetitions in seconds and the largest resident set, less
// that before the first one, as a multiple of the matrix.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/simulation/correlation_induction.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "host/analysis/analysis_memory.h"
#include "host/analysis/ports/headless_user_interface.h"
#include "host/base/error.h"
#include "host/base/process/memory_policy.h"
#include "host/tables/csv.h"

namespace brenvolt::sra {
namespace {

constexpr double kTargetCorrelation = 0.5;

struct Job {
  std::string_view name;
  SimulationMethod method;
  DistributionCode code;
  std::array<double, 2> values;
  bool truncate;
};
constexpr std::array kJobs{
    Job{"monte-carlo-normal", SimulationMethod::kMonteCarlo, DistributionCode::kNormal, {0, 1}, false},
    Job{"monte-carlo-truncated", SimulationMethod::kMonteCarlo, DistributionCode::kNormal, {0, 1}, true},
    Job{"monte-carlo-weibull", SimulationMethod::kMonteCarlo, DistributionCode::kWeibull, {1, 1.7}, false},
    Job{"latin-hypercube-normal",
        SimulationMethod::kLatinHypercube,
        DistributionCode::kNormal,
        {0, 1},
        false},
    Job{"iman-conover", SimulationMethod::kImanConover, DistributionCode::kWeibull, {1, 1.7}, false},
};

SimulationDesign DesignOf(const Job& job, std::size_t n, std::size_t k) {
  SimulationVariable variable;
  variable.specification.code = job.code;
  variable.specification.values.assign(job.values.begin(), job.values.end());
  SimulationDesign design;
  design.variables.assign(k, variable);
  design.numberOfSamples = static_cast<std::int32_t>(n);
  design.method = job.method;
  design.truncate = job.truncate;
  return design;
}

bool Fill(const SimulationDesign& design, std::span<const double> target, std::span<double> matrix) {
  HeadlessUserInterface port;
  SeedRandomStream(true, 1);
  if (InducesCorrelation(design.method))
    return static_cast<bool>(InduceRankCorrelation(design, target, matrix, port));
  const auto progress = std::make_unique<ProgressBar>(port, "", static_cast<std::int64_t>(matrix.size() + 1));
  return design.method == SimulationMethod::kLatinHypercube
             ? GenerateLatinHypercube(design, matrix, *progress)
             : GenerateMonteCarlo(design, matrix, *progress);
}

// The largest resident set so far, in bytes.
double LargestResidentSet() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    constexpr std::string_view kName = "VmHWM:";
    if (line.starts_with(kName)) return std::strtod(line.c_str() + kName.size(), nullptr) * 1024;
  }
  throw Error("the system does not tell the largest resident set", "/proc/self/status");
}

template <class Work>
double ShortestSeconds(int repetitions, const Work& work) {
  double shortest = std::numeric_limits<double>::infinity();
  for (int i = 0; i < repetitions; ++i) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    shortest = std::min(shortest, elapsed.count());
  }
  return shortest;
}

double TimeGeneration(const Job& job, std::size_t n, std::size_t k, int repetitions) {
  const SimulationDesign design = DesignOf(job, n, k);
  const std::vector<double> target(k * k, kTargetCorrelation);
  return ShortestSeconds(repetitions, [&] {
    AnalysisArray<double> matrix(n * k);
    if (!Fill(design, target, matrix.Span())) throw Error("cannot be simulated", std::string(job.name));
  });
}

double TimeWriting(std::size_t n, std::size_t k, int repetitions, const char* path) {
  Spreadsheet sheet("normal", n, k);
  {
    AnalysisArray<double> matrix(n * k);
    Fill(DesignOf(kJobs[0], n, k), {}, matrix.Span());
    for (std::size_t j = 0; j < k; ++j) {
      const auto cells = sheet.VariableAt(j).MutableValues();
      for (std::size_t i = 0; i < n; ++i) cells[i] = matrix[i * k + j];
    }
  }
  return ShortestSeconds(repetitions, [&] { WriteCsv(sheet, path); });
}

int Main(std::span<char*> arguments) {
  const std::size_t count = arguments.size();
  const std::string_view name = count > 1 ? arguments[1] : "";
  const Job* job = std::ranges::find(kJobs, name, &Job::name);
  const bool writes = name == "csv";
  if ((job == kJobs.end() && !writes) || count != (writes ? 6 : 5)) {
    std::fprintf(stderr, "usage: simulate_matrix JOB N K REPETITIONS [FILE]\n");
    return 2;
  }
  const auto n = static_cast<std::size_t>(std::max(1L, std::strtol(arguments[2], nullptr, 10)));
  const auto k = static_cast<std::size_t>(std::max(1L, std::strtol(arguments[3], nullptr, 10)));
  const int repetitions = std::max(1, std::atoi(arguments[4]));
  ReturnLargeBlocksAtOnce();  // as the program does
  const double base = LargestResidentSet();
  const double seconds =
      writes ? TimeWriting(n, k, repetitions, arguments[5]) : TimeGeneration(*job, n, k, repetitions);
  const double matrixBytes = static_cast<double>(n * k) * sizeof(double);
  std::printf("%.6f %.3f\n", seconds, (LargestResidentSet() - base) / matrixBytes);
  return 0;
}

}  // namespace
}  // namespace brenvolt::sra

int main(int argc, char** argv) {
  try {
    return brenvolt::sra::Main({argv, static_cast<std::size_t>(argc)});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "simulate_matrix: %s\n", error.what());
    return 1;
  }
}
