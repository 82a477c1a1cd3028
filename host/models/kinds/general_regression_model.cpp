// GeneralRegressionModel: general and generalised linear models, multinomial and ordinal logistic regression,
// by their design (PPMatrix) and parameters (ParamMatrix).
#include <algorithm>
#include <cmath>
#include <map>

#include "host/models/document/arrays.h"
#include "host/models/kinds/class_scores.h"
#include "host/models/kinds/link.h"
#include "host/models/kinds/model.h"

namespace brenvolt::pmml {
namespace {

enum class Kind : std::uint8_t { kLinear, kGeneralized, kMultinomial, kOrdinal };
enum class Link : std::uint8_t {
  kIdentity,
  kCloglog,
  kLog,
  kLogc,
  kLogit,
  kLoglog,
  kNegbin,
  kOddspower,
  kPower,
  kProbit,
  kCauchit
};

struct LinkFunction {
  Link link = Link::kIdentity;
  double parameter = 0;  // of oddspower and power; the ancillary parameter of the negative binomial

  double Inverse(double eta) const {
    switch (link) {
      case Link::kIdentity:
        return eta;
      case Link::kCloglog:
        return InverseCloglog(eta);
      case Link::kLog:
        return std::exp(eta);
      case Link::kLogc:
        return -std::expm1(eta);
      case Link::kLogit:
        return InverseLogit(eta);
      case Link::kLoglog:
        return InverseLoglog(eta);
      case Link::kNegbin:
        return 1 / (parameter * std::expm1(-eta));
      case Link::kOddspower:
        if (parameter == 0) return InverseLogit(eta);
        return 1 / (1 + std::pow(1 + parameter * eta, -1 / parameter));
      case Link::kPower:
        return parameter == 0 ? std::exp(eta) : std::pow(eta, 1 / parameter);
      case Link::kProbit:
        return InverseProbit(eta);
      case Link::kCauchit:
        return InverseCauchit(eta);
    }
    return eta;
  }
};

// A factor of a parameter's regressor: a covariate to a power, or the contrast of a factor's category.
struct Cell {
  Slot slot = kNoSlot;
  bool isFactor = false;
  double exponent = 1;
  std::vector<std::pair<double, double>> contrasts;  // category, value; other categories give 0
};

struct Parameter {
  std::vector<Cell> cells;
};

double ValueOf(const Cell& cell, double x) {
  if (std::isnan(x)) return kMissing;
  if (!cell.isFactor) return cell.exponent == 1 ? x : std::pow(x, cell.exponent);
  for (const auto& [category, value] : cell.contrasts) {
    if (category == x) return value;
  }
  return 0;
}

// Parameters with their coefficients: one linear predictor.
struct Predictor {
  std::vector<std::pair<std::size_t, double>> betas;  // parameter, coefficient
  Slot offset = kNoSlot;
  double offsetValue = 0;

  void Fill(const std::vector<Parameter>& parameters, Slot out, Frame& frame) const {
    double* y = frame.Out(out);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      double eta = 0;
      for (const auto& [number, beta] : betas) {
        double x = 1;
        for (const Cell& cell : parameters[number].cells) x *= ValueOf(cell, frame.In(cell.slot)[i]);
        eta += beta * x;
      }
      y[i] = eta + offsetValue + (offset == kNoSlot ? 0 : frame.In(offset)[i]);
    }
  }
};

struct ContrastMatrix {
  std::vector<std::string> categories;
  std::vector<std::vector<double>> rows;
};

// What the file holds, by name.
class Design {
 public:
  explicit Design(ModelPlace& place) : place_(place) {}

  void ReadParameters(const Element& list) {
    list.RefuseOtherAttributes();
    for (const Element& child : list.Children()) {
      if (!child.Is("Parameter")) child.Refuse();
      const std::string name = child.Text("name");
      child.PassOver({"label"});
      if (child.Real("referencePoint", 0) != 0) child.Fail("a reference point other than 0 is not supported");
      child.RefuseAnythingElse();
      if (!numbers_.emplace(name, parameters.size()).second)
        child.Fail("the parameter " + name + " is listed twice");
      parameters.emplace_back();
    }
  }

