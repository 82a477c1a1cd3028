#include "host/jobs/base/command_words.h"

#include <functional>
#include <map>

#include "host/jobs/base/job_fault.h"

namespace brenvolt {
namespace {

// The fields whose options have other names.
const std::map<std::string, std::string, std::less<>> kOtherNames{
    {"correlations", "--correlation"},
    {"data", "DATA"},
    {"designed", "--variable"},
    {"fixed", "--fix"},
    {"formulas", "--formula"},
    {"fromFile", "--from"},
    {"models", "--model"},
    {"offsets", "--offset"},
    {"noiseCorrelations", "--noise-correlation"},
    {"output", "-o"},
    {"project", "PROJECT.bvw"},
    {"specifications", "--spec"}};

// Characters that no shell interprets.
constexpr const char* kPlainCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./,:@%";

}  // namespace

std::string OptionOf(const std::string& field) {
  if (const auto other = kOtherNames.find(field); other != kOtherNames.end()) return other->second;
  return "--" + Spelled(field, '-');
}

std::string ShellWord(const std::string& argument) {
  if (!argument.empty() && argument.find_first_not_of(kPlainCharacters) == std::string::npos) return argument;
  std::string word = "'";
  for (const char c : argument) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

}  // namespace brenvolt
