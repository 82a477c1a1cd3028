// Text of data within the marks of other languages.
#include "host/reporting/report_text.h"

#include <gtest/gtest.h>

namespace brenvolt {
namespace {

TEST(ReportText, NothingOfTheDataIsAMarkOfHtml) {
  EXPECT_EQ(HtmlText("<b a=\"1\">&amp;"), "&lt;b a=&quot;1&quot;&gt;&amp;amp;");
  EXPECT_EQ(HtmlText("a\nb\tc"), "a b c");
  EXPECT_EQ(HtmlLines("a\nb\tc"), "a\nb c");
}

TEST(ReportText, WhatIsNoTextIsReplaced) {
  EXPECT_EQ(HtmlText(std::string("a\0b", 3)),
            "a\xEF\xBF\xBD"
            "b");
  EXPECT_EQ(HtmlText("a\x01\xFF"
                     "b\xC3\xA9"),
            "a\xEF\xBF\xBD\xEF\xBF\xBD"
            "b\xC3\xA9");
  EXPECT_EQ(MarkdownText("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(ReportText, NothingOfTheDataIsAMarkOfMarkdown) {
  const struct {
    const char* text;
    const char* escaped;
  } kRows[] = {{"a_b*c", "a\\_b\\*c"},
               {"[x](y)|z", "\\[x\\](y)\\|z"},
               {"- 1.5", "\\- 1.5"},
               {"1. first", "1\\. first"},
               {"# no heading", "\\# no heading"},
               {"General (-0.5, 2)", "General (-0.5, 2)"},
               {"<br>&", "&lt;br&gt;&amp;"},
               {"a\\b`c`", "a\\\\b\\`c\\`"},
               {"$x$ ~~y~~", "\\$x\\$ \\~\\~y\\~\\~"}};
  for (const auto& row : kRows) EXPECT_EQ(MarkdownText(row.text), row.escaped);
}

TEST(ReportText, AFenceIsLongerThanAnyInTheCode) {
  EXPECT_EQ(MarkdownCode("a b"), "```\na b\n```\n");
  EXPECT_EQ(MarkdownCode("x ````\ny"), "`````\nx ````\ny\n`````\n");
}

}  // namespace
}  // namespace brenvolt
