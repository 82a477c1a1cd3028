#include "host/jobs/reports/repeating_command.h"

#include <cmath>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "host/base/number_text.h"
#include "host/jobs/base/command_words.h"

namespace brenvolt {
namespace {

// Adds fields by their options. What was not asked for is left out.
class CommandText {
 public:
  CommandText(const char* verb, const std::filesystem::path& data) : text_("brenvolt ") {
    text_ += verb;
    if (!data.empty()) text_ += " " + ShellWord(data.string());
  }

  void Add(const std::string& field, const std::string& value) {
    // A value that looks like an option is one only behind its equals sign.
    const char separator = value.starts_with('-') ? '=' : ' ';
    text_ += " " + OptionOf(field) + separator + ShellWord(value);
  }
  void AddText(const std::string& field, const std::string& value) {
    if (!value.empty()) Add(field, value);
  }
  void AddWord(const std::string& field, const std::optional<std::string>& word) {
    if (word) Add(field, *word);
  }
  void AddNumber(const std::string& field, const std::optional<double>& number) {
    if (number) Add(field, ShortestNumber(*number));
  }
  void AddNumbers(const std::string& field, const std::vector<double>& numbers) {
    std::vector<std::string> texts;
    for (const double number : numbers) texts.push_back(ShortestNumber(number));
    AddList(field, texts);
  }
  void AddFlag(const std::string& option, bool isSet) {
    if (isSet) text_ += " " + option;
  }
  void AddEach(const std::string& field, const std::vector<std::string>& values) {
    for (const std::string& value : values) Add(field, value);
  }
  void AddList(const std::string& field, const std::vector<std::string>& names) {
    if (!names.empty()) Add(field, Joined(names));
  }
  std::string Joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
      canSayAll_ = canSayAll_ && name.find(',') == std::string::npos;
      list += (list.empty() ? "" : ",") + name;
    }
    return list;
  }

  // How the file of the data is read.
  void AddReading(const JobData& data) {
    const TextOptions& text = data.text;
    AddText("sheet", data.sheet);
    AddFlag("--decimal-comma", data.decimalComma);
    AddWord("delimiter", text.delimiter);
    AddWord("decimal", text.decimal);
    AddWord("thousands", text.thousands);
    AddWord("header", text.header);
    if (text.unitsRow) AddFlag(*text.unitsRow ? "--units-row" : "--no-units-row", true);
    AddWord("comment", text.comment);
    AddWord("encoding", text.encoding);
    AddList("missingText", text.missingText);
    AddList("text", text.text);
  }

  // A name for an option whose value is parted at these characters.
  const std::string& Parted(const std::string& name, std::string_view separators) {
    canSayAll_ = canSayAll_ && name.find_first_of(separators) == std::string::npos;
    return name;
  }

  std::string Text() && { return canSayAll_ ? std::move(text_) : std::string(); }

 private:
  std::string text_;
  bool canSayAll_ = true;
};

std::string Bound(const std::optional<double>& bound) {
  return bound ? ShortestNumber(*bound) : "";
}
std::string Limit(double limit) {
  return std::isnan(limit) ? "" : ShortestNumber(limit);
}

void AddPlot(const Plot& plot, CommandText& command) {
  if (!plot.IsAsked()) return;
  command.Add("plot", plot.file.string());
  command.AddWord("plotKind", plot.kind);
  command.AddWord("plotTheme", plot.theme);
  command.AddNumber("plotWidth", plot.width);
  command.AddFlag("--plot-band", plot.band);
}

void AddInputs(const HandInputs& inputs, CommandText& command) {
  command.AddEach("designed", inputs.designed);
  for (const auto& [name, distribution] : inputs.named)
    command.Add("designed", command.Parted(name, "~") + " ~ " + distribution);
  command.AddEach("correlations", inputs.correlations);
  for (const NotedCorrelation& pair : inputs.pairs) {
    command.Add("correlations", command.Parted(pair.first, ",=") + "," + command.Parted(pair.second, ",=") +
                                    "=" + ShortestNumber(pair.value));
  }
  command.AddText("fromFile", inputs.fromFile.string());
}

void AddSpecification(const ResponseSpecification& one, CommandText& command) {
  command.Add("specifications", one.response + "=" + Limit(one.limits.lower) + "," +
                                    Limit(one.limits.target) + "," + Limit(one.limits.upper));
}

void AddFit(const FitJob& job, CommandText& command) {
  command.AddReading(job.data);
  command.AddFlag("--yes", job.data.yes);
  command.AddList("continuous", job.variables.continuous);
  command.AddList("discrete", job.variables.discrete);
  if (job.missing != "pairwise") command.Add("missing", job.missing);
  command.AddWord("weights", job.weights);
  command.AddWord("select", job.select);
  command.AddList("distributions", job.distributions);
  for (const FitJob::Offset& one : job.offsets)
    command.Add("offsets", one.variable + ":" + one.distribution + "=" + ShortestNumber(one.value));
  for (const FitJob::Count& one : job.mixtures)
    command.Add("mixtures", one.variable + "=" + ShortestNumber(one.value));
  for (const FitJob::Count& one : job.trials)
    command.Add("trials", one.variable + "=" + ShortestNumber(one.value));
  command.AddFlag("--johnson-percentiles", job.johnsonPercentiles);
  command.AddWord("rankBy", job.rankBy);
  command.AddWord("discreteRankBy", job.discreteRankBy);
  command.AddWord("binning", job.binning);
  command.AddNumber("bootstrap", job.bootstrap);
  command.AddNumber("bootstrapSeed", job.bootstrapSeed);
  command.AddNumbers("quantiles", job.quantiles);
  command.AddNumbers("exceed", job.exceed);
  command.AddNumbers("returnPeriods", job.returnPeriods);
  command.AddWord("intervals", job.intervals);
  command.AddNumber("confidence", job.confidence);
  command.AddNumber("top", job.top);
  command.AddText("save", job.save.string());
  for (const FitJob::Truncation& one : job.truncate)
    command.Add("truncate", one.variable + "=" + Bound(one.low) + ":" + Bound(one.high));
  for (const FitJob::Order& one : job.order)
    command.Add("order", one.variable + "=" + command.Joined(one.distributions));
  command.AddText("graphs", job.graphs.string());
  AddPlot(job.plot, command);
  command.AddText("report", job.report.string());
}

}  // namespace

