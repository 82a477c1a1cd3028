#include "apps/cli/print.h"

#include <cstdio>

#include "host/base/process/terminal.h"
#include "host/base/visible_text.h"

namespace brenvolt::cli {
namespace {

void Write(std::string_view text, std::FILE* stream) {
  // What fails is found when the program ends.
  [[maybe_unused]] const std::size_t written = std::fwrite(text.data(), 1, text.size(), stream);
}

}  // namespace

void Print(std::string_view report) {
  Write(VisibleText(report), stdout);
}

void PrintMessage(std::string_view line) {
  Write(VisibleLine(line) + "\n", stderr);
}

void PrintData(std::string_view data) {
  StandardOutputWidth() ? Write(VisibleText(data), stdout) : Write(data, stdout);
}

}  // namespace brenvolt::cli
