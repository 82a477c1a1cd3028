#include "host/tables/formats/packages_reader.h"

#include <readstat.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <map>
#include <optional>
#include <unordered_map>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/work_watch.h"
#include "host/tables/csv_reader.h"
#include "host/tables/office/workbook_dates.h"

namespace brenvolt {
namespace {

constexpr std::size_t kStep = 1 << 16;
constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

// Bytes in memory as the library reads a file.
struct Input {
  std::string_view bytes;
  std::size_t next = 0;
};

int Open(const char*, void*) {
  return 0;
}
int Close(void*) {
  return 0;
}
readstat_off_t Seek(readstat_off_t offset, readstat_io_flags_t whence, void* context) {
  Input& input = *static_cast<Input*>(context);
  const auto size = static_cast<readstat_off_t>(input.bytes.size());
  const readstat_off_t from = whence == READSTAT_SEEK_SET   ? 0
                              : whence == READSTAT_SEEK_CUR ? static_cast<readstat_off_t>(input.next)
                                                            : size;
  if (offset > size || from + offset < 0 || from + offset > size) return -1;
  input.next = static_cast<std::size_t>(from + offset);
  return from + offset;
}
ssize_t Read(void* buffer, std::size_t count, void* context) {
  Input& input = *static_cast<Input*>(context);
  const std::size_t taken = std::min(count, input.bytes.size() - input.next);
  if (taken == 0 || buffer == nullptr) return 0;  // the library passes no buffer where it took none
  std::memcpy(buffer, input.bytes.data() + input.next, taken);
  input.next += taken;
  return static_cast<ssize_t>(taken);
}
readstat_error_t Update(long, readstat_progress_handler, void*, void*) {
  return READSTAT_OK;
}

std::string TextOf(const char* text) {
  return text != nullptr ? text : "";
}

// How many bytes a file of Stata has for the name of a set of labels. The library finds the release in the same way.
std::size_t LabelSetWidth(std::string_view bytes) {
  constexpr std::string_view kReleaseFollows = "<stata_dta><header><release>";
  unsigned release = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front());
  if (bytes.starts_with(kReleaseFollows)) {
    release = 0;
    for (const char digit : bytes.substr(kReleaseFollows.size(), 3))
      release = release * 10 + static_cast<unsigned>(digit - '0');
    release = static_cast<unsigned char>(release);
  }
  if (release < 110) return 9;
  return release < 118 ? 33 : 129;
}

// The name of a set of labels. In files of Stata it is a field that the library hands over as it stands in the file, where
// nothing need end it.
std::string SetName(const char* field, std::size_t width) {
  return field != nullptr ? std::string(field, strnlen(field, width)) : std::string();
}

// A column as it comes in.
struct Column {
  std::string name;
  std::string label;
  std::string format;
  std::string labelSet;
  bool isText = false;
  std::optional<double> missingCode;
  bool hasMoreCodes = false;
  std::vector<double> values;
  std::unordered_map<std::string, double> codes;
  std::vector<std::string> texts;
};

// Takes what the library finds. The library is of C: nothing may be thrown through it.
class Collector {
 public:
  Collector(std::string_view bytes, Package package, std::string where)
      : most_(bytes.size() * kMostCellsOfByte + kAlways),
        setWidth_(package == Package::kStata ? LabelSetWidth(bytes) : std::string::npos),
        package_(package),
        where_(std::move(where)) {}

  int TakeVariable(readstat_variable_t* variable, const char* labelSet) {
    return Guarded([&] {
      Column column;
      column.name = TextOf(readstat_variable_get_name(variable));
      column.label = TextOf(readstat_variable_get_label(variable));
      column.format = TextOf(readstat_variable_get_format(variable));
      column.labelSet = SetName(labelSet, setWidth_);
      column.isText = readstat_variable_get_type_class(variable) == READSTAT_TYPE_CLASS_STRING;
      TakeCodes(variable, column);
      columns_.push_back(std::move(column));
    });
  }

