#include "host/jobs/measured/censored_fit_job.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "host/base/lower_case.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/measured/censored_plots.h"
#include "host/jobs/notation/distribution_notation.h"
#include "host/numeric/censored/censored_estimator.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

enum class Known : std::uint8_t { kExact, kRight, kLeft, kInterval };
constexpr std::array<std::string_view, 4> kKnownWords{"exact", "right", "left", "interval"};

struct KnownWord {
  std::string_view word;
  Known known;
};
// What the field calls them.
constexpr KnownWord kWords[] = {
    {"exact", Known::kExact},      {"event", Known::kExact},    {"failure", Known::kExact},
    {"failed", Known::kExact},     {"f", Known::kExact},        {"e", Known::kExact},
    {"right", Known::kRight},      {"censored", Known::kRight}, {"suspended", Known::kRight},
    {"suspension", Known::kRight}, {"r", Known::kRight},        {"c", Known::kRight},
    {"s", Known::kRight},          {"+", Known::kRight},        {"false", Known::kRight},
    {"true", Known::kExact},       {"no", Known::kRight},       {"yes", Known::kExact},
    {"alive", Known::kRight},      {"dead", Known::kExact},     {"left", Known::kLeft},
    {"l", Known::kLeft},           {"-", Known::kLeft},         {"interval", Known::kInterval},
    {"i", Known::kInterval}};
// By number: those of survival analysis, where 1 is an event.
constexpr Known kNumbers[] = {Known::kRight, Known::kExact, Known::kLeft, Known::kInterval};

// What a value of the column means; nothing where it means none. A column that is called after censoring has 1 where a
// value is censored.
std::optional<Known> Meaning(const Variable& column, double value) {
  const bool isCensored = LowerCase(column.Name()).find("cens") != std::string::npos;
  if (const auto label = column.Label(value)) {
    const std::string text = LowerCase(Trim(*label));
    const auto word = std::ranges::find(kWords, text, &KnownWord::word);
    if (word == std::end(kWords)) return std::nullopt;
    const bool isFlag = text == "true" || text == "false" || text == "yes" || text == "no";
    if (isFlag && isCensored) return word->known == Known::kExact ? Known::kRight : Known::kExact;
    return word->known;
  }
  if (isCensored) {
    if (value != 0 && value != 1) return std::nullopt;
    return value == 1 ? Known::kRight : Known::kExact;
  }
  if (value < 0 || value >= static_cast<double>(std::size(kNumbers)) || value != std::floor(value))
    return std::nullopt;
  return kNumbers[static_cast<std::size_t>(value)];
}

const Variable& ColumnNamed(const Spreadsheet& sheet, const std::string& name, const std::string& field) {
  const auto number = NumbersOf(sheet, {&name, 1}, field).front();
  return sheet.VariableAt(static_cast<std::size_t>(number - 1));
}

void RequireNumbers(const Variable& variable, const std::string& field) {
  if (variable.Type() == VariableType::kText)
    throw WrongJob(field, Quoted(variable.Name()) + " is a text variable");
}

// Reads the values of a variable with what is known of them.
class Reader {
 public:
  Reader(const CensoredFitJob& job, const Spreadsheet& sheet, const Variable& variable)
      : sheet_(sheet), variable_(variable) {
    RequireNumbers(variable, "continuous");
    if (job.censor) codes_ = &ColumnNamed(sheet, *job.censor, "censor");
    if (job.censorEvent) event_ = LowerCase(Trim(*job.censorEvent));
    if (job.censorUpper) {
      upper_ = &ColumnNamed(sheet, *job.censorUpper, "censorUpper");
      RequireNumbers(*upper_, "censorUpper");
    }
    if (const auto weight = sheet.WeightVariable()) weights_ = &sheet.VariableAt(*weight);
  }

  CensoredSample Read(CensoredVariable& found) {
    CensoredSample sample;
    for (std::size_t i = 0; i < variable_.Size(); ++i) {
      if (!sheet_.IsCaseSelected(i)) continue;
      const auto value = codes_ != nullptr ? ByCode(i) : ByBounds(i);
      if (!value) {
        ++found.missing;
        continue;
      }
      for (std::size_t copies = CopiesOf(i); copies > 0; --copies) sample.Add(*value);
    }
    found.exact = sample.exact.size();
    found.right = sample.right.size();
    found.left = sample.left.size();
    found.interval = sample.from.size();
    for (const auto& [text, known] : met_)
      found.reading += (found.reading.empty() ? "" : ", ") + text + " " +
                       std::string(kKnownWords[static_cast<std::size_t>(known)]);
    SayWhatCodesMayMean(found);
    return sample;
  }

