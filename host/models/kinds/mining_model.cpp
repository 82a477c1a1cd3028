// MiningModel: several models as one, by vote, mean, median, sum and the like, by choice, or as a chain.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Method : std::uint8_t {
  kMajorityVote,
  kWeightedMajorityVote,
  kAverage,
  kWeightedAverage,
  kMedian,
  kWeightedMedian,
  kMax,
  kSum,
  kWeightedSum,
  kSelectFirst,
  kSelectAll,
  kModelChain  // also with a chain for each of several targets
};
enum class WhenMissing : std::uint8_t { kContinue, kSkip, kReturn };

// What a segment predicts of a target of the whole.
struct Part {
  const ModelResult* result = nullptr;
  std::size_t target = 0;
  std::vector<double> numbers;  // of the segment's classes among those of the whole
};

struct Segment {
  std::string id;
  PredicateNumber predicate = 0;
  double weight = 1;
  std::unique_ptr<Program> program = std::make_unique<Program>();
  std::shared_ptr<ModelResult> result;
  std::vector<OutputColumn> outputs;
  std::vector<Part> parts;

  const std::vector<double>& Numbers() const { return parts.front().numbers; }
};

using Rows = std::array<bool, kBlockRows>;

// Values of the segments for one row with their weights.
struct Sample {
  std::vector<std::pair<double, double>> values;  // value, weight

  double Median() {
    std::ranges::sort(values);
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle].first
                                  : (values[middle - 1].first + values[middle].first) / 2;
  }
  // The least value at which half of the weight is reached.
  double WeightedMedian() {
    std::ranges::sort(values);
    double total = 0;
    for (const auto& [value, weight] : values) total += weight;
    double sum = 0;
    for (const auto& [value, weight] : values) {
      sum += weight;
      if (2 * sum >= total) return value;
    }
    return kMissing;
  }
};

bool IsWeighted(Method method) {
  return method == Method::kWeightedMajorityVote || method == Method::kWeightedAverage ||
         method == Method::kWeightedMedian || method == Method::kWeightedSum;
}
bool IsVote(Method method) {
  return method == Method::kMajorityVote || method == Method::kWeightedMajorityVote;
}
bool IsMean(Method method) {
  return method == Method::kAverage || method == Method::kWeightedAverage;
}
bool IsMedian(Method method) {
  return method == Method::kMedian || method == Method::kWeightedMedian;
}
bool IsChoice(Method method) {
  return method == Method::kSelectFirst || method == Method::kSelectAll || method == Method::kModelChain;
}

// The columns of a target that segments are chosen for.
struct Chosen {
  Function function = Function::kRegression;
  Slot value = kNoSlot;
  std::vector<Slot> probabilities;
  Slot segment = kNoSlot;
};

struct Ensemble {
  Method method = Method::kAverage;
  WhenMissing whenMissing = WhenMissing::kContinue;
  double missingThreshold = 1;
  Predicates predicates;
  std::vector<Segment> segments;
  Slot value = kNoSlot;
  std::vector<Slot> probabilities;
  std::vector<Chosen> chosen;  // by target, of choices

  // The rows for which a segment's predicate is true; whether there are any.
  bool Select(const Segment& segment, const Frame& frame, Rows& rows) const {
    if (predicates[segment.predicate].test == Test::kTrue) {
      rows.fill(true);
      return true;
    }
    bool any = false;
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      rows[i] = predicates.Evaluate(segment.predicate, frame, i) == Outcome::kTrue;
      any = any || rows[i];
    }
    return any;
  }

  double WeightOf(const Segment& segment) const { return IsWeighted(method) ? segment.weight : 1; }
};

// Choices: each row has the result of one segment for each target.
class ChoiceStep final : public Step {
 public:
  explicit ChoiceStep(std::unique_ptr<Ensemble> ensemble) : ensemble_(std::move(ensemble)) {}

