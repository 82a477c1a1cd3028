#include "brv_sra/resources/strings.h"

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>
#include <span>

#include "brv_sra/base/spaced_keys.h"
#include "brv_sra/resources/column_headings.h"
#include "brv_sra/resources/distribution_names_texts.h"
#include "brv_sra/resources/fit_texts.h"
#include "brv_sra/resources/known_texts.h"
#include "brv_sra/resources/profiler_texts.h"
#include "brv_sra/resources/simulation_texts.h"

namespace brenvolt::sra {
namespace {

using Texts = std::span<const StringResource>;

// The keys of more than one word under the numbers that translators know, up to the text that follows them.
constexpr auto kSpacedKeyTexts = [] {
  constexpr auto kCount = std::ranges::count_if(
      kSpacedKeys, [](std::size_t n) { return n > 1; }, &SpacedKeyRow::words);
  std::array<StringResource, static_cast<std::size_t>(kCount)> texts{};
  std::size_t place = 0;
  for (const SpacedKeyRow& key : kSpacedKeys) {
    if (key.words == 1) continue;
    texts[place] = {kFirstSpacedKey + static_cast<std::int32_t>(place), key.marked};
    ++place;
  }
  return texts;
}();

constexpr Texts kTexts[] = {kKnownTexts, kSpacedKeyTexts,  kDistributionTexts, kColumnHeadings,
                            kFitTexts,   kSimulationTexts, kProfilerTexts};

// The look-up halves each table: out of order it would miss texts.
constexpr bool IsAscending(Texts texts) {
  return std::ranges::adjacent_find(texts, std::ranges::greater_equal(), &StringResource::number) ==
         texts.end();
}
static_assert(std::ranges::all_of(kTexts, IsAscending));

// A number used twice would hide a text.
constexpr bool ShareANumber(Texts first, Texts second) {
  while (!first.empty() && !second.empty()) {
    if (first.front().number == second.front().number) return true;
    Texts& lower = first.front().number < second.front().number ? first : second;
    lower = lower.subspan(1);
  }
  return false;
}
constexpr bool DoAnyShareANumber() {
  for (std::size_t i = 0; i < std::size(kTexts); ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      if (ShareANumber(kTexts[i], kTexts[j])) return true;
    }
  }
  return false;
}
static_assert(!DoAnyShareANumber());

bool IsConversion(std::string_view text) {
  return text.starts_with("%s") || text.starts_with("%d") || text.starts_with("%i");
}

// The text with its conversions replaced by the arguments in order. Conversions left over stay as they are.
std::string Fill(std::string_view text, std::initializer_list<std::string_view> arguments) {
  std::string filled;
  const auto* argument = arguments.begin();
  while (!text.empty()) {
    if (argument != arguments.end() && IsConversion(text)) {
      filled += *argument++;
      text.remove_prefix(2);
    } else {
      filled += text.front();
      text.remove_prefix(1);
    }
  }
  return filled;
}

}  // namespace

std::string_view ResourceString(std::int32_t number) {
  for (const Texts texts : kTexts) {
    const auto found = std::ranges::lower_bound(texts, number, {}, &StringResource::number);
    if (found != texts.end() && found->number == number) return found->text;
  }
  return {};
}

std::string FormatResource(std::int32_t number, std::string_view argument) {
  return Fill(ResourceString(number), {argument});
}

std::string FormatResource(std::int32_t number, std::string_view first, std::string_view second) {
  return Fill(ResourceString(number), {first, second});
}

std::string FormatResource(std::int32_t number, std::string_view first, int second) {
  return Fill(ResourceString(number), {first, std::to_string(second)});
}

}  // namespace brenvolt::sra
