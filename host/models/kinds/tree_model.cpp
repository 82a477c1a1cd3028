// TreeModel: decision trees with all their ways to go on where a value is missing.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/models/kinds/decision_graph.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Missing : std::uint8_t {
  kLast,
  kNull,
  kDefaultChild,
  kWeightedConfidence,
  kAggregateNodes,
  kNone
};

// Outcomes of the graph below 0: no prediction, and the children of a node together.
constexpr std::int32_t kNoPrediction = -1;
std::int32_t TogetherOf(std::size_t node) {
  return -2 - static_cast<std::int32_t>(node);
}
bool IsTogether(std::int32_t outcome) {
  return outcome <= -2;
}
std::size_t NodeOfTogether(std::int32_t outcome) {
  return static_cast<std::size_t>(-2 - outcome);
}

struct Node {
  PredicateNumber predicate = 0;
  std::vector<std::size_t> children;
  std::optional<std::size_t> defaultChild;  // a place in `children`
  double score = kMissing;                  // a number, or the number of the class
  std::optional<double> recordCount;
};

// What a node says of a class.
struct Share {
  double records = 0;
  double probability = 0;
  double confidence = 0;
};

class Tree {
 public:
  Missing missing = Missing::kNone;
  bool returnsLast = false;  // the strategy where no child's predicate is true
  double penalty = 1;
  Predicates predicates;
  std::vector<Node> nodes;
  std::vector<std::vector<Share>> shares;  // by node, then by class; empty if the node has none
  std::size_t classes = 0;
  DecisionGraph graph;

  void BuildGraph() {
    leafOf_.assign(nodes.size(), -1);
    none_ = graph.AddLeaf(kNoPrediction);
    DecisionNumber root = Lead(0);
    if (predicates[nodes[0].predicate].test != Test::kTrue) {
      const DecisionNumber gate = graph.AddDecision(nodes[0].predicate, predicates);
      graph.Link(gate, root, none_, none_);
      root = gate;
    }
    graph.SetRoot(root);
    graph.Finish();
  }

  // Shares by class of all children of the node that are not ruled out, together, into sums[0 … classes).
  // Their weight is their number of records.
  void AddTogether(std::size_t node, double weight, const Frame& frame, std::size_t row,
                   std::span<double> sums) const {
    double total = 0;
    for (const std::size_t child : nodes[node].children) {
      if (IsOpen(child, frame, row)) total += nodes[child].recordCount.value_or(0);
    }
    for (const std::size_t child : nodes[node].children) {
      if (!IsOpen(child, frame, row)) continue;
      const double share = total > 0 ? nodes[child].recordCount.value_or(0) / total : 0;
      AddBelow(child, missing == Missing::kWeightedConfidence ? weight * share : weight, frame, row, sums);
    }
  }

 private:
  bool IsOpen(std::size_t node, const Frame& frame, std::size_t row) const {
    return predicates.Evaluate(nodes[node].predicate, frame, row) != Outcome::kFalse;
  }

  // Scores from a node on, whose own predicate is not false.
  void AddBelow(std::size_t node, double weight, const Frame& frame, std::size_t row,
                std::span<double> sums) const {
    for (const std::size_t child : nodes[node].children) {
      const Outcome outcome = predicates.Evaluate(nodes[child].predicate, frame, row);
      if (outcome == Outcome::kTrue) return AddBelow(child, weight, frame, row, sums);
      if (outcome == Outcome::kUnknown) return AddTogether(node, weight, frame, row, sums);
    }
    if (!nodes[node].children.empty() && !returnsLast) return;
    for (std::size_t k = 0; k < shares[node].size(); ++k) {
      const Share& share = shares[node][k];
      sums[k] += weight * (missing == Missing::kWeightedConfidence ? share.confidence : share.records);
    }
  }

  DecisionNumber LeafOf(std::size_t node) {
    if (leafOf_[node] < 0) leafOf_[node] = graph.AddLeaf(static_cast<std::int32_t>(node));
    return leafOf_[node];
  }

