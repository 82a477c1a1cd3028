// brenvolt help: what a command does, or the distributions by their names.
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
  CLI::App* command = program.add_subcommand("help", "Explain a command");
  const auto topic = std::make_shared<std::string>();
  command->add_option("TOPIC", *topic, "A command, or distributions; default: which commands there are");
  command->footer("Example:\n  brenvolt help fit\n  brenvolt help distributions");
  command->callback([&program, topic] { Explain(program, *topic); });
}

}  // namespace brenvolt::cli
