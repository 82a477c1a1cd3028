#include "apps/desktop/base/text_block.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace brenvolt::desktop {
namespace {

class BlockReader {
 public:
  explicit BlockReader(std::string text) : text_(std::move(text)) {}

  TextRows Read() {
    while (place_ < text_.size()) {
      std::vector<std::string>& row = rows_.emplace_back();
      do {
        row.push_back(Cell());
      } while (Take('\t'));
      Take('\r');
      Take('\n');
    }
    return std::move(rows_);
  }

 private:
  bool Take(char c) {
    if (place_ >= text_.size() || text_[place_] != c) return false;
    ++place_;
    return true;
  }

  std::string Cell() {
    const std::size_t begin = place_;
    if (Take('"')) {
      if (auto quoted = Quoted()) return *std::move(quoted);
      place_ = begin;
    }
    place_ = std::min(text_.find_first_of("\t\r\n", begin), text_.size());
    return text_.substr(begin, place_ - begin);
  }

  // Nothing if the quotes are a part of the text.
  std::optional<std::string> Quoted() {
    std::string cell;
    for (;;) {
      const std::size_t quote = text_.find('"', place_);
      if (quote == std::string::npos) return std::nullopt;
      cell.append(text_, place_, quote - place_);
      place_ = quote + 1;
      if (!Take('"')) break;
      cell += '"';
    }
    const bool ends =
        place_ == text_.size() || std::string_view("\t\r\n").find(text_[place_]) != std::string_view::npos;
    return ends ? std::optional(cell) : std::nullopt;
  }

  std::string text_;
  std::size_t place_ = 0;
  TextRows rows_;
};

}  // namespace

TextRows RowsOf(const QString& text) {
  return BlockReader(text.toStdString()).Read();
}

void AppendCell(std::string& text, std::string_view cell, bool isFirstOfRow) {
  if (!isFirstOfRow) text += '\t';
  if (cell.find_first_of("\t\r\n") == std::string_view::npos && !cell.starts_with('"')) {
    text += cell;
    return;
  }
  text += '"';
  for (const char c : cell) text += c == '"' ? std::string(2, c) : std::string(1, c);
  text += '"';
}

}  // namespace brenvolt::desktop
