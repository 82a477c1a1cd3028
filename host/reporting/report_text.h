// Text of data in files of other languages, whose marks it may hold.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

// Well-formed text: what is none, and control characters, become U+FFFD; line breaks and tabs become blanks.
std::string CleanLine(std::string_view text);

// A line in HTML, between tags or quotation marks.
std::string HtmlText(std::string_view text);
// The same with line breaks kept, as they are shown between <pre> tags.
std::string HtmlLines(std::string_view text);

// A line in Markdown (CommonMark and tables), wherever it stands.
std::string MarkdownText(std::string_view text);
// Lines in Markdown that are shown as they stand.
std::string MarkdownCode(std::string_view text);

}  // namespace brenvolt
