// RuleSetModel: rules, of which the first that fires, the one of the greatest weight, or the weights by class
// decide.
#include <algorithm>
#include <cmath>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Criterion : std::uint8_t { kFirstHit, kWeightedSum, kWeightedMax };

// A rule with the predicates that all must be true: its own and those of the rules around it.
struct Rule {
  std::vector<PredicateNumber> predicates;
  double score = kMissing;  // the number of the class, or a number
  double weight = 1;
  double confidence = 1;
};

struct RuleSet {
  Criterion criterion = Criterion::kFirstHit;
  Predicates predicates;
  std::vector<Rule> rules;
  double otherwise = kMissing;
  double otherwiseConfidence = kMissing;
  std::size_t classes = 0;

  bool Fires(const Rule& rule, const Frame& frame, std::size_t row) const {
    return std::ranges::all_of(rule.predicates, [&](PredicateNumber number) {
      return predicates.Evaluate(number, frame, row) == Outcome::kTrue;
    });
  }
};

struct Verdict {
  double score = kMissing;
  double confidence = kMissing;
  double rule = kMissing;
};

// The rule of the greatest weight, or the first, that fires.
Verdict ByRule(const RuleSet& set, const Frame& frame, std::size_t row) {
  Verdict verdict{set.otherwise, set.otherwiseConfidence, kMissing};
  double greatest = -std::numeric_limits<double>::infinity();
  for (std::size_t r = 0; r < set.rules.size(); ++r) {
    const Rule& rule = set.rules[r];
    if (rule.weight <= greatest || !set.Fires(rule, frame, row)) continue;
    verdict = {rule.score, rule.confidence, static_cast<double>(r)};
    greatest = rule.weight;
    if (set.criterion == Criterion::kFirstHit) break;
  }
  return verdict;
}

// The class whose rules weigh most; its confidence is their weight over the number of rules that fired.
Verdict BySum(const RuleSet& set, const Frame& frame, std::size_t row, std::vector<double>& sums) {
  std::ranges::fill(sums, 0.0);
  double fired = 0;
  for (const Rule& rule : set.rules) {
    if (!set.Fires(rule, frame, row)) continue;
    sums[static_cast<std::size_t>(rule.score)] += rule.weight;
    ++fired;
  }
  if (fired == 0) return {set.otherwise, set.otherwiseConfidence, kMissing};
  const auto best = std::ranges::max_element(sums);
  Verdict verdict{static_cast<double>(best - sums.begin()), *best / fired, kMissing};
  double greatest = -std::numeric_limits<double>::infinity();
  for (std::size_t r = 0; r < set.rules.size(); ++r) {
    const Rule& rule = set.rules[r];
    if (rule.score != verdict.score || rule.weight <= greatest || !set.Fires(rule, frame, row)) continue;
    greatest = rule.weight;
    verdict.rule = static_cast<double>(r);
  }
  return verdict;
}