  void Run(Frame& frame) const override {
    const Ensemble& e = *ensemble_;
    Clear(frame);
    std::vector<Rows> isDone(e.chosen.size());
    Rows selected{};
    const bool takesFirst = e.method != Method::kModelChain;
    for (std::size_t s = 0; s < e.segments.size(); ++s) {
      const Segment& segment = e.segments[s];
      const bool any = e.Select(segment, frame, selected);
      if (any) RunProgram(*segment.program, frame);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        if (!selected[i]) Forget(segment, i, frame);
      }
      for (const Part& part : segment.parts) {
        Rows& done = isDone[part.target];
        for (std::size_t i = 0; i < frame.Rows(); ++i) {
          if (!selected[i] || (takesFirst && done[i])) continue;
          Take(part, s, i, frame);
          done[i] = true;
        }
      }
    }
  }

 private:
  void Clear(Frame& frame) const {
    const auto clear = [&](Slot slot) { std::fill_n(frame.Out(slot), frame.Rows(), kMissing); };
    for (const Chosen& chosen : ensemble_->chosen) {
      clear(chosen.value);
      for (const Slot slot : chosen.probabilities) clear(slot);
      clear(chosen.segment);
    }
  }

  // A segment that is not chosen leaves nothing for a row.
  static void Forget(const Segment& segment, std::size_t row, Frame& frame) {
    const auto clear = [&](Slot slot) {
      if (slot >= 0 && slot != kNoSlot) frame.Out(slot)[row] = kMissing;
    };
    clear(segment.result->value);
    for (const ModelResult& other : segment.result->others) clear(other.value);
    for (const OutputColumn& output : segment.outputs) clear(output.operand.slot);
  }

  void Take(const Part& part, std::size_t number, std::size_t row, Frame& frame) const {
    const Chosen& chosen = ensemble_->chosen[part.target];
    const ModelResult& result = *part.result;
    frame.Out(chosen.segment)[row] = static_cast<double>(number);
    if (result.function != chosen.function) {
      frame.Out(chosen.value)[row] = kMissing;
      return;
    }
    const double value = frame.In(result.value)[row];
    const bool isNumber = chosen.function == Function::kRegression || std::isnan(value);
    frame.Out(chosen.value)[row] = isNumber ? value : part.numbers[static_cast<std::size_t>(value)];
    for (const Slot slot : chosen.probabilities)
      frame.Out(slot)[row] = result.probabilities.empty() ? kMissing : 0;
    for (std::size_t k = 0; k < result.probabilities.size(); ++k) {
      const auto at = static_cast<std::size_t>(part.numbers[k]);
      frame.Out(chosen.probabilities[at])[row] = frame.In(result.probabilities[k])[row];
    }
  }

  std::unique_ptr<Ensemble> ensemble_;
};

// Numbers of all segments put together.
class NumberStep final : public Step {
 public:
  explicit NumberStep(std::unique_ptr<Ensemble> ensemble) : ensemble_(std::move(ensemble)) {}

  void Run(Frame& frame) const override {
    const Ensemble& e = *ensemble_;
    const std::size_t rows = frame.Rows();
    std::array<double, kBlockRows> sum{};
    std::array<double, kBlockRows> weight{};
    std::array<double, kBlockRows> lost{};
    std::array<double, kBlockRows> greatest;
    greatest.fill(-std::numeric_limits<double>::infinity());
    std::vector<Sample> samples(IsMedian(e.method) ? rows : 0);
    Rows selected{};
    for (const Segment& segment : e.segments) {
      if (!e.Select(segment, frame, selected)) continue;
      RunProgram(*segment.program, frame);
      const double* x = frame.In(segment.result->value);
      const double w = e.WeightOf(segment);
      for (std::size_t i = 0; i < rows; ++i) {
        if (!selected[i]) continue;
        if (std::isnan(x[i])) {
          lost[i] += w;
          continue;
        }
        sum[i] += w * x[i];
        weight[i] += w;
        greatest[i] = std::fmax(greatest[i], x[i]);
        if (!samples.empty()) samples[i].values.emplace_back(x[i], w);
      }
    }
    double* y = frame.Out(e.value);
    for (std::size_t i = 0; i < rows; ++i) {
      const bool isLost = lost[i] > 0 && (e.whenMissing != WhenMissing::kSkip ||
                                          lost[i] > e.missingThreshold * (lost[i] + weight[i]));
      if (weight[i] == 0 || isLost) {
        y[i] = kMissing;
      } else if (IsMean(e.method)) {
        y[i] = sum[i] / weight[i];
      } else if (IsMedian(e.method)) {
        y[i] = e.method == Method::kMedian ? samples[i].Median() : samples[i].WeightedMedian();
      } else {
        y[i] = e.method == Method::kMax ? greatest[i] : sum[i];
      }
    }
  }

 private:
  std::unique_ptr<Ensemble> ensemble_;
};

// Classes: votes, or probabilities put together.
class ClassStep final : public Step {
 public:
  explicit ClassStep(std::unique_ptr<Ensemble> ensemble) : ensemble_(std::move(ensemble)) {}

