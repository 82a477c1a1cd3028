// What a picture holds, read from its SVG: shapes with their colours, and texts, all in pixels of the picture.
#pragma once

#include <algorithm>
#include <pugixml.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "host/drawing/text_fitting.h"
#include "host/drawing/theme.h"
#include "host/graphs/picture.h"

namespace brenvolt {

struct SvgBox {
  double left = 1e9;
  double top = 1e9;
  double right = -1e9;
  double bottom = -1e9;

  void Add(double x, double y) {
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  // Touching is no overlap.
  bool Overlaps(const SvgBox& other) const {
    return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
  }
};

struct SvgPoint {
  double x;
  double y;
};

struct SvgShape {
  std::string tag;     // "path", "polyline", "circle", "rect"
  std::string fill;    // "#bfd7ea", "none"
  std::string stroke;  // the same
  std::string dashes;
  std::vector<SvgPoint> points;
  SvgBox box;
};

struct SvgText {
  std::string text;
  SvgBox box;
};

struct SvgPicture {
  double width = 0;
  double height = 0;
  std::vector<SvgShape> shapes;
  std::vector<SvgText> texts;

  std::vector<SvgShape> Filled(const std::string& colour, const std::string& tag = "path") const {
    std::vector<SvgShape> found;
    for (const SvgShape& shape : shapes) {
      if (shape.fill == colour && shape.tag == tag) found.push_back(shape);
    }
    return found;
  }
  std::vector<SvgShape> Lines(const std::string& colour) const {
    std::vector<SvgShape> found;
    for (const SvgShape& shape : shapes) {
      if (shape.stroke == colour && shape.tag == "polyline") found.push_back(shape);
    }
    return found;
  }
  const SvgText* Find(const std::string& text) const {
    const auto found = std::ranges::find(texts, text, &SvgText::text);
    return found == texts.end() ? nullptr : &*found;
  }
  // Pairs of texts that lie on each other, and texts that leave the picture.
  std::vector<std::string> Collisions() const {
    std::vector<std::string> found;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const SvgBox& box = texts[i].box;
      if (box.left < -1 || box.top < -1 || box.right > width + 1 || box.bottom > height + 1)
        found.push_back(texts[i].text + " leaves the picture");
      for (std::size_t k = i + 1; k < texts.size(); ++k) {
        if (box.Overlaps(texts[k].box)) found.push_back(texts[i].text + " | " + texts[k].text);
      }
    }
    return found;
  }
};

namespace svg {

struct Matrix {
  double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;
  SvgPoint At(double x, double y) const { return {a * x + c * y + e, b * x + d * y + f}; }
};

inline std::vector<double> NumbersIn(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return std::string_view("MLCZ,()").find(c) != std::string::npos; }, ' ');
  std::istringstream stream(text);
  std::vector<double> numbers;
  for (double number = 0; stream >> number;) numbers.push_back(number);
  return numbers;
}

inline Matrix MatrixOf(const std::string& text) {
  if (!text.starts_with("matrix")) return {};
  const std::vector<double> n = NumbersIn(text.substr(6));
  return {n.at(0), n.at(1), n.at(2), n.at(3), n.at(4), n.at(5)};
}

inline SvgShape ShapeOf(const pugi::xml_node& node, const pugi::xml_node& group) {
  const Matrix matrix = MatrixOf(group.attribute("transform").value());
  SvgShape shape{node.name(),
                 group.attribute("fill").value(),
                 group.attribute("stroke").value(),
                 group.attribute("stroke-dasharray").value(),
                 {},
                 {}};
  std::vector<double> numbers;
  if (shape.tag == "circle") {
    numbers = {node.attribute("cx").as_double(), node.attribute("cy").as_double()};
  } else if (shape.tag == "rect") {
    const double x = node.attribute("x").as_double();
    const double y = node.attribute("y").as_double();
    numbers = {x, y, x + node.attribute("width").as_double(), y + node.attribute("height").as_double()};
  } else {
    numbers = NumbersIn(node.attribute(shape.tag == "path" ? "d" : "points").value());
  }
  for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
    shape.points.push_back(matrix.At(numbers[i], numbers[i + 1]));
    shape.box.Add(shape.points.back().x, shape.points.back().y);
  }
  return shape;
}

// The room that letters take, from the base line up.
inline SvgText TextOf(const pugi::xml_node& node, const pugi::xml_node& group) {
  const Matrix matrix = MatrixOf(group.attribute("transform").value());
  const int size = node.attribute("font-size").as_int();
  SvgText text{node.text().get(), {}};
  const double x = node.attribute("x").as_double();
  const double y = node.attribute("y").as_double();
  const double width =
      WidthOf(Shown(text.text), TextFont(size, node.attribute("font-weight").as_int() > 400));
  for (const SvgPoint& corner : {matrix.At(x, y), matrix.At(x + width, y - 0.72 * size)})
    text.box.Add(corner.x, corner.y);
  return text;
}

inline SvgPicture Read(const std::string& bytes) {
  pugi::xml_document document;
  if (!document.load_string(bytes.c_str(), pugi::parse_default | pugi::parse_ws_pcdata_single)) return {};
  SvgPicture picture;
  const std::vector<double> box = NumbersIn(document.child("svg").attribute("viewBox").value());
  picture.width = box.at(2);
  picture.height = box.at(3);
  for (const pugi::xpath_node& found : document.select_nodes("//g/g/*")) {
    const pugi::xml_node node = found.node();
    if (std::string(node.name()) == "text") {
      picture.texts.push_back(TextOf(node, node.parent()));
    } else {
      picture.shapes.push_back(ShapeOf(node, node.parent()));
    }
  }
  return picture;
}

}  // namespace svg

inline SvgPicture DrawSvg(const Graph& graph, int width = 0, PictureTheme theme = PictureTheme::kLight) {
  return svg::Read(DrawPictures({&graph, 1}, {PictureFormat::kSvg, theme, width}));
}

}  // namespace brenvolt