std::string CommandOf(const FitJob& job) {
  if (job.data.file.empty()) return {};
  CommandText command("fit", job.data.file);
  AddFit(job, command);
  return std::move(command).Text();
}

std::string CommandOf(const CensoredFitJob& job) {
  if (job.fit.data.file.empty()) return {};
  CommandText command("fit", job.fit.data.file);
  AddFit(job.fit, command);
  command.AddWord("censor", job.censor);
  command.AddWord("censorUpper", job.censorUpper);
  command.AddWord("censorEvent", job.censorEvent);
  return std::move(command).Text();
}

std::string CommandOf(const CapabilityJob& job) {
  if (job.data.file.empty()) return {};
  CommandText command("capability", job.data.file);
  command.AddReading(job.data);
  command.AddText("response", job.response);
  for (const ResponseSpecification& one : job.specifications) AddSpecification(one, command);
  command.AddWord("subgroup", job.subgroup);
  command.AddWord("within", job.within);
  command.AddWord("controlChart", job.controlChart);
  command.AddWord("rules", job.rules);
  command.AddWord("distribution", job.distribution);
  command.AddWord("rankBy", job.rankBy);
  command.AddNumber("bootstrap", job.bootstrap);
  command.AddNumber("bootstrapSeed", job.bootstrapSeed);
  command.AddNumber("confidence", job.confidence);
  command.AddWord("select", job.select);
  AddPlot(job.plot, command);
  command.AddText("report", job.report.string());
  return std::move(command).Text();
}

std::string CommandOf(const SimulateJob& job, const std::string& method, std::int32_t seed) {
  if (job.data.file.empty() && job.inputs.IsEmpty()) return {};
  if (job.givenMatrix != nullptr || job.inputs.correlationTable != nullptr) return {};
  CommandText command("simulate", job.data.file);
  AddInputs(job.inputs, command);
  command.AddText("sheet", job.data.sheet);
  command.AddList("variables", job.variables);
  command.Add("method", method);
  command.AddText("matrix", job.matrix);
  command.Add("samples", ShortestNumber(job.samples));
  command.Add("seed", std::to_string(seed));
  command.AddFlag("--truncate", job.truncate);
  command.AddText("output", job.output.string());
  AddPlot(job.plot, command);
  command.AddText("report", job.report.string());
  return std::move(command).Text();
}

std::string CommandOf(const ProfileJob& job, std::int32_t seed) {
  if (job.data.file.empty() && job.inputs.IsEmpty()) return {};
  if (!job.functions.empty() || job.givenMatrix != nullptr || job.inputs.correlationTable != nullptr)
    return {};
  CommandText command("profile", job.data.file);
  command.AddReading(job.data);
  for (const auto& model : job.models) command.Add("models", model.string());
  command.AddEach("formulas", job.formulas);
  AddInputs(job.inputs, command);
  command.AddText("matrix", job.inputs.matrix);
  command.AddFlag("--no-saved-fits", !job.savedFits);
  command.Add("samples", ShortestNumber(job.samples));
  command.Add("seed", std::to_string(seed));
  command.AddFlag("--correlated", job.correlated);
  command.AddFlag("--fit-best", job.fitBest);
  for (const ProfileJob::Noise& one : job.noise)
    command.Add("noise", one.response + "=" + ShortestNumber(one.standardDeviation));
  command.AddEach("noiseCorrelations", job.noiseCorrelations);
  for (const ResponseSpecification& one : job.specifications) AddSpecification(one, command);
  for (const ProfileJob::Fixed& one : job.fixed) {
    const double* number = std::get_if<double>(&one.value);
    command.Add("fixed",
                one.predictor + "=" +
                    (number != nullptr ? ShortestNumber(*number) : std::get<std::string>(one.value)));
  }
  for (const ProfileJob::Truncation& one : job.truncate)
    command.Add("truncate", one.predictor + "=" + Bound(one.minimum) + ":" + Bound(one.maximum));
  command.AddText("output", job.output.string());
  command.AddText("graphs", job.graphs.string());
  AddPlot(job.plot, command);
  command.AddText("report", job.report.string());
  return std::move(command).Text();
}

std::string ShowCommandOf(const std::filesystem::path& project, const std::string& sheet,
                          const std::filesystem::path& report) {
  CommandText command("show", project);
  std::string text = std::move(command).Text();
  if (!sheet.empty()) text += " " + ShellWord(sheet);
  return text + " " + OptionOf("report") + " " + ShellWord(report.string());
}

}  // namespace brenvolt
