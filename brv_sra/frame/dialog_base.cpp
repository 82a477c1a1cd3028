#include "brv_sra/frame/dialog_base.h"

#include <new>

#include "brv_sra/resources/resource_numbers.h"
#include "host/base/error.h"

namespace brenvolt::sra {

bool CSimulationAndRiskModelessDialog::Attempt(const std::function<void()>& action) const {
  try {
    action();
    return true;
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
  } catch (const UserCancelled&) {
    // Ends the operation without a message.
  }
  return false;
}

}  // namespace brenvolt::sra