  // The two tests are each other's opposite.
  bool AreOpposite(std::size_t a, std::size_t b) const {
    const Predicate& p = predicates[nodes[a].predicate];
    const Predicate& q = predicates[nodes[b].predicate];
    constexpr std::array<std::pair<Test, Test>, 3> kOpposites{{{Test::kLess, Test::kGreaterOrEqual},
                                                               {Test::kLessOrEqual, Test::kGreater},
                                                               {Test::kEqual, Test::kNotEqual}}};
    return p.slot == q.slot && p.value == q.value && std::ranges::any_of(kOpposites, [&](const auto& pair) {
             return (p.test == pair.first && q.test == pair.second) ||
                    (p.test == pair.second && q.test == pair.first);
           });
  }

  // Where to go on when a child's predicate is unknown; `next` is the test of the next sibling.
  DecisionNumber WhenUnknown(std::size_t node, DecisionNumber next) {
    switch (missing) {
      case Missing::kNone:
        return next;
      case Missing::kLast:
        return LeafOf(node);
      case Missing::kNull:
        return none_;
      case Missing::kDefaultChild:
        // Each child's way on is made once; the default child's is made by its own test.
        return nodes[node].defaultChild ? ways_[nodes[node].children[*nodes[node].defaultChild]] : none_;
      default:
        return graph.AddLeaf(TogetherOf(node));
    }
  }

  // The decisions below a node, whose own predicate is true.
  DecisionNumber Lead(std::size_t node) {
    const std::vector<std::size_t>& children = nodes[node].children;
    if (children.empty()) return LeafOf(node);
    ways_.resize(nodes.size(), none_);
    for (const std::size_t child : children) ways_[child] = Lead(child);
    DecisionNumber next = returnsLast ? LeafOf(node) : none_;
    const DecisionNumber noTrueChild = next;
    // Where the two last children ask opposite questions, the second answer follows from the first.
    const std::size_t last = children.size() - 1;
    const bool lastFollows = last > 0 && AreOpposite(children[last - 1], children[last]);
    for (std::size_t k = children.size(); k-- > 0;) {
      const PredicateNumber predicate = nodes[children[k]].predicate;
      const Test test = predicates[predicate].test;
      if (test == Test::kTrue || (k == last && lastFollows)) next = ways_[children[k]];
      if (test == Test::kTrue || test == Test::kFalse || (k == last && lastFollows)) continue;
      const DecisionNumber decision = graph.AddDecision(predicate, predicates);
      const bool isFollowed = lastFollows && k + 1 == last;
      graph.Link(decision, ways_[children[k]], next, WhenUnknown(node, isFollowed ? noTrueChild : next));
      next = decision;
    }
    return next;
  }

  std::vector<DecisionNumber> leafOf_;
  std::vector<DecisionNumber> ways_;
  DecisionNumber none_ = 0;
};

// The columns a tree writes.
struct TreeColumns {
  Slot value = kNoSlot;
  std::vector<Slot> probabilities;
  std::vector<Slot> confidences;
  Slot entity = kNoSlot;
};

class TreeStep final : public Step {
 public:
  TreeStep(std::unique_ptr<Tree> tree, TreeColumns columns)
      : tree_(std::move(tree)), columns_(std::move(columns)) {}

