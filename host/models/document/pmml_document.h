// A PMML file as elements that account for every attribute and child: what a reader does not ask for is
// refused by name and line. Namespace prefixes do not count; Extension elements, attributes of other
// namespaces and attributes that begin with "x-" are the standard's own means of saying things that a reader
// may pass over, and are. An extension that holds elements on which the standard lets predictions depend is
// refused by their name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brenvolt::pmml {

// What a file may hold at most; beyond it is refused before any memory is spent on it.
inline constexpr std::size_t kLargestFile = std::size_t{1} << 30;
inline constexpr std::size_t kLongestAttribute = std::size_t{1} << 16;
inline constexpr std::size_t kMostAttributes = 64;
inline constexpr int kDeepestElement = 400;

// Throws Error naming the line if `text` is beyond the limits above or declares a document type (PMML
// needs none, and entities are how a small file becomes a large one).
void CheckLimits(std::string_view text, const std::string& file);

// The parsed text. Elements refer to it and must not outlive it.
class Document {
 public:
  // Throws Error that names `file` and the line for text that is not well-formed XML in UTF-8 or Latin-1.
  Document(std::string_view text, std::string file);

  const std::string& File() const { return file_; }
  pugi::xml_node Root() const { return document_.document_element(); }
  std::size_t LineAt(std::ptrdiff_t offset) const;

 private:
  std::string file_;
  std::vector<std::size_t> lineEnds_;
  pugi::xml_document document_;
};

template <class Value>
using Choices = std::initializer_list<std::pair<std::string_view, Value>>;

class Element {
 public:
  Element(const Document& document, pugi::xml_node node) : document_(&document), node_(node) {}

  // The name without its prefix.
  std::string_view Name() const;
  bool Is(std::string_view name) const { return Name() == name; }
  std::string Where() const;
  // Throws Error with the file and line of this element.
  [[noreturn]] void Fail(const std::string& what) const;
  // The same, saying that the element is not supported.
  [[noreturn]] void Refuse() const;

  // Attributes; a call marks the attribute as read. The forms without a default throw where it is missing.
  std::optional<std::string_view> Find(const char* name) const;
  std::string Text(const char* name) const;
  std::string Text(const char* name, std::string_view otherwise) const;
  std::optional<double> FindReal(const char* name) const;
  double Real(const char* name) const;
  double Real(const char* name, double otherwise) const;
  std::optional<int> FindInteger(const char* name) const;
  bool Flag(const char* name, bool otherwise) const;
  template <class Value>
  Value Choice(const char* name, Choices<Value> choices) const {
    return ChoiceOf<Value>(name, Text(name), choices);
  }
  template <class Value>
  Value Choice(const char* name, Choices<Value> choices, Value otherwise) const {
    const auto text = Find(name);
    return text ? ChoiceOf<Value>(name, *text, choices) : otherwise;
  }
  // The name of an attribute as the element has it: another one that differs from `name` by letter case and
  // at most two letters, where the element has none of that very name. `name` itself if there is none.
  std::string SpellingOf(const char* name) const;
  // Marks attributes as read that say nothing about scoring.
  void PassOver(std::initializer_list<const char*> names) const;
  // Throws for the first attribute that was not read.
  void RefuseOtherAttributes() const;
  // The same, and for any child.
  void RefuseAnythingElse() const;

  // The children in order, without extensions.
  std::vector<Element> Children() const;
  // The same, with children called `name` that stand inside extensions in their places: older versions had no
  // other place for them.
  std::vector<Element> ChildrenAndExtended(std::string_view name) const;
  std::optional<Element> FindChild(std::string_view name) const;
  Element Child(std::string_view name) const;
  // The only child; throws if there are more or none.
  Element OnlyChild() const;
  // The text between the tags.
  std::string Content() const;

 private:
  template <class Value>
  Value ChoiceOf(const char* name, std::string_view text, Choices<Value> choices) const {
    for (const auto& [word, value] : choices) {
      if (word == text) return value;
    }
    FailOnValue(name, text);
  }
  // Throws for an element of an extension that is not to be passed over.
  void RefuseExtended(const pugi::xml_node& extension, const pugi::xml_node& inner) const;
  [[noreturn]] void FailOnValue(const char* name, std::string_view text) const;
  double RealOf(const char* name, std::string_view text) const;

  const Document* document_;
  pugi::xml_node node_;
  mutable std::uint64_t read_ = 0;  // a bit per attribute, in their order
};

// A number as XML Schema writes doubles, blanks around it allowed: with a sign, INF, -INF, and, as some
// programs do, Infinity. Nothing for other text, NaN included.
std::optional<double> ReadReal(std::string_view text);

// What separates words in XML.
inline constexpr std::string_view kBlanks = " \t\r\n";
std::string_view TrimXml(std::string_view text);

}  // namespace brenvolt::pmml