  void ReadPredictors(const Element& list, bool areFactors) {
    list.RefuseOtherAttributes();
    for (const Element& child : list.Children()) {
      if (!child.Is("Predictor")) child.Refuse();
      const std::string name = child.Text("name");
      child.PassOver({"contrastMatrixType"});
      child.RefuseOtherAttributes();
      if (areFactors) factors_.insert(name);
      ContrastMatrix matrix;
      for (const Element& part : child.Children()) ReadContrast(part, matrix);
      if (!matrix.rows.empty()) contrasts_[name] = matrix;
    }
  }

  void ReadDesign(const Element& matrix) {
    matrix.RefuseOtherAttributes();
    for (const Element& child : matrix.Children()) {
      if (!child.Is("PPCell")) child.Refuse();
      const std::string name = child.Text("predictorName");
      const Operand operand = place_.scope.Resolve(name, child);
      const std::string value = child.Text("value");
      Cell cell;
      cell.slot = operand.slot;
      cell.isFactor = factors_.contains(name);
      if (cell.isFactor) {
        cell.contrasts = Contrasts(name, value, operand, child);
      } else {
        cell.slot = NumberSlot(operand, place_, child);
        cell.exponent = child.Real("value");
      }
      parameters[ParameterNumber(child)].cells.push_back(std::move(cell));
      if (child.Find("targetCategory")) child.Fail("a design that depends on the class is not supported");
      child.RefuseAnythingElse();
    }
  }

  std::size_t ParameterNumber(const Element& cell) const {
    const auto found = numbers_.find(cell.Text("parameterName"));
    if (found == numbers_.end()) cell.Fail("unknown parameter " + cell.Text("parameterName"));
    return found->second;
  }

  std::vector<Parameter> parameters;

 private:
  static void ReadContrast(const Element& part, ContrastMatrix& matrix) {
    part.PassOver({"nbRows", "nbCols", "kind"});
    if (part.Is("Categories")) {
      for (const Element& category : part.Children()) {
        if (!category.Is("Category")) category.Refuse();
        matrix.categories.push_back(category.Text("value"));
        category.RefuseAnythingElse();
      }
    } else if (part.Is("Matrix")) {
      for (const Element& row : part.Children()) {
        if (!row.Is("Array")) row.Refuse();
        matrix.rows.push_back(ReadRealArray(row));
      }
    } else {
      part.Refuse();
    }
    part.RefuseOtherAttributes();
  }

  // Without a contrast matrix the category itself; with one, its column for the parameter's category.
  std::vector<std::pair<double, double>> Contrasts(const std::string& name, const std::string& value,
                                                   const Operand& operand, const Element& at) const {
    const auto found = contrasts_.find(name);
    if (found == contrasts_.end()) return {{place_.Build().ValueOf(value, operand.type, at), 1.0}};
    const ContrastMatrix& matrix = found->second;
    std::vector<std::string> categories = matrix.categories;
    if (categories.empty() && operand.field != nullptr) categories = operand.field->labels;
    const auto column = std::ranges::find(categories, value) - categories.begin();
    std::vector<std::pair<double, double>> contrasts;
    if (matrix.rows.size() != categories.size())
      at.Fail("the contrast matrix does not have a row for each category");
    for (std::size_t k = 0; k < categories.size(); ++k) {
      if (static_cast<std::size_t>(column) >= matrix.rows[k].size())
        at.Fail("the contrast matrix has no column for " + value);
      contrasts.emplace_back(place_.Build().ValueOf(categories[k], operand.type, at),
                             matrix.rows[k][static_cast<std::size_t>(column)]);
    }
    return contrasts;
  }

