#include "brv_sra/simulation/simulation_pieces.h"

#include <algorithm>
#include <deque>
#include <new>
#include <utility>
#include <vector>

#include "brv_sra/resources/computing_progress.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "brv_sra/simulation/column_draws.h"
#include "brv_sra/simulation/sample_generation.h"
#include "brv_sra/simulation/simulation_output.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/base/parallel.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kCellsPerPiece = std::size_t{1} << 20;
constexpr std::size_t kRowsPerColumnPiece = std::size_t{1} << 16;
static_assert(kRowsPerColumnPiece % SampleSummary::kBlock == 0);

// Raised where a value cannot be had; caught at the end of the run.
struct DistributionFailure {};

class PiecewiseSimulation {
 public:
  PiecewiseSimulation(const SimulationDesign& design, ProgressPort& port)
      : design_(design),
        active_(design.ActiveVariables()),
        samples_(static_cast<std::size_t>(design.numberOfSamples)),
        progress_(Computing(port, samples_ * active_.size() + 1)) {
    summaries_.resize(active_.size());
  }

  void DrawByCases(const CaseSink& take) {
    std::deque<ColumnDraws> columns;
    std::vector<SampleSummary> summaries(active_.size(), SampleSummary(samples_));
    for (std::size_t c = 0; c < active_.size(); ++c) {
      columns.emplace_back(design_, active_[c], stream_, position_);
      if (!columns.back().IsValid()) throw DistributionFailure();
      if (const auto end = columns.back().KnownEnd()) {
        position_ = *end;
      } else {
        Pass(columns.back(), [](std::span<const double>) {});
        position_ = columns.back().Position();
        columns.back().Restart();
      }
    }
    const std::size_t rowsPerPiece =
        std::max<std::size_t>(kCellsPerPiece / active_.size() / SampleSummary::kBlock * SampleSummary::kBlock,
                              SampleSummary::kBlock);
    for (std::size_t row = 0; row < samples_; row += rowsPerPiece) {
      const auto piece = MakeOutputSheet(design_, std::min(rowsPerPiece, samples_ - row));
      for (std::size_t c = 0; c < active_.size(); ++c) {
        if (!columns[c].Draw(piece->VariableAt(c).MutableValues())) throw DistributionFailure();
      }
      take(*piece);
      ParallelFor(active_.size(), [&](std::size_t c) { summaries[c].Add(piece->VariableAt(c).Values()); });
      progress_->Step(static_cast<std::int64_t>(piece->CaseCount() * active_.size()));
    }
    for (std::size_t c = 0; c < active_.size(); ++c) {
      summaries_[c] = Finish(summaries[c], columns[c]);
      columns[c].Release();
    }
  }

  void DrawByColumns(const ColumnSink& take) {
    for (std::size_t c = 0; c < active_.size(); ++c) {
      ColumnDraws column(design_, active_[c], stream_, position_);
      if (!column.IsValid()) throw DistributionFailure();
      SampleSummary summary(samples_);
      Pass(column, [&](std::span<const double> values) {
        ParallelFor(2, [&](std::size_t task) {
          if (task == 0) {
            take(c, values);
          } else {
            summary.Add(values);
          }
        });
        progress_->Step(static_cast<std::int64_t>(values.size()));
      });
      position_ = column.Position();
      summaries_[c] = Finish(summary, column);
    }
  }

  std::unique_ptr<Spreadsheet> Summary() const {
    std::vector<std::string> names;
    for (const std::size_t j : active_) names.push_back(design_.variables[j].name);
    return SummarySheet(std::string(ResourceString(MethodTitle(design_.method))), std::move(names),
                        summaries_);
  }

  // Where one run as a whole leaves the process's stream.
  std::uint64_t End() const { return position_; }

 private:
  // All values of a column that stands at its start.
  template <class Take>
  void Pass(ColumnDraws& column, const Take& take) {
    piece_.resize(std::min(kRowsPerColumnPiece, samples_));
    for (std::size_t row = 0; row < samples_; row += piece_.size()) {
      const std::span<double> values = std::span(piece_).first(std::min(piece_.size(), samples_ - row));
      if (!column.Draw(values)) throw DistributionFailure();
      take(values);
      progress_->Step(0);
    }
  }

  // What is left after the first pass.
  std::vector<double> Finish(SampleSummary& summary, ColumnDraws& column) {
    summary.EndPass();
    while (!summary.IsDone()) {
      column.Restart();
      Pass(column, [&](std::span<const double> values) { summary.Add(values); });
      summary.EndPass();
    }
    return summary.Values();
  }

  const SimulationDesign& design_;
  std::vector<std::size_t> active_;
  std::size_t samples_;
  std::unique_ptr<CKroProgressBar> progress_;
  RandomStream stream_ = ProcessStream();
  std::uint64_t position_ = ProcessStreamPosition();
  std::vector<std::vector<double>> summaries_;
  std::vector<double> piece_;
};

template <class Draw>
PiecewiseRun Simulate(const SimulationDesign& design, bool seeded, double seed, ProgressPort& port,
                      const Draw& draw) {
  PiecewiseRun run;
  try {
    if (design.numberOfSamples < 1 || design.ActiveVariables().empty()) throw DistributionFailure();
    SeedRandomStream(seeded, seed);
    PiecewiseSimulation simulation(design, port);
    draw(simulation);
    SetProcessStreamPosition(simulation.End());
    run.summary = simulation.Summary();
  } catch (const DistributionFailure&) {
    run.status = SimulationStatus::kDistributionFailure;
    run.where = FaultyVariable(design);
  } catch (const std::bad_alloc&) {
    run.status = SimulationStatus::kMemoryFailure;
  }
  return run;
}

}  // namespace

PiecewiseRun SimulateByCases(const SimulationDesign& design, bool seeded, double seed, const CaseSink& take,
                             ProgressPort& port) {
  return Simulate(design, seeded, seed, port,
                  [&](PiecewiseSimulation& simulation) { simulation.DrawByCases(take); });
}

PiecewiseRun SimulateByColumns(const SimulationDesign& design, bool seeded, double seed,
                               const ColumnSink& take, ProgressPort& port) {
  return Simulate(design, seeded, seed, port,
                  [&](PiecewiseSimulation& simulation) { simulation.DrawByColumns(take); });
}

}  // namespace brenvolt::sra
