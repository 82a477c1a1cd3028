#include "host/base/result.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace brenvolt {
namespace {

enum class Mistake { kEmpty, kTooLong };

Result<std::unique_ptr<std::string>, Mistake> Copy(const std::string& text) {
  if (text.empty()) return Fault{Mistake::kEmpty};
  return std::make_unique<std::string>(text);
}

Result<void, Mistake> CheckLength(const std::string& text) {
  if (text.size() > 3) return Fault{Mistake::kTooLong, text, "4 characters"};
  return {};
}

TEST(Result, MovesAValueOutThatCannotBeCopied) {
  auto copy = Copy("abc");
  ASSERT_TRUE(copy);
  EXPECT_EQ((*copy)->size(), 3U);
  const std::unique_ptr<std::string> taken = *std::move(copy);
  EXPECT_EQ(*taken, "abc");
}

TEST(Result, AFaultKeepsWhatItIsAbout) {
  const auto checked = CheckLength("long");
  ASSERT_FALSE(checked);
  EXPECT_EQ(checked.Reason(), (Fault{Mistake::kTooLong, "long", "4 characters"}));
  EXPECT_TRUE(CheckLength("abc"));
}

TEST(Result, AskingForAnAbsentValueOrFaultIsRefused) {
  auto none = Copy("");
  ASSERT_FALSE(none);
  EXPECT_THROW((void)*none, std::bad_variant_access);
  EXPECT_THROW((void)CheckLength("abc").Reason(), std::bad_variant_access);
}

}  // namespace
}  // namespace brenvolt