  ModelPlace& place_;
  std::map<std::string, std::size_t> numbers_;
  std::set<std::string> factors_;
  std::map<std::string, ContrastMatrix> contrasts_;
};

// The coefficients by target category; those of no category belong to all.
struct Coefficients {
  std::map<std::string, std::vector<std::pair<std::size_t, double>>> byCategory;
};

Coefficients ReadCoefficients(const Element& matrix, const Design& design) {
  Coefficients coefficients;
  matrix.RefuseOtherAttributes();
  for (const Element& cell : matrix.Children()) {
    if (!cell.Is("PCell")) cell.Refuse();
    cell.PassOver({"df"});
    coefficients.byCategory[cell.Text("targetCategory", "")].emplace_back(design.ParameterNumber(cell),
                                                                          cell.Real("beta"));
    cell.RefuseAnythingElse();
  }
  return coefficients;
}

struct Reading {
  Kind kind = Kind::kLinear;
  LinkFunction link;
  std::string reference;
  Predictor base;  // without coefficients: the offset
  Slot trials = kNoSlot;
  double trialsValue = 1;
};

Kind ReadKind(const Element& model) {
  return model.Choice<Kind>("modelType", {{"regression", Kind::kLinear},
                                          {"generalLinear", Kind::kLinear},
                                          {"generalizedLinear", Kind::kGeneralized},
                                          {"multinomialLogistic", Kind::kMultinomial},
                                          {"ordinalMultinomial", Kind::kOrdinal}});
}

Reading ReadHead(const Element& model, ModelPlace& place) {
  Reading reading;
  reading.kind = ReadKind(model);
  model.PassOver({"targetVariableName", "distribution", "modelDF"});
  reading.link.link = model.Choice<Link>("linkFunction",
                                         {{"cloglog", Link::kCloglog},
                                          {"identity", Link::kIdentity},
                                          {"log", Link::kLog},
                                          {"logc", Link::kLogc},
                                          {"logit", Link::kLogit},
                                          {"loglog", Link::kLoglog},
                                          {"negbin", Link::kNegbin},
                                          {"oddspower", Link::kOddspower},
                                          {"power", Link::kPower},
                                          {"probit", Link::kProbit}},
                                         Link::kIdentity);
  const auto linkParameter = model.FindReal("linkParameter");
  const auto distParameter = model.FindReal("distParameter");
  reading.link.parameter = linkParameter.value_or(0);
  if (reading.link.link == Link::kNegbin) reading.link.parameter = distParameter.value_or(1);
  if (reading.kind == Kind::kOrdinal) {
    reading.link.link = model.Choice<Link>("cumulativeLink",
                                           {{"logit", Link::kLogit},
                                            {"probit", Link::kProbit},
                                            {"cloglog", Link::kCloglog},
                                            {"loglog", Link::kLoglog},
                                            {"cauchit", Link::kCauchit}},
                                           Link::kLogit);
  }
  reading.reference = model.Text("targetReferenceCategory", "");
  const auto numbers = [&](const char* attribute) {
    const auto name = model.Find(attribute);
    return name ? NumberSlot(place.scope.Resolve(std::string(*name), model), place, model) : kNoSlot;
  };
  reading.base.offset = numbers("offsetVariable");
  reading.base.offsetValue = model.Real("offsetValue", 0);
  reading.trials = numbers("trialsVariable");
  reading.trialsValue = model.Real("trialsValue", 1);
  return reading;
}

// The linear predictor of a class: its own coefficients and those of all.
Predictor PredictorOf(const Reading& reading, const Coefficients& coefficients, const std::string& category) {
  Predictor predictor = reading.base;
  const auto take = [&](const std::string& key) {
    const auto found = coefficients.byCategory.find(key);
    if (found == coefficients.byCategory.end()) return;
    predictor.betas.insert(predictor.betas.end(), found->second.begin(), found->second.end());
  };
  take("");
  if (!category.empty()) take(category);
  return predictor;
}

ModelResult Regress(const Element& model, const Reading& reading, const Design& design,
                    const Coefficients& coefficients, ModelPlace& place) {
  if (coefficients.byCategory.size() > 1)
    model.Fail("a regression needs the coefficients of exactly one target");
  if (reading.kind == Kind::kMultinomial || reading.kind == Kind::kOrdinal) {
    model.Fail("a logistic model of classes needs the function classification");
  }
  const std::string category = coefficients.byCategory.empty() ? "" : coefficients.byCategory.begin()->first;
  ModelResult result;
  result.value = place.NewResult(model);
  const Predictor predictor = PredictorOf(reading, coefficients, category);
  AddStep(place.program, [predictor, parameters = design.parameters, link = reading.link,
                          trials = reading.trials, trialsValue = reading.trialsValue,
                          isLinear = reading.kind == Kind::kLinear, out = result.value](Frame& frame) {
    predictor.Fill(parameters, out, frame);
    double* y = frame.Out(out);
    for (std::size_t i = 0; !isLinear && i < frame.Rows(); ++i) {
      y[i] = link.Inverse(y[i]) * (trials == kNoSlot ? trialsValue : frame.In(trials)[i]);
    }
  });
  return result;
}

void AddProbabilities(const Reading& reading, const Design& design, const std::vector<Predictor>& predictors,
                      const std::vector<Slot>& slots, ModelPlace& place) {
  // The last class is the reference, whose linear predictor is 0, or what the others leave.
  AddStep(place.program, [predictors, slots, parameters = design.parameters, link = reading.link,
                          kind = reading.kind](Frame& frame) {
    const std::size_t last = slots.size() - 1;
    std::array<double, kBlockRows> rest;
    rest.fill(0);
    for (std::size_t k = 0; k < last; ++k) {
      predictors[k].Fill(parameters, slots[k], frame);
      double* y = frame.Out(slots[k]);
      for (std::size_t i = 0; i < frame.Rows(); ++i) {
        if (kind != Kind::kMultinomial) y[i] = link.Inverse(y[i]);
        rest[i] += y[i];
      }
    }
    double* y = frame.Out(slots[last]);
    for (std::size_t i = 0; i < frame.Rows(); ++i) {
      // A missing predictor leaves no class.
      y[i] = std::isnan(rest[i]) ? kMissing : kind == Kind::kMultinomial ? 0 : 1 - rest[i];
    }
    if (kind == Kind::kMultinomial) NormaliseSoftmax(slots, frame);
    if (kind == Kind::kOrdinal) DifferenceCumulative(slots, frame);
  });
}

ModelResult Classify(const Element& model, const Reading& reading, const Design& design,
                     const Coefficients& coefficients, ModelPlace& place) {
  ModelResult result;
  result.classes = place.classes;
  for (const auto& [category, betas] : coefficients.byCategory) {
    if (!category.empty()) result.classes.Number(category, place.Build(), model);
  }
  std::string reference = reading.reference;
  if (!reference.empty()) result.classes.Number(reference, place.Build(), model);
  const std::vector<std::string>& labels = result.classes.Labels();
  if (reference.empty() && reading.kind == Kind::kOrdinal && !labels.empty()) reference = labels.back();
  for (const auto& label : labels) {
    if (reference.empty() && !coefficients.byCategory.contains(label)) reference = label;
  }
  const bool isOneFree = reading.kind == Kind::kLinear || reading.kind == Kind::kGeneralized;
  if (reference.empty() || labels.size() < 2 || (isOneFree && labels.size() != 2)) {
    model.Fail("the classes of the model are not told apart by its coefficients");
  }
  result.value = place.NewResult(model);
  std::vector<Predictor> predictors;
  std::vector<Slot> slots;
  for (std::size_t k = 0; k < labels.size(); ++k) result.probabilities.push_back(place.NewResult(model));
  Slot last = kNoSlot;
  for (std::size_t k = 0; k < labels.size(); ++k) {
    if (labels[k] == reference) {
      last = result.probabilities[k];
      continue;
    }
    predictors.push_back(PredictorOf(reading, coefficients, labels[k]));
    slots.push_back(result.probabilities[k]);
  }
  if (reading.kind == Kind::kOrdinal && last != result.probabilities.back()) {
    model.Fail("the reference category of an ordinal model must be its last");
  }
  slots.push_back(last);
  AddProbabilities(reading, design, predictors, slots, place);
  AddGreatest(result.probabilities, result.value, place.program);
  result.confidences = result.probabilities;
  return result;
}

}  // namespace

ModelResult ReadGeneralRegressionModel(const Element& model, ModelPlace& place) {
  const Reading reading = ReadHead(model, place);
  Design design(place);
  std::optional<Element> coefficients;
  // The cells of the design refer to the lists, wherever these are.
  design.ReadParameters(model.Child("ParameterList"));
  if (const auto list = model.FindChild("FactorList")) design.ReadPredictors(*list, true);
  if (const auto list = model.FindChild("CovariateList")) design.ReadPredictors(*list, false);
  for (const Element& child : OwnChildren(model)) {
    if (child.Is("PPMatrix")) {
      design.ReadDesign(child);
    } else if (child.Is("ParamMatrix")) {
      coefficients = child;
    } else if (!child.Is("ParameterList") && !child.Is("FactorList") && !child.Is("CovariateList") &&
               !child.Is("PCovMatrix")) {  // covariances of estimates take no part in scoring
      child.Refuse();
    }
  }
  if (!coefficients) model.Fail("the model has no ParamMatrix");
  const Coefficients betas = ReadCoefficients(*coefficients, design);
  return place.function == Function::kClassification ? Classify(model, reading, design, betas, place)
                                                     : Regress(model, reading, design, betas, place);
}

}  // namespace brenvolt::pmml
