#include "host/base/files/mapped_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <utility>

#include "host/base/error.h"

namespace brenvolt {
namespace {

constexpr std::size_t kFirstRead = std::size_t{1} << 16;

[[noreturn]] void Fail(const std::filesystem::path& path) {
  throw Error(std::string("the file cannot be read: ") + std::strerror(errno), path.string());
}

// Where mappings are, for the handler of the signal that touching a page beyond the end of a file raises.
struct Guard {
  std::atomic<bool> taken = false;
  std::atomic<std::uintptr_t> begin = 0;
  std::atomic<std::uintptr_t> end = 0;  // 0: nothing is mapped
};
constexpr std::size_t kGuards = 64;
constexpr std::size_t kNoGuard = kGuards;
std::array<Guard, kGuards> guards;
struct sigaction formerAction {};
std::atomic_flag passedOn;

// Puts zeros in the place of the pages from the given one on, so that reading goes on. True if they are a file's.
bool PutZeros(std::uintptr_t address) {
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  for (const Guard& guard : guards) {
    const std::uintptr_t end = guard.end;
    if (address < guard.begin || address >= end) continue;
    const std::uintptr_t start = address / page * page;
    // The address is that of a mapping.
    return mmap(reinterpret_cast<void*>(start), end - start, PROT_READ,
                MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0) != MAP_FAILED;
  }
  return false;
}

extern "C" void OnBusError(int signal, siginfo_t* record, void* context) {
  const int number = errno;
  const bool isMended = PutZeros(reinterpret_cast<std::uintptr_t>(record->si_addr));
  errno = number;
  if (isMended) return;
  // Another's error. It takes its former course, once: that course may lead here again.
  const bool hasHandler = formerAction.sa_handler != SIG_DFL && formerAction.sa_handler != SIG_IGN;
  if (!passedOn.test_and_set() && hasHandler) {
    if ((formerAction.sa_flags & static_cast<int>(SA_SIGINFO)) != 0) {
      formerAction.sa_sigaction(signal, record, context);
    } else {
      formerAction.sa_handler(signal);
    }
    return;
  }
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  sigaction(signal, &usual, nullptr);
  raise(signal);
}

// Handlers that others installed since are asked after this one.
void CatchBusErrors() {
  struct sigaction present {};
  sigaction(SIGBUS, nullptr, &present);
  if ((present.sa_flags & static_cast<int>(SA_SIGINFO)) != 0 && present.sa_sigaction == OnBusError) return;
  formerAction = present;
  struct sigaction action {};
  action.sa_sigaction = OnBusError;
  action.sa_flags = static_cast<int>(SA_SIGINFO | SA_ONSTACK | SA_NODEFER);
  sigaction(SIGBUS, &action, nullptr);
}

std::size_t TakeGuard() {
  for (std::size_t i = 0; i < kGuards; ++i) {
    if (!guards[i].taken.exchange(true)) return i;
  }
  return kNoGuard;
}

class Descriptor {
 public:
  explicit Descriptor(const std::filesystem::path& path)
      : number_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Number() const { return number_; }
  int Release() { return std::exchange(number_, -1); }

 private:
  int number_;
};

std::string ReadToEnd(int descriptor, const std::filesystem::path& path) {
  std::string content;
  std::size_t size = 0;
  for (;;) {
    if (size == content.size()) content.resize(std::max(kFirstRead, 2 * size));
    const ssize_t got = read(descriptor, content.data() + size, content.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) Fail(path);
    if (got == 0) break;
    size += static_cast<std::size_t>(got);
  }
  content.resize(size);
  return content;
}

}  // namespace

MappedFile::MappedFile(const std::filesystem::path& path) : path_(path), guard_(kNoGuard) {
  Descriptor file(path);
  struct stat status {};
  if (file.Number() < 0 || fstat(file.Number(), &status) != 0) Fail(path);
  if (S_ISDIR(status.st_mode)) throw Error("a folder stands in place of the file", path.string());
  if (S_ISREG(status.st_mode) && status.st_size > 0) guard_ = TakeGuard();
  if (guard_ != kNoGuard) {
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const mapping = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.Number(), 0);
    if (mapping != MAP_FAILED) {
      mapping_ = mapping;
      mappedSize_ = size;
      descriptor_ = file.Release();
      guards[guard_].begin = reinterpret_cast<std::uintptr_t>(mapping);
      guards[guard_].end = reinterpret_cast<std::uintptr_t>(mapping) + size;
      CatchBusErrors();
      return;
    }
    guards[guard_].taken = false;
    guard_ = kNoGuard;
  }
  // Also files of /proc, which are regular and claim to be empty, and file systems without mapping.
  content_ = ReadToEnd(file.Number(), path);
}

MappedFile::~MappedFile() {
  if (mapping_ == nullptr) return;
  guards[guard_].end = 0;
  guards[guard_].taken = false;
  munmap(mapping_, mappedSize_);
  close(descriptor_);
}

// Also where the end of the last page alone is gone, which reads as zeros without a signal.
void MappedFile::RequireWhole() const {
  struct stat status {};
  if (mapping_ == nullptr || fstat(descriptor_, &status) != 0) return;
  if (static_cast<std::size_t>(status.st_size) >= mappedSize_) return;
  throw Error("another program shortened the file while it was read; try again", path_.string());
}

}  // namespace brenvolt
