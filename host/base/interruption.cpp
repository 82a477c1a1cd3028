#include "host/base/interruption.h"

#include <signal.h>

namespace brenvolt {
namespace {

volatile sig_atomic_t requested = 0;

extern "C" void NoteInterruption(int /*signal*/) {
  requested = 1;
}

}  // namespace

void CatchInterruptions() {
  struct sigaction action {};
  action.sa_handler = NoteInterruption;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

bool InterruptionRequested() {
  return requested != 0;
}

}  // namespace brenvolt
