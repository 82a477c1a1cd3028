#include "bindings/python/outcome.h"

#include <exception>
#include <optional>
#include <vector>

#include "bindings/python/errors.h"
#include "bindings/python/host_call.h"
#include "host/automation/automation_failure.h"
#include "host/base/error.h"
#include "host/jobs/base/job_fault.h"

namespace brenvolt::python {
namespace {

// How work ended, and the messages shown meanwhile.
struct Outcome {
  std::vector<Message> messages;
  std::optional<CallFailure> failure;
  bool saysWhy = false;      // the failure has its reason, which no message shown before it replaces
  std::exception_ptr other;  // not a failure of the system: a cancellation, no memory, a wrong job
};

const char* CodeName(AutomationCode code) {
  switch (code) {
    case AutomationCode::kNone:
      return "";
    case AutomationCode::kMemberNotFound:
      return "no such call";
    case AutomationCode::kException:
      return "exception";
    case AutomationCode::kDialogClosed:
      return "closed";
    case AutomationCode::kControlRefused:
      return "refused";
    case AutomationCode::kNotAvailable:
      return "not available";
  }
  return "";
}

void Try(const std::function<void()>& work, const std::function<std::string()>& method, Outcome& outcome) {
  const std::string call = method == nullptr ? std::string() : method();
  const auto fail = [&](const std::string& text, const std::string& where, const std::string& otherMethod,
                        AutomationCode code) {
    const std::string& source = ThreadErrorInfo().source;
    const std::string& name = source.empty() ? otherMethod : source;
    // A job throws JobFailed where a message of the failing call says why; what it showed earlier are notices.
    outcome.saysWhy = method == nullptr && !text.empty();
    outcome.failure = {text, where, name, name.empty() ? "" : CodeName(code), {}};
  };
  ClearThreadErrorInfo();
  try {
    work();
  } catch (const JobFailed& refused) {
    fail({}, {}, refused.Method(), AutomationCode::kControlRefused);
  } catch (const AutomationFailure& failure) {
    fail(failure.what(), failure.Where(), call, failure.Code());
  } catch (const AutomationError& error) {
    fail(error.Reason(), error.Where(), call, AutomationCode::kException);
  } catch (const Error& error) {
    fail(error.what(), error.Where(), call, AutomationCode::kException);
    outcome.saysWhy = true;
  } catch (...) {
    outcome.other = std::current_exception();
  }
}

Outcome TryInHost(const std::shared_ptr<AnalysisRef>& analysis, const std::function<void()>& work,
                  const std::function<std::string()>& method) {
  const HostCall call;
  const std::size_t shown = analysis != nullptr ? analysis->Interface().Messages().size() : 0;
  Outcome outcome;
  Try(work, method, outcome);
  if (analysis != nullptr) {
    const auto& messages = analysis->Interface().Messages();
    outcome.messages.assign(messages.begin() + static_cast<std::ptrdiff_t>(shown), messages.end());
  }
  return outcome;
}

// The last message shown says why a call failed that does not say so itself; what failed inside it becomes a note.
void SayWhy(Outcome& outcome) {
  if (!outcome.failure || outcome.saysWhy) return;
  CallFailure& failure = *outcome.failure;
  Message why{"the dialog refused", {}, {}};
  if (!outcome.messages.empty()) {
    why = outcome.messages.back();
    outcome.messages.pop_back();
  } else if (!failure.text.empty()) {
    return;
  }
  if (failure.text != why.text) failure.note = failure.text;
  failure.text = why.text;
  failure.where = why.where;
}

}  // namespace

void CarryOut(const std::shared_ptr<AnalysisRef>& analysis, const std::function<void()>& work,
              const std::function<std::string()>& method) {
  Outcome outcome = TryInHost(analysis, work, method);
  if (analysis != nullptr) analysis->Interface().ThrowIfInterrupted();
  SayWhy(outcome);
  for (const Message& message : outcome.messages) Warn(message);
  if (outcome.other != nullptr) std::rethrow_exception(outcome.other);
  if (outcome.failure) RaiseError(*outcome.failure);
}

}  // namespace brenvolt::python
