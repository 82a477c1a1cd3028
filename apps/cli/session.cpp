#include "apps/cli/session.h"

#include <algorithm>

#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/base/interruption.h"
#include "host/base/quoted.h"

namespace brenvolt::cli {

Session::Session(Spreadsheet& sheet, Task task, JobRecorder& job)
    : document_(userInterface_, &sheet), analysis_(application_.NewAnalysis(document_)) {
  job.Started(&sheet, *analysis_);
  Dialog()->Put("TypeOfAnalysis", static_cast<std::int32_t>(task));
  Ok();
}

std::shared_ptr<AutomationObject> Session::Dialog() {
  auto dialog = analysis_->GetDialgInterface();
  if (dialog == nullptr) throw Error("the analysis has no open dialog");
  return dialog;
}

void Session::Ok() {
  if (Dialog()->Call("OK").ToInteger() == 0 || InterruptionRequested()) throw JobFailed();
}

Variant::Object Session::Produce(std::string_view member, const Variant& index) {
  return Attempt([&] { return Dialog()->Get(member, {&index, 1}).ToObject(); });
}

std::vector<std::int16_t> NumbersOf(const Spreadsheet& sheet, const std::vector<std::string>& names) {
  std::vector<std::int16_t> numbers;
  for (const std::string& name : names) {
    const auto index = sheet.FindVariable(name);
    if (!index) throw Error("no variable called " + Quoted(name), "sheet " + sheet.Name());
    numbers.push_back(VariableNumberOf(*index));
    if (std::ranges::count(numbers, numbers.back()) > 1)
      throw WrongCall("variable " + Quoted(name) + " is named twice");
  }
  return numbers;
}

Variant AsVariant(std::span<const std::int16_t> numbers) {
  Variant::Array array;
  for (const std::int16_t number : numbers) array.emplace_back(std::int32_t{number});
  return array;
}

}  // namespace brenvolt::cli
