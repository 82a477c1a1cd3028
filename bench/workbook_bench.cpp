// What saving and opening a project costs, for long columns (1,000,000 cases of 10 variables: 80 MB of
// doubles) and for what goes with them. Files lie in the folder for temporary files; "bytes_per_raw_byte" is
// the size of the file in units of the bare doubles.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "host/tables/workbook.h"

namespace brenvolt {
namespace {

constexpr std::size_t kCases = 1'000'000;
constexpr std::size_t kVariables = 10;

void FillRandomly(Variable& variable, std::uint64_t seed) {
  std::mt19937_64 generator(seed);
  std::normal_distribution<double> normal;
  std::ranges::generate(variable.MutableValues(), [&] { return normal(generator); });
}

Workbook LongColumns() {
  auto sheet = std::make_unique<Spreadsheet>("Measurements", kCases, kVariables);
  for (std::size_t i = 0; i < kVariables; ++i) FillRandomly(sheet->VariableAt(i), i + 1);
  Workbook workbook;
  workbook.Add(std::move(sheet));
  return workbook;
}

// A project file that goes with the benchmark.
class ScratchFile {
 public:
  ScratchFile() : path_(std::filesystem::temp_directory_path() / "brenvolt_workbook_bench.bvw") { Remove(); }
  ~ScratchFile() { Remove(); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  const std::filesystem::path& Path() const { return path_; }
  void Remove() const {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }

 private:
  std::filesystem::path path_;
};

void ReportSize(benchmark::State& state, const ScratchFile& file) {
  constexpr double kRawBytes = kCases * kVariables * sizeof(double);
  state.counters["bytes_per_raw_byte"] =
      static_cast<double>(std::filesystem::file_size(file.Path())) / kRawBytes;
}

void SaveNewFile(benchmark::State& state) {
  const ScratchFile file;
  Workbook workbook = LongColumns();
  for (auto _ : state) {
    state.PauseTiming();
    file.Remove();
    state.ResumeTiming();
    workbook.Save(file.Path());
  }
  ReportSize(state, file);
}
BENCHMARK(SaveNewFile)->Unit(benchmark::kMillisecond)->UseRealTime();

void SaveOneChangedColumn(benchmark::State& state) {
  const ScratchFile file;
  Workbook workbook = LongColumns();
  workbook.Save(file.Path());
  for (auto _ : state) {
    workbook.SheetAt(0).VariableAt(0).MutableValues()[0] += 1;
    workbook.Save(file.Path());
  }
  ReportSize(state, file);
}
BENCHMARK(SaveOneChangedColumn)->Unit(benchmark::kMillisecond)->UseRealTime();

void SaveOneChangedProperty(benchmark::State& state) {
  const ScratchFile file;
  Workbook workbook = LongColumns();
  workbook.Save(file.Path());
  int number = 0;
  for (auto _ : state) {
    workbook.SheetAt(0).VariableAt(0).SetProperty("number", std::to_string(++number));
    workbook.Save(file.Path());
  }
}
BENCHMARK(SaveOneChangedProperty)->Unit(benchmark::kMillisecond)->UseRealTime();

void SaveMillionCaseNames(benchmark::State& state) {
  const ScratchFile file;
  std::vector<std::string> names(kCases);
  for (std::size_t i = 0; i < kCases; ++i) names[i] = "case " + std::to_string(i);
  auto sheet = std::make_unique<Spreadsheet>("Named", kCases, 1);
  sheet->SetCaseNames(std::move(names));
  Workbook workbook;
  workbook.Add(std::move(sheet));
  for (auto _ : state) {
    state.PauseTiming();
    file.Remove();
    state.ResumeTiming();
    workbook.Save(file.Path());
  }
}
BENCHMARK(SaveMillionCaseNames)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenLongColumns(benchmark::State& state) {
  const ScratchFile file;
  LongColumns().Save(file.Path());
  for (auto _ : state) benchmark::DoNotOptimize(Workbook::Open(file.Path()).SheetCount());
}
BENCHMARK(OpenLongColumns)->Unit(benchmark::kMillisecond)->UseRealTime();

void OutlineLongColumns(benchmark::State& state) {
  const ScratchFile file;
  LongColumns().Save(file.Path());
  for (auto _ : state) benchmark::DoNotOptimize(Workbook::Outline(file.Path()).size());
}
BENCHMARK(OutlineLongColumns)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
