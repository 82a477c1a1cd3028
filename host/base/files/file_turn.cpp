#include "host/base/files/file_turn.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "host/base/error.h"
#include "host/base/files/file_lock.h"
#include "host/base/files/file_replacement.h"
#include "host/base/process/interruption.h"
#include "host/base/process/temporary_name.h"

namespace brenvolt {
namespace {

constexpr double kFirstPause = 0.001;
constexpr double kLongestPause = 0.05;
constexpr double kSilentWait = 1;
constexpr mode_t kLockMode = 0666;
constexpr std::size_t kLongestKeptName = 200;  // of the 255 bytes of a file name

// The patience of the process is set by front ends and read by whoever saves.
std::mutex patienceAccess;
TurnPatience patience;

// The turns that this thread has: the open lock file, or -1 where there is none, and how often it was taken.
struct Held {
  int descriptor;
  int count;
  std::unique_ptr<TemporaryName> removedAtSignals;
};
std::map<std::filesystem::path, Held>& HeldTurns() {
  thread_local std::map<std::filesystem::path, Held> turns;
  return turns;
}

// A file beside the target whose lock is the turn. Its name says that it is one program's: it is there only
// while somebody has the turn, or was killed having it.
std::filesystem::path LockFileOf(const std::filesystem::path& target) {
  std::filesystem::path name = target;
  name.replace_filename("." + target.filename().string().substr(0, kLongestKeptName) + ".lock");
  return name;
}

// Whether the open file is still the one of that name: who has the turn removes it at the end.
bool IsNamed(int descriptor, const std::filesystem::path& name) {
  struct stat opened {};
  struct stat named {};
  return fstat(descriptor, &opened) == 0 && lstat(name.c_str(), &named) == 0 &&
         opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
}

// The locked file, -1 where none can be made, nothing while another has it.
std::optional<int> TryLock(const std::filesystem::path& name) {
  for (;;) {
    const int descriptor =
        open(name.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, kLockMode);
    if (descriptor < 0) return -1;
    if (!LockOpenFile(descriptor)) {
      close(descriptor);
      return std::nullopt;
    }
    if (IsNamed(descriptor, name)) return descriptor;
    close(descriptor);
  }
}

}  // namespace

void SetTurnPatience(TurnPatience given) {
  const std::scoped_lock access(patienceAccess);
  patience = std::move(given);
}

TurnPatience CurrentTurnPatience() {
  const std::scoped_lock access(patienceAccess);
  return patience;
}

TurnWait::TurnWait(std::string file) : file_(std::move(file)), patience_(CurrentTurnPatience()) {
  Begin();
}

void TurnWait::Begin() noexcept {
  waited_ = 0;
  pause_ = kFirstPause;
}

bool TurnWait::Pause() noexcept {
  if (InterruptionRequested() || waited_ >= patience_.seconds) return false;
  if (waited_ >= kSilentWait && !told_ && patience_.tell) {
    told_ = true;
    try {
      patience_.tell(file_);
    } catch (const std::exception&) {
      // Waiting goes on without the word.
    }
  }
  std::this_thread::sleep_for(std::chrono::duration<double>(pause_));
  waited_ += pause_;
  pause_ = std::min(2 * pause_, kLongestPause);
  return true;
}

FileTurn::FileTurn(const std::filesystem::path& path) : file_(FollowLinks(path)) {
  auto& turns = HeldTurns();
  if (const auto held = turns.find(file_); held != turns.end()) {
    ++held->second.count;
    return;
  }
  const std::filesystem::path name = LockFileOf(file_);
  TurnWait wait(path.string());
  std::optional<int> descriptor = TryLock(name);
  while (!descriptor) {
    if (!wait.Pause()) {
      if (InterruptionRequested()) throw UserCancelled();
      throw Error("the project cannot be written: it is in use by another program", path.string());
    }
    descriptor = TryLock(name);
  }
  turns.emplace(file_,
                Held{*descriptor, 1, *descriptor < 0 ? nullptr : std::make_unique<TemporaryName>(name)});
}

FileTurn::~FileTurn() {
  auto& turns = HeldTurns();
  const auto held = turns.find(file_);
  if (--held->second.count > 0) return;
  const int descriptor = held->second.descriptor;
  if (descriptor >= 0) unlink(LockFileOf(file_).c_str());
  turns.erase(held);
  if (descriptor >= 0) close(descriptor);
}

}  // namespace brenvolt
