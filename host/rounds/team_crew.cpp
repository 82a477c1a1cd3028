#include "host/rounds/team_crew.h"

#include <algorithm>
#include <exception>
#include <system_error>
#include <utility>

#include "host/base/bytes.h"

namespace brenvolt {
namespace {

enum class State : std::uint8_t { kFailed, kGoesOn, kDone };

std::string WhatOf(std::exception_ptr failure) {
  try {
    std::rethrow_exception(std::move(failure));
  } catch (const Error& error) {
    return error.what() + (error.Where().empty() ? "" : " (" + error.Where() + ")");
  } catch (const std::bad_alloc&) {
    return "not enough memory";
  } catch (const std::exception& error) {
    return error.what();
  }
}

void PutRanges(const std::vector<PartRange>& ranges, ByteWriter& bytes) {
  bytes.Put<std::uint64_t>(ranges.size());
  for (const PartRange& range : ranges) {
    bytes.Put(range.first);
    bytes.Put(range.end);
  }
}

std::vector<PartRange> GetRanges(ByteReader& bytes) {
  std::vector<PartRange> ranges(bytes.Get<std::uint64_t>());
  for (PartRange& range : ranges) {
    range.first = bytes.Get<std::uint64_t>();
    range.end = bytes.Get<std::uint64_t>();
  }
  return ranges;
}

// The parts of a round that no piece, of ascending ones, has.
std::vector<PartRange> Without(const std::vector<Piece>& pieces, std::uint64_t parts) {
  std::vector<PartRange> open;
  std::uint64_t first = 0;
  for (const Piece& piece : pieces) {
    if (piece.range.first > first) open.push_back({first, piece.range.first});
    first = piece.range.end;
  }
  if (first < parts) open.push_back({first, parts});
  return open;
}

// In ascending order, neighbours joined.
std::vector<Piece> Joined(std::vector<Piece> pieces, const Round& round) {
  std::ranges::stable_sort(pieces, {}, [](const Piece& piece) { return piece.range.first; });
  std::vector<Piece> joined;
  for (Piece& piece : pieces) {
    if (joined.empty() || joined.back().range.end != piece.range.first) {
      joined.push_back(std::move(piece));
      continue;
    }
    joined.back().bytes = round.join(joined.back().bytes, piece.bytes);
    joined.back().range.end = piece.range.end;
  }
  return joined;
}

}  // namespace

// What a process tells of itself, or of some neighbours and itself.
struct TeamCrew::Message {
  std::uint64_t label = 0;  // of what it works on
  int rank = 0;
  std::string fault;  // empty: there is none
  int faultRank = 0;
  std::vector<Piece> pieces;

  std::string Bytes() const {
    ByteWriter bytes;
    bytes.Put(label);
    bytes.Put(rank);
    bytes.Put(std::string_view(fault));
    bytes.Put(faultRank);
    bytes.Put<std::uint64_t>(pieces.size());
    for (const auto& [range, piece] : pieces) {
      bytes.Put(range.first);
      bytes.Put(range.end);
      bytes.Put(std::string_view(piece));
    }
    return std::move(bytes).Take();
  }
  static Message Of(std::string_view text) {
    ByteReader bytes(text);
    Message message;
    message.label = bytes.Get<std::uint64_t>();
    message.rank = bytes.Get<int>();
    message.fault = bytes.GetText();
    message.faultRank = bytes.Get<int>();
    message.pieces.resize(bytes.Get<std::uint64_t>());
    for (auto& [range, piece] : message.pieces) {
      range.first = bytes.Get<std::uint64_t>();
      range.end = bytes.Get<std::uint64_t>();
      piece = bytes.GetText();
    }
    return message;
  }

