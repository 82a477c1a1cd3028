// SupportVectorMachineModel: machines over support vectors or coefficients, one for a regression, several
// against each other for classes.
#include <algorithm>
#include <cmath>
#include <map>

#include "host/models/document/arrays.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class KernelKind : std::uint8_t { kLinear, kPolynomial, kRadial, kSigmoid };

struct Kernel {
  KernelKind kind = KernelKind::kLinear;
  double gamma = 1;
  double shift = 1;
  double degree = 1;

  // From the scalar product of two vectors and the square of their distance.
  double At(double product, double distance) const {
    switch (kind) {
      case KernelKind::kPolynomial:
        return std::pow(gamma * product + shift, degree);
      case KernelKind::kRadial:
        return std::exp(-gamma * distance);
      case KernelKind::kSigmoid:
        return std::tanh(gamma * product + shift);
      default:
        return product;
    }
  }
};

// An input: a field's number, or the coefficient of a category where the field has it.
struct Input {
  Slot slot;
  std::optional<double> category;
  double coefficient = 1;

  double At(const Frame& frame, std::size_t row) const {
    const double x = frame.In(slot)[row];
    if (!category || std::isnan(x)) return x;
    return x == *category ? coefficient : 0;
  }
};

struct Machine {
  double bias = 0;
  std::vector<double> coefficients;
  std::vector<std::size_t> vectors;  // rows of the dictionary; none if the machine has coefficients only
  std::string target;
  std::string alternative;
  std::optional<double> threshold;
};

struct Dictionary {
  std::vector<Input> inputs;
  std::vector<double> values;  // vector after vector
  std::map<std::string, std::size_t> rows;
};

// The decision values of all machines for one row of a block.
class Decisions {
 public:
  Decisions(Kernel kernel, std::shared_ptr<const Dictionary> dictionary,
            std::shared_ptr<const std::vector<Machine>> machines)
      : kernel_(kernel), dictionary_(std::move(dictionary)), machines_(std::move(machines)) {
    std::vector<bool> isUsed(dictionary_->rows.size());
    for (const Machine& machine : *machines_) {
      for (const std::size_t vector : machine.vectors) isUsed[vector] = true;
    }
    for (std::size_t k = 0; k < isUsed.size(); ++k) {
      if (isUsed[k]) used_.push_back(k);
    }
  }

  void Fill(const std::vector<Slot>& slots, Frame& frame) const {
    const std::size_t width = dictionary_->inputs.size();
    std::vector<double> x(width);
    std::vector<double> similarity(dictionary_->rows.size());
    for (std::size_t row = 0; row < frame.Rows(); ++row) {
      for (std::size_t k = 0; k < width; ++k) x[k] = dictionary_->inputs[k].At(frame, row);
      for (const std::size_t vector : used_) similarity[vector] = Similarity(x, vector);
      for (std::size_t m = 0; m < slots.size(); ++m)
        frame.Out(slots[m])[row] = Decide((*machines_)[m], x, similarity);
    }
  }

 private:
  double Similarity(const std::vector<double>& x, std::size_t vector) const {
    const double* v = dictionary_->values.data() + vector * x.size();
    double product = 0;
    double distance = 0;
    for (std::size_t k = 0; k < x.size(); ++k) {
      product += x[k] * v[k];
      distance += (x[k] - v[k]) * (x[k] - v[k]);
    }
    return kernel_.At(product, distance);
  }

  static double Decide(const Machine& machine, const std::vector<double>& x,
                       const std::vector<double>& similarity) {
    double sum = machine.bias;
    const bool isLinear = machine.vectors.empty();
    for (std::size_t k = 0; k < machine.coefficients.size(); ++k) {
      sum += machine.coefficients[k] * (isLinear ? x[k] : similarity[machine.vectors[k]]);
    }
    return sum;
  }

  Kernel kernel_;
  std::shared_ptr<const Dictionary> dictionary_;
  std::shared_ptr<const std::vector<Machine>> machines_;
  std::vector<std::size_t> used_;
};

std::optional<Kernel> ReadKernel(const Element& element) {
  Kernel kernel;
  if (element.Is("LinearKernelType")) {
    kernel.kind = KernelKind::kLinear;
  } else if (element.Is("PolynomialKernelType")) {
    kernel.kind = KernelKind::kPolynomial;
    kernel.degree = element.Real("degree", 1);
  } else if (element.Is("RadialBasisKernelType")) {
    kernel.kind = KernelKind::kRadial;
  } else if (element.Is("SigmoidKernelType")) {
    kernel.kind = KernelKind::kSigmoid;
  } else {
    return std::nullopt;
  }
  element.PassOver({"description"});
  if (kernel.kind != KernelKind::kLinear) kernel.gamma = element.Real("gamma", 1);
  if (kernel.kind == KernelKind::kPolynomial || kernel.kind == KernelKind::kSigmoid) {
    kernel.shift = element.Real("coef0", 1);
  }
  element.RefuseAnythingElse();
  return kernel;
}

