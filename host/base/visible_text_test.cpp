#include "host/base/visible_text.h"

#include <gtest/gtest.h>

namespace brenvolt {
namespace {

using namespace std::string_view_literals;

TEST(VisibleTextTest, NothingIsLeftThatATerminalObeys) {
  struct Row {
    std::string_view text;
    std::string_view line;
  };
  const Row rows[] = {
      {"Höhe µm 測定 🙂", "Höhe µm 測定 🙂"},
      {"\x1b[2J\x1b]0;x\x07", "\\u001b[2J\\u001b]0;x\\u0007"},
      {"a\nb\tc\r", "a\\u000ab\\u0009c\\u000d"},
      {"\x7f", "\\u007f"},
      {"\xc2\x9b"
       "31m",
       "\\u009b31m"},
      {"\x9b"
       "31m",
       "\\x9b31m"},
      {"a\xe2\x80\xae"
       "fdp.exe",
       "a\\u202efdp.exe"},
      {"\xe2\x81\xa6\xe2\x81\xa9\xe2\x80\x8f\xd8\x9c\xe2\x80\xa8", "\\u2066\\u2069\\u200f\\u061c\\u2028"},
      {"\xe2\x82", "\\xe2\\x82"},
      {"\xed\xa0\x80\xff\xc0\x80", "\\xed\\xa0\\x80\\xff\\xc0\\x80"},
      {"a\0b"sv, "a\\u0000b"},
      {"", ""},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(VisibleLine(row.text), row.line);
    EXPECT_EQ(VisibleLine(row.line), row.line) << "what is visible stays";
  }
  EXPECT_EQ(VisibleText("one\ntwo\x1b\n"), "one\ntwo\\u001b\n");
}

}  // namespace
}  // namespace brenvolt
