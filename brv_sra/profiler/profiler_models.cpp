#include "brv_sra/profiler/profiler_models.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/fitting/save_settings.h"
#include "brv_sra/profiler/best_fit_candidates.h"
#include "host/automation/variable_list.h"
#include "host/base/number_text.h"
#include "host/formula/compiler.h"
#include "host/formula/formula_error.h"
#include "host/formula/functions.h"
#include "host/numeric/algebra/correlation.h"
#include "host/statistics/moments.h"

namespace brenvolt::sra {
namespace {

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr char kNameBar = '|';

using enum FaultIdentifier;
using Notes = ProfilerNotes;

const Variable* DataOf(const ProfilerPredictor& predictor, const Spreadsheet* data) {
  const auto place = data != nullptr ? data->FindVariable(predictor.name) : std::nullopt;
  return place ? &data->VariableAt(*place) : nullptr;
}

std::string TextOf(const Variable& variable, double value) {
  const auto label = variable.Label(value);
  return label ? std::string(*label) : ShortestNumber(value);
}

// The data of a predictor in its own values, NaN if missing; empty if there are none for it: no such
// variable, or texts where it holds numbers.
std::vector<double> ColumnOf(const ProfilerPredictor& predictor, const Spreadsheet* data) {
  const Variable* variable = DataOf(predictor, data);
  if (variable == nullptr) return {};
  const bool texts = !predictor.labels.empty();
  if (!texts && variable->Type() == VariableType::kText) return {};
  std::map<std::string, double> codes;
  for (const auto& [code, text] : predictor.labels) codes.emplace(text, code);
  std::vector<double> column(variable->Size(), kMissing);
  for (std::size_t i = 0; i < column.size(); ++i) {
    if (variable->IsMissing(i)) continue;
    const double value = variable->Values()[i];
    if (!texts) {
      column[i] = value;
    } else if (const auto found = codes.find(TextOf(*variable, value)); found != codes.end()) {
      column[i] = found->second;
    }
  }
  return column;
}

// Codes and weights in turn, the weights made proportions of twelve digits.
std::optional<DistributionSpecification> DiscreteOf(const std::map<double, double>& weights) {
  double total = 0;
  for (const auto& [code, weight] : weights) total += weight;
  if (!(total > 0)) return std::nullopt;
  DistributionSpecification specification;
  specification.code = DistributionCode::kHistogram;
  for (const auto& [code, weight] : weights) {
    const double proportion = weight / total;
    specification.values.push_back(code);
    specification.values.push_back(
        ParseNumber(FormatNumber(kListedNumberFormat, proportion)).value_or(proportion));
  }
  return specification;
}

void MakeRandom(ProfilerPredictor& predictor, DistributionSpecification specification) {
  predictor.setting = PredictorSetting::kRandom;
  predictor.specification = std::move(specification);
  predictor.keepsToParts = false;
}

void TruncateToRange(ProfilerPredictor& predictor) {
  DistributionSpecification& specification = predictor.specification;
  if (!(predictor.lowestAllowed < predictor.highestAllowed)) return;
  if (std::isfinite(predictor.lowestAllowed)) {
    specification.truncateBelow = true;
    specification.truncationMinimum = predictor.lowestAllowed;
  }
  if (std::isfinite(predictor.highestAllowed)) {
    specification.truncateAbove = true;
    specification.truncationMaximum = predictor.highestAllowed;
  }
  predictor.keepsToParts = !predictor.parts.empty();
}

// What lies in both; an empty list has all numbers.
std::vector<NumberRange> Common(const std::vector<NumberRange>& a, const std::vector<NumberRange>& b) {
  if (a.empty() || b.empty()) return a.empty() ? b : a;
  std::vector<NumberRange> common;
  for (const NumberRange& one : a) {
    for (const NumberRange& other : b) {
      const NumberRange both{std::max(one.low, other.low), std::min(one.high, other.high)};
      if (both.low < both.high) common.push_back(both);
    }
  }
  return common;
}

// A value that is not valid has no prediction.
void TakeRange(ProfilerPredictor& predictor, const ModelField& field) {
  if (field.predictsInvalid) return;
  predictor.parts = Common(predictor.parts, field.parts);
  if (field.isListed && !field.isText) {
    predictor.categorical = true;
    const std::set<double> codes(field.codes.begin(), field.codes.end());
    const bool isFirst = predictor.listed.empty();
    if (isFirst) predictor.listed = codes;
    std::erase_if(predictor.listed, [&](double code) { return !codes.contains(code); });
  }
  predictor.lowestAllowed = std::max(predictor.lowestAllowed, field.lowest.value_or(predictor.lowestAllowed));
  predictor.highestAllowed =
      std::min(predictor.highestAllowed, field.highest.value_or(predictor.highestAllowed));
  if (!predictor.parts.empty())
    predictor.parts = Common(predictor.parts, {{predictor.lowestAllowed, predictor.highestAllowed}});
}

void StartDiscrete(ProfilerPredictor& predictor, std::span<const double> column) {
  std::map<double, double> counts;
  for (const double value : column) {
    const bool isTaken = predictor.listed.empty() || predictor.listed.contains(value);
    if (std::isfinite(value) && isTaken) counts[value] += 1.0;
  }
  if (auto discrete = DiscreteOf(counts)) MakeRandom(predictor, *std::move(discrete));
}

void StartContinuous(ProfilerPredictor& predictor, std::span<const double> column, Notes& notes) {
  MomentAccumulator sums;
  for (const double value : column) {
    if (std::isnan(value)) continue;
    if (std::isinf(value)) {
      notes.push_back({kInfiniteData, predictor.name});
      return;
    }
    sums.Add(value, 1);
  }
  const Moments moments = sums.Finish();
  if (moments.count == 0) {
    notes.push_back({kNoValidData, predictor.name});
    return;
  }
  predictor.lowest = moments.minimum;
  predictor.highest = moments.maximum;
  if (moments.minimum == moments.maximum) {
    predictor.setting = PredictorSetting::kFixed;
    predictor.fixedValue = moments.mean;
    return;
  }
  DistributionSpecification normal;
  normal.values = {moments.mean, moments.standardDeviation};
  MakeRandom(predictor, std::move(normal));
  TruncateToRange(predictor);
}

// The texts of the data that no model knows, with how many cases have them: "x (12), y (3)".
std::string UnknownTexts(const ProfilerPredictor& predictor, const Variable& variable) {
  constexpr std::size_t kMostShown = 10;
  std::set<std::string> known;
  for (const auto& [code, text] : predictor.labels) known.insert(text);
  std::map<std::string, std::size_t> counts;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (variable.IsMissing(i)) continue;
    const double value = variable.Values()[i];
    const std::string text = TextOf(variable, value);
    if (predictor.labels.empty() ? !predictor.listed.contains(value) : !known.contains(text)) ++counts[text];
  }
  std::string list;
  std::size_t shown = 0;
  for (const auto& [text, count] : counts) {
    if (++shown > kMostShown) return list + ", …";
    list += (list.empty() ? "" : ", ") + text + " (" + std::to_string(count) + ")";
  }
  return list;
}

void NoteUnknownTexts(const ProfilerPredictor& predictor, const Spreadsheet* data, Notes& notes) {
  const Variable* variable = DataOf(predictor, data);
  if (variable == nullptr || (predictor.labels.empty() && predictor.listed.empty())) return;
  if (const std::string texts = UnknownTexts(predictor, *variable); !texts.empty())
    notes.push_back({kUnknownClasses, predictor.name, texts});
}

void Start(ProfilerPredictor& predictor, std::span<const double> column, Notes& notes) {
  if (column.empty()) return;
  predictor.setting = PredictorSetting::kNone;
  if (predictor.categorical) {
    StartDiscrete(predictor, column);
  } else {
    StartContinuous(predictor, column, notes);
  }
}

// The texts of the data of a field that lists none: those that scoring the data would give to the model.
std::map<double, std::string> TextsIn(const Variable& variable) {
  std::set<double> values;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    if (!variable.IsMissing(i)) values.insert(variable.Values()[i]);
  }
  std::map<double, std::string> texts;
  for (const double value : values)
    texts.emplace(static_cast<double>(texts.size() + 1), TextOf(variable, value));
  return texts;
}

