// Reading and writing of separated values: files of a million cases, with the rate in bytes of text. Reading
// is from the page cache; writing goes to a file in the folder of temporary files and includes putting it in
// place.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include "host/tables/csv.h"
#include "host/tables/formats/data_file_reader.h"

namespace brenvolt {
namespace {

constexpr std::size_t kCases = 1'000'000;
constexpr std::size_t kNumberColumns = 10;
constexpr std::size_t kTextColumns = 4;

// Values of full precision: all bits of the mantissa drawn at random, as in measured or simulated data.
const Spreadsheet& Numbers() {
  static const Spreadsheet sheet = [] {
    Spreadsheet result("numbers", kCases, kNumberColumns);
    std::mt19937_64 engine(20240229);
    std::normal_distribution<double> normal(0, 100);
    for (std::size_t c = 0; c < kNumberColumns; ++c) {
      for (double& x : result.VariableAt(c).MutableValues()) x = normal(engine);
    }
    return result;
  }();
  return sheet;
}

// Columns of few and of many different texts, some of which need quotes.
const Spreadsheet& Texts() {
  static const Spreadsheet sheet = [] {
    Spreadsheet result("texts", kCases, kTextColumns);
    std::mt19937_64 engine(20240301);
    for (std::size_t c = 0; c < kTextColumns; ++c) {
      Variable& variable = result.VariableAt(c);
      variable.SetType(VariableType::kText);
      const std::uint64_t labels = c == 0 ? 5 : 1000 * c;
      for (std::uint64_t code = 1; code <= labels; ++code) {
        variable.SetLabel(static_cast<double>(code),
                          (code % 4 == 0 ? "batch, late " : "batch ") + std::to_string(code));
      }
      for (double& x : variable.MutableValues()) x = static_cast<double>(engine() % labels + 1);
    }
    return result;
  }();
  return sheet;
}

class TemporaryCsv {
 public:
  TemporaryCsv() : path_(std::filesystem::temp_directory_path() / "brenvolt_csv_bench.csv") {}
  ~TemporaryCsv() { std::filesystem::remove(path_); }
  TemporaryCsv(const TemporaryCsv&) = delete;
  TemporaryCsv& operator=(const TemporaryCsv&) = delete;
  const std::filesystem::path& Path() const { return path_; }
  std::int64_t Bytes() const { return static_cast<std::int64_t>(std::filesystem::file_size(path_)); }

 private:
  std::filesystem::path path_;
};

void Read(benchmark::State& state, const Spreadsheet& sheet, const CsvFormat& format) {
  const TemporaryCsv file;
  WriteCsv(sheet, file.Path(), format);
  for (auto _ : state) benchmark::DoNotOptimize(ReadCsv(file.Path(), format));
  state.SetBytesProcessed(state.iterations() * file.Bytes());
}

void Write(benchmark::State& state, const Spreadsheet& sheet, const CsvFormat& format) {
  const TemporaryCsv file;
  for (auto _ : state) WriteCsv(sheet, file.Path(), format);
  state.SetBytesProcessed(state.iterations() * file.Bytes());
}

void ReadNumbers(benchmark::State& state) {
  Read(state, Numbers(), {});
}
// The same as people's files are read, whose layout is found by looking.
void ReadNumbersFound(benchmark::State& state) {
  const TemporaryCsv file;
  WriteCsv(Numbers(), file.Path(), {});
  for (auto _ : state) benchmark::DoNotOptimize(ReadDataFile(file.Path(), {}));
  state.SetBytesProcessed(state.iterations() * file.Bytes());
}
void ReadNumbersWithComma(benchmark::State& state) {
  Read(state, Numbers(), CsvFormat::DecimalComma());
}
void ReadTexts(benchmark::State& state) {
  Read(state, Texts(), {});
}
void WriteNumbers(benchmark::State& state) {
  Write(state, Numbers(), {});
}
void WriteTexts(benchmark::State& state) {
  Write(state, Texts(), {});
}
// Formatting alone, without a file.
void FormatNumbers(benchmark::State& state) {
  std::size_t bytes = 0;
  for (auto _ : state) bytes = CsvText(Numbers()).size();
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

BENCHMARK(ReadNumbers)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadNumbersFound)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadNumbersWithComma)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadTexts)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WriteNumbers)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WriteTexts)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(FormatNumbers)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace brenvolt

BENCHMARK_MAIN();
