// A forest for benchmarks: 500 random trees over ten predictors, as data and as a model's text.
#pragma once

#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace brenvolt {

inline constexpr std::size_t kFields = 10;
inline constexpr std::size_t kTrees = 500;

inline std::string Head() {
  std::string text = "<PMML version=\"4.4\"><DataDictionary>";
  for (std::size_t k = 0; k <= kFields; ++k) {
    text += "<DataField name=\"x" + std::to_string(k) + "\" optype=\"continuous\" dataType=\"double\"/>";
  }
  return text + "</DataDictionary>";
}

inline std::string Schema() {
  std::string text = "<MiningSchema>";
  for (std::size_t k = 0; k < kFields; ++k) text += "<MiningField name=\"x" + std::to_string(k) + "\"/>";
  return text + "<MiningField name=\"x" + std::to_string(kFields) +
         "\" usageType=\"target\"/></MiningSchema>";
}

// A tree as data, to count its visits, and as text. Splits halve what is left of a field's range at random
// places, as those of a forest trained on uniform data do.
struct Node {
  std::size_t field = 0;
  double threshold = 0;
  std::unique_ptr<Node> left;
  std::unique_ptr<Node> right;
};

struct Forest {
  std::vector<std::unique_ptr<Node>> trees;
  std::string text;
};

class Planter {
 public:
  Forest Plant(int depth) {
    Forest forest;
    std::string& text = forest.text;
    text = Head() + "<MiningModel functionName=\"regression\">" + Schema() +
           "<Segmentation multipleModelMethod=\"average\">";
    for (std::size_t t = 0; t < kTrees; ++t) {
      text += "<Segment><True/><TreeModel functionName=\"regression\">" + Schema();
      std::vector<std::pair<double, double>> ranges(kFields, {0, 1});
      forest.trees.push_back(Grow(depth, ranges, "<True/>", text));
      text += "</TreeModel></Segment>";
    }
    text += "</Segmentation></MiningModel></PMML>";
    return forest;
  }

 private:
  std::unique_ptr<Node> Grow(int depth, std::vector<std::pair<double, double>>& ranges,
                             const std::string& predicate, std::string& text) {
    auto node = std::make_unique<Node>();
    text += "<Node score=\"" + std::to_string(uniform_(engine_)) + "\">" + predicate;
    // Branches end early now and then, so that depths differ as they do in grown trees.
    constexpr double kEnds = 0.07;
    if (depth > 0 && uniform_(engine_) > kEnds) {
      node->field = engine_() % kFields;
      const auto [low, high] = ranges[node->field];
      node->threshold = std::stod(std::to_string(low + (high - low) * (0.25 + 0.5 * uniform_(engine_))));
      const auto test = [&](const char* word) {
        return "<SimplePredicate field=\"x" + std::to_string(node->field) + "\" operator=\"" + word +
               "\" value=\"" + std::to_string(node->threshold) + "\"/>";
      };
      ranges[node->field] = {low, node->threshold};
      node->left = Grow(depth - 1, ranges, test("lessOrEqual"), text);
      ranges[node->field] = {node->threshold, high};
      node->right = Grow(depth - 1, ranges, test("greaterThan"), text);
      ranges[node->field] = {low, high};
    }
    text += "</Node>";
    return node;
  }

  std::mt19937_64 engine_{12};
  std::uniform_real_distribution<double> uniform_{0, 1};
};

}  // namespace brenvolt