  int TakeValue(readstat_variable_t* variable, readstat_value_t value) {
    return Guarded([&] {
      if (++cells_ > most_)
        throw Error("the file is damaged: it unpacks to more than a table of its size holds", where_);
      if (cells_ % kStep == 0) steps_.Done();
      Column& column = columns_.at(static_cast<std::size_t>(readstat_variable_get_index(variable)));
      column.values.push_back(column.isText ? CodeOf(column, TextOf(readstat_string_value(value)))
                                            : NumberOf(column, variable, value));
    });
  }

  int TakeLabel(const char* set, readstat_value_t value, const char* label) {
    return Guarded([&] {
      if (readstat_value_type_class(value) != READSTAT_TYPE_CLASS_NUMERIC ||
          readstat_value_is_tagged_missing(value))
        return;
      labels_[SetName(set, setWidth_)][readstat_double_value(value)] = TextOf(label);
    });
  }

  // The sheet. Throws what could not be thrown before.
  Spreadsheet Sheet(const std::string& name) {
    if (columns_.empty()) throw Error("the file has no variables", where_);
    if (columns_.front().values.empty()) throw Error("the file has no cases", where_);
    Spreadsheet sheet(name);
    const std::size_t cases = columns_.front().values.size();
    for (Column& column : columns_) {
      if (column.values.size() != cases)
        throw Error("the file is damaged or cut off: cases lack values", where_);
      sheet.AddVariable(VariableOf(column));
    }
    return sheet;
  }
  void Rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }
  bool HasTimes() const { return hasTimes_; }
  // "x: 8, 9" of each variable whose values of several codes are read as missing.
  std::string SeveralCodes() const {
    std::string names;
    for (const Column& column : columns_) {
      if (column.hasMoreCodes) names += (names.empty() ? "" : ", ") + column.name;
    }
    return names;
  }

 private:
  // Eight values of one byte each are the most that a compressed file packs into a byte of commands.
  static constexpr std::size_t kMostCellsOfByte = 256;
  static constexpr std::size_t kAlways = 1'000'000;

  template <class Take>
  int Guarded(const Take& take) {
    try {
      take();
      return READSTAT_HANDLER_OK;
    } catch (...) {
      failure_ = std::current_exception();
      return READSTAT_HANDLER_ABORT;
    }
  }

  static void TakeCodes(readstat_variable_t* variable, Column& column) {
    const int count = readstat_variable_get_missing_ranges_count(variable);
    if (count == 0 || column.isText) return;
    const double low = readstat_double_value(readstat_variable_get_missing_range_lo(variable, 0));
    const double high = readstat_double_value(readstat_variable_get_missing_range_hi(variable, 0));
    if (count == 1 && low == high) {
      column.missingCode = low;
    } else {
      column.hasMoreCodes = true;
    }
  }

  static double NumberOf(const Column& column, readstat_variable_t* variable, readstat_value_t value) {
    if (readstat_value_is_system_missing(value) || readstat_value_is_tagged_missing(value)) return kMissing;
    if (column.hasMoreCodes && readstat_value_is_defined_missing(value, variable)) return kMissing;
    return readstat_double_value(value);
  }

  double CodeOf(Column& column, std::string text) const {
    if (text.size() > kMostTextBytes) throw Error(column.name + " holds a text of more than 1 MB", where_);
    text.erase(text.find_last_not_of(' ') + 1);
    if (text.empty()) return kMissing;
    const auto [found, isNew] = column.codes.try_emplace(text, static_cast<double>(column.codes.size() + 1));
    if (isNew) column.texts.push_back(std::move(text));
    return found->second;
  }

  // Numbers of a date's format become texts, those of a time's hours.
  void ConvertTimes(Column& column) {
    const auto scale = column.isText ? std::nullopt : TimeScaleOf(package_, column.format);
    if (!scale) return;
    column.format.clear();
    const double missing = column.missingCode.value_or(kMissing);
    column.missingCode.reset();
    column.isText = scale->shown == Shown::kDate;
    hasTimes_ = hasTimes_ || !column.isText;
    for (double& value : column.values) {
      if (value == missing) value = kMissing;
      if (std::isnan(value)) continue;
      const double days = value / scale->unitsOfDay;
      if (!column.isText) {
        value = days * kHoursOfDay;
        continue;
      }
      const bool isDay = IsDay(days + static_cast<double>(scale->origin));
      value = CodeOf(column, isDay ? DateText(days, scale->origin) : ShortestNumber(value));
    }
  }

