#include "host/jobs/base/job_fault.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>

#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"

namespace brenvolt {
namespace {

std::string Prefix(const std::string& about) {
  return about.empty() ? about : Quoted(about) + ": ";
}

// A number that someone wrote, as whole numbers are written: 1e+23 would not be recognized.
std::string Echoed(double value) {
  constexpr std::size_t kMostDigits = 30;
  std::string text = ShortestNumber(value);
  const auto exponent = text.find("e+");
  if (exponent == std::string::npos) return text;
  const std::size_t point = text.find('.');
  const auto zeros = static_cast<std::size_t>(std::stoi(text.substr(exponent + 2)));
  const std::size_t decimals = point == std::string::npos ? 0 : exponent - point - 1;
  if (zeros >= kMostDigits || decimals > zeros) return text;
  text.resize(exponent);
  if (point != std::string::npos) text.erase(point, 1);
  return text + std::string(zeros - decimals, '0');
}

}  // namespace

std::string Spelled(std::string_view field, char separator) {
  std::string spelled;
  for (const char c : field) {
    if (std::isupper(static_cast<unsigned char>(c)) != 0) spelled += separator;
    spelled += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return spelled;
}

void Append(JobFaults more, JobFaults& faults) {
  std::ranges::move(more, std::back_inserter(faults));
}

void CheckWord(std::string_view field, const std::string& word, const Choices& choices, JobFaults& faults) {
  if (choices.contains(word)) return;
  std::string words;
  std::vector<std::string> names;
  for (const auto& [choice, member] : choices) {
    words += (words.empty() ? "" : ", ") + choice;
    names.push_back(choice);
  }
  faults.push_back({std::string(field),
                    "expected one of " + words + "; got " + Quoted(word) + NearestNameHint(word, names)});
}

void CheckWholeNumber(std::string_view field, double value, double fewest, double most, JobFaults& faults,
                      const std::string& about) {
  if (value == std::floor(value) && value >= fewest && value <= most) return;
  faults.push_back({std::string(field), Prefix(about) + "expected a whole number from " +
                                            ShortestNumber(fewest) + " to " + Echoed(most) + ", got " +
                                            Echoed(value)});
}

void CheckNumber(std::string_view field, double value, JobFaults& faults, const std::string& about) {
  if (std::isfinite(value)) return;
  faults.push_back(
      {std::string(field), Prefix(about) + "expected a finite number, got " + ShortestNumber(value)});
}

void CheckOnce(std::string_view field, std::vector<std::string> things, JobFaults& faults) {
  std::ranges::sort(things);
  const auto twice = std::ranges::adjacent_find(things);
  if (twice != things.end()) faults.push_back({std::string(field), Quoted(*twice) + " is given twice"});
}

}  // namespace brenvolt
