// brenvolt help: what a command does, the distributions by their names, or a topic of several commands.
#include <cstdio>

#include "apps/cli/commands.h"
#include "apps/cli/print.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/base/nearest_name.h"
#include "host/base/quoted.h"
#include "host/jobs/base/dialog_words.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt::cli {
namespace {

constexpr const char* kDistributionsTopic = "distributions";

std::string DistributionsText() {
  TextTable table;
  table.AddColumn("Name", TextTable::Align::kLeft);
  table.AddColumn("Parameters", TextTable::Align::kLeft);
  table.AddColumn("Values", TextTable::Align::kLeft);
  for (const DistributionEntry* entry : DistributionTable()) {
    const DistributionFacts& facts = entry->facts;
    std::string parameters;
    for (std::size_t i = 0; i < facts.ParameterCount(); ++i)
      parameters += (parameters.empty() ? "" : ", ") + std::string(facts.parameters[i].name);
    if (facts.HasOffset()) parameters += ", offset";
    table.AddRow({kNamedDistributions[static_cast<std::size_t>(facts.code)].name, parameters,
                  facts.isContinuous ? "continuous" : "discrete"});
  }
  return "Distributions by the names that options and texts take\n" + table.Text();
}

// "fit --quantiles, score --keep": the options whose names hold the word.
std::string OptionsCalled(const CLI::App& program, const std::string& word) {
  std::string list;
  for (const CLI::App* command : program.get_subcommands({})) {
    for (const CLI::Option* option : command->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        if (name.find(word) != std::string::npos)
          list += (list.empty() ? "" : ", ") + command->get_name() + " --" + name;
      }
    }
  }
  return list;
}

struct Page {
  std::string_view topic;
  const char* text;
};

// What no command alone explains, in short; the guides say the rest.
constexpr Page kPages[] = {{"files", R"(Files of data
  Read: text (.csv, .txt, .dat) in any layout and encoding, .xlsx, .ods, SPSS (.sav), Stata (.dta),
  SAS (.xpt, .sas7bdat), .npz, JSON lines; each also packed by gzip, zstd, xz or bzip2; - is standard
  input. A file is known by its content, not by its name.
  Written, by the ending of -o: .csv, .npz, .xlsx, .sav, .dta.
  How a text is laid out is found by looking, and said where it is unusual; --delimiter, --decimal,
  --thousands, --header, --units-row, --comment, --encoding, --missing-text and --text say it instead.
  brenvolt import FILE --preview shows what a file is read as. A project (.bvw) holds sheets with
  their fits.
)"},
                           {"missing", R"(Missing values
  Empty cells, NA and nan without quotes, and error cells of workbooks are missing; --missing-text
  'n/a,-' adds texts of your own. Codes of SPSS, Stata and SAS are missing as the file says.
  fit leaves out the missing value alone (--missing pairwise) or its case for all variables
  (casewise); score treats missing values as the model says; capability leaves them out.
)"},
                           {"quantiles", R"(Quantiles of fits
  fit --quantiles 0.1,0.5 gives the values that so large a part does not exceed (0.1: the B10 life),
  --return-periods 100 the value that one in a hundred exceeds, --exceed X the probability of
  exceeding X, of the best fit of each continuous variable. Intervals (--confidence) rest on the
  covariance of the estimates, with --intervals profile on the profile likelihood as well, and with
  --bootstrap N on samples from the fit.
)"},
                           {"censoring", R"(Values known by bounds alone
  fit --censor COLUMN names the column that says how each value is known: 1 or exact, 0 or right,
  2 or left, 3 or interval, or true and false; in a column called after censoring 1 is right censored
  and 0 exact. Where 1 is censored and 2 an event, add --censor-event 2. --censor-upper COLUMN has the
  upper bounds of intervals. Fits are ranked by aic or bic, since tests need every value.
)"},
                           {"methods", R"(Methods
  Fits are by maximum likelihood where that exists; --rank-by ranks them by ks, anderson-darling,
  chi-square, aic and others; --bootstrap N gives p-values that allow for the estimation.
  simulate --method draws by Monte Carlo or Latin hypercube sampling, with the rank correlations of
  the data.
  capability gives indices within and overall, by percentiles where values are not normal, with
  intervals.
  profile runs models and formulas over random predictors.
)"}};

void Explain(const CLI::App& program, const std::string& topic) {
  if (topic.empty()) {
    // Its own member would give the help of the command that was called, this one.
    const std::string text =
        program.get_formatter()->make_help(&program, program.get_name(), CLI::AppFormatMode::Normal);
    Print(text);
    return;
  }
  std::vector<std::string> topics;
  for (const CLI::App* command : program.get_subcommands({})) {
    topics.push_back(command->get_name());
    if (command->get_name() != topic) continue;
    std::fputs(command->help(program.get_name()).c_str(), stdout);
    return;
  }
  if (topic == kDistributionsTopic) {
    Print(DistributionsText());
    return;
  }
  for (const Page& page : kPages) {
    topics.emplace_back(page.topic);
    if (page.topic != topic) continue;
    Print(page.text);
    return;
  }
  topics.emplace_back(kDistributionsTopic);
  std::string list;
  for (const std::string& one : topics) list += (list.empty() ? "" : ", ") + one;
  const std::string hint = NearestNameHint(topic, topics);
  const std::string options = OptionsCalled(program, topic);
  if (hint.empty() && !options.empty())
    throw WrongCall("no topic " + Quoted(topic) + "; these options are called so: " + options);
  throw WrongCall("no topic " + Quoted(topic) + hint +
                  (hint.empty() ? "; the topics are " : " The topics are ") + list);
}

}  // namespace

void AddHelpCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("help", "Explain a command or a topic");
  const auto topic = std::make_shared<std::string>();
  command->add_option("TOPIC", *topic,
                      "A command, distributions, files, missing, quantiles, censoring or methods; default: "
                      "which commands there are");
  command->footer("Example:\n  brenvolt help fit\n  brenvolt help distributions");
  command->callback([&program, topic] { Explain(program, *topic); });
}

}  // namespace brenvolt::cli