  // With what ranks behind these tell.
  void Add(Message behind, const Round& round) {
    if (!fault.empty()) return;
    if (behind.fault.empty() && behind.label != label) {
      behind.fault =
          "works on something else than rank 0: all ranks need the same arguments and the same files";
      behind.faultRank = behind.rank;
    }
    if (!behind.fault.empty()) {
      fault = std::move(behind.fault);
      faultRank = behind.faultRank;
      pieces.clear();
      return;
    }
    std::ranges::move(behind.pieces, std::back_inserter(pieces));
    pieces = Joined(std::move(pieces), round);
  }
};

void TeamCrew::KeepCheckpoint(const std::filesystem::path& path, std::chrono::milliseconds every) {
  Round found{"checkpoint", 1, {}, {}, {}};
  Checkpoint loaded;
  found.run = [&](PartRange) {
    loaded = Checkpoint::Load(path);
    ByteWriter bytes;
    bytes.Put<std::uint64_t>(loaded.rounds.size());
    bytes.Put(loaded.label);
    std::vector<PartRange> ranges;
    for (const Piece& piece : loaded.pieces) ranges.push_back(piece.range);
    PutRanges(ranges, bytes);
    return std::move(bytes).Take();
  };
  found.finish = [](const std::string& all) { return all; };
  const std::string told = Run(found);
  ByteReader bytes(told);
  checkpoint_ = std::move(loaded);
  checkpoint_.rounds.resize(bytes.Get<std::uint64_t>());
  checkpoint_.label = bytes.Get<std::uint64_t>();
  const std::vector<PartRange> ranges = GetRanges(bytes);
  checkpoint_.pieces.resize(ranges.size());
  for (std::size_t i = 0; i < ranges.size(); ++i) checkpoint_.pieces[i].range = ranges[i];
  round_ = 0;
  file_ = path;  // not before: what it holds would be replaced
  every_ = every;
  saved_ = std::chrono::steady_clock::now();
}

std::string TeamCrew::Run(const Round& round) {
  const std::uint64_t label =
      HashOf(std::to_string(round_) + " " + std::to_string(round.parts) + " " + round.name);
  const std::size_t number = round_++;
  const bool isKnown = number < checkpoint_.rounds.size();
  std::vector<PartRange> open;
  if (!isKnown) open = Without(checkpoint_.pieces, round.parts);
  while (true) {
    const std::string answer = Meet(round, label, ShareOf(open));
    ByteReader bytes(answer);
    const auto state = bytes.Get<State>();
    if (state == State::kDone) {
      const std::string told(bytes.GetText());
      if (isKnown) return told;
      checkpoint_.rounds.push_back({label, file_.empty() ? std::string() : told});
      checkpoint_.pieces.clear();
      SaveIfDue();
      return told;
    }
    open = GetRanges(bytes);
    SaveIfDue();
  }
}

void TeamCrew::SaveIfDue() {
  const auto now = std::chrono::steady_clock::now();
  if (file_.empty() || now - saved_ < every_) return;
  if (Rank() == 0) checkpoint_.Save(file_);
  saved_ = now;
}

// The parts of this rank, of those that are open.
std::vector<PartRange> TeamCrew::ShareOf(const std::vector<PartRange>& open) const {
  std::uint64_t total = 0;
  for (const PartRange& range : open) total += range.Count();
  const auto bound = [&](int rank) {
    const auto ranks = static_cast<std::uint64_t>(Count());
    const auto before = static_cast<std::uint64_t>(rank);
    return total / ranks * before + std::min(before, total % ranks);
  };
  const std::uint64_t from = bound(Rank());
  const std::uint64_t to = bound(Rank() + 1);
  std::vector<PartRange> share;
  std::uint64_t passed = 0;
  for (const PartRange& range : open) {
    const std::uint64_t begin = std::max(from, passed);
    const std::uint64_t end = std::min(to, passed + range.Count());
    if (begin < end) share.push_back({range.first + begin - passed, range.first + end - passed});
    passed += range.Count();
  }
  return share;
}

// What there is time for until the work is to be kept; as a whole if it is not kept. What is run at once takes a small part
// of that time.
std::vector<Piece> TeamCrew::Work(const Round& round, const std::vector<PartRange>& share) const {
  constexpr int kPiecesBetween = 8;
  std::vector<Piece> pieces;
  std::uint64_t atOnce = file_.empty() ? round.parts : 1;
  for (const PartRange& range : share) {
    for (std::uint64_t first = range.first; first < range.end;) {
      const auto begin = std::chrono::steady_clock::now();
      if (!file_.empty() && begin - saved_ >= every_ && !pieces.empty()) return pieces;
      const PartRange next{first, std::min(range.end, first + std::min(atOnce, range.end - first))};
      pieces.push_back({next, round.run(next)});
      pieces = Joined(std::move(pieces), round);
      if (std::chrono::steady_clock::now() - begin < every_ / kPiecesBetween) atOnce *= 2;
      first = next.end;
    }
  }
  return pieces;
}

// One step of a round: all work, then meet. Returns what rank 0 answers: a state, and what the round told or the ranges
// that are open still.
std::string TeamCrew::Meet(const Round& round, std::uint64_t label, const std::vector<PartRange>& share) {
  Message own;
  own.label = label;
  own.rank = own.faultRank = Rank();
  std::exception_ptr failure;
  try {
    own.pieces = Work(round, share);
  } catch (...) {
    failure = std::current_exception();
    own.pieces.clear();
    own.fault = WhatOf(failure);
  }
  return Together(std::move(own), round, failure);
}

std::string TeamCrew::Together(Message own, const Round& round, std::exception_ptr failure) {
  for (int distance = 1; distance < Count(); distance *= 2) {
    if (Rank() % (2 * distance) != 0) {
      Send(Rank() - distance, own.Bytes());
      break;
    }
    if (Rank() + distance >= Count()) continue;
    try {
      own.Add(Message::Of(team_.Receive(Rank() + distance)), round);
    } catch (...) {
      failure = std::current_exception();
      own.fault = WhatOf(failure);
      own.faultRank = Rank();
    }
  }
  std::string answer;
  if (Rank() == 0) {
    try {
      answer = AnswerTo(std::move(own), round);
    } catch (...) {
      failure = std::current_exception();
      ByteWriter bytes;
      bytes.Put(State::kFailed);
      bytes.Put<int>(0);
      bytes.Put(std::string_view(WhatOf(failure)));
      answer = std::move(bytes).Take();
    }
  }
  answer = Broadcast(std::move(answer));
  ByteReader bytes(answer);
  if (bytes.Get<State>() != State::kFailed) return answer;
  isOver_ = true;
  const int rank = bytes.Get<int>();
  if (failure != nullptr && rank == Rank()) std::rethrow_exception(failure);
  throw CrewFault(std::string(bytes.GetText()),
                  "rank " + std::to_string(rank) + " of " + std::to_string(Count()));
}

// On rank 0, from what all have told. Keeps it.
std::string TeamCrew::AnswerTo(Message all, const Round& round) {
  ByteWriter bytes;
  if (!all.fault.empty()) {
    bytes.Put(State::kFailed);
    bytes.Put(all.faultRank);
    bytes.Put(std::string_view(all.fault));
    return std::move(bytes).Take();
  }
  const std::size_t number = round_ - 1;
  if (number < checkpoint_.rounds.size()) {
    const auto& [label, told] = checkpoint_.rounds[number];
    if (label != all.label) FailOnCheckpoint();
    bytes.Put(State::kDone);
    bytes.Put(std::string_view(told));
    return std::move(bytes).Take();
  }
  if (!checkpoint_.pieces.empty() && checkpoint_.label != all.label) FailOnCheckpoint();
  checkpoint_.label = all.label;
  std::ranges::move(all.pieces, std::back_inserter(checkpoint_.pieces));
  checkpoint_.pieces = Joined(std::move(checkpoint_.pieces), round);
  const std::vector<PartRange> open = Without(checkpoint_.pieces, round.parts);
  if (open.empty()) {
    bytes.Put(State::kDone);
    bytes.Put(std::string_view(round.finish(checkpoint_.pieces.front().bytes)));
  } else {
    bytes.Put(State::kGoesOn);
    PutRanges(open, bytes);
  }
  return std::move(bytes).Take();
}

void TeamCrew::FailOnCheckpoint() const {
  throw Error("the checkpoint belongs to another job; name another one, or remove it to begin anew",
              file_.string());
}

// Each process is told by the one that it told.
std::string TeamCrew::Broadcast(std::string bytes) {
  int distance = 1;
  while (distance < Count() && Rank() % (2 * distance) == 0) distance *= 2;
  if (Rank() != 0) bytes = team_.Receive(Rank() - distance);
  for (distance /= 2; distance > 0; distance /= 2) {
    if (Rank() + distance < Count()) Send(Rank() + distance, bytes);
  }
  return bytes;
}

void TeamCrew::Send(int to, std::string_view bytes) {
  bytesSent_ += bytes.size();
  team_.Send(to, bytes);
}

// Each has one part: its text, as a hash, and the first rank whose text differs.
void TeamCrew::RequireSame(const std::string& text, const std::string& otherwise) {
  struct Compared {
    std::uint64_t hash = 0;
    int different = -1;
    int rank = 0;

    std::string Bytes() const {
      ByteWriter bytes;
      bytes.Put(hash);
      bytes.Put(different);
      bytes.Put(rank);
      return std::move(bytes).Take();
    }
    static Compared Of(const std::string& text) {
      ByteReader bytes(text);
      Compared compared;
      compared.hash = bytes.Get<std::uint64_t>();
      compared.different = bytes.Get<int>();
      compared.rank = bytes.Get<int>();
      return compared;
    }
  };
  Round round{"what is the same", static_cast<std::uint64_t>(Count()), {}, {}, {}};
  round.run = [&](PartRange) { return Compared{HashOf(text), -1, Rank()}.Bytes(); };
  round.join = [](const std::string& first, const std::string& second) {
    Compared joined = Compared::Of(first);
    const Compared behind = Compared::Of(second);
    if (joined.different < 0) joined.different = joined.hash != behind.hash ? behind.rank : behind.different;
    return joined.Bytes();
  };
  round.finish = [](const std::string& all) { return all; };
  const int different = Compared::Of(Run(round)).different;
  if (different < 0) return;
  isOver_ = true;
  throw CrewFault(otherwise, "rank " + std::to_string(different) + " of " + std::to_string(Count()));
}

BytesOfTeam TeamCrew::End() {
  const auto bytesOf = [](const BytesOfTeam& sent) {
    ByteWriter bytes;
    bytes.Put(sent.all);
    bytes.Put(sent.most);
    return std::move(bytes).Take();
  };
  const auto get = [](const std::string& text) {
    ByteReader bytes(text);
    const auto all = bytes.Get<std::uint64_t>();
    return BytesOfTeam{all, bytes.Get<std::uint64_t>()};
  };
  Round last{"end", static_cast<std::uint64_t>(Count()), {}, {}, {}};
  last.run = [&](PartRange) { return bytesOf({bytesSent_, bytesSent_}); };
  last.join = [&](const std::string& first, const std::string& second) {
    const BytesOfTeam one = get(first);
    const BytesOfTeam other = get(second);
    return bytesOf({one.all + other.all, std::max(one.most, other.most)});
  };
  last.finish = [](const std::string& all) { return all; };
  const BytesOfTeam sent = get(Run(last));
  isOver_ = true;
  std::error_code ignored;
  if (Rank() == 0 && !file_.empty()) std::filesystem::remove(file_, ignored);
  return sent;
}

void TeamCrew::GiveUp(const std::string& why) {
  if (isOver_) return;
  Message own;
  own.fault = why;
  own.rank = own.faultRank = Rank();
  try {
    Together(std::move(own), Round{}, nullptr);
  } catch (const Error&) {  // which is what this one told, or what another one told first
  }
}

}  // namespace brenvolt