 private:
  // 1 for a censored value and 2 for an event are usual as well.
  void SayWhatCodesMayMean(CensoredVariable& found) const {
    const bool isOfOneAndTwo = met_.size() == 2 && met_.contains("1") && met_.contains("2");
    if (event_) {
      if (found.exact == 0)
        throw WrongJob("censorEvent", "no case has " + Quoted(*event_) + " in " + Quoted(codes_->Name()));
    } else if (isOfOneAndTwo && met_.at("2") == Known::kLeft) {
      found.notes.push_back(
          {"censorEvent", Quoted(codes_->Name()) +
                              " holds 1 and 2 alone, which are read as exact and left censored; if 2 is "
                              "an event and 1 a censored value, say that the event is 2"});
    }
  }

  // What a code means; nothing where it means none.
  std::optional<Known> MeaningOf(double code, const std::string& text) const {
    if (!event_) return Meaning(*codes_, code);
    return LowerCase(Trim(text)) == *event_ ? Known::kExact : Known::kRight;
  }

  static bool IsMissing(const Variable& column, std::size_t i) {
    return column.IsMissing(i) || std::isnan(column.Values()[i]);
  }

  std::size_t CopiesOf(std::size_t i) const {
    if (weights_ == nullptr) return 1;
    if (IsMissing(*weights_, i)) return 0;
    const double weight = weights_->Values()[i];
    if (weight < 0 || weight != std::floor(weight) || weight > 1e7)
      throw WrongJob("weights", Case(i) + ": expected a whole number, got " + ShortestNumber(weight));
    return static_cast<std::size_t>(weight);
  }

  static std::string Case(std::size_t i) { return "case " + std::to_string(i + 1); }

  std::optional<CensoredValue> ByCode(std::size_t i) {
    if (IsMissing(*codes_, i)) return std::nullopt;
    const double code = codes_->Values()[i];
    const auto label = codes_->Label(code);
    const std::string text = label ? std::string(*label) : ShortestNumber(code);
    const auto known = MeaningOf(code, text);
    if (!known)
      throw WrongJob(
          "censor",
          Case(i) + ": " + Quoted(text) + " in " + Quoted(codes_->Name()) +
              " is not a code of censoring; expected 0 or right, 1 or exact, 2 or left, 3 or "
              "interval, or in a column called after censoring 0 or 1; or say which one is an event");
    met_.try_emplace(text, *known);
    if (*known == Known::kInterval && upper_ == nullptr)
      throw WrongJob("censorUpper", Case(i) + " is known by an interval, whose upper bound needs a column");
    if (IsMissing(variable_, i)) return std::nullopt;
    const double x = variable_.Values()[i];
    switch (*known) {
      case Known::kExact:
        return CensoredValue::Exact(x);
      case Known::kRight:
        return CensoredValue::Right(x);
      case Known::kLeft:
        return CensoredValue::Left(x);
      case Known::kInterval:
        break;
    }
    if (IsMissing(*upper_, i)) return std::nullopt;
    return Ordered({x, upper_->Values()[i]}, i);
  }

  std::optional<CensoredValue> ByBounds(std::size_t i) const {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    if (IsMissing(variable_, i) && IsMissing(*upper_, i)) return std::nullopt;
    return Ordered({IsMissing(variable_, i) ? -kInfinity : variable_.Values()[i],
                    IsMissing(*upper_, i) ? kInfinity : upper_->Values()[i]},
                   i);
  }

  static CensoredValue Ordered(const CensoredValue& value, std::size_t i) {
    if (value.lower > value.upper)
      throw WrongJob("censorUpper", Case(i) + ": the upper bound " + ShortestNumber(value.upper) +
                                        " is below the lower one, " + ShortestNumber(value.lower));
    return value;
  }

  const Spreadsheet& sheet_;
  const Variable& variable_;
  const Variable* codes_ = nullptr;
  std::optional<std::string> event_;  // in lower case
  const Variable* upper_ = nullptr;
  const Variable* weights_ = nullptr;
  std::map<std::string, Known> met_;
};

