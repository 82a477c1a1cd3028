// The XML of workbooks: small parts of it as trees, whose elements are handed out in the order of the text.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "host/base/error.h"

namespace brenvolt {

// The name without its prefix.
inline std::string_view LocalName(std::string_view name) {
  return name.substr(name.find(':') + 1);
}

// The value of the attribute of that name, whatever its prefix; empty if there is none.
inline std::string_view AttributeOf(const pugi::xml_node& element, std::string_view name) {
  for (const pugi::xml_attribute& attribute : element.attributes()) {
    if (LocalName(attribute.name()) == name) return attribute.value();
  }
  return {};
}

// Calls Start(name, element), Text(text) and End(name) of a handler for what lies below `root`. Elements may lie as deep as
// memory reaches.
template <class Handler>
void WalkTree(const pugi::xml_node& root, Handler& handler) {
  pugi::xml_node node = root.first_child();
  while (node) {
    const bool isElement = node.type() == pugi::node_element;
    if (isElement) {
      handler.Start(LocalName(node.name()), node);
    } else if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
      handler.Text(node.value());
    }
    if (isElement && node.first_child()) {
      node = node.first_child();
      continue;
    }
    if (isElement) handler.End(LocalName(node.name()));
    while (!node.next_sibling()) {
      node = node.parent();
      if (node == root) return;
      handler.End(LocalName(node.name()));
    }
    node = node.next_sibling();
  }
}

// The same for a text, which may be a part of a document, and is changed. Throws Error at `where` for damaged XML. Entities
// that a document defines stay as they are.
template <class Handler>
void WalkXml(char* text, std::size_t size, Handler& handler, const std::string& where) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer_inplace(
      text, size, pugi::parse_default | pugi::parse_fragment | pugi::parse_ws_pcdata_single);
  // A part may be empty.
  if (result.status == pugi::status_no_document_element) return;
  if (!result) throw Error(std::string("the workbook is damaged: ") + result.description(), where);
  WalkTree(document, handler);
}

}  // namespace brenvolt