class RuleReader {
 public:
  RuleReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    const std::vector<Element> children = OwnChildren(model_);
    if (children.empty() || !children.front().Is("RuleSet")) model_.Fail("the model has no RuleSet");
    if (children.size() > 1) children[1].Refuse();
    result_.classes = place_.classes;
    ReadSet(children.front());
    result_.value = place_.NewResult(model_);
    const Slot confidence = place_.NewResult(model_);
    const Slot rule = place_.NewResult(model_);
    set_->classes = result_.classes.Count();
    AddStep(place_.program, [set = std::shared_ptr<const RuleSet>(std::move(set_)), value = result_.value,
                             confidence, rule](Frame& frame) {
      std::vector<double> sums(set->classes);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const Verdict verdict =
            set->criterion == Criterion::kWeightedSum ? BySum(*set, frame, i, sums) : ByRule(*set, frame, i);
        frame.Out(value)[i] = verdict.score;
        frame.Out(confidence)[i] = verdict.confidence;
        frame.Out(rule)[i] = verdict.rule;
      }
    });
    AddConfidences(confidence);
    result_.entities = {rule};
    result_.entityIds = ids_;
    return result_;
  }

 private:
  double Score(const std::string& text, const Element& at) {
    if (place_.function == Function::kClassification) {
      return static_cast<double>(result_.classes.Number(text, place_.Build(), at));
    }
    const auto number = ReadReal(text);
    if (!number) at.Fail("the score \"" + text + "\" is not a number");
    return *number;
  }

  void ReadSet(const Element& element) {
    element.PassOver({"recordCount", "nbCorrect"});
    const auto otherwise = element.Find("defaultScore");
    if (otherwise) set_->otherwise = Score(std::string(*otherwise), element);
    set_->otherwiseConfidence = element.Real("defaultConfidence", otherwise ? 0 : kMissing);
    element.RefuseOtherAttributes();
    bool hasMethod = false;
    for (const Element& child : element.Children()) {
      if (child.Is("RuleSelectionMethod")) {
        const auto criterion =
            child.Choice<Criterion>("criterion", {{"firstHit", Criterion::kFirstHit},
                                                  {"weightedSum", Criterion::kWeightedSum},
                                                  {"weightedMax", Criterion::kWeightedMax}});
        child.RefuseAnythingElse();
        // The first method is the one to use if none is chosen.
        if (!hasMethod) set_->criterion = criterion;
        hasMethod = true;
      } else if (child.Is("SimpleRule") || child.Is("CompoundRule")) {
        ReadRule(child, {});
      } else if (!child.Is("ScoreDistribution")) {  // describes the data of training
        child.Refuse();
      }
    }
    if (!hasMethod) element.Fail("the rule set has no RuleSelectionMethod");
    if (set_->criterion == Criterion::kWeightedSum && place_.function != Function::kClassification) {
      element.Fail("weights are summed by class, but the model has none");
    }
  }

  void ReadRule(const Element& element, std::vector<PredicateNumber> around) {
    const Element predicate = Predicates::ChildOf(element);
    around.push_back(set_->predicates.Add(predicate, place_));
    if (element.Is("CompoundRule")) {
      element.RefuseOtherAttributes();
    } else {
      ReadSimple(element, around);
    }
    int predicates = 0;
    for (const Element& child : element.Children()) {
      const bool isRule = child.Is("SimpleRule") || child.Is("CompoundRule");
      if (Predicates::IsPredicate(child) && ++predicates == 1) continue;
      if (isRule && element.Is("CompoundRule")) {
        ReadRule(child, around);
      } else if (!child.Is("ScoreDistribution")) {
        child.Refuse();
      }
    }
  }

  void ReadSimple(const Element& element, const std::vector<PredicateNumber>& predicates) {
    Rule rule;
    rule.predicates = predicates;
    rule.score = Score(element.Text("score"), element);
    rule.weight = element.Real("weight", 1);
    rule.confidence = element.Real("confidence", 1);
    ids_.push_back(element.Text("id", std::to_string(ids_.size() + 1)));
    element.PassOver({"recordCount", "nbCorrect"});
    element.RefuseOtherAttributes();
    set_->rules.push_back(std::move(rule));
  }

  // The verdict's confidence is in the column of its class.
  void AddConfidences(Slot confidence) {
    if (place_.function != Function::kClassification) return;
    for (std::size_t k = 0; k < result_.classes.Count(); ++k)
      result_.confidences.push_back(place_.NewResult(model_));
    AddStep(place_.program, [confidence, value = result_.value, slots = result_.confidences](Frame& frame) {
      for (std::size_t k = 0; k < slots.size(); ++k) {
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          const bool isWinner = frame.In(value)[i] == static_cast<double>(k);
          frame.Out(slots[k])[i] = isWinner ? frame.In(confidence)[i] : 0;
        }
      }
    });
  }

  const Element& model_;
  ModelPlace& place_;
  std::unique_ptr<RuleSet> set_ = std::make_unique<RuleSet>();
  std::vector<std::string> ids_;
  ModelResult result_;
};

}  // namespace

ModelResult ReadRuleSetModel(const Element& model, ModelPlace& place) {
  return RuleReader(model, place).Read();
}

}  // namespace brenvolt::pmml
