// The names under which macros know the distributions: a prefix before the macro name, in the order of the codes.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "host/numeric/distributions/all_distributions.h"

namespace brenvolt::sra {

template <const std::string_view& Prefix, class D>
inline constexpr auto kConstantCharacters = [] {
  constexpr std::string_view kName = D::kFacts.macroName;
  std::array<char, Prefix.size() + kName.size()> characters{};
  std::ranges::copy(kName, std::ranges::copy(Prefix, characters.begin()).out);
  return characters;
}();

template <const std::string_view& Prefix, class... D>
constexpr std::array<std::string_view, sizeof...(D)> ConstantsOf(DistributionList<D...> /*list*/) {
  return {std::string_view(kConstantCharacters<Prefix, D>.data(), kConstantCharacters<Prefix, D>.size())...};
}

inline constexpr std::string_view kKeyPrefix = "sc";
// The internal keys. The normal distribution's does not follow the pattern.
inline constexpr auto kDistributionKeys = [] {
  auto keys = ConstantsOf<kKeyPrefix>(AllDistributions());
  keys.front() = "scNormalDistr";
  return keys;
}();

}  // namespace brenvolt::sra
