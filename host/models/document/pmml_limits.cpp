// The look over a file's bytes before they become a tree: how deep, how long, and no document type.
#include <algorithm>

#include "host/base/error.h"
#include "host/models/document/pmml_document.h"

namespace brenvolt::pmml {
namespace {

class Scan {
 public:
  Scan(std::string_view text, const std::string& file) : text_(text), file_(file) {}

  void Run() {
    while ((at_ = text_.find('<', at_)) != std::string_view::npos) {
      if (Begins("<!--")) {
        SkipPast("-->");
      } else if (Begins("<![CDATA[")) {
        SkipPast("]]>");
      } else if (Begins("<?")) {
        SkipPast("?>");
      } else if (Begins("<!")) {
        Fail("document type declarations are not allowed");
      } else if (Begins("</")) {
        --depth_;
        SkipPast(">");
      } else {
        Tag();
      }
    }
  }

 private:
  bool Begins(std::string_view what) const { return text_.substr(at_, what.size()) == what; }

  void SkipPast(std::string_view what) {
    const auto found = text_.find(what, at_ + 1);
    at_ = found == std::string_view::npos ? text_.size() : found + what.size();
  }

  void Tag() {
    if (++depth_ > kDeepestElement) Fail("elements are nested too deeply");
    std::size_t attributes = 0;
    for (++at_; at_ < text_.size() && text_[at_] != '>'; ++at_) {
      const char quote = text_[at_];
      if (quote != '"' && quote != '\'') continue;
      const std::size_t end = std::min(text_.find(quote, at_ + 1), text_.size());
      if (end - at_ - 1 > kLongestAttribute) Fail("an attribute is too long");
      if (++attributes > kMostAttributes) Fail("an element has too many attributes");
      at_ = end;
      if (at_ == text_.size()) return;
    }
    if (at_ < text_.size() && text_[at_ - 1] == '/') --depth_;
  }

  [[noreturn]] void Fail(const std::string& what) const {
    const auto line = std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n') + 1;
    throw Error(what, file_ + ", line " + std::to_string(line));
  }

  std::string_view text_;
  const std::string& file_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

}  // namespace

void CheckLimits(std::string_view text, const std::string& file) {
  if (text.size() > kLargestFile) throw Error("the file is larger than a model may be (1 GiB)", file);
  Scan(text, file).Run();
}

}  // namespace brenvolt::pmml
