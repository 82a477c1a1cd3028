#include "host/models/document/pmml_document.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "host/base/error.h"
#include "host/base/lower_case.h"
#include "host/base/number_text.h"
#include "host/base/utf8.h"

namespace brenvolt::pmml {
namespace {

// The encoding that the XML declaration names, in lower case; empty if it names none.
std::string DeclaredEncoding(std::string_view text) {
  if (!text.starts_with("<?xml")) return {};
  const std::string_view declaration = text.substr(0, std::min(text.find("?>"), text.size()));
  const auto at = declaration.find("encoding");
  if (at == std::string_view::npos) return {};
  const auto begin = declaration.find_first_of("\"'", at);
  if (begin == std::string_view::npos) return {};
  const auto end = declaration.find(declaration[begin], begin + 1);
  return LowerCase(declaration.substr(begin + 1, end == std::string_view::npos ? end : end - begin - 1));
}

std::string FromLatin1(std::string_view text) {
  std::string utf8;
  utf8.reserve(text.size());
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80U) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0U | (byte >> 6U));
      utf8 += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return utf8;
}

std::string_view LocalName(std::string_view name) {
  const auto colon = name.find(':');
  return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// How many letters must be put in, left out or replaced to make one text of the other (Levenshtein 1966).
std::size_t Edits(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

// Elements of the standard on which predictions depend.
constexpr auto kScoringElements = std::to_array<std::string_view>({
    "Aggregate",
    "Apply",
    "BayesInput",
    "BayesInputs",
    "BayesOutput",
    "CategoricalPredictor",
    "Characteristic",
    "Characteristics",
    "Cluster",
    "ClusteringField",
    "Coefficient",
    "Coefficients",
    "ComparisonMeasure",
    "CompoundPredicate",
    "CompoundRule",
    "Constant",
    "DataDictionary",
    "DataField",
    "DecisionTree",
    "DefineFunction",
    "DerivedField",
    "Discretize",
    "FieldRef",
    "GaussianDistribution",
    "KNNInput",
    "KNNInputs",
    "LinearNorm",
    "LocalTransformations",
    "MapValues",
    "MiningField",
    "MiningSchema",
    "NeuralInput",
    "NeuralInputs",
    "NeuralLayer",
    "NeuralOutput",
    "NeuralOutputs",
    "Neuron",
    "Node",
    "NormContinuous",
    "NormDiscrete",
    "NumericPredictor",
    "Output",
    "OutputField",
    "PCell",
    "PPCell",
    "PairCounts",
    "ParamMatrix",
    "PoissonDistribution",
    "PredictorTerm",
    "Regression",
    "RegressionTable",
    "RuleSelectionMethod",
    "RuleSet",
    "ScoreDistribution",
    "Segment",
    "Segmentation",
    "SimplePredicate",
    "SimpleRule",
    "SimpleSetPredicate",
    "SupportVector",
    "SupportVectorMachine",
    "SupportVectors",
    "Target",
    "TargetValue",
    "TargetValueCounts",
    "TargetValueStat",
    "TargetValueStats",
    "Targets",
    "TrainingInstances",
    "TransformationDictionary",
    "UniformDistribution",
    "VectorDictionary",
    "VectorInstance",
});

// Whether an element has the prefix of the extension that it stands in, and no namespace of its own.
bool IsOfExtension(const pugi::xml_node& extension, const pugi::xml_node& inner) {
  const auto prefix = [](const pugi::xml_node& node) {
    const std::string_view name = node.name();
    return name.substr(0, name.size() - LocalName(name).size());
  };
  return prefix(extension) == prefix(inner) && !inner.attribute("xmlns") && !extension.attribute("xmlns");
}

bool IsForeign(std::string_view attribute) {
  return attribute == "xmlns" || attribute.starts_with("x-") || attribute.find(':') != std::string_view::npos;
}

}  // namespace

Document::Document(std::string_view text, std::string file) : file_(std::move(file)) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  CheckLimits(text, file_);
  const std::string encoding = DeclaredEncoding(text);
  std::string converted;
  if (encoding == "iso-8859-1" || encoding == "latin1") {
    converted = FromLatin1(text);
    text = converted;
  } else if (!encoding.empty() && encoding != "utf-8" && encoding != "us-ascii" && encoding != "ascii") {
    throw Error("the file is in the encoding " + encoding + "; UTF-8 and ISO-8859-1 are read", file_);
  }
  for (auto at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
    lineEnds_.push_back(at);
  }
  if (const std::size_t bad = FindNonText(text); bad != std::string_view::npos) {
    throw Error("the file is not text in UTF-8",
                file_ + ", line " + std::to_string(LineAt(static_cast<std::ptrdiff_t>(bad))));
  }
  const auto outcome =
      document_.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (!outcome) {
    throw Error(std::string("the file is not well-formed XML: ") + outcome.description(),
                file_ + ", line " + std::to_string(LineAt(outcome.offset)));
  }
}

std::size_t Document::LineAt(std::ptrdiff_t offset) const {
  const auto at = static_cast<std::size_t>(std::max<std::ptrdiff_t>(offset, 0));
  return static_cast<std::size_t>(std::ranges::lower_bound(lineEnds_, at) - lineEnds_.begin()) + 1;
}

std::string_view Element::Name() const {
  return LocalName(node_.name());
}

std::string Element::Where() const {
  return document_->File() + ", line " + std::to_string(document_->LineAt(node_.offset_debug()));
}

void Element::Fail(const std::string& what) const {
  throw Error(what, Where());
}

void Element::Refuse() const {
  Fail("the element " + std::string(Name()) + " is not supported");
}

