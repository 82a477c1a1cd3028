#include "host/base/number_text.h"

#include <gtest/gtest.h>
#include <locale.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>

namespace brenvolt {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kLeast = std::numeric_limits<double>::denorm_min();
const NumberLocale kComma{','};

TEST(ShortestNumber, ReadsBackAsTheSameBits) {
  std::mt19937_64 engine(1);
  for (int i = 0; i < 100'000; ++i) {
    const auto bits = engine();
    const auto x = std::bit_cast<double>(bits);
    if (!std::isfinite(x)) continue;
    const auto back = ParseNumber(ShortestNumber(x));
    ASSERT_TRUE(back) << ShortestNumber(x);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), bits) << ShortestNumber(x);
  }
}

TEST(ShortestNumber, IsWhatAPersonWouldWrite) {
  const struct {
    double x;
    const char* text;
  } rows[] = {
      {0.1, "0.1"},
      {0, "0"},
      {-0.0, "-0"},
      {100000, "100000"},
      {-2e6, "-2000000"},
      {999999999999999, "999999999999999"},
      {1e15, "1e+15"},
      {1e300, "1e+300"},
      {-kMax, "-1.7976931348623157e+308"},
      {kLeast, "5e-324"},
      {kInf, "inf"},
      {-kInf, "-inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
      {-std::numeric_limits<double>::quiet_NaN(), "nan"},
      {1.0 / 3, "0.3333333333333333"},
      {123456.5, "123456.5"},
  };
  for (const auto& row : rows) EXPECT_EQ(ShortestNumber(row.x), row.text);
}

TEST(ParseNumber, TakesWholeTextsOnly) {
  const struct {
    std::string text;
    std::optional<double> point;
    std::optional<double> comma;
  } rows[] = {
      {"1.5", 1.5, {}},
      {"1,5", {}, 1.5},
      {"1,5,2", {}, {}},
      {"1.5,2", {}, {}},
      {"-.5", -0.5, {}},
      {"-,5", {}, -0.5},
      {"5.", 5, {}},
      {"12", 12, 12},
      {"+7", 7, 7},
      {"1e3", 1000, 1000},
      {"1E-3", 0.001, 0.001},
      {"", {}, {}},
      {"+", {}, {}},
      {"-", {}, {}},
      {".", {}, {}},
      {",", {}, {}},
      {"+-1", {}, {}},
      {"-+1", {}, {}},
      {"++1", {}, {}},
      {"--1", {}, {}},
      {" 1", {}, {}},
      {"1 ", {}, {}},
      {"1x", {}, {}},
      {"1e", {}, {}},
      {"1e+", {}, {}},
      {"0x10", {}, {}},
      {"nan", {}, {}},
      {"inf", {}, {}},
      {"-inf", {}, {}},
      {"e5", {}, {}},
      {std::string("1\0", 2), {}, {}},
      {"1" + std::string(100, '0') + "e-100", 1, 1},
      {"1" + std::string(100, '0') + ",0e-100", {}, 1},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ParseNumber(row.text), row.point) << row.text;
    EXPECT_EQ(ParseNumber(row.text, kComma), row.comma) << row.text;
  }
}

TEST(ParseNumber, RefusesTooLargeAndRoundsTooSmallToZero) {
  const struct {
    std::string text;
    std::optional<double> value;
  } rows[] = {
      {"1.7976931348623157e308", kMax},
      {"1.7976931348623158e308", kMax},
      {"1.7976931348623159e308", {}},
      {"1e400", {}},
      {"-1e400", {}},
      {"1e+99999999999999999999", {}},
      {"0.0000000001e400", {}},  // too large in spite of how it begins
      {"0.1e99999999999999999999", {}},
      {"1" + std::string(400, '0'), {}},
      {"4.9406564584124654e-324", kLeast},
      {"2e-324", 0},
      {"-2e-324", -0.0},
      {"1e-400", 0},
      {"123456789e-400", 0},
      {"1e-99999999999999999999", 0},
      {"0." + std::string(400, '0') + "1", 0},
      {"0." + std::string(400, '0') + "1e401", 1},
      {"0e99999", 0},
      {"-0e99999", -0.0},
  };
  for (const auto& row : rows) {
    const auto value = ParseNumber(row.text);
    ASSERT_EQ(value, row.value) << row.text;
    EXPECT_EQ(std::signbit(value.value_or(0)), std::signbit(row.value.value_or(0))) << row.text;
  }
}

TEST(ReadNumber, TellsTooLargeFromNoNumber) {
  double value = 42;
  EXPECT_EQ(ReadNumber("1e400", {}, value), NumberReading::kTooLarge);
  EXPECT_EQ(ReadNumber("1,5e400", kComma, value), NumberReading::kTooLarge);
  EXPECT_EQ(ReadNumber("1e400x", {}, value), NumberReading::kNoNumber);
  EXPECT_EQ(value, 42);
}

TEST(ParseInteger, KeepsToItsRange) {
  const struct {
    std::string text;
    std::optional<int> value;
  } rows[] = {
      {"2147483647", 2147483647},
      {"-2147483648", -2147483647 - 1},
      {"2147483648", {}},
      {"-2147483649", {}},
      {"+3", 3},
      {"+-3", {}},
      {"", {}},
      {"+", {}},
      {"3.0", {}},
      {" 3", {}},
      {"3e2", {}},
      {"007", 7},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseInteger(row.text), row.value) << row.text;
}

TEST(ParseTextBuffer, ReplacesTheDecimalPointByTheUsersSeparator) {
  SetUserNumberLocale(kComma);
  EXPECT_EQ(ParseTextBuffer("-1.234567890123e+00"), "-1,234567890123e+00");
  EXPECT_EQ(ParseTextBuffer("15"), "15");
  SetUserNumberLocale({});
  EXPECT_EQ(ParseTextBuffer("1.5"), "1.5");
}

TEST(FormatNumber, FollowsItsFormatAtAnyLength) {
  EXPECT_EQ(FormatNumber("%.12e", 1.234567890123), "1.234567890123e+00");
  EXPECT_EQ(FormatNumber("%.4f", -1e300).size(), 307u);
}

TEST(Trim, TakesBlanksAndTabsOnly) {
  EXPECT_EQ(Trim(" \ta b\t "), "a b");
  EXPECT_EQ(TrimLeft(" \ta b\t "), "a b\t ");
  EXPECT_EQ(Trim("\n x"), "\n x");
  EXPECT_EQ(Trim(" \t "), "");
  EXPECT_EQ(Trim(""), "");
}

}  // namespace
}  // namespace brenvolt
