// RegressionModel: linear, polynomial and logistic regression, one table per class.
#include <algorithm>
#include <cmath>

#include "host/models/kinds/class_scores.h"
#include "host/models/kinds/link.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Norm : std::uint8_t {
  kNone,
  kSimpleMax,
  kSoftmax,
  kLogit,
  kProbit,
  kCloglog,
  kExp,
  kLoglog,
  kCauchit
};

double Normalised(Norm norm, double y) {
  switch (norm) {
    case Norm::kSoftmax:
    case Norm::kLogit:
      return InverseLogit(y);
    case Norm::kProbit:
      return InverseProbit(y);
    case Norm::kCloglog:
      return InverseCloglog(y);
    case Norm::kExp:
      return std::exp(y);
    case Norm::kLoglog:
      return InverseLoglog(y);
    case Norm::kCauchit:
      return InverseCauchit(y);
    default:
      return y;
  }
}

void NormaliseColumn(Norm norm, Slot slot, Frame& frame) {
  if (norm == Norm::kNone) return;
  double* y = frame.Out(slot);
  for (std::size_t i = 0; i < frame.Rows(); ++i) y[i] = Normalised(norm, y[i]);
}

struct NumericTerm {
  Slot slot;
  double coefficient;
  double exponent;
};
struct CategoricalTerm {
  Slot slot;
  double value;
  double coefficient;
};
struct ProductTerm {
  std::vector<Slot> slots;
  double coefficient;
};

// intercept + sum of terms. A missing number makes the sum missing; a missing category adds nothing.
struct Table {
  double intercept = 0;
  std::vector<NumericTerm> numeric;
  std::vector<CategoricalTerm> categorical;
  std::vector<ProductTerm> products;

  void Fill(Slot out, Frame& frame) const {
    double* y = frame.Out(out);
    const std::size_t rows = frame.Rows();
    std::fill_n(y, rows, intercept);
    for (const NumericTerm& term : numeric) {
      const double* x = frame.In(term.slot);
      if (term.exponent == 1) {
        for (std::size_t i = 0; i < rows; ++i) y[i] += term.coefficient * x[i];
      } else {
        for (std::size_t i = 0; i < rows; ++i) {
          y[i] += std::isnan(x[i]) ? kMissing : term.coefficient * std::pow(x[i], term.exponent);
        }
      }
    }
    for (const CategoricalTerm& term : categorical) {
      const double* x = frame.In(term.slot);
      for (std::size_t i = 0; i < rows; ++i) y[i] += x[i] == term.value ? term.coefficient : 0;
    }
    for (const ProductTerm& term : products) {
      for (std::size_t i = 0; i < rows; ++i) {
        double product = term.coefficient;
        for (const Slot slot : term.slots) product *= frame.In(slot)[i];
        y[i] += product;
      }
    }
  }
};

void ReadTerm(const Element& element, const Place& place, Table& table) {
  const bool isProduct = element.Is("PredictorTerm");
  element.PassOver({"name"});
  const double coefficient = element.Real("coefficient");
  if (isProduct) {
    ProductTerm term{{}, coefficient};
    for (const Element& child : element.Children()) {
      if (!child.Is("FieldRef")) child.Refuse();
      term.slots.push_back(NumberSlot(CompileExpression(child, place), place, child));
    }
    element.RefuseOtherAttributes();
    table.products.push_back(std::move(term));
    return;
  }
  const Operand operand = place.scope.Resolve(element.Text("name"), element);
  if (element.Is("NumericPredictor")) {
    table.numeric.push_back({NumberSlot(operand, place, element), coefficient, element.Real("exponent", 1)});
    element.PassOver({"mean"});
  } else if (element.Is("CategoricalPredictor")) {
    const double value = place.Build().ValueOf(element.Text("value"), operand.type, element);
    table.categorical.push_back({operand.slot, value, coefficient});
  } else {
    element.Refuse();
  }
  element.RefuseAnythingElse();
}

struct ClassTable {
  Slot out;
  Table table;
};

