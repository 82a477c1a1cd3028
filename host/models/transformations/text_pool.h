// Numbered texts. A pool of a scoring run stands on the one of its model and adds the texts of the data and
// of text functions; texts of the model keep their numbers.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace brenvolt::pmml {

class TextPool {
 public:
  explicit TextPool(const TextPool* base = nullptr)
      : base_(base), first_(base == nullptr ? 0 : base->texts_.size()) {}

  // The number of a text, new if it was not met before. Threads may call these at the same time.
  double Number(std::string_view text);
  std::string_view Text(double number) const;

 private:
  std::optional<double> Find(std::string_view text) const;

  const TextPool* base_;
  std::size_t first_;
  mutable std::mutex guard_;
  std::deque<std::string> texts_;
  std::unordered_map<std::string_view, std::size_t> numbers_;
};

}  // namespace brenvolt::pmml
