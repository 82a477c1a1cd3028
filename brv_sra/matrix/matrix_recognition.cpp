#include "brv_sra/matrix/matrix_recognition.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/almost_equal.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

constexpr double kCorrelationType = 1.0;
// The cases behind the matrix, in order.
constexpr std::array kSummaryCases{kMatrixRowMeans, kMatrixRowStandardDeviations, kMatrixRowCases,
                                   kMatrixRowType};

std::string_view KeyOf(std::string_view caseName) {
  return StripDontTranslate(Trim(caseName));
}

}  // namespace

bool IsMatrixFile(const Spreadsheet& sheet) {
  const std::size_t size = sheet.VariableCount();
  if (size == 0 || sheet.CaseCount() != size + kSummaryCases.size() || !sheet.HasCaseNames()) return false;
  for (std::size_t i = 0; i < size; ++i) {
    if (Trim(sheet.CaseName(i)) != Trim(sheet.VariableAt(i).Name())) return false;
  }
  for (std::size_t i = 0; i < kSummaryCases.size(); ++i) {
    if (KeyOf(sheet.CaseName(size + i)) != StripDontTranslate(ResourceString(kSummaryCases[i]))) return false;
  }
  return AlmostEqual(sheet.VariableAt(0).Values().back(), kCorrelationType);
}

}  // namespace brenvolt::sra