Input ReadInput(const Element& element, const Place& place) {
  if (element.Is("FieldRef")) return {NumberSlot(CompileExpression(element, place), place, element), {}, 1};
  if (!element.Is("CategoricalPredictor")) element.Refuse();
  const Operand operand = place.scope.Resolve(element.Text("name"), element);
  const double value = place.Build().ValueOf(element.Text("value"), operand.type, element);
  const double coefficient = element.Real("coefficient");
  element.RefuseAnythingElse();
  return {operand.slot, value, coefficient};
}

Dictionary ReadDictionary(const Element& element, const Place& place) {
  Dictionary dictionary;
  element.PassOver({"numberOfVectors"});
  element.RefuseOtherAttributes();
  const Element fields = element.Child("VectorFields");
  fields.PassOver({"numberOfFields"});
  fields.RefuseOtherAttributes();
  for (const Element& field : fields.Children()) dictionary.inputs.push_back(ReadInput(field, place));
  for (const Element& instance : element.Children()) {
    if (instance.Is("VectorFields")) continue;
    if (!instance.Is("VectorInstance")) instance.Refuse();
    const std::string id = instance.Text("id");
    if (!dictionary.rows.emplace(id, dictionary.rows.size()).second)
      instance.Fail("two vectors have the number " + id);
    instance.RefuseOtherAttributes();
    const std::vector<double> values = ReadNumbers(instance.OnlyChild(), dictionary.inputs.size());
    dictionary.values.insert(dictionary.values.end(), values.begin(), values.end());
  }
  return dictionary;
}

Machine ReadMachine(const Element& element, const Dictionary& dictionary) {
  Machine machine;
  machine.target = element.Text("targetCategory", "");
  machine.alternative = element.Text("alternateTargetCategory", "");
  machine.threshold = element.FindReal("threshold");
  element.RefuseOtherAttributes();
  for (const Element& child : element.Children()) {
    if (child.Is("SupportVectors")) {
      child.PassOver({"numberOfSupportVectors", "numberOfAttributes"});
      child.RefuseOtherAttributes();
      for (const Element& vector : child.Children()) {
        if (!vector.Is("SupportVector")) vector.Refuse();
        const auto row = dictionary.rows.find(vector.Text("vectorId"));
        if (row == dictionary.rows.end()) vector.Fail("unknown vector " + vector.Text("vectorId"));
        machine.vectors.push_back(row->second);
        vector.RefuseAnythingElse();
      }
    } else if (child.Is("Coefficients")) {
      child.PassOver({"numberOfCoefficients"});
      machine.bias = child.Real("absoluteValue", 0);
      child.RefuseOtherAttributes();
      for (const Element& coefficient : child.Children()) {
        if (!coefficient.Is("Coefficient")) coefficient.Refuse();
        machine.coefficients.push_back(coefficient.Real("value", 0));
        coefficient.RefuseAnythingElse();
      }
    } else {
      child.Refuse();
    }
  }
  return machine;
}

// Which class a machine of two speaks for.
struct Duel {
  std::size_t below = 0;  // where the decision value is below the threshold
  std::size_t above = 0;
  double threshold = 0;
};

void AddVotes(const std::vector<Slot>& decisions, const std::vector<Duel>& duels,
              const std::vector<Slot>& votes, Program& program) {
  AddStep(program, [decisions, duels, votes](Frame& frame) {
    for (const Slot slot : votes) std::fill_n(frame.Out(slot), frame.Rows(), 0.0);
    const double share = 1 / static_cast<double>(duels.size());
    for (std::size_t k = 0; k < duels.size(); ++k) {
      const double* f = frame.In(decisions[k]);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        const std::size_t winner = f[i] < duels[k].threshold ? duels[k].below : duels[k].above;
        frame.Out(votes[winner])[i] += std::isnan(f[i]) ? kMissing : share;
      }
    }
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      const bool isMissing =
          std::ranges::any_of(decisions, [&](Slot slot) { return std::isnan(frame.In(slot)[i]); });
      for (const Slot slot : votes) frame.Out(slot)[i] = isMissing ? kMissing : frame.Out(slot)[i];
    }
  });
}

class Classifier {
 public:
  Classifier(const Element& model, ModelPlace& place, const std::vector<Machine>& machines, bool maxWins,
             std::optional<double> threshold)
      : model_(model),
        place_(place),
        machines_(machines),
        maxWins_(maxWins),
        threshold_(threshold.value_or(0)) {}

  ModelResult Read(const std::vector<Slot>& decisions, bool isOneAgainstOne) {
    result_.classes = place_.classes;
    result_.value = place_.NewResult(model_);
    const bool isDuel = isOneAgainstOne || machines_.size() == 1 || !machines_.front().alternative.empty();
    return isDuel ? Vote(decisions) : Best(decisions);
  }

