// The one family of exceptions. The text says what happened; where it happened (a file with its line, a
// sheet, a variable) is kept apart, so that a front end can print "what (where)".
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace brenvolt {

// A fault that a person must read: the job did not happen and nothing was changed.
class Error : public std::runtime_error {
 public:
  explicit Error(const std::string& what, std::string where = {})
      : std::runtime_error(what), where_(std::move(where)) {}
  const std::string& Where() const noexcept { return where_; }

 private:
  std::string where_;
};

// Why a dialog refuses or fails, with the text to show. Engines return a Result instead (result.h).
class CDispatchException : public Error {
 public:
  using Error::Error;
};

// A call of an automation member that failed: the text names the method; the reason is what failed inside it.
class AutomationError : public Error {
 public:
  AutomationError(const std::string& what, std::string reason, std::string where)
      : Error(what, std::move(where)), reason_(std::move(reason)) {}
  const std::string& Reason() const noexcept { return reason_; }

 private:
  std::string reason_;
};

// Raised by numeric code whose caller broke a contract, or whose input admits no result.
class NumericalException : public Error {
 public:
  using Error::Error;
};

// Raised when the person cancelled a long operation. It ends the operation without a message.
class UserCancelled : public std::exception {
 public:
  const char* what() const noexcept override { return "cancelled"; }
};

}  // namespace brenvolt
