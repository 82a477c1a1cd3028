#include "host/models/document/arrays.h"

#include <gtest/gtest.h>

namespace brenvolt::pmml {
namespace {

TEST(Arrays, TextsInQuotesStayWhole) {
  EXPECT_EQ(SplitArray(R"( a "b c" "d \"e\"" 1.5 "")"),
            (std::vector<std::string>{"a", "b c", "d \"e\"", "1.5", ""}));
}

}  // namespace
}  // namespace brenvolt::pmml
