// Text from files where a terminal would obey it.
#pragma once

#include <string>
#include <string_view>

namespace brenvolt {

// The text with all that a terminal acts upon, or that changes the order in which it is read, made visible: control
// characters of ASCII and of Unicode (C0, DEL, C1) and bidirectional marks, embeddings, overrides and isolates as \u001b,
// bytes that are no UTF-8 as \x9b. Line breaks stay: for reports of several lines. In JSON, whose texts mean the same with
// \u001b, nothing changes.
std::string VisibleText(std::string_view text);
// The same with line breaks and tabs made visible as well: for names and messages, which are one line.
std::string VisibleLine(std::string_view text);

}  // namespace brenvolt
