// The notation of designed variables, one for the command, text files, Python and reports:
//
//   h ~ normal(50.2, 0.05)
//   cost ~ triangular(min=100, max=180, mode=120) in [100, 170]
//   risk ~ histogram(0:0.9, 25000:0.1)
//   sky ~ histogram(clear:0.7, "rain, snow":0.3)
//
// A distribution goes by its name or another usual one, in any case. Its parameters stand in the order of the catalogue
// or under their names, the offset last; values of user-defined distributions come in groups, separated by colons or commas. The
// levels of a histogram are all numbers or all texts; a text stands between double quotes, a quote in it twice, where it
// would not be read as one otherwise. The part from "in" truncates the distribution; a bound may be left out. Numbers have
// a decimal point in every locale.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt {

struct NotedDistribution {
  DistributionCode code = DistributionCode::kNormal;
  std::vector<double> values;
  double offset = kNotSet;  // of a distribution that has one: 0 if none is written
  std::optional<double> minimum;
  std::optional<double> maximum;
  std::vector<std::string> levels = {};  // of a histogram of texts, whose values number them from 1
};

struct NotedVariable {
  std::string name;
  NotedDistribution distribution;
};

// A text that is not in the notation, or says something impossible: the message names the character, counted from 1.
class NotationError : public Error {
 public:
  // `place` counts bytes from 0.
  NotationError(std::string_view text, std::size_t place, const std::string& what);

  // The character, counted from 0.
  std::size_t Place() const noexcept { return character_; }

 private:
  std::size_t character_;
};

// All throw NotationError. What they return is valid: values in their ranges and consistent, bounds that leave
// something of the distribution.
NotedDistribution ReadDistribution(std::string_view text);
NotedVariable ReadVariable(std::string_view text);
// Of a name that stands apart, so that it may hold any character.
NotedVariable ReadVariable(const std::string& name, std::string_view distribution);

// The texts that read back as exactly these.
std::string NotationOf(const NotedDistribution& distribution);
std::string NotationOf(const NotedVariable& variable);

// "location, scale", "min, max, mode", "code:proportion, …".
std::string ParameterNames(DistributionCode code);

}  // namespace brenvolt
