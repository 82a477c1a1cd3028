#include "host/base/process/out_of_memory.h"

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>

#include "host/base/process/temporary_name.h"

namespace brenvolt {
namespace {

constexpr std::string_view kMessage = "brenvolt: not enough memory\n";

int endStatus = 0;
std::terminate_handler formerHandler = nullptr;

[[noreturn]] void End() {
  SayNoMemoryIsLeft();
  RemoveTemporaryNames();
  _exit(endStatus);
}

// Where there is no exception, there may have been no memory for one.
bool IsAnythingLeft() {
  constexpr std::size_t kRoomOfAnException = 1024;
  void* const block = std::malloc(kRoomOfAnException);
  std::free(block);
  return block != nullptr;
}

[[noreturn]] void OnTerminate() {
  try {
    if (const std::exception_ptr error = std::current_exception()) {
      std::rethrow_exception(error);
    } else if (!IsAnythingLeft()) {
      End();
    }
  } catch (const std::bad_alloc&) {
    End();
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
