#include "host/jobs/profile/predictor_inputs.h"

#include <algorithm>
#include <utility>

#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/dialog_words.h"
#include "host/models/range_text.h"

namespace brenvolt {
namespace {

constexpr const char* kSpecification = "VariableDistributionParams";
constexpr const char* kCorrelations = "UserDefinedDesignMatrixValues";
constexpr const char* kCorrelated = "IsEditCorrelation";
// What a specification ends with: whether it is truncated below, where, whether above, where.
constexpr std::ptrdiff_t kTruncationItems = 4;
// A fixed value is a key and the value.
constexpr std::size_t kFixedItems = 2;

using Rows = std::vector<Variant::Array>;

bool IsDrawn(const Variant& specification) {
  return specification.IsArray() && specification.ToArray().size() > kFixedItems;
}

Variant Place(std::size_t place) {
  return static_cast<std::int32_t>(place + 1);
}

std::size_t PlaceOf(const std::string& name, const std::vector<std::string>& names) {
  return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
}

std::string Listed(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

Rows Identity(std::size_t size) {
  Rows rows(size, Variant::Array(size, 0.0));
  for (std::size_t i = 0; i < size; ++i) rows[i][i] = 1.0;
  return rows;
}

Rows RowsOf(AutomationObject& dialog, const char* member) {
  Rows rows;
  for (const Variant& row : dialog.Get(member).ToArray()) rows.push_back(row.ToArray());
  return rows;
}

void PutRows(AnalysisSession& session, const char* member, Rows rows) {
  Variant::Array matrix;
  for (Variant::Array& row : rows) matrix.emplace_back(std::move(row));
  session.Attempt([&] { session.Dialog()->Put(member, matrix); });
}

// The gaps of what models accept, which no notation has: where they begin and end in turn.
std::vector<NumberRange> GapsFrom(const Variant& ends) {
  std::vector<NumberRange> gaps;
  const Variant::Array numbers = ends.ToArray();
  for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
    gaps.push_back({numbers[i].ToReal(), numbers[i + 1].ToReal()});
  return gaps;
}

// The texts of a histogram's codes in a column of texts.
void NameLevels(const Variable& column, NotedDistribution& drawn) {
  if (drawn.code != DistributionCode::kHistogram || column.Type() != VariableType::kText) return;
  for (std::size_t i = 0; i < drawn.values.size(); i += 2)  // codes and proportions in turn
    drawn.levels.emplace_back(column.Label(drawn.values[i]).value_or(ShortestNumber(drawn.values[i])));
}

std::variant<double, std::string> FixedAt(const Variable& column, double value) {
  const auto label = column.Label(value);
  if (label && column.Type() == VariableType::kText) return std::string(*label);
  return value;
}

std::string FixedText(const std::variant<double, std::string>& value) {
  const double* number = std::get_if<double>(&value);
  return number != nullptr ? ShortestNumber(*number) : std::get<std::string>(value);
}

void Enter(const NotedCorrelation& pair, const std::vector<std::string>& names, Rows& rows) {
  const std::size_t i = PlaceOf(pair.first, names);
  const std::size_t j = PlaceOf(pair.second, names);
  if (i < names.size() && j < names.size()) rows[i][j] = rows[j][i] = pair.value;
}

}  // namespace

DesignText SavedDistributions(ProgramInterface& interface, Spreadsheet& sheet) {
  bool any = false;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i)
    any = any || sheet.VariableAt(i).Property(kOrderProperty).has_value();
  if (!any) return {};
  AnalysisSession session(interface, sheet);
  session.Begin(Task::kDesign);
  return {DistributionsIn(session), {}};
}

PredictorInputs::PredictorInputs(AnalysisSession& session, const std::vector<std::string>& predictors)
    : session_(session), names_(predictors) {}

Variant PredictorInputs::SpecificationOf(std::size_t predictor) const {
  const Variant place = Place(predictor);
  return session_.Dialog()->Get(kSpecification, {&place, 1});
}

void PredictorInputs::Put(std::size_t predictor, const Variant& specification) const {
  const Variant place = Place(predictor);
  session_.Attempt([&] { session_.Dialog()->Put(kSpecification, specification, {&place, 1}); });
}

void PredictorInputs::TakeSaved(const DesignText& saved) const {
  for (const NotedVariable& variable : saved.variables) {
    const std::size_t place = PlaceOf(variable.name, names_);
    if (place == names_.size()) continue;
    Variant::Array array = brenvolt::SpecificationOf(variable.distribution);
    const Variant former = SpecificationOf(place);
    if (IsDrawn(former)) {
      const Variant::Array items = former.ToArray();
      if (DistributionFrom(items).code == DistributionCode::kHistogram) continue;
      const bool isBounded = variable.distribution.minimum || variable.distribution.maximum;
      if (!isBounded)
        std::ranges::copy(items.end() - kTruncationItems, items.end(), array.end() - kTruncationItems);
    }
    Put(place, array);
  }
}

std::vector<std::string> PredictorInputs::TakeGiven(const HandInputs& inputs, bool areAll) const {
  JobFaults faults;
  HandInputs file;
  file.fromFile = inputs.fromFile;
  const std::vector<std::string> inFile = file.Read(nullptr, faults).Names();
  const DesignText given = inputs.Read(&names_, faults);
  std::vector<std::string> unread;
  for (const NotedVariable& variable : given.variables) {
    if (PlaceOf(variable.name, names_) < names_.size()) continue;
    unread.push_back(variable.name);
    if (areAll || std::ranges::find(inFile, variable.name) != inFile.end()) continue;
    faults.push_back({"designed", "no predictor called " + Quoted(variable.name) + "; the predictors are " +
                                      Listed(names_)});
  }
  RequireNone(std::move(faults));
  for (const NotedVariable& variable : given.variables) {
    const std::size_t place = PlaceOf(variable.name, names_);
    if (place < names_.size()) Put(place, brenvolt::SpecificationOf(variable.distribution));
  }
  return unread;
}

void PredictorInputs::Correlate(bool asColumns, const Table& matrix,
                                const std::vector<NotedCorrelation>& pairs) const {
  session_.Dialog()->Put(kCorrelated, 1);
  if (matrix != nullptr)
    session_.Attempt([&] { session_.Dialog()->Put("InputCorrMatrix", Variant::Object(matrix)); });
  if (pairs.empty() && (asColumns || matrix != nullptr)) return;
  Rows rows =
      asColumns || matrix != nullptr ? RowsOf(*session_.Dialog(), kCorrelations) : Identity(names_.size());
  for (const NotedCorrelation& pair : pairs) Enter(pair, names_, rows);
  PutRows(session_, kCorrelations, std::move(rows));
}

bool PredictorInputs::AnySaved(const Spreadsheet& sheet) const {
  return std::ranges::any_of(names_, [&sheet](const std::string& name) {
    const auto place = sheet.FindVariable(name);
    return place && sheet.VariableAt(*place).Property(kOrderProperty);
  });
}

std::vector<PredictorUse> PredictorInputs::Uses(const Spreadsheet& simulated) const {
  std::vector<PredictorUse> uses;
  const Variant::Array gaps = session_.Dialog()->Get("PredictorGaps").ToArray();
  for (std::size_t i = 0; i < names_.size(); ++i) {
    const Variant::Array specification = SpecificationOf(i).ToArray();
    const Variable& column = simulated.VariableAt(i);
    PredictorUse use{names_[i], {}};
    if (specification.size() <= kFixedItems) {
      use.fixed = FixedAt(column, specification.back().ToReal());
      use.distribution = "fixed at " + FixedText(*use.fixed);
    } else {
      NotedDistribution drawn = DistributionFrom(specification);
      NameLevels(column, drawn);
      use.distribution = NotationOf(drawn);
      if (drawn.levels.empty()) use.distribution += GapsText(GapsFrom(gaps.at(i)));
    }
    uses.push_back(std::move(use));
  }
  return uses;
}

// The dialog correlates draws by rank reordering, which it stratifies first.
std::string PredictorInputs::Method() const {
  std::size_t drawn = 0;
  for (std::size_t i = 0; i < names_.size(); ++i) drawn += IsDrawn(SpecificationOf(i)) ? 1 : 0;
  const bool isCorrelated = drawn > 1 && session_.Dialog()->Get(kCorrelated).ToBoolean();
  return isCorrelated ? "latin-hypercube-iman-conover" : "monte-carlo";
}

std::vector<NotedCorrelation> PredictorInputs::Correlations() const {
  std::vector<NotedCorrelation> correlations;
  if (!session_.Dialog()->Get(kCorrelated).ToBoolean()) return correlations;
  const Rows rows = RowsOf(*session_.Dialog(), kCorrelations);
  std::vector<std::size_t> drawn;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (!IsDrawn(SpecificationOf(i))) continue;
    for (const std::size_t j : drawn) {
      const double value = rows[i][j].ToReal();
      if (value != 0) correlations.push_back({names_[j], names_[i], value});
    }
    drawn.push_back(i);
  }
  // A pair without correlation says that the others have none either, and yet are drawn as correlated ones are.
  if (correlations.empty() && drawn.size() > 1)
    correlations.push_back({names_[drawn[0]], names_[drawn[1]], 0.0});
  return correlations;
}

void CorrelateNoise(AnalysisSession& session, const std::vector<std::string>& pairs,
                    const std::vector<std::string>& responses, const std::vector<std::string>& noisy) {
  constexpr const char* kField = "noiseCorrelations";
  constexpr const char* kMember = "UserDefinedDesignMatrixValuesY";
  if (pairs.empty()) return;
  JobFaults faults;
  DesignText read;
  for (const std::string& pair : pairs) AddCorrelation(kField, pair, &responses, read, faults);
  for (const NotedCorrelation& pair : read.correlations) {
    for (const std::string& name : {pair.first, pair.second}) {
      if (std::ranges::find(noisy, name) == noisy.end())
        faults.push_back({kField, "no noise is added to " + Quoted(name)});
    }
  }
  RequireNone(std::move(faults));
  Rows rows = RowsOf(*session.Dialog(), kMember);
  for (const NotedCorrelation& pair : read.correlations) Enter(pair, responses, rows);
  PutRows(session, kMember, std::move(rows));
}

}  // namespace brenvolt