std::string ReasonOf(const Fault<EstimationFault>& fault) {
  switch (fault.identifier) {
    case EstimationFault::kTooFewValues:
      return "two values are needed";
    case EstimationFault::kValueBelowOffset:
      return "the value " + fault.about + " lies below the offset " + fault.detail;
    case EstimationFault::kValueAtOffset:
      return "a value lies at the offset " + fault.about;
    case EstimationFault::kNoMaximum:
      return "the likelihood of these values has no maximum";
    default:
      return "the search for the maximum of the likelihood did not end";
  }
}

// The name by which people call the distribution of a code.
const std::string& NameOf(DistributionCode code) {
  return kNamedDistributions[static_cast<std::size_t>(code)].name;
}

double OffsetFor(const FitJob& job, const std::string& variable, DistributionCode code) {
  for (const FitJob::Offset& one : job.offsets) {
    if (one.variable == variable && FindDistribution(one.distribution)->name == NameOf(code))
      return one.value;
  }
  return 0;
}

CensoredFit FitOf(DistributionCode code, const CensoredSample& sample, double offset,
                  const std::vector<PlottingPosition>& positions) {
  const DistributionFacts& facts = EntryOf(code).facts;
  CensoredFit fit;
  fit.name = NameOf(code);
  fit.values.code = code;
  fit.values.offset = offset;
  auto found = EstimateCensored(code, sample, offset);
  if (!found) {
    fit.reason = ReasonOf(found.Reason());
    return fit;
  }
  fit.values.values = found->estimate.values;
  fit.values.covariance = found->estimate.covariance;
  fit.standardErrors = found->estimate.standardErrors;
  fit.notation =
      NotationOf({code, fit.values.values, facts.HasOffset() ? offset : kNotSet, std::nullopt, std::nullopt});
  fit.logLikelihood = found->estimate.logLikelihood;
  const auto k = static_cast<double>(fit.values.values.size());
  fit.aic = 2 * k - 2 * fit.logLikelihood;
  fit.bic = k * std::log(static_cast<double>(sample.Count())) - 2 * fit.logLikelihood;
  fit.iterations = found->iterations;
  fit.gradient = found->gradient;
  for (const PlottingPosition& one : positions)
    fit.distance = std::max(fit.distance, std::abs(1 - fit.values.Exceedance(one.value) - one.probability));
  return fit;
}

std::vector<DistributionCode> CodesFor(const FitJob& job) {
  std::vector<DistributionCode> codes;
  for (const DistributionCode code : CensoredDistributions()) {
    if (job.Tries(kNamedDistributions[static_cast<std::size_t>(code)])) codes.push_back(code);
  }
  return codes;
}

CensoredVariable FitVariable(const CensoredFitJob& job, const Spreadsheet& sheet, const std::string& name) {
  CensoredVariable found;
  found.name = name;
  found.rankedBy = job.fit.rankBy.value_or("aic");
  const CensoredSample sample = Reader(job, sheet, ColumnNamed(sheet, name, "continuous")).Read(found);
  if (sample.Count() == 0) throw WrongJob("continuous", Quoted(name) + " has no value");
  found.curve = SurvivalCurve(sample);
  found.isKaplanMeier = sample.left.empty() && sample.from.empty();
  const auto positions = PlottingPositions(found.curve);
  for (const DistributionCode code : CodesFor(job.fit))
    found.fits.push_back(FitOf(code, sample, OffsetFor(job.fit, name, code), positions));
  const auto criterion = found.rankedBy == "bic" ? &CensoredFit::bic : &CensoredFit::aic;
  std::ranges::stable_sort(found.fits, [&](const CensoredFit& a, const CensoredFit& b) {
    if (a.IsValid() != b.IsValid()) return a.IsValid();
    return a.IsValid() && a.*criterion < b.*criterion;
  });
  if (job.fit.AsksForQuantiles() && found.fits.front().IsValid())
    found.quantiles = ReadOff(job.fit, found.fits.front().name, found.fits.front().values,
                              LikelihoodFor(job.fit, sample), nullptr);
  if (found.fits.size() > job.fit.Top()) found.fits.resize(job.fit.Top());
  return found;
}

