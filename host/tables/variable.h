// One variable of a spreadsheet: a contiguous column of doubles with what is known about it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/base/almost_equal.h"

namespace brenvolt {

// The missing-data code of a new variable. NaN is missing under every code; this one makes it the only one.
inline double GetDefaultMDValue() {
  return std::numeric_limits<double>::quiet_NaN();
}

enum class VariableType : std::uint8_t {
  kNumeric,
  kText  // each value is the code of a text label: 1, 2, … in the order in which the texts were first met
};

class Variable {
 public:
  // A column of `cases` zeros.
  Variable(std::string name, std::size_t cases);
  // A copy has values of its own.
  Variable(const Variable& other);
  Variable& operator=(const Variable& other);
  Variable(Variable&&) = default;
  Variable& operator=(Variable&&) = default;
  ~Variable() = default;

  const std::string& Name() const { return name_; }
  void SetName(std::string name) { name_ = std::move(name); }
  // What programs know a column of a result table by, in whatever language its name is; empty in other
  // tables. It is not saved.
  const std::string& Identifier() const { return identifier_; }
  void SetIdentifier(std::string_view identifier) { identifier_ = identifier; }

  VariableType Type() const { return type_; }
  void SetType(VariableType type) { type_ = type; }

  double MissingCode() const { return missingCode_; }
  void SetMissingCode(double code) { missingCode_ = code; }

  std::size_t Size() const { return values_->size(); }
  std::span<const double> Values() const { return *values_; }
  // The values for one who may look at them longer than the variable, or its sheet, lives. Single values that
  // change later change there too; if all are reassigned, or their number changes, what was shared
  // stays as it was.
  std::shared_ptr<const std::vector<double>> SharedValues() const { return values_; }
  // For writing; marks the content as changed, even if nothing is written.
  std::span<double> MutableValues();
  void AssignValues(std::vector<double> values);
  void Resize(std::size_t cases, double fill);
  bool IsMissing(std::size_t index) const { return IsMissingValue((*values_)[index], missingCode_); }

  // Identifies the content of the column within this process: two columns with equal stamps hold equal
  // values. A copy keeps the stamp, every change takes a new one.
  std::uint64_t ContentStamp() const { return stamp_; }

  // Text labels: the text shown for a value, in ascending order of values.
  const std::map<double, std::string>& Labels() const { return labels_; }
  void SetLabel(double value, std::string text) { labels_[value] = std::move(text); }
  std::optional<std::string_view> Label(double value) const;

  // Named text properties, in the order in which they were first set.
  const std::vector<std::pair<std::string, std::string>>& Properties() const { return properties_; }
  std::optional<std::string> Property(std::string_view key) const;
  void SetProperty(std::string_view key, std::string value);
  bool RemoveProperty(std::string_view key);

 private:
  std::string name_;
  std::string identifier_;
  VariableType type_ = VariableType::kNumeric;
  double missingCode_ = GetDefaultMDValue();
  std::shared_ptr<std::vector<double>> values_;  // never null but in a variable moved from
  std::uint64_t stamp_;
  std::map<double, std::string> labels_;
  std::vector<std::pair<std::string, std::string>> properties_;
};

}  // namespace brenvolt
