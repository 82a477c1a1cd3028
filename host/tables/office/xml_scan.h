// The XML of workbooks as events in the order of the text. Nothing is built of it, so that a document takes no more memory than
// its text, however many elements it has.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// The name without its prefix.
inline std::string_view LocalName(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

// A start tag. It refers to the text of the document.
class XmlTag {
 public:
  explicit XmlTag(std::string_view attributes) : attributes_(attributes) {}

  // The value of the attribute of that name, whatever its prefix, or with one in any case; empty if there is none.
  std::string Value(std::string_view name) const { return Find(name, false); }
  std::string PrefixedValue(std::string_view name) const { return Find(name, true); }

 private:
  std::string Find(std::string_view name, bool prefixed) const;

  std::string_view attributes_;
};

// What takes the events. Names are without prefix.
class XmlHandler {
 public:
  virtual ~XmlHandler() = default;
  virtual void Start(std::string_view name, const XmlTag& tag) = 0;
  // A piece of the text of the element that began last and did not end yet.
  virtual void Text(std::string_view) {}
  virtual void End(std::string_view) {}
};

// Elements that lie in each other, at most.
inline constexpr std::size_t kMostXmlDepth = 1000;

// Gives the handler a document in UTF-8, which may be a part of one. Throws Error at `where` for damaged XML. The five entities of
// XML and numbers of characters become characters; entities that a document defines stay as they are written.
void ScanXml(std::string_view xml, XmlHandler& handler, const std::string& where);

}  // namespace brenvolt
