#include "host/base/nearest_name.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <vector>

namespace brenvolt {
namespace {

bool SameLetter(char a, char b) {
  return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

// The optimal string alignment distance.
std::size_t Distance(std::string_view a, std::string_view b) {
  const std::size_t width = b.size() + 1;
  std::vector<std::size_t> cost((a.size() + 1) * width);
  const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& { return cost[i * width + j]; };
  for (std::size_t i = 0; i <= a.size(); ++i) at(i, 0) = i;
  for (std::size_t j = 0; j <= b.size(); ++j) at(0, j) = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = at(i - 1, j - 1) + (SameLetter(a[i - 1], b[j - 1]) ? 0 : 1);
      at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, changed});
      const bool swapped = i > 1 && j > 1 && SameLetter(a[i - 1], b[j - 2]) && SameLetter(a[i - 2], b[j - 1]);
      if (swapped) at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
    }
  }
  return at(a.size(), b.size());
}

}  // namespace

std::string NearestName(std::string_view written, std::span<const std::string> names) {
  constexpr std::size_t kLongest = 64;  // of a word that somebody mistyped
  if (written.empty() || written.size() > kLongest) return {};
  std::string nearest;
  // One letter for another is no slip: with a single letter wrong, nothing is left to know the name by.
  std::size_t least = std::min((std::max<std::size_t>(written.size(), 3) + 2) / 3 + 1, written.size());
  for (const std::string& name : names) {
    const std::size_t distance = Distance(written, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

std::string NearestNameHint(std::string_view written, std::span<const std::string> names) {
  const std::string nearest = NearestName(written, names);
  return nearest.empty() ? nearest : "; did you mean " + nearest + "?";
}

}  // namespace brenvolt
