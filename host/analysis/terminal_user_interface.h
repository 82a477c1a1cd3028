// The user interface of the command line: messages and progress on standard error, documents kept for the
// command that asked for them. Questions are answered without asking: a command has said all it wants.
#pragma once

#include <chrono>
#include <string>

#include "host/analysis/headless_user_interface.h"

namespace brenvolt {

class TerminalUserInterface : public HeadlessUserInterface {
 public:
  // `program` begins every message: "brenvolt: <text>".
  explicit TerminalUserInterface(std::string program);

  MessageAnswer ShowMessage(const Message& message) override;
  // Shows progress when standard error is a terminal and the work is longer than a second.
  void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) override;
  void EndProgress() override;
  // True once the person pressed Ctrl-C while a job that polls was running.
  bool IsExternallyCancelled() override;

 private:
  std::string program_;
  bool terminal_;
  bool lineOpen_ = false;
};

}  // namespace brenvolt
