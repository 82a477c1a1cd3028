// NaiveBayesModel: classes by their prior counts and the likelihoods of each input on its own.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

// Of an input in one class: the logarithm of a density.
struct Density {
  enum class Kind : std::uint8_t { kNone, kNormal, kPoisson, kUniform } kind = Kind::kNone;
  double a = 0;  // mean; lower bound
  double b = 1;  // variance; upper bound

  double At(double x) const {
    switch (kind) {
      case Kind::kNormal:
        return std::exp(-(x - a) * (x - a) / (2 * b)) / std::sqrt(2 * std::numbers::pi * b);
      case Kind::kPoisson:
        return x < 0 || x != std::floor(x) ? 0 : std::exp(x * std::log(a) - a - std::lgamma(x + 1));
      case Kind::kUniform:
        return x >= a && x <= b ? 1 / (b - a) : 0;
      default:
        return 0;
    }
  }
};

struct Input {
  Slot slot = kNoSlot;
  // Of a categorical input, per value its probability in each class.
  std::vector<std::pair<double, std::vector<double>>> values;
  // Of a continuous input, per class.
  std::vector<Density> densities;
};

// Counts by class.
using Counts = std::vector<double>;

class BayesReader {
 public:
  BayesReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    threshold_ = model_.Real("threshold");
    if (place_.function != Function::kClassification)
      model_.Fail("a naive Bayes model must have the function classification");
    result_.classes = place_.classes;
    std::optional<Element> inputs;
    for (const Element& child : OwnChildren(model_)) {
      if (child.Is("BayesInputs") && !inputs) {
        inputs = child;
      } else if (child.Is("BayesOutput") && priors_.empty()) {
        ReadOutput(child);
      } else {
        child.Refuse();
      }
    }
    if (!inputs || priors_.empty()) model_.Fail("the model needs BayesInputs and a BayesOutput");
    inputs->RefuseOtherAttributes();
    for (const Element& input : inputs->ChildrenAndExtended("BayesInput")) {
      if (!input.Is("BayesInput")) input.Refuse();
      ReadInput(input);
    }
    if (inputs_.empty()) inputs->Fail("the model has no inputs that are understood");
    return Finish();
  }

 private:
  // Counts of the classes; those not listed have none.
  Counts ReadCounts(const Element& list) {
    Counts counts(result_.classes.Count());
    list.RefuseOtherAttributes();
    for (const Element& child : list.Children()) {
      if (!child.Is("TargetValueCount")) child.Refuse();
      const std::size_t number = result_.classes.Number(child.Text("value"), place_.Build(), child);
      if (counts.size() <= number) counts.resize(number + 1);
      counts[number] = child.Real("count");
      child.RefuseAnythingElse();
    }
    return counts;
  }

  void ReadOutput(const Element& output) {
    output.PassOver({"fieldName"});
    output.RefuseOtherAttributes();
    const Element counts = output.OnlyChild();
    if (!counts.Is("TargetValueCounts")) counts.Refuse();
    priors_ = ReadCounts(counts);
  }

  void ReadInput(const Element& element) {
    Input input;
    const std::string name = element.Text("fieldName");
    element.RefuseOtherAttributes();
    Operand operand = place_.scope.Resolve(name, element);
    if (const auto derived = element.FindChild("DerivedField"))
      operand = CompileDerivedField(*derived, place_);
    input.slot = operand.slot;
    std::vector<std::pair<double, Counts>> pairs;
    // Before version 4.1 the distributions had no place of their own.
    for (const Element& child : element.ChildrenAndExtended("TargetValueStats")) {
      if (child.Is("DerivedField")) continue;
      if (child.Is("PairCounts")) {
        const double value = place_.Build().ValueOf(child.Text("value"), operand.type, child);
        child.RefuseOtherAttributes();
        const Element counts = child.OnlyChild();
        if (!counts.Is("TargetValueCounts")) counts.Refuse();
        pairs.emplace_back(value, ReadCounts(counts));
      } else if (child.Is("TargetValueStats")) {
        ReadDensities(child, input);
      } else {
        child.Refuse();
      }
    }
    SettleProbabilities(pairs, input);
    if (input.values.empty() && input.densities.empty())
      element.Fail("the input has neither counts nor distributions");
    inputs_.push_back(std::move(input));
  }

  // P(value | class): the share of the class's cases, the threshold if there are none.
  void SettleProbabilities(std::vector<std::pair<double, Counts>>& pairs, Input& input) const {
    Counts totals(result_.classes.Count());
    for (auto& [value, counts] : pairs) {
      counts.resize(totals.size());
      for (std::size_t k = 0; k < totals.size(); ++k) totals[k] += counts[k];
    }
    for (const auto& [value, counts] : pairs) {
      std::vector<double> shares;
      for (std::size_t k = 0; k < totals.size(); ++k) {
        shares.push_back(counts[k] > 0 ? counts[k] / totals[k] : threshold_);
      }
      input.values.emplace_back(value, std::move(shares));
    }
  }

  void ReadDensities(const Element& element, Input& input) {
    element.RefuseOtherAttributes();
    for (const Element& child : element.Children()) {
      if (!child.Is("TargetValueStat")) child.Refuse();
      const std::size_t number = result_.classes.Number(child.Text("value"), place_.Build(), child);
      child.RefuseOtherAttributes();
      if (input.densities.size() <= number) input.densities.resize(number + 1);
      input.densities[number] = ReadDensity(child.OnlyChild());
    }
  }

  static Density ReadDensity(const Element& element) {
    Density density;
    if (element.Is("GaussianDistribution")) {
      density = {Density::Kind::kNormal, element.Real("mean"), element.Real("variance")};
      if (!(density.b > 0)) element.Fail("the variance must be above 0");
    } else if (element.Is("PoissonDistribution")) {
      density = {Density::Kind::kPoisson, element.Real("mean"), 1};
      if (!(density.a > 0)) element.Fail("the mean must be above 0");
    } else if (element.Is("UniformDistribution")) {
      density = {Density::Kind::kUniform, element.Real("lower"), element.Real("upper")};
      if (!(density.b > density.a)) element.Fail("the bounds must ascend");
    } else {
      element.Refuse();
    }
    element.RefuseAnythingElse();
    return density;
  }

  ModelResult Finish() {
    const std::size_t classes = result_.classes.Count();
    priors_.resize(classes);
    for (Input& input : inputs_) {
      if (!input.densities.empty()) input.densities.resize(classes);
      for (auto& [value, shares] : input.values) shares.resize(classes, threshold_);
    }
    result_.value = place_.NewResult(model_);
    for (std::size_t k = 0; k < classes; ++k) result_.probabilities.push_back(place_.NewResult(model_));
    AddStep(place_.program,
            [inputs = inputs_, priors = priors_, slots = result_.probabilities,
             threshold = threshold_](Frame& frame) { Fill(inputs, priors, threshold, slots, frame); });
    AddGreatest(result_.probabilities, result_.value, place_.program);
    result_.confidences = result_.probabilities;
    return result_;
  }

  // Logarithms of likelihoods, so that many inputs do not underflow. A missing input or a value without
  // counts says nothing.
  static void Fill(const std::vector<Input>& inputs, const Counts& priors, double threshold,
                   const std::vector<Slot>& slots, Frame& frame) {
    std::vector<double> logs(slots.size());
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      for (std::size_t k = 0; k < logs.size(); ++k) logs[k] = std::log(priors[k]);
      for (const Input& input : inputs) {
        const double x = frame.In(input.slot)[i];
        if (std::isnan(x)) continue;
        for (std::size_t k = 0; k < input.densities.size(); ++k) {
          logs[k] += std::log(std::fmax(input.densities[k].At(x), threshold));
        }
        const auto found = std::ranges::find(input.values, x, &std::pair<double, std::vector<double>>::first);
        if (found == input.values.end()) continue;
        for (std::size_t k = 0; k < logs.size(); ++k) logs[k] += std::log(found->second[k]);
      }
      const double greatest = *std::ranges::max_element(logs);
      double sum = 0;
      for (const double value : logs) sum += std::exp(value - greatest);
      for (std::size_t k = 0; k < logs.size(); ++k)
        frame.Out(slots[k])[i] = std::exp(logs[k] - greatest) / sum;
    }
  }

  const Element& model_;
  ModelPlace& place_;
  double threshold_ = 0;
  Counts priors_;
  std::vector<Input> inputs_;
  ModelResult result_;
};

}  // namespace

ModelResult ReadNaiveBayesModel(const Element& model, ModelPlace& place) {
  return BayesReader(model, place).Read();
}

}  // namespace brenvolt::pmml