// The texts in which the data of a categorical field that is not of texts spell its values: TRUE, FALSE.
std::map<double, std::string> SpellingsIn(const Variable& variable, const PredictionModel& model,
                                          std::size_t field) {
  std::map<double, std::string> spellings;
  for (const auto& [code, text] : variable.Labels()) {
    if (const auto value = model.ValueOf(field, text)) spellings.emplace(*value, text);
  }
  return spellings;
}

ProfilerPredictor PredictorOf(const PredictionModel& model, std::size_t place, const Spreadsheet* data) {
  const ModelField& field = model.Predictors()[place];
  ProfilerPredictor predictor;
  predictor.name = field.name;
  predictor.categorical = field.kind == ModelFieldKind::kCategorical || field.isText;
  predictor.holdsTexts = field.isText;
  predictor.takesAnyText = field.isText && field.codes.empty();
  predictor.lowest = field.lowest.value_or(kMissing);
  predictor.highest = field.highest.value_or(kMissing);
  TakeRange(predictor, field);
  std::map<double, double> weights;
  for (std::size_t i = 0; i < field.codes.size(); ++i) {
    if (field.isText) predictor.labels.emplace(field.codes[i], field.labels[i]);
    weights.emplace(field.codes[i], field.frequencies.empty() ? 1.0 : field.frequencies[i]);
  }
  const Variable* variable = DataOf(predictor, data);
  if (variable != nullptr && predictor.takesAnyText) {
    predictor.labels = TextsIn(*variable);
    predictor.takesAnyText = predictor.labels.empty();
  }
  if (variable != nullptr && predictor.categorical && !field.isText &&
      variable->Type() == VariableType::kText)
    predictor.labels = SpellingsIn(*variable, model, place);
  if (field.replacement) {
    predictor.setting = PredictorSetting::kFixed;
    predictor.fixedValue = *field.replacement;
  }
  if (!predictor.categorical) return predictor;
  if (auto discrete = DiscreteOf(weights)) MakeRandom(predictor, *std::move(discrete));
  return predictor;
}

