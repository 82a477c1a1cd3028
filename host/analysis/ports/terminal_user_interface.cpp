#include "host/analysis/ports/terminal_user_interface.h"

#include <atomic>
#include <cstdio>
#include <utility>

#include "host/base/process/interruption.h"
#include "host/base/process/terminal.h"
#include "host/base/visible_text.h"

namespace brenvolt {

namespace {

std::atomic<bool> hasSpoken = false;

}  // namespace

bool TerminalUserInterface::HasSpoken() {
  return hasSpoken;
}

TerminalUserInterface::TerminalUserInterface(std::string program)
    : program_(std::move(program)), terminal_(IsStandardErrorTerminal()) {}

MessageAnswer TerminalUserInterface::ShowMessage(const Message& message) {
  EndProgress();
  if (!Answers(message)) return ProgramInterface::ShowMessage(message);
  const std::string where = message.where.empty() ? std::string() : " (" + message.where + ")";
  // A question that the caller answered beforehand is not left standing as if somebody had to.
  const char* const answer = message.buttons == MessageButtons::kOk ? "" : " Yes.";
  std::string line = VisibleLine(program_ + ": " + message.text + answer + where) + "\n";
  // Runs in batches say the same of each.
  if (line != lastLine_) std::fputs(line.c_str(), stderr);
  hasSpoken = true;
  lastLine_ = std::move(line);
  return ProgramInterface::ShowMessage(message);
}

void TerminalUserInterface::ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) {
  if (!terminal_ || done == 0) return;
  const int percent =
      total > 0 ? static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(total)) : 0;
  std::fprintf(stderr, "\r%.*s %d %%", static_cast<int>(caption.size()), caption.data(), percent);
  lineOpen_ = true;
}

void TerminalUserInterface::EndProgress() {
  if (lineOpen_) std::fputs("\r\033[K", stderr);
  lineOpen_ = false;
}

bool TerminalUserInterface::IsExternallyCancelled() {
  return InterruptionRequested();
}

}  // namespace brenvolt
