#include "host/tables/office/xml_scan.h"

#include <charconv>
#include <cstdint>

#include "host/base/error.h"
#include "host/base/work_watch.h"

namespace brenvolt {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

void AppendCharacter(std::uint32_t code, std::string& text) {
  const auto continued = [&](int shift) { text += static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0U | (code >> 6));
    continued(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0U | (code >> 12));
    continued(6);
    continued(0);
  } else {
    text += static_cast<char>(0xF0U | (code >> 18));
    continued(12);
    continued(6);
    continued(0);
  }
}

// Appends what "lt", "#65" or "#x41" stands for. False for what is none of XML's own.
bool AppendEntity(std::string_view entity, std::string& text) {
  constexpr std::pair<std::string_view, char> kNamed[] = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
  for (const auto& [name, character] : kNamed) {
    if (entity == name) {
      text += character;
      return true;
    }
  }
  if (!entity.starts_with('#')) return false;
  const bool isHexadecimal = entity.size() > 1 && entity[1] == 'x';
  entity.remove_prefix(isHexadecimal ? 2 : 1);
  std::uint32_t code = 0;
  const char* const end = entity.data() + entity.size();
  const auto [stop, fault] = std::from_chars(entity.data(), end, code, isHexadecimal ? 16 : 10);
  const bool isSurrogate = code >= 0xD800 && code < 0xE000;
  if (fault != std::errc() || stop != end || code == 0 || code > 0x10FFFF || isSurrogate) return false;
  AppendCharacter(code, text);
  return true;
}

void AppendDecoded(std::string_view raw, std::string& text) {
  constexpr std::size_t kLongestEntity = 12;
  for (std::size_t next = 0; next < raw.size();) {
    const std::size_t mark = raw.find('&', next);
    text += raw.substr(next, mark - next);
    if (mark == std::string_view::npos) return;
    const std::size_t end = raw.substr(0, mark + kLongestEntity).find(';', mark);
    const bool isEntity =
        end != std::string_view::npos && AppendEntity(raw.substr(mark + 1, end - mark - 1), text);
    if (!isEntity) text += '&';
    next = isEntity ? end + 1 : mark + 1;
  }
}

class Scan {
 public:
  Scan(std::string_view xml, XmlHandler& handler, const std::string& where)
      : xml_(xml), handler_(handler), where_(where) {}

  void Run() {
    constexpr std::size_t kStep = 1 << 14;
    WatchedSteps steps;
    for (std::size_t tags = 1; next_ < xml_.size(); ++tags) {
      if (tags % kStep == 0) steps.Done();
      const std::size_t mark = std::min(xml_.find('<', next_), xml_.size());
      GiveText(xml_.substr(next_, mark - next_));
      next_ = mark;
      if (next_ < xml_.size()) TakeMark();
    }
    if (!open_.empty()) Fail("an element has no end");
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw Error("the workbook is damaged: " + what, where_);
  }
  void GiveText(std::string_view raw) {
    if (raw.empty() || open_.empty()) return;
    if (raw.find('&') == std::string_view::npos) return handler_.Text(raw);
    text_.clear();
    AppendDecoded(raw, text_);
    handler_.Text(text_);
  }
  // What lies between the opening and the closing mark, past which the scan goes on.
  std::string_view Upto(std::string_view opening, std::string_view closing) {
    const std::size_t begin = next_ + opening.size();
    const std::size_t end = xml_.find(closing, begin);
    if (end == std::string_view::npos) Fail("it is cut off");
    next_ = end + closing.size();
    return xml_.substr(begin, end - begin);
  }

  void TakeMark() {
    const std::string_view rest = xml_.substr(next_);
    if (rest.starts_with("<![CDATA[")) {
      const std::string_view raw = Upto("<![CDATA[", "]]>");
      if (!open_.empty()) handler_.Text(raw);
    } else if (rest.starts_with("<!--")) {
      Upto("<!--", "-->");
    } else if (rest.starts_with("<?")) {
      Upto("<?", "?>");
    } else if (rest.starts_with("<!")) {
      SkipDeclaration();
    } else if (rest.starts_with("</")) {
      EndElement(Upto("</", ">"));
    } else {
      StartElement();
    }
  }

