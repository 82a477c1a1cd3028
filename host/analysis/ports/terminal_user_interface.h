// The user interface of the command line: messages and progress on standard error.
#pragma once

#include <string>

#include "host/analysis/ports/program_interface.h"

namespace brenvolt {

class TerminalUserInterface : public ProgramInterface {
 public:
  // `program` begins every message: "brenvolt: <text>".
  explicit TerminalUserInterface(std::string program);

  // Prints the text, unless it is that of the message before.
  MessageAnswer ShowMessage(const Message& message) override;
  // Shows progress when standard error is a terminal and the work is longer than a second.
  void ShowProgress(std::string_view caption, std::int64_t done, std::int64_t total) override;
  void EndProgress() override;
  // True once the user pressed Ctrl-C while a job that polls was running.
  bool IsExternallyCancelled() override;

  // Whether any message was shown in this process.
  static bool HasSpoken();

 private:
  std::string program_;
  bool terminal_;
  bool lineOpen_ = false;
  std::string lastLine_;  // of the messages
};

}  // namespace brenvolt
