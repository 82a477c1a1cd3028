// Stands in for libFuzzer where the compiler has none: a main() that feeds LLVMFuzzerTestOneInput the seeds
// and then random mutations of them until the time is over.
//
//   target [-max_total_time=SECONDS] [-seed=N] [-max_len=BYTES] [-timeout=SECONDS] SEED-FOLDER…
//   target FILE…                       runs just these inputs: what to call with a crash file
//
// The sequence of inputs depends on the seed and the seed files only; the time decides how far it gets. When
// the target aborts, throws, faults or takes longer than -timeout for one input, that input is left as
// crash-<hash> (timeout-<hash>) in the current folder and the program ends as the fault would have ended it.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
// Present when a sanitizer is linked in; called before it ends the program.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());
// Asked by UndefinedBehaviorSanitizer, which in GCC does not know that callback: let it end in SIGABRT.
extern "C" __attribute__((used, visibility("default"))) const char* __ubsan_default_options() {
  return "abort_on_error=1:print_stacktrace=1";
}

namespace {

using Input = std::vector<std::uint8_t>;

struct Options {
  long seconds = 10;
  std::uint64_t seed = 1;
  std::size_t longestInput = 0;  // 0: twice the longest seed, but at least 4096
  long secondsPerInput = 30;
  std::vector<std::filesystem::path> paths;
};

// ---- Keeping the input that breaks the target. Everything here runs inside signal handlers. ----

std::span<const std::uint8_t> currentInput;

std::uint64_t Fnv1a(std::span<const std::uint8_t> bytes) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  for (const std::uint8_t byte : bytes) {
    hash = (hash ^ byte) * 0x100000001b3U;
  }
  return hash;
}

void WriteAll(int file, const void* data, std::size_t size) {
  const char* at = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = write(file, at, size);
    if (written <= 0) {
      return;
    }
    at += written;
    size -= static_cast<std::size_t>(written);
  }
}

