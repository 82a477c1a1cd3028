#include "host/base/interruption.h"

#include <signal.h>

namespace brenvolt {
namespace {

volatile sig_atomic_t requested = 0;

extern "C" void NoteInterruption(int /*signal*/) {
  requested = 1;
}

}  // namespace

InterruptionCatcher::InterruptionCatcher() {
  struct sigaction action {};
  action.sa_handler = NoteInterruption;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

InterruptionCatcher::~InterruptionCatcher() {
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigaction(SIGINT, &action, nullptr);
}

bool InterruptionRequested() {
  return requested != 0;
}

}  // namespace brenvolt
