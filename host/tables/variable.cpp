#include "host/tables/variable.h"

#include <algorithm>
#include <atomic>

namespace brenvolt {
namespace {

std::uint64_t NextStamp() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace

Variable::Variable(std::string name, std::size_t cases)
    : name_(std::move(name)),
      values_(std::make_shared<std::vector<double>>(cases, 0.0)),
      stamp_(NextStamp()) {}

Variable::Variable(const Variable& other)
    : name_(other.name_),
      identifier_(other.identifier_),
      type_(other.type_),
      missingCode_(other.missingCode_),
      values_(std::make_shared<std::vector<double>>(*other.values_)),
      stamp_(other.stamp_),
      labels_(other.labels_),
      properties_(other.properties_) {}

Variable& Variable::operator=(const Variable& other) {
  if (this != &other) *this = Variable(other);
  return *this;
}

std::span<double> Variable::MutableValues() {
  stamp_ = NextStamp();
  return *values_;
}

void Variable::AssignValues(std::vector<double> values) {
  values_ = std::make_shared<std::vector<double>>(std::move(values));
  stamp_ = NextStamp();
}

// Values that somebody shares stay where they are.
void Variable::Resize(std::size_t cases, double fill) {
  if (values_.use_count() > 1) values_ = std::make_shared<std::vector<double>>(*values_);
  values_->resize(cases, fill);
  stamp_ = NextStamp();
}

std::optional<std::string_view> Variable::Label(double value) const {
  const auto found = labels_.find(value);
  if (found == labels_.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> Variable::Property(std::string_view key) const {
  const auto found = std::ranges::find(properties_, key, &std::pair<std::string, std::string>::first);
  if (found == properties_.end()) return std::nullopt;
  return found->second;
}

void Variable::SetProperty(std::string_view key, std::string value) {
  const auto found = std::ranges::find(properties_, key, &std::pair<std::string, std::string>::first);
  if (found == properties_.end()) {
    properties_.emplace_back(key, std::move(value));
  } else {
    found->second = std::move(value);
  }
}

bool Variable::RemoveProperty(std::string_view key) {
  return std::erase_if(properties_, [&](const auto& property) { return property.first == key; }) > 0;
}

}  // namespace brenvolt