std::optional<std::string_view> Element::Find(const char* name) const {
  std::uint64_t bit = 1;
  for (const pugi::xml_attribute attribute : node_.attributes()) {
    if (std::string_view(attribute.name()) == name) {
      read_ |= bit;
      return std::string_view(attribute.value());
    }
    bit <<= 1U;
  }
  return std::nullopt;
}

std::string Element::Text(const char* name) const {
  const auto text = Find(name);
  if (!text) Fail("the element " + std::string(Name()) + " has no attribute " + name);
  return std::string(*text);
}

std::string Element::Text(const char* name, std::string_view otherwise) const {
  return std::string(Find(name).value_or(otherwise));
}

void Element::FailOnValue(const char* name, std::string_view text) const {
  Fail("the attribute " + std::string(name) + " of " + std::string(Name()) + " is \"" + std::string(text) +
       "\", which is not supported");
}

double Element::RealOf(const char* name, std::string_view text) const {
  const auto number = ReadReal(text);
  if (!number) {
    Fail("the attribute " + std::string(name) + " of " + std::string(Name()) + " is \"" + std::string(text) +
         "\", which is not a number");
  }
  return *number;
}

std::optional<double> Element::FindReal(const char* name) const {
  const auto text = Find(name);
  return text ? std::optional(RealOf(name, *text)) : std::nullopt;
}

double Element::Real(const char* name) const {
  return RealOf(name, Text(name));
}

double Element::Real(const char* name, double otherwise) const {
  return FindReal(name).value_or(otherwise);
}

std::optional<int> Element::FindInteger(const char* name) const {
  const auto text = Find(name);
  if (!text) return std::nullopt;
  const auto number = ParseInteger(TrimXml(*text));
  if (!number) {
    Fail("the attribute " + std::string(name) + " of " + std::string(Name()) + " is \"" + std::string(*text) +
         "\", which is not a whole number");
  }
  return *number;
}

bool Element::Flag(const char* name, bool otherwise) const {
  return Choice<bool>(name, {{"true", true}, {"false", false}, {"1", true}, {"0", false}}, otherwise);
}

std::string Element::SpellingOf(const char* name) const {
  constexpr std::size_t kMostEdits = 2;
  if (node_.attribute(name)) return name;
  for (const pugi::xml_attribute attribute : node_.attributes()) {
    const std::string_view written = attribute.name();
    if (!IsForeign(written) && Edits(LowerCase(written), LowerCase(name)) <= kMostEdits)
      return std::string(written);
  }
  return name;
}

void Element::PassOver(std::initializer_list<const char*> names) const {
  for (const char* name : names) Find(name);
}

void Element::RefuseOtherAttributes() const {
  std::uint64_t bit = 1;
  for (const pugi::xml_attribute attribute : node_.attributes()) {
    if ((read_ & bit) == 0 && !IsForeign(attribute.name())) {
      Fail("the attribute " + std::string(attribute.name()) + " of " + std::string(Name()) +
           " is not supported");
    }
    bit <<= 1U;
  }
}

void Element::RefuseAnythingElse() const {
  RefuseOtherAttributes();
  for (const Element& child : Children()) child.Refuse();
}

std::vector<Element> Element::Children() const {
  std::vector<Element> children;
  for (const pugi::xml_node node : node_.children()) {
    if (node.type() != pugi::node_element) continue;
    if (LocalName(node.name()) != "Extension") {
      children.emplace_back(*document_, node);
      continue;
    }
    for (const pugi::xml_node inner : node.children()) RefuseExtended(node, inner);
  }
  return children;
}

void Element::RefuseExtended(const pugi::xml_node& extension, const pugi::xml_node& inner) const {
  const std::string_view name = LocalName(inner.name());
  if (std::ranges::find(kScoringElements, name) == kScoringElements.end()) return;
  if (!IsOfExtension(extension, inner)) return;
  Element(*document_, inner).Fail("the element " + std::string(name) + " inside Extension is not supported");
}

std::vector<Element> Element::ChildrenAndExtended(std::string_view name) const {
  std::vector<Element> children;
  for (const pugi::xml_node node : node_.children()) {
    if (node.type() != pugi::node_element) continue;
    const Element child(*document_, node);
    if (!child.Is("Extension")) {
      children.push_back(child);
      continue;
    }
    for (const pugi::xml_node inner : node.children()) {
      if (LocalName(inner.name()) != name) {
        RefuseExtended(node, inner);
      } else {
        children.emplace_back(*document_, inner);
      }
    }
  }
  return children;
}

std::optional<Element> Element::FindChild(std::string_view name) const {
  for (const pugi::xml_node node : node_.children()) {
    if (node.type() == pugi::node_element && LocalName(node.name()) == name) return Element(*document_, node);
  }
  return std::nullopt;
}

Element Element::Child(std::string_view name) const {
  const auto child = FindChild(name);
  if (!child) Fail("the element " + std::string(Name()) + " has no element " + std::string(name));
  return *child;
}

Element Element::OnlyChild() const {
  const std::vector<Element> children = Children();
  if (children.empty()) Fail("the element " + std::string(Name()) + " is empty");
  if (children.size() > 1) children[1].Refuse();
  return children.front();
}

std::string Element::Content() const {
  std::string content;
  for (const pugi::xml_node node : node_.children()) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) content += node.value();
  }
  return content;
}

std::string_view TrimXml(std::string_view text) {
  const auto begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<double> ReadReal(std::string_view text) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  text = TrimXml(text);
  if (text.starts_with('+')) text.remove_prefix(1);
  if (text == "INF" || text == "Infinity") return kInfinity;
  if (text == "-INF" || text == "-Infinity") return -kInfinity;
  return ParseNumber(text);
}

}  // namespace brenvolt::pmml