  void Run(Frame& frame) const override {
    std::array<std::int32_t, kBlockRows> outcomes;
    std::array<std::uint16_t, kBlockRows> unknowns;
    const bool counts = tree_->penalty != 1 && !columns_.confidences.empty();
    tree_->graph.Walk(tree_->predicates, frame, outcomes.data(), counts ? unknowns.data() : nullptr);
    double* value = frame.Out(columns_.value);
    const Node* nodes = tree_->nodes.data();
    bool anyTogether = false;
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      value[i] = outcomes[i] >= 0 ? nodes[outcomes[i]].score : kMissing;
      anyTogether = anyTogether || IsTogether(outcomes[i]);
    }
    if (columns_.entity != kNoSlot) {
      double* entity = frame.Out(columns_.entity);
      for (std::size_t i = 0; i < frame.Rows(); ++i) entity[i] = outcomes[i] >= 0 ? outcomes[i] : kMissing;
    }
    Fill(columns_.probabilities, &Share::probability, outcomes, frame);
    Fill(columns_.confidences, &Share::confidence, outcomes, frame);
    for (std::size_t i = 0; counts && i < frame.Rows(); ++i) {
      const double factor = std::pow(tree_->penalty, unknowns[i]);
      for (const Slot slot : columns_.confidences) frame.Out(slot)[i] *= factor;
    }
    for (std::size_t i = 0; anyTogether && i < frame.Rows(); ++i) {
      if (IsTogether(outcomes[i])) FillTogether(NodeOfTogether(outcomes[i]), i, frame);
    }
  }

 private:
  void Fill(const std::vector<Slot>& columns, double Share::*what,
            const std::array<std::int32_t, kBlockRows>& outcomes, Frame& frame) const {
    for (std::size_t k = 0; k < columns.size(); ++k) {
      double* y = frame.Out(columns[k]);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        y[i] = kMissing;
        if (outcomes[i] < 0) continue;
        const auto& shares = tree_->shares[static_cast<std::size_t>(outcomes[i])];
        if (!shares.empty()) y[i] = shares[k].*what;
      }
    }
  }

  void FillTogether(std::size_t node, std::size_t row, Frame& frame) const {
    std::vector<double> sums(tree_->classes);
    tree_->AddTogether(node, 1, frame, row, sums);
    const double total = std::accumulate(sums.begin(), sums.end(), 0.0);
    const auto best = std::ranges::max_element(sums);
    frame.Out(columns_.value)[row] = total > 0 ? static_cast<double>(best - sums.begin()) : kMissing;
    for (std::size_t k = 0; k < sums.size(); ++k) {
      const double share = total > 0 ? sums[k] / total : kMissing;
      if (!columns_.probabilities.empty()) frame.Out(columns_.probabilities[k])[row] = share;
      if (columns_.confidences.empty()) continue;
      frame.Out(columns_.confidences[k])[row] =
          tree_->missing == Missing::kWeightedConfidence ? sums[k] : share;
    }
  }

  std::unique_ptr<Tree> tree_;
  TreeColumns columns_;
};