  void Run(Frame& frame) const override {
    const Ensemble& e = *ensemble_;
    const std::size_t rows = frame.Rows();
    const std::size_t classes = e.probabilities.size();
    for (const Slot slot : e.probabilities) std::fill_n(frame.Out(slot), rows, 0.0);
    std::array<double, kBlockRows> weight{};
    std::array<double, kBlockRows> lost{};
    std::array<double, kBlockRows> greatest{};
    std::vector<Sample> samples(IsMedian(e.method) ? rows * classes : 0);
    Rows selected{};
    for (const Segment& segment : e.segments) {
      if (!e.Select(segment, frame, selected)) continue;
      RunProgram(*segment.program, frame);
      const double* winner = frame.In(segment.result->value);
      const double w = e.WeightOf(segment);
      for (std::size_t i = 0; i < rows; ++i) {
        if (!selected[i]) continue;
        if (std::isnan(winner[i])) {
          lost[i] += w;
        } else if (IsVote(e.method)) {
          frame.Out(e.probabilities[static_cast<std::size_t>(
              segment.Numbers()[static_cast<std::size_t>(winner[i])])])[i] += w;
          weight[i] += w;
        } else if (e.method == Method::kMax) {
          TakeGreatest(segment, i, greatest[i], weight[i], frame);
        } else {
          weight[i] += w;
          AddProbabilities(segment, i, w, samples, frame);
        }
      }
    }
    for (std::size_t i = 0; i < rows; ++i) {
      const bool refuses = e.whenMissing == WhenMissing::kReturn ||
                           (e.whenMissing == WhenMissing::kContinue && !IsVote(e.method));
      const bool isLost = lost[i] > 0 && (refuses || lost[i] > e.missingThreshold * (lost[i] + weight[i]));
      for (std::size_t k = 0; k < classes; ++k) {
        double& p = frame.Out(e.probabilities[k])[i];
        if (weight[i] == 0 || isLost) {
          p = kMissing;
        } else if (IsMedian(e.method)) {
          Sample& sample = samples[i * classes + k];
          p = e.method == Method::kMedian ? sample.Median() : sample.WeightedMedian();
        } else {
          p /= weight[i];
        }
      }
    }
  }

 private:
  void AddProbabilities(const Segment& segment, std::size_t row, double w, std::vector<Sample>& samples,
                        Frame& frame) const {
    const auto& from = segment.result->probabilities;
    const std::size_t classes = ensemble_->probabilities.size();
    for (std::size_t k = 0; k < from.size(); ++k) {
      const auto to = static_cast<std::size_t>(segment.Numbers()[k]);
      const double p = frame.In(from[k])[row];
      if (samples.empty()) {
        frame.Out(ensemble_->probabilities[to])[row] += w * p;
      } else {
        samples[row * classes + to].values.emplace_back(p, w);
      }
    }
  }

  // The segments with the greatest probability of any class, their probabilities averaged.
  void TakeGreatest(const Segment& segment, std::size_t row, double& greatest, double& count,
                    Frame& frame) const {
    double own = 0;
    for (const Slot slot : segment.result->probabilities) own = std::fmax(own, frame.In(slot)[row]);
    if (own < greatest) return;
    if (own > greatest) {
      greatest = own;
      count = 0;
      for (const Slot slot : ensemble_->probabilities) frame.Out(slot)[row] = 0;
    }
    std::vector<Sample> none;
    AddProbabilities(segment, row, 1, none, frame);
    count += 1;
  }

  std::unique_ptr<Ensemble> ensemble_;
};

class EnsembleReader {
 public:
  EnsembleReader(const Element& model, ModelPlace& place) : model_(model), place_(place) {}

  ModelResult Read() {
    const std::vector<Element> children = OwnChildren(model_);
    if (children.size() > 1) children[1].Refuse();
    if (children.empty() || !children.front().Is("Segmentation"))
      model_.Fail("the model has no Segmentation");
    const Element& segmentation = children.front();
    ReadHead(segmentation);
    StartResults();
    // Later segments may name what a segment gives.
    Scope& inside = place_.Build().NewScope(&place_.scope, place_.program);
    for (const Element& child : segmentation.Children()) {
      if (!child.Is("Segment")) child.Refuse();
      ReadSegment(child, inside);
    }
    if (ensemble_->segments.empty()) segmentation.Fail("the model has no segments");
    return Finish();
  }

