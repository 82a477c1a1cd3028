// Preloaded into a program, fails or ends it where the environment says: BRENVOLT_FAULT is "WHAT:HOW:N" with
//   WHAT  memory  the N-th block of memory that is asked for
//         files   the N-th call that changes a file or its name
//   HOW   once    it alone fails: no memory, no space left on the device
//         always  it and all that follow
//         kill    the process is killed there
//         count   nothing fails; the number of such calls stands in the file BRENVOLT_FAULT_COUNT at the end
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

enum class What { kNothing, kMemory, kFiles };
enum class How { kOnce, kAlways, kKill, kCount };

struct Plan {
  What what = What::kNothing;
  How how = How::kCount;
  long number = 0;
};

// Read without taking memory, as the first call may come before anything else of the program.
Plan ReadPlan() {
  const char* const text = getenv("BRENVOLT_FAULT");
  if (text == nullptr) return {};
  Plan plan;
  plan.what = strncmp(text, "memory:", 7) == 0 ? What::kMemory : What::kFiles;
  const char* const how = strchr(text, ':') + 1;
  plan.how = *how == 'o' ? How::kOnce : *how == 'a' ? How::kAlways : *how == 'k' ? How::kKill : How::kCount;
  plan.number = atol(strchr(how, ':') + 1);
  return plan;
}

const Plan& ThePlan() {
  static const Plan plan = ReadPlan();
  return plan;
}

std::atomic<long> calls = 0;

bool Fails(What what) {
  const Plan& plan = ThePlan();
  if (plan.what != what) return false;
  const long call = ++calls;
  if (plan.how == How::kCount || call < plan.number) return false;
  if (plan.how == How::kKill) kill(getpid(), SIGKILL);
  return plan.how == How::kAlways || call == plan.number;
}

bool FileFails() {
  if (!Fails(What::kFiles)) return false;
  errno = ENOSPC;
  return true;
}

bool MemoryFails() {
  if (!Fails(What::kMemory)) return false;
  errno = ENOMEM;
  return true;
}

template <class Function>
Function* Original(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

__attribute__((destructor)) void TellCount() {
  const char* const file = getenv("BRENVOLT_FAULT_COUNT");
  if (file == nullptr || ThePlan().how != How::kCount) return;
  char text[32];
  const int length = snprintf(text, sizeof text, "%ld\n", calls.load());
  const int opened = open(file, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  static const auto original = Original<ssize_t(int, const void*, size_t)>("write");
  if (original(opened, text, static_cast<size_t>(length)) != length) abort();
  close(opened);
}

}  // namespace

extern "C" {

void* malloc(std::size_t bytes) {
  return MemoryFails() ? nullptr : __libc_malloc(bytes);
}
void* calloc(std::size_t count, std::size_t bytes) {
  return MemoryFails() ? nullptr : __libc_calloc(count, bytes);
}
void* realloc(void* block, std::size_t bytes) {
  return MemoryFails() ? nullptr : __libc_realloc(block, bytes);
}
void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
  return MemoryFails() ? nullptr : __libc_memalign(alignment, bytes);
}
int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
  if (MemoryFails()) return ENOMEM;
  *block = __libc_memalign(alignment, bytes);
  return *block == nullptr ? ENOMEM : 0;
}

ssize_t write(int file, const void* bytes, std::size_t count) {
  static const auto original = Original<ssize_t(int, const void*, std::size_t)>("write");
  // What is said on standard error tells how the program took it.
  return file != STDERR_FILENO && FileFails() ? -1 : original(file, bytes, count);
}
ssize_t writev(int file, const iovec* parts, int count) {
  static const auto original = Original<ssize_t(int, const iovec*, int)>("writev");
  return file != STDERR_FILENO && FileFails() ? -1 : original(file, parts, count);
}
ssize_t pwrite64(int file, const void* bytes, std::size_t count, off64_t offset) {
  static const auto original = Original<ssize_t(int, const void*, std::size_t, off64_t)>("pwrite64");
  return FileFails() ? -1 : original(file, bytes, count, offset);
}
int fsync(int file) {
  static const auto original = Original<int(int)>("fsync");
  return FileFails() ? -1 : original(file);
}
int fdatasync(int file) {
  static const auto original = Original<int(int)>("fdatasync");
  return FileFails() ? -1 : original(file);
}
int ftruncate64(int file, off64_t size) {
  static const auto original = Original<int(int, off64_t)>("ftruncate64");
  return FileFails() ? -1 : original(file, size);
}
int rename(const char* from, const char* to) {
  static const auto original = Original<int(const char*, const char*)>("rename");
  return FileFails() ? -1 : original(from, to);
}
int mkdir(const char* name, mode_t mode) {
  static const auto original = Original<int(const char*, mode_t)>("mkdir");
  return FileFails() ? -1 : original(name, mode);
}

}  // extern "C"