class TreeReader {
 public:
  TreeReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    ReadStrategies();
    result_.classes = place_.classes;
    std::optional<Element> root;
    for (const Element& child : OwnChildren(model_)) {
      if (!child.Is("Node") || root) child.Refuse();
      root = child;
    }
    if (!root) model_.Fail("the tree has no node");
    ReadNode(*root);
    SettleClasses();
    tree_->BuildGraph();
    TreeColumns columns;
    columns.value = result_.value = place_.NewResult(model_);
    const bool hasShares =
        std::ranges::any_of(tree_->shares, [](const auto& shares) { return !shares.empty(); });
    if (hasShares && place_.wants.probabilities) columns.probabilities = result_.probabilities = NewColumns();
    if (hasShares && place_.wants.confidences) columns.confidences = result_.confidences = NewColumns();
    if (place_.wants.entities) {
      columns.entity = place_.NewResult(model_);
      result_.entities = {columns.entity};
      result_.entityIds = ids_;
    }
    place_.program.push_back(std::make_unique<TreeStep>(std::move(tree_), columns));
    return result_;
  }

 private:
  void ReadStrategies() {
    tree_->missing = model_.Choice<Missing>("missingValueStrategy",
                                            {{"lastPrediction", Missing::kLast},
                                             {"nullPrediction", Missing::kNull},
                                             {"defaultChild", Missing::kDefaultChild},
                                             {"weightedConfidence", Missing::kWeightedConfidence},
                                             {"aggregateNodes", Missing::kAggregateNodes},
                                             {"none", Missing::kNone}},
                                            Missing::kNone);
    tree_->returnsLast = model_.Choice<bool>(
        "noTrueChildStrategy", {{"returnNullPrediction", false}, {"returnLastPrediction", true}}, false);
    tree_->penalty = model_.Real("missingValuePenalty", 1);
    model_.PassOver({"splitCharacteristic"});
    const bool isTogether =
        tree_->missing == Missing::kWeightedConfidence || tree_->missing == Missing::kAggregateNodes;
    if (isTogether && place_.function != Function::kClassification) {
      model_.Fail("this missingValueStrategy can only be used for classifications");
    }
  }

  std::size_t ReadNode(const Element& element) {
    const std::size_t number = tree_->nodes.size();
    tree_->nodes.emplace_back();
    tree_->shares.emplace_back();
    Node node;
    ids_.push_back(element.Text("id", std::to_string(number + 1)));
    const auto score = element.Find("score");
    node.recordCount = element.FindReal("recordCount");
    const auto defaultChild = element.Find("defaultChild");
    element.RefuseOtherAttributes();
    node.predicate = tree_->predicates.Add(Predicates::ChildOf(element), place_);
    std::vector<Share> shares;
    bool hasPredicate = false;
    for (const Element& child : element.Children()) {
      if (child.Is("Node")) {
        if (defaultChild && child.Text("id", "") == *defaultChild) node.defaultChild = node.children.size();
        node.children.push_back(ReadNode(child));
      } else if (child.Is("ScoreDistribution")) {
        ReadShare(child, shares);
      } else if (Predicates::IsPredicate(child) && !hasPredicate) {
        hasPredicate = true;
      } else if (!child.Is("Partition")) {  // a Partition describes the data of training
        child.Refuse();
      }
    }
    if (defaultChild && !node.defaultChild)
      element.Fail("the node has no child " + std::string(*defaultChild));
    node.score = ScoreOf(score, shares, element);
    if (!node.recordCount && !shares.empty()) {
      node.recordCount = 0;
      for (const Share& share : shares) *node.recordCount += share.records;
    }
    tree_->nodes[number] = std::move(node);
    tree_->shares[number] = std::move(shares);
    return number;
  }

  void ReadShare(const Element& element, std::vector<Share>& shares) {
    const std::size_t number = result_.classes.Number(element.Text("value"), place_.Build(), element);
    if (shares.size() <= number) shares.resize(number + 1);
    Share& share = shares[number];
    share.records = element.Real("recordCount");
    // Known by being set; the others follow from the counts.
    share.probability = element.Real("probability", kMissing);
    share.confidence = element.Real("confidence", kMissing);
    element.RefuseAnythingElse();
  }

  double ScoreOf(std::optional<std::string_view> score, const std::vector<Share>& shares, const Element& at) {
    if (place_.function == Function::kRegression) {
      if (!score) return kMissing;
      const auto number = ReadReal(*score);
      if (!number) at.Fail("the score \"" + std::string(*score) + "\" is not a number");
      return *number;
    }
    if (score) return static_cast<double>(result_.classes.Number(std::string(*score), place_.Build(), at));
    if (shares.empty()) return kMissing;
    const auto best = std::ranges::max_element(shares, {}, &Share::records);
    return static_cast<double>(best - shares.begin());
  }

  // All nodes list all classes; probabilities that are not given are the shares of the records.
  void SettleClasses() {
    tree_->classes = result_.classes.Count();
    for (auto& shares : tree_->shares) {
      if (shares.empty()) continue;
      shares.resize(tree_->classes);
      double total = 0;
      for (const Share& share : shares) total += share.records;
      for (Share& share : shares) {
        const double fraction = total > 0 ? share.records / total : 0;
        if (std::isnan(share.probability)) share.probability = fraction;
        if (std::isnan(share.confidence)) share.confidence = fraction;
      }
    }
  }

  std::vector<Slot> NewColumns() {
    std::vector<Slot> columns;
    for (std::size_t k = 0; k < tree_->classes; ++k) columns.push_back(place_.NewResult(model_));
    return columns;
  }

  const Element& model_;
  ModelPlace& place_;
  std::unique_ptr<Tree> tree_ = std::make_unique<Tree>();
  std::vector<std::string> ids_;
  ModelResult result_;
};

}  // namespace

ModelResult ReadTreeModel(const Element& model, ModelPlace& place) {
  return TreeReader(model, place).Read();
}

}  // namespace brenvolt::pmml
