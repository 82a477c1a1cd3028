#include "host/reporting/report_text.h"

#include <algorithm>
#include <cstddef>

#include "host/base/utf8.h"

namespace brenvolt {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool IsControl(char c) {
  constexpr char kDelete = 0x7F;
  return static_cast<unsigned char>(c) < ' ' || c == kDelete;
}

// The same text in well-formed UTF-8; `control` writes each control character.
template <class Control>
std::string Clean(std::string_view text, const Control& control) {
  std::string clean;
  while (!text.empty()) {
    const std::size_t end = std::min(FindNonText(text), text.size());
    for (const char c : text.substr(0, end)) clean += IsControl(c) ? control(c) : std::string(1, c);
    if (end == text.size()) break;
    clean += kReplacement;
    text.remove_prefix(end + 1);
  }
  return clean;
}

bool IsBlankControl(char c) {
  return c == '\n' || c == '\r' || c == '\t';
}

std::string CleanLines(std::string_view text) {
  return Clean(text,
               [](char c) { return c == '\n' ? "\n" : std::string(IsBlankControl(c) ? " " : kReplacement); });
}

std::string HtmlEscaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

}  // namespace

std::string CleanLine(std::string_view text) {
  return Clean(text, [](char c) { return std::string(IsBlankControl(c) ? " " : kReplacement); });
}

std::string HtmlText(std::string_view text) {
  return HtmlEscaped(CleanLine(text));
}

std::string HtmlLines(std::string_view text) {
  return HtmlEscaped(CleanLines(text));
}

// Marks that begin a block do so at the begin of a line only; numbers with a full stop there begin a list.
std::string MarkdownText(std::string_view text) {
  constexpr std::string_view kMarks = "\\`*_{}[]|~$#";
  constexpr std::string_view kAtBegin = "+-=.)";
  std::string escaped;
  bool isBegin = true;
  for (const char c : CleanLine(text)) {
    const bool isDigit = c >= '0' && c <= '9';
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else if (c == '>') {
      escaped += "&gt;";
    } else {
      if (kMarks.find(c) != std::string_view::npos || (isBegin && kAtBegin.find(c) != std::string_view::npos))
        escaped += '\\';
      escaped += c;
    }
    isBegin = isBegin && (isDigit || c == ' ');
  }
  return escaped;
}

// The fence is longer than any within.
std::string MarkdownCode(std::string_view text) {
  constexpr std::size_t kLeastFence = 3;
  const std::string lines = CleanLines(text);
  std::size_t longest = kLeastFence - 1;
  std::size_t run = 0;
  for (const char c : lines) {
    run = c == '`' ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  const std::string fence(longest + 1, '`');
  return fence + "\n" + lines + "\n" + fence + "\n";
}

}  // namespace brenvolt
