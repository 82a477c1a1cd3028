#include "brv_sra/module/fitted_distribution_list.h"

#include <new>

#include "brv_sra/fitting/dialogs/fit_results_dialog.h"
#include "host/base/error.h"

namespace {

constexpr std::int64_t kSuccess = 0;
constexpr std::int64_t kNoFitResults = 2;

// The fit results dialog behind an automation object, or null.
brenvolt::sra::CFitDistributionResults* DialogBehind(const brenvolt::Variant& variant) {
  const auto object = variant.ToObject();
  if (object == nullptr) return nullptr;
  auto* pointer = static_cast<brenvolt::DialogPointer*>(object->QueryInterface(brenvolt::kDialogPointer));
  if (pointer == nullptr) return nullptr;
  return dynamic_cast<brenvolt::sra::CFitDistributionResults*>(pointer->PointedDialog());
}

}  // namespace

// The exported contract passes the object by value.  NOLINTNEXTLINE(performance-unnecessary-value-param)
std::int64_t GetFittedDistributionList(brenvolt::Variant dialog, brenvolt::Variant* result,
                                       std::int32_t variable) {
  const auto* results = DialogBehind(dialog);
  if (results == nullptr || result == nullptr) return kNoFitResults;
  try {
    const auto names = results->FittedDistributions(variable);
    if (!names) return kNoFitResults;
    *result = brenvolt::Variant(brenvolt::Variant::Array(names->begin(), names->end()));
    return kSuccess;
  } catch (const std::bad_alloc&) {
    throw brenvolt::CDispatchException("E_OUTOFMEMORY");
  }
}