// A further model also reads the predictor.
Result<void> Join(ProfilerPredictor& predictor, const ModelField& field) {
  if (predictor.holdsTexts != field.isText) return Fault{kFieldTypesDiffer, predictor.name};
  TakeRange(predictor, field);
  for (const std::string& label : field.labels) {
    if (!field.isText) break;
    const auto isLabel = [&](const auto& entry) { return entry.second == label; };
    if (std::ranges::any_of(predictor.labels, isLabel)) continue;
    const double last = predictor.labels.empty() ? 0 : std::floor(predictor.labels.rbegin()->first);
    predictor.labels.emplace(last + 1.0, label);
  }
  return {};
}

// The dependents are there already.
Result<void> MergePredictors(ProfilerDesign& design, const PredictionModel& model, const Spreadsheet* data) {
  for (std::size_t k = 0; k < model.Predictors().size(); ++k) {
    const ModelField& field = model.Predictors()[k];
    if (!field.isUsed || design.FindDependent(field.name)) continue;
    if (const auto place = design.FindPredictor(field.name)) {
      if (auto joined = Join(design.predictors[*place], field); !joined) return joined;
    } else {
      design.AddPredictor(PredictorOf(model, k, data));
    }
  }
  return {};
}

void MergeDependents(ProfilerDesign& design, const std::shared_ptr<const PredictionModel>& model) {
  for (std::size_t k = 0; k < model->Dependents().size(); ++k) {
    const ModelField& field = model->Dependents()[k];
    auto place = design.FindDependent(field.name);
    if (!place) {
      ProfilerDependent added;
      added.name = field.name;
      place = design.AddDependent(std::move(added));
    }
    ProfilerDependent& dependent = design.dependents[*place];
    dependent.model = model;
    dependent.labels.clear();
    for (std::size_t i = 0; field.isText && i < field.codes.size(); ++i)
      dependent.labels.emplace(field.codes[i], field.labels[i]);
    const auto error = model->MeanSquaredError(k);
    if (error && *error >= 0 && IsNotSet(dependent.standardDeviation))
      dependent.standardDeviation = std::sqrt(*error);
  }
}

// The correlations in the data of the predictors from `first` on with all others.
void StartCorrelations(ProfilerDesign& design, std::size_t first,
                       const std::vector<std::vector<double>>& columns, Notes& notes) {
  std::vector<std::size_t> places;
  for (std::size_t j = 0; j < columns.size(); ++j) {
    if (!columns[j].empty() && design.predictors[j].IsRandom()) places.push_back(j);
  }
  if (places.size() < 2) return;
  const std::size_t k = places.size();
  const std::size_t n = columns[places[0]].size();
  std::vector<double> matrix(n * k);
  for (std::size_t c = 0; c < k; ++c) {
    for (std::size_t i = 0; i < n; ++i) matrix[i * k + c] = columns[places[c]][i];
  }
  std::vector<double> correlation(k * k);
  PearsonCorrelation(matrix, n, k, correlation);
  const std::size_t m = design.predictors.size();
  for (std::size_t a = 0; a < k; ++a) {
    for (std::size_t b = 0; b < a; ++b) {
      if (places[a] < first) continue;
      const double r = correlation[a * k + b];
      if (std::isnan(r)) {
        notes.push_back(
            {kCorrelationUndefined, design.predictors[places[b]].name, design.predictors[places[a]].name});
        continue;
      }
      design.correlations[places[a] * m + places[b]] = r;
      design.correlations[places[b] * m + places[a]] = r;
    }
  }
}