 private:
  std::size_t Number(const std::string& label) {
    return result_.classes.Number(label, place_.Build(), model_);
  }

  ModelResult Vote(const std::vector<Slot>& decisions) {
    std::vector<Duel> duels;
    for (const Machine& machine : machines_) {
      const std::size_t target = Number(machine.target);
      const std::size_t other = machine.alternative.empty() ? OtherThan(target) : Number(machine.alternative);
      const double threshold = machine.threshold.value_or(threshold_);
      duels.push_back(maxWins_ ? Duel{other, target, threshold} : Duel{target, other, threshold});
    }
    std::vector<Slot> votes;
    for (std::size_t k = 0; k < result_.classes.Count(); ++k) votes.push_back(place_.NewResult(model_));
    AddVotes(decisions, duels, votes, place_.program);
    AddGreatest(votes, result_.value, place_.program);
    result_.probabilities = votes;
    return result_;
  }

  std::size_t OtherThan(std::size_t target) const {
    if (result_.classes.Count() != 2)
      model_.Fail("a single machine tells two classes apart, but the model does not have two");
    return 1 - target;
  }

  // Each machine speaks for one class; the smallest decision value wins, or the greatest where the model says
  // so.
  ModelResult Best(const std::vector<Slot>& decisions) {
    std::vector<Slot> scores;
    for (const Machine& machine : machines_) Number(machine.target);
    scores.assign(result_.classes.Count(), place_.Build().Constant(kMissing));
    for (std::size_t k = 0; k < machines_.size(); ++k) {
      const Slot score = place_.Build().NewSlot(model_);
      AddStep(place_.program, [in = decisions[k], out = score, sign = maxWins_ ? 1.0 : -1.0](Frame& frame) {
        for (std::size_t i = 0; i < frame.Rows(); ++i) frame.Out(out)[i] = sign * frame.In(in)[i];
      });
      scores[Number(machines_[k].target)] = score;
    }
    AddGreatest(scores, result_.value, place_.program);
    return result_;
  }

  const Element& model_;
  ModelPlace& place_;
  const std::vector<Machine>& machines_;
  bool maxWins_;
  double threshold_;
  ModelResult result_;
};

void CheckMachines(const Element& model, const std::vector<Machine>& machines, const Dictionary& dictionary,
                   bool hasVectors) {
  if (machines.empty()) model.Fail("the model has no machine");
  for (const Machine& machine : machines) {
    const std::size_t wanted = hasVectors ? machine.vectors.size() : dictionary.inputs.size();
    if (machine.coefficients.size() != wanted)
      model.Fail("a machine does not have a coefficient for each vector");
    if (!hasVectors && !machine.vectors.empty())
      model.Fail("a machine of coefficients must not have vectors");
  }
}

}  // namespace

ModelResult ReadSupportVectorMachine(const Element& model, ModelPlace& place) {
  const bool hasVectors =
      model.Choice<bool>("svmRepresentation", {{"SupportVectors", true}, {"Coefficients", false}}, true);
  const bool isOneAgainstOne =
      model.Choice<bool>("classificationMethod", {{"OneAgainstAll", false}, {"OneAgainstOne", true}}, false);
  const bool maxWins = model.Flag("maxWins", false);
  const auto threshold = model.FindReal("threshold");
  const std::string alternative = model.Text("alternateBinaryTargetCategory", "");
  Kernel kernel;
  const auto dictionary =
      std::make_shared<Dictionary>(ReadDictionary(model.Child("VectorDictionary"), place));
  const auto machines = std::make_shared<std::vector<Machine>>();
  for (const Element& child : OwnChildren(model)) {
    if (child.Is("VectorDictionary")) continue;
    if (child.Is("SupportVectorMachine")) {
      machines->push_back(ReadMachine(child, *dictionary));
    } else if (const auto read = ReadKernel(child)) {
      kernel = *read;
    } else {
      child.Refuse();
    }
  }
  // Versions 3 name the other class of a single machine at the model.
  if (machines->size() == 1 && machines->front().alternative.empty())
    machines->front().alternative = alternative;
  CheckMachines(model, *machines, *dictionary, hasVectors);
  std::vector<Slot> decisions;
  const bool isRegression = place.function == Function::kRegression;
  if (isRegression && machines->size() != 1) model.Fail("a regression needs exactly one machine");
  for (std::size_t k = 0; k < machines->size(); ++k) {
    decisions.push_back(isRegression ? place.NewResult(model) : place.Build().NewSlot(model));
  }
  AddStep(place.program, [decider = Decisions(kernel, dictionary, machines), decisions](Frame& frame) {
    decider.Fill(decisions, frame);
  });
  if (!isRegression)
    return Classifier(model, place, *machines, maxWins, threshold).Read(decisions, isOneAgainstOne);
  ModelResult result;
  result.value = decisions.front();
  return result;
}

}  // namespace brenvolt::pmml