void KeepInput(std::string_view kind) {
  std::array<char, 64> name{};
  char* end = std::copy(kind.begin(), kind.end(), name.begin());
  end = std::to_chars(end, name.end() - 1, Fnv1a(currentInput), 16).ptr;
  const int file = open(name.data(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (file < 0) {
    return;
  }
  WriteAll(file, currentInput.data(), currentInput.size());
  close(file);
  constexpr std::string_view kText = "\nfuzz: the input is kept in ";
  WriteAll(STDERR_FILENO, kText.data(), kText.size());
  WriteAll(STDERR_FILENO, name.data(), static_cast<std::size_t>(end - name.data()));
  WriteAll(STDERR_FILENO, "\n", 1);
}

void KeepCrash() {
  KeepInput("crash-");
}

void OnSignal(int signal) {
  KeepInput(signal == SIGALRM ? "timeout-" : "crash-");
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void WatchForFaults() {
  // A stack of its own, so that endless recursion in the target is seen too.
  static std::array<std::byte, 65536> stack;
  const stack_t alternative{.ss_sp = stack.data(), .ss_flags = 0, .ss_size = stack.size()};
  sigaltstack(&alternative, nullptr);
  std::vector<int> signals = {SIGABRT, SIGALRM};
  if (__sanitizer_set_death_callback != nullptr) {
    __sanitizer_set_death_callback(KeepCrash);
  } else {
    signals.insert(signals.end(), {SIGSEGV, SIGBUS, SIGFPE, SIGILL});
  }
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  action.sa_flags = SA_ONSTACK | SA_NODEFER;
  for (const int signal : signals) {
    sigaction(signal, &action, nullptr);
  }
}

// The input is copied to an array of exactly its size, so that a sanitizer sees a read past its end. An
// exception that leaves the target ends in SIGABRT, with the exception's text printed by the runtime.
void Run(const Input& input, long secondsPerInput) noexcept {
  const std::vector<std::uint8_t> exact(input);
  currentInput = exact;
  alarm(static_cast<unsigned>(secondsPerInput));
  LLVMFuzzerTestOneInput(exact.data(), exact.size());
  alarm(0);
}

// ---- Mutations ----

class Mutator {
 public:
  Mutator(std::uint64_t seed, std::size_t longest) : random_(seed), longest_(longest) {}

  Input Next(std::span<const Input> seeds) {
    Input input = seeds[Below(seeds.size())];
    const Input& other = seeds[Below(seeds.size())];
    // Mostly a few changes, sometimes many: 1, 2, 4, 8 or 16.
    for (std::size_t left = std::size_t{1} << Below(5); left > 0; --left) {
      (this->*kMutations[Below(kMutations.size())])(input, other);
    }
    input.resize(std::min(input.size(), longest_));
    return input;
  }

 private:
  using Mutation = void (Mutator::*)(Input& input, const Input& other);

  std::size_t Below(std::size_t bound) { return random_() % bound; }
  std::size_t Position(const Input& input) { return Below(input.size() + 1); }  // the end included
  static auto At(Input& input, std::size_t position) {
    return input.begin() + static_cast<std::ptrdiff_t>(position);
  }

  // A piece of `from`, at most a quarter of the longest input, empty only when `from` is.
  Input Piece(const Input& from) {
    if (from.empty()) {
      return {};
    }
    const std::size_t first = Below(from.size());
    const std::size_t length = 1 + Below(std::min(from.size() - first, longest_ / 4 + 1));
    const auto begin = from.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
  }
  void Insert(Input& input, std::span<const std::uint8_t> bytes) {
    input.insert(At(input, Position(input)), bytes.begin(), bytes.end());
  }
  void Overwrite(Input& input, std::span<const std::uint8_t> bytes) {
    const std::size_t first = Position(input);
    input.resize(std::max(input.size(), first + bytes.size()));
    std::ranges::copy(bytes, At(input, first));
  }

  void FlipBit(Input& input, const Input&) {
    if (!input.empty()) {
      input[Below(input.size())] ^= static_cast<std::uint8_t>(1U << Below(8));
    }
  }
  void InsertByte(Input& input, const Input&) {
    input.insert(At(input, Position(input)), static_cast<std::uint8_t>(Below(256)));
  }
  void DeleteChunk(Input& input, const Input&) {
    if (!input.empty()) {
      const std::size_t first = Below(input.size());
      const std::size_t length =
          1 + Below(std::min<std::size_t>(input.size() - first, Below(4) == 0 ? 4096 : 8));
      input.erase(At(input, first), At(input, first + length));
    }
  }
  void RepeatChunk(Input& input, const Input&) { Insert(input, Piece(input)); }
  void CopyChunkOver(Input& input, const Input&) { Overwrite(input, Piece(input)); }
  void InsertFromOther(Input& input, const Input& other) { Insert(input, Piece(other)); }
  void Splice(Input& input, const Input& other) {
    input.resize(Position(input));
    const std::size_t first = Position(other);
    input.insert(input.end(), other.begin() + static_cast<std::ptrdiff_t>(first), other.end());
  }
  void InterestingInteger(Input& input, const Input&) {
    constexpr std::array<std::uint64_t, 12> kValues = {
        0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, INT64_MAX, UINT64_MAX};
    const auto bytes = std::bit_cast<std::array<std::uint8_t, 8>>(kValues[Below(kValues.size())]);
    Overwrite(input, std::span(bytes).first(std::size_t{1} << Below(4)));
  }
  void InterestingText(Input& input, const Input&) {
    constexpr std::array<std::string_view, 24> kTexts = {"0",     "-1",    "-0",
                                                         "1e308", "1e309", "-1e-324",
                                                         "nan",   "inf",   "9223372036854775808",
                                                         "0x1p",  "1e",    "+",
                                                         ".",     "\"\"",  "\"",
                                                         ",",     ";",     "\r\n",
                                                         "\t",    "\xFF",  "\xEF\xBB\xBF",
                                                         "(",     ")",     "999999999"};
    const std::string_view text = kTexts[Below(kTexts.size())];
    const Input bytes(text.begin(), text.end());
    Below(2) == 0 ? Insert(input, bytes) : Overwrite(input, bytes);
  }

  static constexpr std::array<Mutation, 9> kMutations = {
      &Mutator::FlipBit,     &Mutator::InsertByte,         &Mutator::DeleteChunk,
      &Mutator::RepeatChunk, &Mutator::CopyChunkOver,      &Mutator::InsertFromOther,
      &Mutator::Splice,      &Mutator::InterestingInteger, &Mutator::InterestingText};

  std::mt19937_64 random_;
  std::size_t longest_;
};

// ---- The command line ----

template <typename Number>
bool ReadOption(std::string_view argument, std::string_view name, Number& value) {
  if (!argument.starts_with(name)) {
    return false;
  }
  const std::string_view text = argument.substr(name.size());
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

std::optional<Options> ReadOptions(std::span<char*> arguments) {
  Options options;
  for (const std::string_view argument : arguments) {
    const bool known = ReadOption(argument, "-max_total_time=", options.seconds) ||
                       ReadOption(argument, "-seed=", options.seed) ||
                       ReadOption(argument, "-max_len=", options.longestInput) ||
                       ReadOption(argument, "-timeout=", options.secondsPerInput);
    if (!known && argument.starts_with('-')) {
      std::fprintf(stderr, "fuzz: no such option: %s\n", argument.data());
      return std::nullopt;
    }
    if (!known && !std::filesystem::exists(argument)) {
      std::fprintf(stderr, "fuzz: no such file or folder: %s\n", argument.data());
      return std::nullopt;
    }
    if (!known) {
      options.paths.emplace_back(argument);
    }
  }
  return options;
}

Input ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The files that the paths name or hold, in the order of their names.
std::vector<Input> ReadSeeds(std::span<const std::filesystem::path> paths) {
  std::vector<std::filesystem::path> files;
  for (const auto& path : paths) {
    if (!std::filesystem::is_directory(path)) {
      files.push_back(path);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
      if (entry.is_regular_file()) {
        files.push_back(entry.path());
      }
    }
  }
  std::ranges::sort(files);
  std::vector<Input> seeds;
  std::ranges::transform(files, std::back_inserter(seeds), ReadFile);
  return seeds;
}

}  // namespace

int main(int count, char** arguments) {
  using Clock = std::chrono::steady_clock;
  const auto options = ReadOptions(std::span(arguments, static_cast<std::size_t>(count)).subspan(1));
  if (!options) {
    return 2;
  }
  WatchForFaults();
  const auto start = Clock::now();
  std::vector<Input> seeds = ReadSeeds(options->paths);
  for (const Input& seed : seeds) {
    Run(seed, options->secondsPerInput);
  }
  const std::size_t seedFiles = seeds.size();
  std::size_t runs = seedFiles;
  const bool filesOnly =
      !options->paths.empty() && std::ranges::none_of(options->paths, [](const auto& path) {
        return std::filesystem::is_directory(path);
      });
  if (seeds.empty()) {
    seeds.emplace_back();
  }
  std::size_t longest = options->longestInput;
  if (longest == 0) {
    longest = std::max<std::size_t>(4096, 2 * std::ranges::max(seeds, {}, &Input::size).size());
  }
  Mutator mutator(options->seed, longest);
  while (!filesOnly && Clock::now() - start < std::chrono::seconds(options->seconds)) {
    Run(mutator.Next(seeds), options->secondsPerInput);
    ++runs;
  }
  std::printf("fuzz: %zu runs (%zu of them seed files) in %.1f s\n", runs, seedFiles,
              std::chrono::duration<double>(Clock::now() - start).count());
  return 0;
}
