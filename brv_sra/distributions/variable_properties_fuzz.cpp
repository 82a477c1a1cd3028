// Feeds the reader of variable properties any texts. Each line "key:value" of the input sets one property of
// variable 1; a first byte ',' reads and writes with a decimal comma. The reader must refuse the texts with a
// CDispatchException or return valid specifications, and what the writer makes of those must read back as the
// same, rounded as written.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/sheet_property_store.h"
#include "brv_sra/distributions/validity.h"
#include "brv_sra/distributions/variable_properties.h"
#include "host/base/number_text.h"

namespace {

using namespace brenvolt;
using namespace brenvolt::sra;

void Require(bool condition) {
  if (!condition) std::abort();
}

void SetProperties(std::string_view text, VariablePropertyStore& store) {
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const auto colon = line.find(':');
    if (colon != std::string_view::npos)
      store.Set(1, line.substr(0, colon), std::string(line.substr(colon + 1)));
  }
}

// What the formats keep of a variable's distributions.
VariableDistributions Rounded(VariableDistributions distributions) {
  for (DistributionSpecification& specification : distributions.ranked) {
    const bool hasOffset = !IsNotSet(specification.offset);
    specification = StoredForm(specification);
    if (!hasOffset) specification.offset = kNotSet;
  }
  return distributions;
}

// Rounding can carry a value at the edge of a rule over it: then the fit cannot be stored.
bool IsStorable(const VariableDistributions& rounded) {
  const Truncation& truncation = rounded.truncation;
  if (truncation.below && IsNotSet(truncation.minimum)) return false;
  if (truncation.above && IsNotSet(truncation.maximum)) return false;
  return std::ranges::none_of(rounded.ranked, [](const auto& specification) {
    return CheckSpecification(specification).has_value();
  });
}

bool Same(const DistributionSpecification& a, const DistributionSpecification& b) {
  return a.code == b.code && a.values == b.values && a.offset == b.offset &&
         a.truncationMinimum == b.truncationMinimum && a.truncationMaximum == b.truncationMaximum &&
         a.truncateBelow == b.truncateBelow && a.truncateAbove == b.truncateAbove;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  SetUserNumberLocale({text.starts_with(',') ? ',' : '.'});
  if (text.starts_with(',')) text.remove_prefix(1);

  const int variable = 1;
  Spreadsheet sheet("Data", 0, 1);
  SheetPropertyStore store(sheet, SpacedKey);
  SetProperties(text, store);
  auto result = ReadDistributionProperties(store, std::span(&variable, 1));
  if (!result) return 0;
  const VariableDistributions read = result->front();
  Require(!read.ranked.empty());
  for (const DistributionSpecification& specification : read.ranked)
    Require(!CheckSpecification(specification));

  const VariableDistributions expected = Rounded(read);
  if (!IsStorable(expected)) return 0;
  Spreadsheet copy("Copy", 0, 1);
  SheetPropertyStore copyStore(copy, SpacedKey);
  WriteDistributionProperties(&copyStore, read);
  const auto again = ReadDistributionProperties(copyStore, std::span(&variable, 1))->front();
  Require(std::ranges::equal(again.ranked, expected.ranked, Same));
  return 0;
}