 private:
  void ReadHead(const Element& segmentation) {
    Ensemble& e = *ensemble_;
    e.method = segmentation.Choice<Method>("multipleModelMethod",
                                           {{"majorityVote", Method::kMajorityVote},
                                            {"weightedMajorityVote", Method::kWeightedMajorityVote},
                                            {"average", Method::kAverage},
                                            {"weightedAverage", Method::kWeightedAverage},
                                            {"median", Method::kMedian},
                                            {"weightedMedian", Method::kWeightedMedian},
                                            {"x-weightedMedian", Method::kWeightedMedian},
                                            {"max", Method::kMax},
                                            {"sum", Method::kSum},
                                            {"weightedSum", Method::kWeightedSum},
                                            {"x-weightedSum", Method::kWeightedSum},
                                            {"selectFirst", Method::kSelectFirst},
                                            {"selectAll", Method::kSelectAll},
                                            {"modelChain", Method::kModelChain},
                                            {"multiModelChain", Method::kModelChain},
                                            {"x-multiModelChain", Method::kModelChain}});
    if (!place_.targets.empty() && !IsChoice(e.method))
      segmentation.Fail("several targets can only be predicted by a chain or a choice of segments");
    e.whenMissing = segmentation.Choice<WhenMissing>("missingPredictionTreatment",
                                                     {{"continue", WhenMissing::kContinue},
                                                      {"skipSegment", WhenMissing::kSkip},
                                                      {"returnMissing", WhenMissing::kReturn}},
                                                     WhenMissing::kContinue);
    e.missingThreshold = segmentation.Real("missingThreshold", 1);
    segmentation.RefuseOtherAttributes();
    const bool isNumeric = place_.function == Function::kRegression;
    if (IsVote(e.method) && isNumeric)
      segmentation.Fail("only classes and clusters can be combined by a vote");
    const bool isSum = e.method == Method::kSum || e.method == Method::kWeightedSum;
    if (isSum && !isNumeric) segmentation.Fail("only numbers can be combined by a sum");
    if (place_.function == Function::kClustering && !IsVote(e.method) && !IsChoice(e.method)) {
      segmentation.Fail("clusters can only be combined by votes or choices");
    }
  }

  // Whether the segments may leave their results in the same columns.
  bool CanShareColumns() const {
    if (IsChoice(ensemble_->method)) return false;
    const auto output = model_.FindChild("Output");
    return !output || std::ranges::none_of(output->Children(), [](const Element& field) {
      return field.Find("segmentId").has_value();
    });
  }

  void ReadSegment(const Element& element, Scope& inside) {
    Ensemble& e = *ensemble_;
    Segment segment;
    segment.id = element.Text("id", std::to_string(e.segments.size() + 1));
    segment.weight = element.Real("weight", 1);
    if (segment.weight < 0) element.Fail("a weight must not be below 0");
    element.RefuseOtherAttributes();
    std::optional<Element> model;
    const Element predicate = Predicates::ChildOf(element);
    segment.predicate = e.predicates.Add(predicate, Place{inside, place_.program});
    int predicates = 0;
    for (const Element& child : element.Children()) {
      if (IsModel(child) && !model) {
        model = child;
      } else if (!Predicates::IsPredicate(child) || ++predicates > 1) {
        child.Refuse();
      }
    }
    if (!model) element.Fail("the segment has no model");
    ReadOptions options;
    options.outer = &place_;
    if (!IsChoice(e.method)) {
      const bool isClass = place_.function == Function::kClassification && !IsVote(e.method);
      options.wants = {.probabilities = isClass, .confidences = false, .entities = false};
    }
    options.reuse = CanShareColumns() ? &shared_ : nullptr;
    segment.result =
        std::make_shared<ModelResult>(ReadModel(*model, inside, *segment.program, options, segment.outputs));
    AddPart(*segment.result, *model, segment);
    for (const ModelResult& other : segment.result->others) AddPart(other, *model, segment);
    for (const OutputColumn& output : segment.outputs) {
      if (output.fault) {
        inside.DefineFault(output.name, *output.fault);
      } else {
        inside.Define(output.name, output.operand, output.fields);
      }
    }
    std::erase_if(segment.outputs, [](const OutputColumn& output) { return output.fault.has_value(); });
    if (options.reuse == nullptr) segments_[segment.id] = segment.result;
    e.segments.push_back(std::move(segment));
  }

  // A result for each target, or the one.
  void StartResults() {
    if (place_.targets.empty()) {
      results_.emplace_back();
      results_.front().classes = place_.classes;
      Complete(results_.front(), {place_.target, place_.field, place_.function});
    }
    for (const Target& target : place_.targets) {
      ModelResult& result = results_.emplace_back();
      if (target.field != nullptr) result.classes = Classes(*target.field);
      Complete(result, target);
    }
    isPredicted_.assign(results_.size(), false);
  }

