#include "host/models/transformations/text_pool.h"

namespace brenvolt::pmml {

std::optional<double> TextPool::Find(std::string_view text) const {
  const auto found = numbers_.find(text);
  return found == numbers_.end() ? std::nullopt : std::optional(static_cast<double>(found->second));
}

double TextPool::Number(std::string_view text) {
  // The base belongs to a finished model and changes no more.
  if (base_ != nullptr) {
    if (const auto known = base_->Find(text)) return *known;
  }
  const std::lock_guard lock(guard_);
  if (const auto known = Find(text)) return *known;
  const std::size_t number = first_ + texts_.size();
  numbers_.emplace(texts_.emplace_back(text), number);
  return static_cast<double>(number);
}

std::string_view TextPool::Text(double number) const {
  const auto index = static_cast<std::size_t>(number);
  if (index < first_) return base_->texts_[index];
  const std::lock_guard lock(guard_);
  return texts_[index - first_];
}

}  // namespace brenvolt::pmml
