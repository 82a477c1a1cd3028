#include <readstat.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <optional>
#include <set>

#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/packages_reader.h"

namespace brenvolt {
namespace {

// What the two packages take.
struct Limits {
  std::size_t nameBytes;
  std::size_t textBytes;
  std::size_t labelBytes;
  bool takesInfinity;
};
constexpr Limits kSpssLimits{64, 32767, 255, true};
constexpr Limits kStataLimits{32, 2045, 80, false};

// Writes a sheet through the library, which is of C: what fails in the callback is thrown afterwards.
class PackageWriter {
 public:
  PackageWriter(const Spreadsheet& sheet, const std::filesystem::path& path, bool isSpss)
      : sheet_(sheet),
        where_(path.string()),
        isSpss_(isSpss),
        limits_(isSpss ? kSpssLimits : kStataLimits),
        file_(path),
        writer_(readstat_writer_init(), readstat_writer_free) {}

  void Write() {
    readstat_set_data_writer(writer_.get(), Take);
    for (std::size_t v = 0; v < sheet_.VariableCount(); ++v) AddVariable(sheet_.VariableAt(v));
    if (!isSpss_) Check(readstat_writer_set_file_format_version(writer_.get(), kStataRelease));
    const auto rows = static_cast<long>(sheet_.CaseCount());
    Check(isSpss_ ? readstat_begin_writing_sav(writer_.get(), this, rows)
                  : readstat_begin_writing_dta(writer_.get(), this, rows));
    for (std::size_t i = 0; i < sheet_.CaseCount(); ++i) {
      Check(readstat_begin_row(writer_.get()));
      for (std::size_t v = 0; v < sheet_.VariableCount(); ++v) Insert(variables_[v], sheet_.VariableAt(v), i);
      Check(readstat_end_row(writer_.get()));
    }
    Check(readstat_end_writing(writer_.get()));
    file_.Commit();
  }

 private:
  static constexpr std::uint8_t kStataRelease = 118;

  static ssize_t Take(const void* bytes, std::size_t size, void* context) {
    PackageWriter& self = *static_cast<PackageWriter*>(context);
    try {
      self.file_.Write({static_cast<const char*>(bytes), size});
      return static_cast<ssize_t>(size);
    } catch (...) {
      self.failure_ = std::current_exception();
      return -1;
    }
  }
  void Check(readstat_error_t result) const {
    if (failure_) std::rethrow_exception(failure_);
    if (result != READSTAT_OK)
      throw Error(std::string("the file cannot be written: ") + readstat_error_message(result), where_);
  }

  // A name that both packages take: letters, digits and underscores of ASCII, no two alike but for their case.
  std::string NameOf(const std::string& wanted) {
    std::string base;
    for (const char c : wanted) {
      const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
      const bool digit = c >= '0' && c <= '9';
      if (base.empty() && !letter) base += 'v';
      base += letter || digit ? c : '_';
    }
    if (base.empty()) base = "v";
    base.resize(std::min(base.size(), limits_.nameBytes));
    std::string name = base;
    const auto isNew = [this](std::string text) {
      std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      });
      return names_.insert(text).second;
    };
    for (int number = 2; !isNew(name); ++number) {
      const std::string tail = "_" + std::to_string(number);
      name = base.substr(0, limits_.nameBytes - tail.size()) + tail;
    }
    return name;
  }

  std::size_t LongestText(const Variable& variable) const {
    std::size_t longest = 1;
    for (const auto& [value, label] : variable.Labels()) longest = std::max(longest, label.size());
    if (longest > limits_.textBytes) {
      throw Error(variable.Name() + " holds a text of " + std::to_string(longest) +
                      " bytes; the file takes " + std::to_string(limits_.textBytes),
                  where_);
    }
    return longest;
  }

  void AddVariable(const Variable& variable) {
    const bool isText = variable.Type() == VariableType::kText;
    const std::string name = NameOf(variable.Name());
    readstat_variable_t* added = readstat_add_variable(writer_.get(), name.c_str(),
                                                       isText ? READSTAT_TYPE_STRING : READSTAT_TYPE_DOUBLE,
                                                       isText ? LongestText(variable) : 0);
    std::string label =
        variable.Property(kLabelProperty).value_or(name == variable.Name() ? "" : variable.Name());
    if (label.size() > limits_.labelBytes) label.clear();
    if (!label.empty()) readstat_variable_set_label(added, label.c_str());
    if (!isText && !variable.Labels().empty()) AddLabels(variable, name, added);
    if (isSpss_ && !isText && std::isfinite(variable.MissingCode()))
      Check(readstat_variable_add_missing_double_value(added, variable.MissingCode()));
    variables_.push_back(added);
  }

  // Stata labels whole numbers alone.
  void AddLabels(const Variable& variable, const std::string& name, readstat_variable_t* added) {
    readstat_label_set_t* set = readstat_add_label_set(
        writer_.get(), isSpss_ ? READSTAT_TYPE_DOUBLE : READSTAT_TYPE_INT32, name.c_str());
    for (const auto& [value, label] : variable.Labels()) {
      const bool isWhole = value == std::floor(value) && std::abs(value) < 2e9;
      if (isSpss_) {
        readstat_label_double_value(set, value, label.c_str());
      } else if (isWhole) {
        readstat_label_int32_value(set, static_cast<std::int32_t>(value), label.c_str());
      }
    }
    readstat_variable_set_label_set(added, set);
  }

  void Insert(const readstat_variable_t* added, const Variable& variable, std::size_t index) {
    const double value = variable.Values()[index];
    const bool isText = variable.Type() == VariableType::kText;
    const bool keepsCode = isSpss_ && !isText && !std::isnan(value);
    if (variable.IsMissing(index) && !keepsCode) {
      Check(isText ? readstat_insert_string_value(writer_.get(), added, "")
                   : readstat_insert_missing_value(writer_.get(), added));
    } else if (isText) {
      const std::string text(variable.Label(value).value_or(""));
      Check(readstat_insert_string_value(writer_.get(), added, text.c_str()));
    } else if (std::isinf(value) && !limits_.takesInfinity) {
      throw Error(variable.Name() + " is infinite in case " + std::to_string(index + 1) +
                      ", which the file cannot hold",
                  where_);
    } else {
      Check(readstat_insert_double_value(writer_.get(), added, value));
    }
  }

  const Spreadsheet& sheet_;
  std::string where_;
  bool isSpss_;
  Limits limits_;
  OutputFile file_;
  std::exception_ptr failure_;
  std::set<std::string> names_;
  std::vector<readstat_variable_t*> variables_;
  std::unique_ptr<readstat_writer_t, void (*)(readstat_writer_t*)> writer_;
};

}  // namespace

void WritePackageFile(const Spreadsheet& sheet, const std::filesystem::path& path) {
  const std::string ending = path.extension().string();
  PackageWriter(sheet, path, ending == ".sav" || ending == ".SAV").Write();
}

}  // namespace brenvolt
