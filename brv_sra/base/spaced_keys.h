// The untranslated keys of the distributions with blanks between their words, in the order of the codes.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "host/numeric/distributions/all_distributions.h"

namespace brenvolt::sra {

// The marker that keeps a key out of translation.
inline constexpr std::string_view kDontTranslate = "DontTranslate!!";

constexpr bool IsCapital(char c) {
  return c >= 'A' && c <= 'Z';
}

template <class D>
inline constexpr std::size_t kWordsOfName = static_cast<std::size_t>(std::ranges::count_if(D::kFacts.name,
                                                                                           IsCapital));

// "LogNormal" as "DontTranslate!!Log Normal".
template <class D>
inline constexpr auto kMarkedCharacters = [] {
  constexpr std::string_view kName = D::kFacts.name;
  std::array<char, kDontTranslate.size() + kName.size() + kWordsOfName<D> - 1> characters{};
  auto to = std::ranges::copy(kDontTranslate, characters.begin()).out;
  *to++ = kName.front();
  for (const char c : kName.substr(1)) {
    if (IsCapital(c)) *to++ = ' ';
    *to++ = c;
  }
  return characters;
}();

struct SpacedKeyRow {
  std::string_view marked;
  std::size_t words;

  constexpr std::string_view Plain() const { return marked.substr(kDontTranslate.size()); }
};

template <class... D>
constexpr std::array<SpacedKeyRow, sizeof...(D)> SpacedKeysOf(DistributionList<D...> /*list*/) {
  return {SpacedKeyRow{{kMarkedCharacters<D>.data(), kMarkedCharacters<D>.size()}, kWordsOfName<D>}...};
}
inline constexpr auto kSpacedKeys = SpacedKeysOf(AllDistributions());

}  // namespace brenvolt::sra
