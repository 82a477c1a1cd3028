#include "brv_sra/simulation/simulation_pieces.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/simulation/sampling/column_draws.h"
#include "brv_sra/simulation/sampling/sample_generation.h"
#include "brv_sra/simulation/simulation_output.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/base/bytes.h"
#include "host/base/parallel.h"
#include "host/rounds/crew.h"

namespace brenvolt::sra {
namespace {

constexpr std::size_t kCellsPerPiece = std::size_t{1} << 20;
constexpr std::size_t kRowsPerColumnPiece = std::size_t{1} << 16;
constexpr std::size_t kRowsPerPart = SampleSummary::kPart;
static_assert(kRowsPerColumnPiece % SampleSummary::kBlock == 0);
static_assert(kRowsPerPart % kRowsPerColumnPiece == 0);

// What a pass over some columns has told, or some parts of it: their summaries, and whether all values could be had.
struct PassTally {
  std::vector<SampleSummary> summaries;
  bool isFinite = true;

  std::string Bytes() const {
    ByteWriter bytes;
    bytes.Put(isFinite);
    for (const SampleSummary& summary : summaries) summary.PutTally(bytes);
    return std::move(bytes).Take();
  }
  void Add(const std::string& behind) {
    ByteReader bytes(behind);
    isFinite = bytes.Get<bool>() && isFinite;
    for (SampleSummary& summary : summaries) summary.AddTally(bytes);
  }
  // What is known when it has ended.
  std::string End() && {
    ByteWriter bytes;
    bytes.Put(isFinite);
    for (SampleSummary& summary : summaries) {
      summary.EndPass();
      summary.PutKnown(bytes);
    }
    return std::move(bytes).Take();
  }
};

// One pass, a round of the crew. `draw` gives summaries their values of some parts, and is false if one cannot be had.
// False if one could not; otherwise the summaries know what the pass told.
using DrawParts = std::function<bool(PartRange, std::vector<SampleSummary>&)>;
bool CarryOutPass(const std::string& name, std::uint64_t parts, const DrawParts& draw,
                  std::vector<SampleSummary>& summaries) {
  Round round{name, parts, {}, {}, {}};
  round.run = [&](PartRange range) {
    PassTally tally{summaries};
    tally.isFinite = draw(range, tally.summaries);
    return tally.Bytes();
  };
  round.join = [&](const std::string& first, const std::string& second) {
    PassTally tally{summaries};
    tally.Add(first);
    tally.Add(second);
    return tally.Bytes();
  };
  round.finish = [&](const std::string& all) {
    PassTally tally{summaries};
    tally.Add(all);
    return std::move(tally).End();
  };
  const std::string told = TheCrew().Run(round);
  ByteReader bytes(told);
  if (!bytes.Get<bool>()) return false;
  for (SampleSummary& summary : summaries) summary.TakeKnown(bytes);
  return true;
}

// A number that another design hardly has, nor another seed.
std::uint64_t PrintOf(const SimulationDesign& design, const RandomStream& stream) {
  ByteWriter bytes;
  bytes.Put(stream.Seed());
  bytes.Put(design.numberOfSamples);
  bytes.Put(design.method);
  bytes.Put(design.source);
  bytes.Put(design.truncate);
  for (const std::size_t j : design.ActiveVariables()) {
    const DistributionSpecification& drawn = design.variables[j].specification;
    bytes.Put(design.variables[j].name);
    bytes.Put(drawn.code);
    bytes.Put(drawn.values);
    bytes.Put(drawn.offset);
    bytes.Put(drawn.truncateBelow ? drawn.truncationMinimum : kNotSet);
    bytes.Put(drawn.truncateAbove ? drawn.truncationMaximum : kNotSet);
  }
  return HashOf(std::move(bytes).Take());
}

// Values of a column, from a row on.
using TakeValues = std::function<void(std::span<const double> values)>;
struct Rows {
  std::size_t begin;
  std::size_t end;
};

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
    if (!TheCrew().RunsInOrder()) {
      std::vector<SampleSummary> none;
      return DrawInParts(take ? [&] { return DrawCases({0, samples_}, take, none); }
                              : std::function<bool()>());
    }
    while (columns_.size() < active_.size()) {
      if (!AddColumn() || !FindEntries()) return false;
    }
    std::vector<SampleSummary> summaries(active_.size(), SampleSummary(samples_));
    const auto draw = [&](PartRange range, std::vector<SampleSummary>& tally) {
      return DrawCases(RowsOf(range), take, tally);
    };
    if (!CarryOutPass(NameOf("cases"), PartsOf(samples_), draw, summaries)) return false;
    for (std::size_t c = 0; c < active_.size(); ++c) {
      std::vector<SampleSummary> one(1, std::move(summaries[c]));
      if (!Finish(c, one)) return false;
    }
    return true;
  }

