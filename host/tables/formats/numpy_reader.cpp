#include "host/tables/formats/numpy_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "host/base/error.h"
#include "host/base/quoted.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {
namespace {

template <class Number>
double Value(const char* bytes, bool swapped) {
  std::array<char, sizeof(Number)> own;
  std::copy_n(bytes, own.size(), own.begin());
  if (swapped) std::ranges::reverse(own);
  return static_cast<double>(std::bit_cast<Number>(own));
}

using Reading = double (*)(const char*, bool);
struct Type {
  std::string_view code;
  std::size_t size;
  Reading read;
};
constexpr Type kTypes[] = {
    {"f8", 8, Value<double>},        {"f4", 4, Value<float>},         {"i1", 1, Value<std::int8_t>},
    {"i2", 2, Value<std::int16_t>},  {"i4", 4, Value<std::int32_t>},  {"i8", 8, Value<std::int64_t>},
    {"u1", 1, Value<std::uint8_t>},  {"u2", 2, Value<std::uint16_t>}, {"u4", 4, Value<std::uint32_t>},
    {"u8", 8, Value<std::uint64_t>}, {"b1", 1, Value<std::uint8_t>}};

// An array as the .npy format lays it out (NEP 1).
class Array {
 public:
  Array(const ZipPart& part, const std::string& where)
      : name_(NameOf(part.name)), where_(where), bytes_(part.content) {
    ReadHeader();
  }

  std::size_t Rows() const { return rows_; }
  void AppendTo(Spreadsheet& sheet) const {
    for (std::size_t column = 0; column < columns_; ++column) {
      Variable variable(columns_ == 1 ? name_ : name_ + "_" + std::to_string(column + 1), 0);
      std::vector<double> values(rows_);
      for (std::size_t row = 0; row < rows_; ++row) {
        const std::size_t place = fortran_ ? column * rows_ + row : row * columns_ + column;
        values[row] = type_->read(bytes_.data() + place * type_->size, swapped_);
      }
      variable.AssignValues(std::move(values));
      sheet.AddVariable(std::move(variable));
    }
  }

 private:
  static std::string NameOf(const std::string& file) {
    return file.substr(0, file.size() - std::string_view(".npy").size());
  }
  [[noreturn]] void Fail(const std::string& what) const {
    throw Error("the array " + name_ + " " + what, where_);
  }

  void ReadHeader() {
    constexpr std::size_t kStart = 8;
    if (bytes_.size() < kStart + 4 || !bytes_.starts_with("\x93NUMPY")) Fail("is not a NumPy array");
    const bool isLong = bytes_[6] > 1;
    std::size_t length = 0;
    for (std::size_t i = 0; i < (isLong ? 4U : 2U); ++i)
      length |= std::size_t{static_cast<std::uint8_t>(bytes_[kStart + i])} << (8 * i);
    const std::size_t begin = kStart + (isLong ? 4 : 2);
    if (bytes_.size() - begin < length) Fail("is cut off");
    const std::string_view header = bytes_.substr(begin, length);
    bytes_.remove_prefix(begin + length);
    ReadType(Entry(header, "'descr':"));
    fortran_ = Entry(header, "'fortran_order':").starts_with("True");
    ReadShape(Entry(header, "'shape':"));
    if (columns_ == 0) Fail("has no values");
    // Any number of columns without rows takes no bytes.
    if (rows_ == 0) throw Error("the file has no cases", where_);
    if (rows_ > bytes_.size() / type_->size / columns_) Fail("is cut off");
  }
  std::string_view Entry(std::string_view header, std::string_view key) const {
    const std::size_t place = header.find(key);
    if (place == std::string_view::npos) Fail("has a damaged header");
    std::string_view entry = header.substr(place + key.size());
    entry.remove_prefix(std::min(entry.find_first_not_of(' '), entry.size()));
    return entry;
  }
  void ReadType(std::string_view entry) {
    const std::size_t end =
        entry.size() > 1 && entry[0] == '\'' ? entry.find('\'', 1) : std::string_view::npos;
    const std::string_view code =
        end == std::string_view::npos ? std::string_view() : entry.substr(1, end - 1);
    type_ = code.size() < 2 ? std::end(kTypes) : std::ranges::find(kTypes, code.substr(1), &Type::code);
    if (type_ == std::end(kTypes))
      Fail("holds values of type " + std::string(code.empty() ? entry.substr(0, 20) : code) +
           ", not numbers");
    swapped_ = code[0] == '>';
  }
  void ReadShape(std::string_view entry) {
    std::vector<std::size_t> shape;
    const char* next = entry.data() + (entry.starts_with('(') ? 1 : 0);
    const char* const end = entry.data() + entry.size();
    while (next != end && *next != ')') {
      std::size_t length = 0;
      const auto [stop, fault] = std::from_chars(next, end, length);
      if (fault != std::errc()) Fail("has a damaged header");
      shape.push_back(length);
      next = std::find_if_not(stop, end, [](char c) { return c == ',' || c == ' '; });
    }
    if (shape.size() != 1 && shape.size() != 2)
      Fail("has " + std::to_string(shape.size()) + " axes; a table is of arrays with one or two");
    rows_ = shape[0];
    columns_ = shape.size() == 2 ? shape[1] : 1;
  }

  std::string name_;
  const std::string& where_;
  std::string_view bytes_;
  const Type* type_ = nullptr;
  bool swapped_ = false;
  bool fortran_ = false;
  std::size_t rows_ = 0;
  std::size_t columns_ = 1;
};

}  // namespace

DataRead ReadNumpyFile(std::string_view bytes, const std::string& name, const std::string& where) {
  return ReadNumpyArrays(UnpackedParts(bytes, where), name, where);
}

DataRead ReadNumpyArrays(const std::vector<ZipPart>& parts, const std::string& name,
                         const std::string& where) {
  auto sheet = std::make_unique<Spreadsheet>(name);
  std::size_t rows = 0;
  for (const ZipPart& part : parts) {
    const Array array(part, where);
    if (sheet->VariableCount() > 0 && array.Rows() != rows) {
      throw Error("the arrays are of different lengths: " + std::to_string(rows) + " and, of " + part.name +
                      ", " + std::to_string(array.Rows()),
                  where);
    }
    rows = array.Rows();
    array.AppendTo(*sheet);
  }
  if (rows == 0) throw Error("the file has no cases", where);
  DataRead read;
  read.sheets.push_back(std::move(sheet));
  return read;
}

}  // namespace brenvolt