  Variable VariableOf(Column& column) {
    ConvertTimes(column);
    Variable variable(column.name, 0);
    variable.AssignValues(std::move(column.values));
    if (column.isText) {
      variable.SetType(VariableType::kText);
      double code = 0;
      for (std::string& text : column.texts) variable.SetLabel(++code, std::move(text));
    } else if (const auto set = labels_.find(column.labelSet); set != labels_.end()) {
      for (const auto& [value, label] : set->second) variable.SetLabel(value, label);
    }
    if (column.missingCode) variable.SetMissingCode(*column.missingCode);
    if (!column.label.empty()) variable.SetProperty(kLabelProperty, column.label);
    if (!column.format.empty()) variable.SetProperty(kFormatProperty, column.format);
    return variable;
  }

  std::vector<Column> columns_;
  std::map<std::string, std::map<double, std::string>> labels_;
  std::size_t cells_ = 0;
  WatchedSteps steps_;  // of kStep cells
  std::size_t most_;
  std::size_t setWidth_;
  Package package_;
  bool hasTimes_ = false;
  std::string where_;
  std::exception_ptr failure_;
};

int OnVariable(int, readstat_variable_t* variable, const char* labelSet, void* context) {
  return static_cast<Collector*>(context)->TakeVariable(variable, labelSet);
}
int OnValue(int, readstat_variable_t* variable, readstat_value_t value, void* context) {
  return static_cast<Collector*>(context)->TakeValue(variable, value);
}
int OnLabel(const char* set, readstat_value_t value, const char* label, void* context) {
  return static_cast<Collector*>(context)->TakeLabel(set, value, label);
}

Package PackageOf(FileKind kind) {
  if (kind == FileKind::kSpss) return Package::kSpss;
  return kind == FileKind::kStata ? Package::kStata : Package::kSas;
}

readstat_error_t Parse(readstat_parser_t* parser, FileKind kind, Collector& collector) {
  switch (kind) {
    case FileKind::kSpss:
      return readstat_parse_sav(parser, "", &collector);
    case FileKind::kStata:
      return readstat_parse_dta(parser, "", &collector);
    case FileKind::kSasTransport:
      return readstat_parse_xport(parser, "", &collector);
    default:
      return readstat_parse_sas7bdat(parser, "", &collector);
  }
}

}  // namespace

DataRead ReadPackageFile(std::string_view bytes, FileKind kind, const std::string& name,
                         const std::string& where) {
  const std::unique_ptr<readstat_parser_t, void (*)(readstat_parser_t*)> parser(readstat_parser_init(),
                                                                                readstat_parser_free);
  Input input{bytes};
  Collector collector(bytes, PackageOf(kind), where);
  readstat_set_open_handler(parser.get(), Open);
  readstat_set_close_handler(parser.get(), Close);
  readstat_set_seek_handler(parser.get(), Seek);
  readstat_set_read_handler(parser.get(), Read);
  readstat_set_update_handler(parser.get(), Update);
  readstat_set_io_ctx(parser.get(), &input);
  readstat_set_variable_handler(parser.get(), OnVariable);
  readstat_set_value_handler(parser.get(), OnValue);
  readstat_set_value_label_handler(parser.get(), OnLabel);
  const readstat_error_t result = Parse(parser.get(), kind, collector);
  collector.Rethrow();
  if (result != READSTAT_OK)
    throw Error(std::string("the file is damaged or cut off: ") + readstat_error_message(result), where);
  DataRead read;
  read.sheets.push_back(std::make_unique<Spreadsheet>(collector.Sheet(name)));
  const std::string several = collector.SeveralCodes();
  if (!several.empty())
    read.readAs = "several codes of missing values, all of which are read as missing, in " + several;
  if (collector.HasTimes()) read.readAs += std::string(read.readAs.empty() ? "" : ", ") + "times as hours";
  return read;
}

}  // namespace brenvolt
