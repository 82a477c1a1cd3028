#include "host/base/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace brenvolt {
namespace {

TEST(FindNonText, KeepsToTheTableOfWellFormedSequences) {
  const struct {
    std::string bytes;
    bool isText;
  } rows[] = {
      {"a", true},
      {"\x7F", true},
      {std::string(1, '\0'), false},
      {"\x80", false},
      {"\xC1\xBF", false},  // overlong
      {"\xC2\x80", true},
      {"\xC2", false},
      {"\xC2\x20", false},
      {"\xE0\x9F\xBF", false},  // overlong
      {"\xE0\xA0\x80", true},
      {"\xED\x9F\xBF", true},
      {"\xED\xA0\x80", false},  // surrogate
      {"\xEF\xBF\xBF", true},
      {"\xEF\xBF", false},
      {"\xF0\x8F\xBF\xBF", false},  // overlong
      {"\xF0\x90\x80\x80", true},
      {"\xF4\x8F\xBF\xBF", true},
      {"\xF4\x90\x80\x80", false},  // beyond the last character
      {"\xF5\x80\x80\x80", false},
      {"\xFF", false},
  };
  for (const auto& row : rows) {
    // At every place relative to the stretches of plain characters that are skipped at once.
    for (std::size_t before = 0; before < 130; ++before) {
      const std::string bytes = std::string(before, 'x') + row.bytes + std::string(70, 'y');
      ASSERT_EQ(FindNonText(bytes), row.isText ? std::string::npos : before)
          << testing::PrintToString(row.bytes);
      const std::string cut = std::string(before, 'x') + row.bytes;
      ASSERT_EQ(FindNonText(cut), row.isText ? std::string::npos : before)
          << testing::PrintToString(row.bytes);
    }
  }
}

}  // namespace
}  // namespace brenvolt