  // Of several targets a segment predicts the one that it names itself; the first segment of each says whether
  // that is a number or a class.
  void AddPart(const ModelResult& part, const Element& model, Segment& segment) {
    std::size_t target = 0;
    if (results_.size() > 1) {
      const auto found = std::ranges::find(results_, part.target, &ModelResult::target);
      if (found == results_.end()) return;
      target = static_cast<std::size_t>(found - results_.begin());
      if (!isPredicted_[target]) found->function = part.function;
    } else if (&part != segment.result.get()) {
      return;
    }
    isPredicted_[target] = true;
    ModelResult& whole = results_[target];
    CheckFunction(part, whole.function, model);
    Part added{&part, target, {}};
    for (const std::string& label : part.classes.Labels()) {
      added.numbers.push_back(whole.function == part.function
                                  ? static_cast<double>(whole.classes.Number(label, place_.Build(), model))
                                  : kMissing);
    }
    segment.parts.push_back(std::move(added));
  }

  void CheckFunction(const ModelResult& result, Function whole, const Element& model) const {
    if (ensemble_->method == Method::kModelChain) return;
    if (result.function != whole) model.Fail("the segment's function differs from that of the whole model");
    const bool needsProbabilities = place_.function == Function::kClassification &&
                                    !IsChoice(ensemble_->method) && !IsVote(ensemble_->method);
    if (needsProbabilities && result.probabilities.empty())
      model.Fail("the segment has no probabilities to combine");
  }

  ModelResult Finish() {
    return IsChoice(ensemble_->method) ? FinishChoice() : FinishCombination(results_.front());
  }

  ModelResult FinishCombination(ModelResult& result) {
    Ensemble& e = *ensemble_;
    const bool isClass = result.function != Function::kRegression;
    result.value = e.value = place_.NewResult(model_);
    if (isClass) AddProbabilities(result);
    e.probabilities = result.probabilities;
    if (isClass) {
      place_.program.push_back(std::make_unique<ClassStep>(std::move(ensemble_)));
      AddGreatest(result.probabilities, result.value, place_.program);
    } else {
      place_.program.push_back(std::make_unique<NumberStep>(std::move(ensemble_)));
    }
    result.segments = std::move(segments_);
    return std::move(result);
  }

  ModelResult FinishChoice() {
    std::vector<ModelResult> given;
    for (std::size_t t = 0; t < results_.size(); ++t) {
      ModelResult& result = results_[t];
      Chosen chosen;
      chosen.function = result.function;
      result.value = chosen.value = place_.NewResult(model_);
      if (result.function != Function::kRegression && HasProbabilities(t)) AddProbabilities(result);
      chosen.probabilities = result.probabilities;
      chosen.segment = place_.NewResult(model_);
      result.entities = {chosen.segment};
      for (const Segment& segment : ensemble_->segments) result.entityIds.push_back(segment.id);
      ensemble_->chosen.push_back(std::move(chosen));
      if (isPredicted_[t]) given.push_back(std::move(result));
    }
    if (given.empty()) model_.Fail("no segment predicts a target of the model");
    given.front().segments = std::move(segments_);
    place_.program.push_back(std::make_unique<ChoiceStep>(std::move(ensemble_)));
    return Together(std::move(given));
  }

  // Whether any segment has probabilities for the classes of a target.
  bool HasProbabilities(std::size_t target) const {
    for (const Segment& segment : ensemble_->segments) {
      for (const Part& part : segment.parts) {
        const bool counts = part.target == target && part.result->function == results_[target].function;
        if (counts && !part.result->probabilities.empty()) return true;
      }
    }
    return false;
  }

  void AddProbabilities(ModelResult& result) {
    for (std::size_t k = 0; k < result.classes.Count(); ++k)
      result.probabilities.push_back(place_.NewResult(model_));
    result.confidences = result.probabilities;
  }

  const Element& model_;
  ModelPlace& place_;
  std::unique_ptr<Ensemble> ensemble_ = std::make_unique<Ensemble>();
  std::vector<Slot> shared_;
  std::vector<ModelResult> results_;  // by target
  std::vector<bool> isPredicted_;     // by target, whether a segment predicts it
  std::map<std::string, std::shared_ptr<const ModelResult>> segments_;
};

}  // namespace

ModelResult ReadMiningModel(const Element& model, ModelPlace& place) {
  return EnsembleReader(model, place).Read();
}

}  // namespace brenvolt::pmml