// A predictor that was there before is specified as it was then, unless its values mean something else now.
void Restore(ProfilerDesign& design, std::size_t first) {
  for (std::size_t j = first; j < design.predictors.size(); ++j) {
    const auto former =
        std::ranges::find(design.retired, design.predictors[j].name, &ProfilerPredictor::name);
    if (former == design.retired.end()) continue;
    ProfilerPredictor& returned = design.predictors[j];
    if (former->setting != PredictorSetting::kNone && former->labels == returned.labels) {
      returned.setting = former->setting;
      returned.fixedValue = former->fixedValue;
      returned.specification = std::move(former->specification);
      returned.keepsToParts = former->keepsToParts && !returned.parts.empty();
    }
    design.retired.erase(former);
  }
}

// Specifications and correlations of the predictors from `first` on.
Notes StartFrom(ProfilerDesign& design, std::size_t first, const Spreadsheet* data) {
  Notes notes;
  if (data == nullptr || first == design.predictors.size()) {
    Restore(design, first);
    return notes;
  }
  std::vector<std::vector<double>> columns;
  for (std::size_t j = 0; j < design.predictors.size(); ++j) {
    columns.push_back(ColumnOf(design.predictors[j], data));
    if (j < first) continue;
    Start(design.predictors[j], columns.back(), notes);
    NoteUnknownTexts(design.predictors[j], data, notes);
  }
  Restore(design, first);
  StartCorrelations(design, first, columns, notes);
  return notes;
}

// A name that a formula uses, and whether it is in quotes anywhere.
struct UsedName {
  std::string text;
  bool quoted = false;
};

// The names, other than constants, that a formula uses; nothing if it is not valid.
std::optional<std::vector<UsedName>> NamesIn(const std::string& formula) {
  std::vector<UsedName> names;
  const auto take = [&](std::string_view name, bool quoted) -> std::optional<std::size_t> {
    if (!quoted && FormulaConstant(name)) return std::nullopt;
    const auto place = std::ranges::find(names, name, &UsedName::text);
    const auto index = static_cast<std::size_t>(place - names.begin());
    if (place == names.end()) names.push_back({std::string(name)});
    names[index].quoted = names[index].quoted || quoted;
    return index;
  };
  try {
    Compile(formula, take, "formula");
  } catch (const FormulaError&) {
    return std::nullopt;
  }
  return names;
}

// "v1", "v2", …: a predictor by its number, where neither the data nor quotes make it a name.
bool IsVariableNumber(std::string_view name) {
  return name.size() > 1 && (name[0] == 'v' || name[0] == 'V') && ParseInteger(name.substr(1)).has_value();
}

// Whether a name is one in the design rather than the number of a predictor.
bool IsName(const ProfilerDesign& design, const UsedName& name) {
  return name.quoted || !IsVariableNumber(name.text) || design.FindPredictor(name.text) ||
         design.FindDependent(name.text);
}

// Makes the names that a formula uses predictors, unless they are dependents; none of a formula that is not valid.
void AddNames(ProfilerDesign& design, const std::string& formula, const Spreadsheet* data) {
  const auto names = NamesIn(formula);
  if (!names) return;
  for (const UsedName& name : *names) {
    if (design.FindPredictor(name.text) || design.FindDependent(name.text)) continue;
    ProfilerPredictor predictor;
    predictor.name = name.text;
    const Variable* variable = DataOf(predictor, data);
    if (variable == nullptr && !name.quoted && IsVariableNumber(name.text)) continue;
    if (variable != nullptr && variable->Type() == VariableType::kText) {
      predictor.categorical = true;
      predictor.holdsTexts = true;
      predictor.labels = variable->Labels();
    }
    design.AddPredictor(std::move(predictor));
  }
}

// The names that models and formulas read; nothing if that is not known, because a formula is not valid or
// has a predictor's number, which stays right only while no predictor goes.
std::optional<std::set<std::string>> ReadNames(const ProfilerDesign& design) {
  std::set<std::string> read;
  for (const ProfilerDependent& dependent : design.dependents) {
    if (dependent.model != nullptr) {
      for (const ModelField& field : dependent.model->Predictors()) {
        if (field.isUsed) read.insert(field.name);
      }
    }
    if (dependent.formula.empty()) continue;
    const auto names = NamesIn(dependent.formula);
    if (!names) return std::nullopt;
    for (const UsedName& name : *names) {
      if (!IsName(design, name)) return std::nullopt;
      read.insert(name.text);
    }
  }
  return read;
}