  bool DrawByColumns(const ColumnSink& take) {
    if (!TheCrew().RunsInOrder())
      return DrawInParts(take ? [&] { return HandOn(take); } : std::function<bool()>());
    while (columns_.size() < active_.size()) {
      const std::size_t first = columns_.size();
      for (std::size_t left = ColumnsAtOnce(); left > 0 && columns_.size() < active_.size(); --left) {
        if (!AddColumn()) return false;
        if (!columns_.back().KnownEnd()) break;  // what follows is known when it was drawn
      }
      std::vector<SampleSummary> summaries(columns_.size() - first, SampleSummary(samples_));
      if (!DrawColumns(first, take ? &take : nullptr, summaries)) return false;
      position_ = std::max(position_, columns_.back().Position());
      if (!Finish(first, summaries)) return false;
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
  static std::size_t PartsOf(std::size_t rows) { return (rows + kRowsPerPart - 1) / kRowsPerPart; }
  Rows RowsOf(PartRange range) const {
    return {range.first * kRowsPerPart, std::min<std::size_t>(range.end * kRowsPerPart, samples_)};
  }

  std::string NameOf(const std::string& round) const {
    return round + " of simulation " + std::to_string(print_);
  }

  bool AddColumn() {
    columns_.emplace_back(design_, active_[columns_.size()], stream_, position_);
    if (!columns_.back().IsValid()) return false;
    position_ = columns_.back().KnownEnd().value_or(position_);
    return true;
  }

  // How many columns are summarised together: many if they are short, so that a crew has parts enough.
  std::size_t ColumnsAtOnce() const {
    constexpr std::size_t kValues = std::size_t{1} << 24;
    constexpr std::size_t kMostColumns = 64;
    return std::clamp<std::size_t>(kValues / samples_, 1, kMostColumns);
  }

  // Each part by whoever has it. The samples are handed on by one process, from the first to the last, once.
  bool DrawInParts(const std::function<bool()>& handOn) {
    while (columns_.size() < active_.size()) {
      if (!AddColumn() || !FindEntries()) return false;
    }
    if (handOn && !HandOnByOne(handOn)) return false;
    for (ColumnDraws& column : columns_) column.Release();
    for (std::size_t first = 0; first < columns_.size();) {
      std::vector<SampleSummary> summaries(std::min(ColumnsAtOnce(), columns_.size() - first),
                                           SampleSummary(samples_));
      if (!DrawColumns(first, nullptr, summaries) || !Finish(first, summaries)) return false;
      first += summaries.size();
    }
    return true;
  }

  bool HandOnByOne(const std::function<bool()>& handOn) {
    Round round{NameOf("samples"), 1, {}, {}, {}};
    round.run = [&](PartRange) { return std::string(1, handOn() ? '1' : '0'); };
    round.finish = [](const std::string& all) { return all; };
    return TheCrew().Run(round) == "1";
  }

  bool HandOn(const ColumnSink& take) {
    for (std::size_t c = 0; c < columns_.size(); ++c) {
      const bool drawn =
          Draw(columns_[c], {0, samples_}, [&](std::span<const double> values) { take(c, values); });
      if (!drawn) return false;
      columns_[c].Release();
    }
    return true;
  }

  // Where the parts of the last column draw, and the place in the stream after it, if values take draws as they come.
  bool FindEntries() {
    ColumnDraws& column = columns_.back();
    if (column.KnownEnd()) return true;
    Round round{NameOf("column places " + std::to_string(columns_.size())), 1, {}, {}, {}};
    round.run = [&](PartRange) {
      std::vector<std::uint64_t> entries;
      bool isFinite = true;
      for (std::size_t part = 0; part < PartsOf(samples_) && isFinite; ++part) {
        entries.push_back(column.Position());
        isFinite =
            Draw(column, RowsOf({part, part + 1}), [&](std::span<const double>) { progress_->Step(0); });
      }
      entries.push_back(column.Position());
      ByteWriter bytes;
      bytes.Put(isFinite);
      bytes.Put(entries);
      return std::move(bytes).Take();
    };
    round.finish = [](const std::string& all) { return all; };
    const std::string told = TheCrew().Run(round);
    ByteReader bytes(told);
    if (!bytes.Get<bool>()) return false;
    auto entries = bytes.GetList<std::uint64_t>();
    position_ = entries.back();
    column.SetEntries(kRowsPerPart, std::move(entries));
    return true;
  }

  // Rows of a column, some at a time.
  bool Draw(ColumnDraws& column, Rows rows, const TakeValues& take) {
    column.GoTo(rows.begin);
    piece_.resize(std::min(kRowsPerColumnPiece, samples_));
    for (std::size_t row = rows.begin; row < rows.end; row += piece_.size()) {
      const std::span<double> values = std::span(piece_).first(std::min(piece_.size(), rows.end - row));
      if (!column.Draw(values)) return false;
      take(values);
    }
    return true;
  }

  // Rows of all columns.
  bool DrawCases(Rows rows, const CaseSink& take, std::vector<SampleSummary>& summaries) {
    const std::size_t rowsPerPiece =
        std::max<std::size_t>(kCellsPerPiece / active_.size() / SampleSummary::kBlock * SampleSummary::kBlock,
                              SampleSummary::kBlock);
    for (ColumnDraws& column : columns_) column.GoTo(rows.begin);
    for (std::size_t row = rows.begin; row < rows.end; row += rowsPerPiece) {
      const auto piece = MakeOutputSheet(design_, std::min(rowsPerPiece, rows.end - row));
      for (std::size_t c = 0; c < active_.size(); ++c) {
        if (!columns_[c].Draw(piece->VariableAt(c).MutableValues())) return false;
      }
      take(*piece);
      ParallelFor(summaries.size(), [&](std::size_t c) { summaries[c].Add(piece->VariableAt(c).Values()); });
      progress_->Step(static_cast<std::int64_t>(piece->CaseCount() * active_.size()));
    }
    return true;
  }

  // A pass over the columns from `first` on, one for each summary. Whose rows have an order by chance, which one process
  // must know as a whole, are one part; others have a part for each part of their rows.
  bool DrawColumns(std::size_t first, const ColumnSink* take, std::vector<SampleSummary>& summaries) {
    const std::size_t perColumn = UsesLatinHypercube(design_.method) ? 1 : PartsOf(samples_);
    const auto draw = [&](PartRange range, std::vector<SampleSummary>& tally) {
      for (std::size_t i = range.first / perColumn; i * perColumn < range.end; ++i) {
        if (tally[i].IsDone()) continue;
        const PartRange own{std::max<std::uint64_t>(range.first, i * perColumn) - i * perColumn,
                            std::min<std::uint64_t>(range.end - i * perColumn, perColumn)};
        const Rows rows = perColumn == 1 ? Rows{0, samples_} : RowsOf(own);
        if (!DrawColumn(first + i, rows, take, tally[i])) return false;
      }
      return true;
    };
    return CarryOutPass(NameOf("columns from " + std::to_string(first)), perColumn * summaries.size(), draw,
                        summaries);
  }

  bool DrawColumn(std::size_t c, Rows rows, const ColumnSink* take, SampleSummary& summary) {
    return Draw(columns_[c], rows, [&](std::span<const double> values) {
      ParallelFor(take == nullptr ? 1 : 2, [&](std::size_t task) {
        if (task == 0) {
          summary.Add(values);
        } else {
          (*take)(c, values);
        }
      });
      progress_->Step(summary.IsFirstPass() ? static_cast<std::int64_t>(values.size()) : 0);
    });
  }

  // What is left of the summaries of columns after the first pass.
  bool Finish(std::size_t first, std::vector<SampleSummary>& summaries) {
    while (!std::ranges::all_of(summaries, &SampleSummary::IsDone)) {
      if (!DrawColumns(first, nullptr, summaries)) return false;
    }
    for (std::size_t i = 0; i < summaries.size(); ++i) {
      summaries_[first + i] = summaries[i].Values();
      columns_[first + i].Release();
    }
    return true;
  }

  const SimulationDesign& design_;
  std::vector<std::size_t> active_;
  std::size_t samples_;
  std::unique_ptr<ProgressBar> progress_;
  RandomStream stream_ = ProcessStream();
  std::uint64_t print_ = PrintOf(design_, stream_);
  std::uint64_t position_ = ProcessStreamPosition();
  std::deque<ColumnDraws> columns_;
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
