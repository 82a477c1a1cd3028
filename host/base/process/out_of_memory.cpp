#include "host/base/process/out_of_memory.h"

#include <unistd.h>

#include <exception>
#include <new>
#include <string_view>

#include "host/base/process/temporary_name.h"

namespace brenvolt {
namespace {

constexpr std::string_view kMessage = "brenvolt: not enough memory\n";

int endStatus = 0;
std::terminate_handler formerHandler = nullptr;

[[noreturn]] void OnTerminate() {
  try {
    if (const std::exception_ptr error = std::current_exception()) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    SayNoMemoryIsLeft();
    RemoveTemporaryNames();
    _exit(endStatus);
  } catch (...) {
    // Any other error takes its usual course.
  }
  formerHandler();
  _exit(endStatus);
}

}  // namespace

void SayNoMemoryIsLeft() noexcept {
  // There is nothing left to do where it cannot be written.
  [[maybe_unused]] const auto written = write(STDERR_FILENO, kMessage.data(), kMessage.size());
}

void EndWhereNoMemoryIsLeft(int status) {
  endStatus = status;
  formerHandler = std::set_terminate(OnTerminate);
}

}  // namespace brenvolt