// Retires the predictors that are predicted or that nothing reads, and starts those after the first `known`, which
// are new.
Notes Settle(ProfilerDesign& design, std::size_t known, const Spreadsheet* data) {
  const auto read = ReadNames(design);
  for (std::size_t j = design.predictors.size(); j-- > 0;) {
    const std::string& name = design.predictors[j].name;
    if (!design.FindDependent(name) && (!read || read->contains(name))) continue;
    design.RetirePredictor(j);
    if (j < known) --known;
  }
  return StartFrom(design, known, data);
}

FitSpecification BestFitSpecification(const std::vector<std::int16_t>& numbers) {
  FitSpecification specification;
  specification.continuous = numbers;
  specification.continuousSpecifications.assign(numbers.size(), BestFitCandidates());
  specification.contradictedLast = true;
  return specification;
}

Result<std::vector<VariableFit>> FitAll(const Spreadsheet& data, const std::vector<std::int16_t>& numbers,
                                        const RunProgress& bars) {
  if (numbers.empty()) return std::vector<VariableFit>();
  auto fits = RunFit(data, BestFitSpecification(numbers), {.useSelection = false, .useWeights = false}, bars);
  if (!fits) return fits;
  if (auto fault = FirstFault(*fits)) return *std::move(fault);
  return fits;
}

}  // namespace

Result<std::vector<std::filesystem::path>> SplitFileNames(std::string_view text) {
  std::vector<std::filesystem::path> files;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(kNameBar, begin), text.size());
    const std::string_view name = Trim(text.substr(begin, end - begin));
    if (name.empty()) return Fault{kInvalidFileNames};
    files.emplace_back(name);
    begin = end + 1;
  }
  return files;
}

Result<ProfilerNotes> MergeModels(ProfilerDesign& design,
                                  std::span<const std::shared_ptr<const PredictionModel>> models,
                                  const Spreadsheet* data) {
  ProfilerDesign merged = design;
  for (const auto& model : models) MergeDependents(merged, model);
  for (const auto& model : models) {
    if (auto known = MergePredictors(merged, *model, data); !known) return known.Reason();
  }
  Notes notes = Settle(merged, design.predictors.size(), data);
  design = std::move(merged);
  return notes;
}

ProfilerNotes SetFormula(ProfilerDesign& design, std::size_t dependent, std::string formula,
                         const Spreadsheet* data) {
  const std::size_t known = design.predictors.size();
  ProfilerDependent& changed = design.dependents[dependent];
  changed.formerFormulas.push_back(std::exchange(changed.formula, std::move(formula)));
  AddNames(design, changed.formula, data);
  return Settle(design, known, data);
}

std::optional<ProfilerNotes> UndoFormula(ProfilerDesign& design, std::size_t dependent,
                                         const Spreadsheet* data) {
  ProfilerDependent& changed = design.dependents[dependent];
  if (changed.formerFormulas.empty()) return std::nullopt;
  const std::size_t known = design.predictors.size();
  changed.formula = std::move(changed.formerFormulas.back());
  changed.formerFormulas.pop_back();
  AddNames(design, changed.formula, data);
  return Settle(design, known, data);
}

Result<std::size_t> FitBestDistributions(ProfilerDesign& design, const Spreadsheet& data,
                                         const RunProgress& bars) {
  std::vector<std::int16_t> numbers;
  std::vector<std::size_t> places;
  std::size_t fitted = 0;
  ProfilerDesign changed = design;
  for (std::size_t j = 0; j < changed.predictors.size(); ++j) {
    ProfilerPredictor& predictor = changed.predictors[j];
    const std::vector<double> column = ColumnOf(predictor, &data);
    if (column.empty()) continue;
    if (predictor.categorical) {
      Notes none;
      Start(predictor, column, none);
      fitted += predictor.IsRandom() ? 1 : 0;
      continue;
    }
    numbers.push_back(VariableNumberOf(*data.FindVariable(predictor.name)));
    places.push_back(j);
  }
  const Result<std::vector<VariableFit>> fits = FitAll(data, numbers, bars);
  if (!fits) return fits.Reason();
  for (std::size_t i = 0; i < fits->size(); ++i) {
    const VariableFit& fit = (*fits)[i];
    const std::vector<std::size_t> order = DefaultOrder(fit);
    if (order.empty()) continue;
    MakeRandom(changed.predictors[places[i]], fit.fits[order.front()].specification);
    TruncateToRange(changed.predictors[places[i]]);
    ++fitted;
  }
  if (fitted == 0) return Fault{kNoPredictorFitted};
  design = std::move(changed);
  return fitted;
}

}  // namespace brenvolt::sra