// The variables named, or else the only one that may be meant.
std::vector<std::string> Chosen(const CensoredFitJob& job, const Spreadsheet& sheet) {
  if (!job.fit.variables.continuous.empty()) return job.fit.variables.continuous;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() == VariableType::kNumeric && variable.Name() != job.censor &&
        variable.Name() != job.censorUpper && sheet.WeightVariable() != i)
      names.push_back(variable.Name());
  }
  if (names.size() == 1) return names;
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  throw WrongJob("continuous",
                 "name the variable that is censored" + (list.empty() ? "" : ": one of " + list));
}

struct Excluded {
  const char* field;
  bool isGiven;
  const char* reason;
};

JobFaults ExcludedFields(const FitJob& job) {
  constexpr const char* kContinuous = "censored values are fitted as continuous ones";
  constexpr const char* kNotFitted = "no distribution that it is about is fitted to censored values";
  const Excluded fields[] = {
      {"discrete", !job.variables.discrete.empty(), kContinuous},
      {"discreteRankBy", job.discreteRankBy.has_value(), kContinuous},
      {"binning", job.binning.has_value(),
       "tests need every value, so there is no chi-square test of censored ones"},
      {"missing", job.missing != "pairwise", "a censored value is missing with its code alone"},
      {"mixtures", !job.mixtures.empty(), kNotFitted},
      {"trials", !job.trials.empty(), kNotFitted},
      {"johnsonPercentiles", job.johnsonPercentiles, kNotFitted},
      {"bootstrap", job.bootstrap.has_value(),
       "samples from a fit would need to know when values are censored; quantiles of censored values have "
       "intervals by the covariance of the estimates"},
      {"save", !job.save.empty(),
       "a project keeps fits beside values that are known, and would take the censored ones for such; "
       "simulate from the distribution that the report describes, given by hand as a variable"},
      {"graphs", !job.graphs.empty(),
       "the graphs of censored values are drawn, and not written as data; plot gives them"},
      {"plotBand", job.plot.band, "the limits of 95 % are those of samples without censored values"}};
  JobFaults faults;
  for (const Excluded& one : fields) {
    if (one.isGiven) faults.push_back({one.field, one.reason});
  }
  return faults;
}

}  // namespace

JobFaults CensoredFitJob::Check() const {
  JobFaults faults = ExcludedFields(fit);
  if (!faults.empty()) return faults;
  FitJob plain = fit;
  plain.plot = {};
  faults = plain.Check();
  if (censorEvent && !censor)
    faults.push_back({"censorEvent", "this is what a column of codes holds, which is not named"});
  CheckPlot(fit.plot, kCensoredPlotKinds, faults);
  CheckTargetsApart({{"data", fit.data.file}}, {{"plot", fit.plot.file}, {"report", fit.report}}, faults);
  if (fit.rankBy && *fit.rankBy != "aic" && *fit.rankBy != "bic" && kCriteria.contains(*fit.rankBy))
    faults.push_back({"rankBy", "tests need every value; censored ones are ranked by aic or bic"});
  std::string fitted;
  for (const DistributionCode code : CensoredDistributions())
    fitted += (fitted.empty() ? "" : ", ") + NameOf(code);
  for (const std::string& name : fit.distributions) {
    const NamedDistribution* named = FindDistribution(name);
    if (named != nullptr &&
        std::ranges::find(CensoredDistributions(), named->name, NameOf) == CensoredDistributions().end())
      faults.push_back(
          {"distributions",
           "the " + named->name + " distribution is not fitted to censored values; these are: " + fitted});
  }
  return faults;
}

CensoredFindings CensoredFitJob::Run(Spreadsheet& sheet, const JobRecorder& recorder) const {
  RequireNone(Check());
  RefuseRecording("a fit of censored values", recorder);
  RequireCases(sheet);
  const FormerConditions former(sheet);
  if (fit.weights && fit.weights->empty()) sheet.SetWeightVariable(std::nullopt);
  if (fit.weights && !fit.weights->empty())
    sheet.SetWeightVariable(
        static_cast<std::size_t>(NumbersOf(sheet, {&*fit.weights, 1}, "weights").front() - 1));
  if (fit.select) SelectCases(sheet, *fit.select);
  CensoredFindings found;
  for (const std::string& name : Chosen(*this, sheet))
    found.variables.push_back(FitVariable(*this, sheet, name));
  if (fit.plot.IsAsked())
    WritePlot(fit.plot, fit.data.file.filename().string(), CensoredPlots(found, fit.plot.Kind()));
  return found;
}

}  // namespace brenvolt
