// Scorecard: an initial score and the partial scores of attributes, with reasons for low or high scores.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

struct Attribute {
  PredicateNumber predicate = 0;
  Slot score = kNoSlot;
  double reason = kMissing;  // a number of the list of reasons
};

struct Characteristic {
  double baseline = 0;
  std::vector<Attribute> attributes;
};

struct Card {
  double initial = 0;
  bool usesReasons = false;
  bool countsAbove = false;  // reasons are points above the baseline, not below
  Predicates predicates;
  std::vector<Characteristic> characteristics;
};

class CardStep final : public Step {
 public:
  CardStep(std::unique_ptr<Card> card, Slot value, std::vector<Slot> reasons)
      : card_(std::move(card)), value_(value), reasons_(std::move(reasons)) {}

  void Run(Frame& frame) const override {
    // By reason: how far the scores lie from the baseline.
    std::vector<std::pair<double, double>> ranking;
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      ranking.clear();
      double score = card_->initial;
      for (const Characteristic& characteristic : card_->characteristics) {
        const Attribute* attribute = Find(characteristic, frame, i);
        if (attribute == nullptr) {
          score = kMissing;
          break;
        }
        const double partial = frame.In(attribute->score)[i];
        score += partial;
        const double points =
            card_->countsAbove ? partial - characteristic.baseline : characteristic.baseline - partial;
        Note(attribute->reason, points, ranking);
      }
      frame.Out(value_)[i] = score;
      std::ranges::stable_sort(ranking, std::ranges::greater(), &std::pair<double, double>::second);
      for (std::size_t k = 0; k < reasons_.size(); ++k) {
        frame.Out(reasons_[k])[i] = k < ranking.size() && !std::isnan(score) ? ranking[k].first : kMissing;
      }
    }
  }

 private:
  const Attribute* Find(const Characteristic& characteristic, const Frame& frame, std::size_t row) const {
    for (const Attribute& attribute : characteristic.attributes) {
      if (card_->predicates.Evaluate(attribute.predicate, frame, row) == Outcome::kTrue) return &attribute;
    }
    return nullptr;
  }

  // Characteristics that share a reason add up.
  static void Note(double reason, double points, std::vector<std::pair<double, double>>& ranking) {
    if (std::isnan(reason)) return;
    const auto known = std::ranges::find(ranking, reason, &std::pair<double, double>::first);
    if (known != ranking.end()) {
      known->second += points;
    } else {
      ranking.emplace_back(reason, points);
    }
  }

  std::unique_ptr<Card> card_;
  Slot value_;
  std::vector<Slot> reasons_;
};

class CardReader {
 public:
  CardReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    if (place_.function != Function::kRegression)
      model_.Fail("a scorecard must have the function regression");
    card_->initial = model_.Real("initialScore", 0);
    card_->usesReasons = model_.Flag("useReasonCodes", true);
    card_->countsAbove =
        model_.Choice<bool>("reasonCodeAlgorithm", {{"pointsBelow", false}, {"pointsAbove", true}}, false);
    baseline_ = model_.FindReal("baselineScore");
    model_.PassOver({"baselineMethod"});
    const std::vector<Element> children = OwnChildren(model_);
    if (children.empty() || !children.front().Is("Characteristics"))
      model_.Fail("the model has no Characteristics");
    if (children.size() > 1) children[1].Refuse();
    children.front().RefuseOtherAttributes();
    for (const Element& child : children.front().Children()) {
      if (!child.Is("Characteristic")) child.Refuse();
      ReadCharacteristic(child);
    }
    ModelResult result;
    result.value = place_.NewResult(model_);
    for (std::size_t k = 0; k < reasons_.size(); ++k) result.reasons.push_back(place_.NewResult(model_));
    result.reasonCodes = reasons_;
    place_.program.push_back(std::make_unique<CardStep>(std::move(card_), result.value, result.reasons));
    return result;
  }

 private:
  double Reason(const std::string& code) {
    const auto [known, isNew] = places_.emplace(code, reasons_.size());
    if (isNew) reasons_.push_back(code);
    return static_cast<double>(known->second);
  }

  void ReadCharacteristic(const Element& element) {
    Characteristic characteristic;
    element.PassOver({"name"});
    const auto code = element.Find("reasonCode");
    const auto baseline = element.Find("baselineScore") ? element.FindReal("baselineScore") : baseline_;
    if (card_->usesReasons && !baseline) element.Fail("the characteristic has no baseline for its reasons");
    characteristic.baseline = baseline.value_or(0);
    element.RefuseOtherAttributes();
    for (const Element& child : element.Children()) {
      if (!child.Is("Attribute")) child.Refuse();
      characteristic.attributes.push_back(ReadAttribute(child, code));
    }
    card_->characteristics.push_back(std::move(characteristic));
  }

  Attribute ReadAttribute(const Element& element, std::optional<std::string_view> commonCode) {
    Attribute attribute;
    const Element predicate = Predicates::ChildOf(element);
    attribute.predicate = card_->predicates.Add(predicate, place_);
    const auto ownCode = element.Find("reasonCode");
    const auto code = ownCode ? ownCode : commonCode;
    if (card_->usesReasons && !code) element.Fail("the attribute has no reason code");
    if (card_->usesReasons) attribute.reason = Reason(std::string(*code));
    const auto partial = element.FindReal("partialScore");
    element.RefuseOtherAttributes();
    int predicates = 0;
    for (const Element& child : element.Children()) {
      if (child.Is("ComplexPartialScore")) {
        child.RefuseOtherAttributes();
        const Element expression = child.OnlyChild();
        attribute.score = NumberSlot(CompileExpression(expression, place_), place_, expression);
      } else if (!Predicates::IsPredicate(child) || ++predicates > 1) {
        child.Refuse();
      }
    }
    if (attribute.score == kNoSlot) {
      if (!partial) element.Fail("the attribute has no score");
      attribute.score = place_.Build().Constant(*partial);
    }
    return attribute;
  }

  const Element& model_;
  ModelPlace& place_;
  std::unique_ptr<Card> card_ = std::make_unique<Card>();
  std::optional<double> baseline_;
  std::vector<std::string> reasons_;
  std::unordered_map<std::string, std::size_t> places_;  // of the reasons
};

}  // namespace

ModelResult ReadScorecard(const Element& model, ModelPlace& place) {
  return CardReader(model, place).Read();
}

}  // namespace brenvolt::pmml
