#include "host/base/process/interruption.h"

#include <signal.h>

namespace brenvolt {
namespace {

volatile sig_atomic_t requested = 0;
struct sigaction former {};

extern "C" void NoteInterruption(int /*signal*/) {
  requested = 1;
}

}  // namespace

InterruptionCatcher::InterruptionCatcher() {
  sigaction(SIGINT, nullptr, &former);
  // A process told to ignore interruptions, as one in the background is, continues to ignore them.
  if (former.sa_handler == SIG_IGN) return;
  struct sigaction action {};
  action.sa_handler = NoteInterruption;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(SIGINT, &action, nullptr);
}

InterruptionCatcher::~InterruptionCatcher() {
  sigaction(SIGINT, &former, nullptr);
}

bool InterruptionRequested() {
  return requested != 0;
}

}  // namespace brenvolt