  // The end of a mark, whose quotes may hold anything.
  std::size_t EndOfTag() const {
    char quote = 0;
    for (std::size_t i = next_ + 1; i < xml_.size(); ++i) {
      const char c = xml_[i];
      if (quote != 0) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '>') {
        return i;
      }
    }
    Fail("it is cut off");
  }
  // A document type, with declarations of its own in brackets.
  void SkipDeclaration() {
    std::size_t depth = 0;
    while (next_ < xml_.size()) {
      const std::size_t mark = xml_.find_first_of("<>", next_);
      if (mark == std::string_view::npos) break;
      next_ = mark;
      if (xml_[mark] == '>') {
        ++next_;
        if (--depth == 0) return;
      } else if (depth == 0) {
        // The type itself may hold further marks.
        ++depth;
        ++next_;
      } else {
        next_ = EndOfTag() + 1;
      }
    }
    Fail("it is cut off");
  }

  void StartElement() {
    const std::size_t end = EndOfTag();
    std::string_view tag = xml_.substr(next_ + 1, end - next_ - 1);
    next_ = end + 1;
    const bool isEmpty = tag.ends_with('/');
    if (isEmpty) tag.remove_suffix(1);
    const std::size_t length = std::min(tag.find_first_of(kBlanks), tag.size());
    const std::string_view name = tag.substr(0, length);
    if (name.empty()) Fail("an element has no name");
    if (open_.size() == kMostXmlDepth)
      Fail("more than " + std::to_string(kMostXmlDepth) + " elements lie in each other");
    open_.push_back(name);
    handler_.Start(LocalName(name), XmlTag(tag.substr(length)));
    if (isEmpty) EndElement(name);
  }
  void EndElement(std::string_view name) {
    name = name.substr(0, name.find_last_not_of(kBlanks) + 1);
    if (open_.empty() || open_.back() != name) Fail("an element ends that did not begin");
    handler_.End(LocalName(name));
    open_.pop_back();
  }

  std::string_view xml_;
  XmlHandler& handler_;
  const std::string& where_;
  std::size_t next_ = 0;
  std::vector<std::string_view> open_;
  std::string text_;
};

}  // namespace

std::string XmlTag::Find(std::string_view name, bool prefixed) const {
  std::string_view rest = attributes_;
  for (;;) {
    const std::size_t begin = rest.find_first_not_of(kBlanks);
    const std::size_t equals = rest.find('=');
    if (begin == std::string_view::npos || equals == std::string_view::npos || equals < begin) return {};
    const std::string_view found = rest.substr(begin, rest.find_last_not_of(kBlanks, equals - 1) + 1 - begin);
    const std::size_t open = rest.find_first_of("\"'", equals);
    const std::size_t close = open == std::string_view::npos ? open : rest.find(rest[open], open + 1);
    if (close == std::string_view::npos) return {};
    const bool hasPrefix = found.find(':') != std::string_view::npos;
    if (LocalName(found) == name && (hasPrefix || !prefixed)) {
      std::string value;
      AppendDecoded(rest.substr(open + 1, close - open - 1), value);
      return value;
    }
    rest = rest.substr(close + 1);
  }
}

void ScanXml(std::string_view xml, XmlHandler& handler, const std::string& where) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (xml.starts_with(kMark)) xml.remove_prefix(kMark.size());
  if (xml.starts_with("\xFE\xFF") || xml.starts_with("\xFF\xFE"))
    throw Error("the workbook is damaged: its XML is not in UTF-8", where);
  Scan(xml, handler, where).Run();
}

}  // namespace brenvolt