// Two classes have one free probability, more have one each; the last is what the others leave, but where the
// normalisation treats all alike.
void FillProbabilities(const std::vector<ClassTable>& tables, const std::vector<Slot>& slots, Norm norm,
                       bool isOrdinal, Frame& frame) {
  for (const ClassTable& table : tables) table.table.Fill(table.out, frame);
  if (norm == Norm::kSoftmax) return NormaliseSoftmax(slots, frame);
  if (norm == Norm::kSimpleMax) return NormaliseSum(slots, frame);
  const std::size_t last = slots.size() - 1;
  for (std::size_t k = 0; k < last; ++k) NormaliseColumn(norm, slots[k], frame);
  if (isOrdinal) return DifferenceCumulative(slots, frame);
  double* rest = frame.Out(slots[last]);
  std::fill_n(rest, frame.Rows(), 1.0);
  for (std::size_t k = 0; k < last; ++k) {
    const double* p = frame.In(slots[k]);
    for (std::size_t i = 0; i < frame.Rows(); ++i) rest[i] -= p[i];
  }
}

ModelResult Classify(const Element& model, const std::vector<std::pair<std::string, Table>>& tables,
                     Norm norm, ModelPlace& place) {
  if (norm == Norm::kExp) model.Fail("the normalisation exp can only be used for regressions");
  if (tables.size() < 2) model.Fail("a classification needs at least two tables");
  ModelResult result;
  result.classes = place.classes;
  std::vector<ClassTable> ready;
  std::vector<Slot> slots;
  std::vector<std::size_t> numbers;
  result.value = place.NewResult(model);
  for (const auto& [category, table] : tables) {
    numbers.push_back(result.classes.Number(category, place.Build(), model));
    if (std::count(numbers.begin(), numbers.end(), numbers.back()) > 1) model.Fail("a class has two tables");
    slots.push_back(place.NewResult(model));
    ready.push_back({slots.back(), table});
  }
  result.probabilities.assign(result.classes.Count(), place.Build().Constant(0));
  for (std::size_t k = 0; k < slots.size(); ++k) result.probabilities[numbers[k]] = slots[k];
  const bool isOrdinal = place.field != nullptr && place.field->opType == OpType::kOrdinal;
  AddStep(place.program, [ready, slots, norm, isOrdinal](Frame& frame) {
    FillProbabilities(ready, slots, norm, isOrdinal, frame);
  });
  // A class without a table wins never, not even where the others are missing.
  std::vector<Slot> candidates(result.classes.Count(), place.Build().Constant(kMissing));
  for (std::size_t k = 0; k < slots.size(); ++k) candidates[numbers[k]] = slots[k];
  AddGreatest(candidates, result.value, place.program);
  result.confidences = result.probabilities;
  return result;
}

}  // namespace

ModelResult ReadRegressionModel(const Element& model, ModelPlace& place) {
  const Norm norm = model.Choice<Norm>("normalizationMethod",
                                       {{"none", Norm::kNone},
                                        {"simplemax", Norm::kSimpleMax},
                                        {"softmax", Norm::kSoftmax},
                                        {"logit", Norm::kLogit},
                                        {"probit", Norm::kProbit},
                                        {"cloglog", Norm::kCloglog},
                                        {"exp", Norm::kExp},
                                        {"loglog", Norm::kLoglog},
                                        {"cauchit", Norm::kCauchit}},
                                       Norm::kNone);
  model.PassOver({"modelType", "targetFieldName"});
  std::vector<std::pair<std::string, Table>> tables;
  for (const Element& child : OwnChildren(model)) {
    if (!child.Is("RegressionTable")) child.Refuse();
    Table table;
    table.intercept = child.Real("intercept");
    const std::string category = child.Text("targetCategory", "");
    child.RefuseOtherAttributes();
    for (const Element& term : child.Children()) ReadTerm(term, place, table);
    tables.emplace_back(category, std::move(table));
  }
  if (place.function == Function::kClassification) return Classify(model, tables, norm, place);
  if (tables.size() != 1) model.Fail("a regression needs exactly one table");
  if (norm == Norm::kSimpleMax)
    model.Fail("the normalisation simplemax can only be used for classifications");
  ModelResult result;
  result.value = place.NewResult(model);
  AddStep(place.program, [table = std::move(tables.front().second), out = result.value, norm](Frame& frame) {
    table.Fill(out, frame);
    NormaliseColumn(norm, out, frame);
  });
  return result;
}

}  // namespace brenvolt::pmml
