#include "host/jobs/dialogs/variable_design.h"

#include <functional>
#include <memory>
#include <set>
#include <sstream>

#include "host/base/number_text.h"
#include "host/jobs/base/analysis_session.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/quiet_interface.h"
#include "host/jobs/design_job.h"
#include "host/jobs/notation/distribution_notation.h"

namespace brenvolt {
namespace {

// The design of a sheet of its own, which has the variable without its values.
class VariableDesign {
 public:
  explicit VariableDesign(const Variable& variable) : sheet_("Design") {
    Variable copy(variable.Name(), 0);
    for (const auto& [key, value] : variable.Properties()) copy.SetProperty(key, value);
    sheet_.AddVariable(std::move(copy));
    session_ = std::make_unique<AnalysisSession>(interface_, sheet_);
    session_->Begin(Task::kDesign);
  }
  AnalysisSession& Session() { return *session_; }
  const Variable& Designed() const { return sheet_.VariableAt(0); }

 private:
  QuietInterface interface_;
  Spreadsheet sheet_;
  std::unique_ptr<AnalysisSession> session_;
};

using Properties = std::vector<std::pair<std::string, std::string>>;

// The order has the names of the distributions, which are properties of their own.
Properties WithoutDistribution(const Variable& variable) {
  std::set<std::string, std::less<>> taken{std::string(kOrderProperty), std::string(kTruncationProperty),
                                           std::string(kInvalidFitProperty)};
  std::istringstream names(variable.Property(kOrderProperty).value_or(std::string()));
  for (std::string name; std::getline(names, name, ';');) taken.emplace(Trim(name));
  Properties kept;
  for (const auto& [key, value] : variable.Properties()) {
    if (!taken.contains(key)) kept.emplace_back(key, value);
  }
  return kept;
}

}  // namespace

std::string DistributionOf(const Variable& variable) {
  if (!variable.Property(kOrderProperty)) return {};
  VariableDesign design(variable);
  const auto found = DistributionsIn(design.Session());
  return found.empty() ? std::string() : NotationOf(found.front().distribution);
}

std::vector<std::pair<std::string, std::string>> PropertiesWith(const Variable& variable,
                                                                std::string_view distribution) {
  if (Trim(distribution).empty()) return WithoutDistribution(variable);
  const NotedDistribution noted = ReadDistribution(distribution);
  if (!noted.levels.empty())
    throw Error("the levels are texts, which only a predictor of a model may have; number them");
  VariableDesign design(variable);
  FillDesign(design.Session(), {{{variable.Name(), noted}}, {}}, nullptr);
  design.Session().Attempt([&] { return design.Session().Dialog()->Call("SaveDistributionToInput"); });
  const auto& properties = design.Designed().Properties();
  return {properties.begin(), properties.end()};
}

}  // namespace brenvolt
