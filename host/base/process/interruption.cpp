#include "host/base/process/interruption.h"

#include <signal.h>

#include <array>
#include <cstddef>

#include "host/base/process/temporary_name.h"

namespace brenvolt {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};

volatile sig_atomic_t requested = 0;
std::array<struct sigaction, kSignals.size()> former{};

void Act(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigaction(signal, &action, nullptr);
}

extern "C" void EndProcess(int signal) {
  RemoveTemporaryNames();
  Act(signal, SIG_DFL);
  raise(signal);
}

extern "C" void NoteInterruption(int signal) {
  requested = 1;
  Act(signal, EndProcess);
}

}  // namespace

InterruptionCatcher::InterruptionCatcher() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    sigaction(kSignals[i], nullptr, &former[i]);
    if (former[i].sa_handler == SIG_IGN) continue;
    Act(kSignals[i], kSignals[i] == SIGINT    ? NoteInterruption
                     : kSignals[i] == SIGXFSZ ? SIG_IGN
                                              : EndProcess);
  }
}

InterruptionCatcher::~InterruptionCatcher() {
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    // Files that libraries have left open grow once more when the process ends.
    if (kSignals[i] != SIGXFSZ) sigaction(kSignals[i], &former[i], nullptr);
  }
}

bool InterruptionRequested() {
  return requested != 0;
}

}  // namespace brenvolt
