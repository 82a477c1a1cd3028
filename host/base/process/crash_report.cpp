#include "host/base/process/crash_report.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "host/base/error.h"
#include "host/base/logging.h"
#include "host/base/process/dynamic_library.h"
#include "host/base/process/environment.h"

namespace brenvolt {
namespace {

constexpr std::int32_t kStackTraceDepth = 9999;
constexpr std::array kFatalSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

using StackTrace = void(std::int32_t depth);
using GenerateSilentErrorReport = std::int32_t(const char* folder, const void* record, const char* context);

std::vector<std::filesystem::path> DataFolders() {
  if (const std::string data = EnvironmentText("BRENVOLT_DATA"); !data.empty()) return {data};
  std::vector<std::filesystem::path> folders{"/var/lib"};
  if (const std::string data = EnvironmentText("XDG_DATA_HOME"); !data.empty()) {
    folders.emplace_back(data);
  } else if (const std::string home = EnvironmentText("HOME"); !home.empty()) {
    folders.push_back(std::filesystem::path(home) / ".local/share");
  }
  return folders;
}

struct Installed {
  CrashReporter reporter;
  std::array<struct sigaction, kFatalSignals.size()> former{};
  std::atomic_flag reporting;

  explicit Installed(const std::filesystem::path& library) : reporter(library) {}
};

// Lives until the process ends: errors may come while it is ending.
Installed* installed = nullptr;

// A second error, of this thread or another, while the first is reported is not reported.
void OnFatalSignal(int signal, siginfo_t* record, void* /*context*/) {
  if (!installed->reporting.test_and_set()) {
    std::array<char, 32> context{};
    std::snprintf(context.data(), context.size(), "signal %d", signal);
    installed->reporter.Report(record, context.data());
  }
  for (std::size_t i = 0; i < kFatalSignals.size(); ++i) {
    if (kFatalSignals[i] == signal) sigaction(signal, &installed->former[i], nullptr);
  }
  raise(signal);
}

}  // namespace

bool MakeFolders(const std::filesystem::path& folder) {
  std::filesystem::path path;
  for (const std::filesystem::path& name : folder) {
    path /= name;
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) continue;
    if (!std::filesystem::create_directory(path, error)) return false;
  }
  return true;
}

std::optional<std::filesystem::path> ErrorFolder() {
  for (const std::filesystem::path& data : DataFolders()) {
    std::filesystem::path folder = data / "Brenvolt" / "Errors";
    if (MakeFolders(folder) && access(folder.c_str(), W_OK) == 0) return folder;
  }
  return std::nullopt;
}

CrashReporter::CrashReporter(const std::filesystem::path& library) {
  try {
    // An absolute path takes the place of the folder. A name alone the loader would also look for in folders that
    // others may write to.
    const auto folder = LibraryFileOf(reinterpret_cast<const void*>(&InstallCrashReports)).parent_path();
    library_ = std::make_unique<DynamicLibrary>(folder / library);
  } catch (const Error&) {
    library_ = nullptr;
  }
}

CrashReporter::~CrashReporter() = default;

bool CrashReporter::Report(const void* record, const char* context) const {
  if (library_ == nullptr) return false;
  if (auto* trace = library_->FindSymbol<StackTrace>("StackTrace")) trace(kStackTraceDepth);
  auto* report = library_->FindSymbol<GenerateSilentErrorReport>("GenerateSilentErrorReport");
  if (report == nullptr) return false;
  const auto folder = ErrorFolder();
  if (!folder || report(folder->c_str(), record, context) == 0) return false;
  LogLine("Process dump was generated in [" + folder->string() + "]");
  return true;
}

bool InstallCrashReports(const std::filesystem::path& library) {
  if (installed != nullptr) return true;
  auto made = std::make_unique<Installed>(library);
  if (!made->reporter.IsAvailable()) return false;
  installed = made.release();
  struct sigaction action {};
  action.sa_sigaction = OnFatalSignal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < kFatalSignals.size(); ++i) {
    sigaction(kFatalSignals[i], &action, &installed->former[i]);
  }
  return true;
}

}  // namespace brenvolt
