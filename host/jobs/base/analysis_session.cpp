#include "host/jobs/base/analysis_session.h"

#include "host/automation/variable_list.h"
#include "host/base/nearest_name.h"
#include "host/base/process/interruption.h"
#include "host/base/quoted.h"
#include "host/jobs/base/result_files.h"

namespace brenvolt {

AnalysisSession::AnalysisSession(ProgramInterface& interface, Spreadsheet& sheet)
    : interface_(interface), input_(interface, &sheet), analysis_(application_.NewAnalysis(input_)) {
  OfferResultFiles(input_);
}

std::shared_ptr<AutomationObject> AnalysisSession::Dialog() {
  auto dialog = analysis_->GetDialgInterface();
  if (dialog == nullptr) throw Error("the analysis has no open dialog");
  return dialog;
}

void AnalysisSession::Begin(Task task) {
  Dialog()->Put("TypeOfAnalysis", static_cast<std::int32_t>(task));
  Ok();
}

void AnalysisSession::Ok() {
  const auto dialog = Dialog();
  if (dialog->Call("OK").ToInteger() == 0 || InterruptionRequested()) {
    if (const auto& question = interface_.Unanswered())
      throw WrongJob("yes", "confirm this to go on: " + question->text);
    throw JobFailed(std::string(dialog->InterfaceName()) + "::OK");
  }
}

AnalysisSession::Shown AnalysisSession::ShownSince(std::size_t count) const {
  Shown shown;
  for (std::size_t i = count; i < interface_.Documents().size(); ++i) {
    const Variant::Object& document = interface_.Documents()[i];
    if (auto table = std::dynamic_pointer_cast<CAnalysisTableDoc>(document)) shown.tables.push_back(table);
    if (auto graph = std::dynamic_pointer_cast<CAnalysisGraphDoc>(document)) shown.graphs.push_back(graph);
  }
  return shown;
}

namespace {

std::vector<std::string> NamesIn(const Spreadsheet& sheet) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) names.push_back(sheet.VariableAt(i).Name());
  return names;
}

}  // namespace

std::vector<std::int16_t> NumbersOf(const Spreadsheet& sheet, std::span<const std::string> names,
                                    const std::string& field) {
  JobFaults faults;
  std::vector<std::int16_t> numbers;
  for (const std::string& name : names) {
    if (const auto index = sheet.FindVariable(name)) {
      numbers.push_back(VariableNumberOf(*index));
    } else {
      faults.push_back({field, "sheet " + sheet.Name() + " has no variable called " + Quoted(name) +
                                   NearestNameHint(name, NamesIn(sheet))});
    }
  }
  RequireNone(std::move(faults));
  return numbers;
}

Variant AsVariant(std::span<const std::int16_t> numbers) {
  Variant::Array array;
  for (const std::int16_t number : numbers) array.emplace_back(std::int32_t{number});
  return array;
}

}  // namespace brenvolt
