#include "brv_sra/simulation/simulation_pieces.h"

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

#include "brv_sra/simulation/sampling/column_draws.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/simulation_output.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/base/parallel.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kCellsPerPiece = std::size_t{1} << 20;
constexpr std::size_t kRowsPerColumnPiece = std::size_t{1} << 16;
static_assert(kRowsPerColumnPiece % SampleSummary::kBlock == 0);

class PiecewiseSimulation {
 public:
  PiecewiseSimulation(const SimulationDesign& design, const RunProgress& bars)
      : design_(design),
        active_(design.ActiveVariables()),
        samples_(static_cast<std::size_t>(design.numberOfSamples)),
        progress_(Computing(bars, samples_ * active_.size() + 1)) {
    summaries_.resize(active_.size());
  }

  // False if a value cannot be had, as all that draw.
  bool DrawByCases(const CaseSink& take) {
    std::deque<ColumnDraws> columns;
    std::vector<SampleSummary> summaries(active_.size(), SampleSummary(samples_));
    for (std::size_t c = 0; c < active_.size(); ++c) {
      columns.emplace_back(design_, active_[c], stream_, position_);
      if (!FindEnd(columns.back())) return false;
    }
    const std::size_t rowsPerPiece =
        std::max<std::size_t>(kCellsPerPiece / active_.size() / SampleSummary::kBlock * SampleSummary::kBlock,
                              SampleSummary::kBlock);
    for (std::size_t row = 0; row < samples_; row += rowsPerPiece) {
      const auto piece = MakeOutputSheet(design_, std::min(rowsPerPiece, samples_ - row));
      for (std::size_t c = 0; c < active_.size(); ++c) {
        if (!columns[c].Draw(piece->VariableAt(c).MutableValues())) return false;
      }
      take(*piece);
      ParallelFor(active_.size(), [&](std::size_t c) { summaries[c].Add(piece->VariableAt(c).Values()); });
      progress_->Step(static_cast<std::int64_t>(piece->CaseCount() * active_.size()));
    }
    for (std::size_t c = 0; c < active_.size(); ++c) {
      if (!Finish(summaries[c], columns[c], c)) return false;
      columns[c].Release();
    }
    return true;
  }

  bool DrawByColumns(const ColumnSink& take) {
    for (std::size_t c = 0; c < active_.size(); ++c) {
      ColumnDraws column(design_, active_[c], stream_, position_);
      SampleSummary summary(samples_);
      const bool drawn = column.IsValid() && Pass(column, [&](std::span<const double> values) {
                           ParallelFor(2, [&](std::size_t task) {
                             if (task == 0) {
                               take(c, values);
                             } else {
                               summary.Add(values);
                             }
                           });
                           progress_->Step(static_cast<std::int64_t>(values.size()));
                         });
      if (!drawn) return false;
      position_ = column.Position();
      if (!Finish(summary, column, c)) return false;
    }
    return true;
  }

  SampleSummaries Summaries() && {
    SampleSummaries summaries;
    for (const std::size_t j : active_) summaries.names.push_back(design_.variables[j].name);
    summaries.values = std::move(summaries_);
    return summaries;
  }

  // Where one run as a whole leaves the process's stream.
  std::uint64_t End() const { return position_; }

 private:
  // Moves the place in the stream past a column's draws.
  bool FindEnd(ColumnDraws& column) {
    if (!column.IsValid()) return false;
    if (const auto end = column.KnownEnd()) {
      position_ = *end;
      return true;
    }
    if (!Pass(column, [](std::span<const double>) {})) return false;
    position_ = column.Position();
    column.Restart();
    return true;
  }

  // All values of a column that is at its start.
  template <class Take>
  bool Pass(ColumnDraws& column, const Take& take) {
    piece_.resize(std::min(kRowsPerColumnPiece, samples_));
    for (std::size_t row = 0; row < samples_; row += piece_.size()) {
      const std::span<double> values = std::span(piece_).first(std::min(piece_.size(), samples_ - row));
      if (!column.Draw(values)) return false;
      take(values);
      progress_->Step(0);
    }
    return true;
  }

  // What is left of the summary of column c after the first pass.
  bool Finish(SampleSummary& summary, ColumnDraws& column, std::size_t c) {
    summary.EndPass();
    while (!summary.IsDone()) {
      column.Restart();
      if (!Pass(column, [&](std::span<const double> values) { summary.Add(values); })) return false;
      summary.EndPass();
    }
    summaries_[c] = summary.Values();
    return true;
  }

  const SimulationDesign& design_;
  std::vector<std::size_t> active_;
  std::size_t samples_;
  std::unique_ptr<ProgressBar> progress_;
  RandomStream stream_ = ProcessStream();
  std::uint64_t position_ = ProcessStreamPosition();
  std::vector<std::vector<double>> summaries_;
  std::vector<double> piece_;
};

template <class Draw>
Result<SampleSummaries> Simulate(const SimulationDesign& design, bool seeded, double seed,
                                 const RunProgress& bars, const Draw& draw) {
  if (design.numberOfSamples < 1 || design.ActiveVariables().empty()) return SamplingFault(design);
  SeedRandomStream(seeded, seed);
  PiecewiseSimulation simulation(design, bars);
  if (!draw(simulation)) return SamplingFault(design);
  SetProcessStreamPosition(simulation.End());
  return std::move(simulation).Summaries();
}

}  // namespace

Result<SampleSummaries> SimulateByCases(const SimulationDesign& design, bool seeded, double seed,
                                        const CaseSink& take, const RunProgress& bars) {
  return Simulate(design, seeded, seed, bars,
                  [&](PiecewiseSimulation& simulation) { return simulation.DrawByCases(take); });
}

Result<SampleSummaries> SimulateByColumns(const SimulationDesign& design, bool seeded, double seed,
                                          const ColumnSink& take, const RunProgress& bars) {
  return Simulate(design, seeded, seed, bars,
                  [&](PiecewiseSimulation& simulation) { return simulation.DrawByColumns(take); });
}

}  // namespace brenvolt::sra
