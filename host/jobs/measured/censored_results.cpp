#include "host/jobs/measured/censored_results.h"

#include <limits>

namespace brenvolt {

ResultRow CensoredFit::Statistics() const {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  ResultRow row;
  const auto add = [&](const ResultColumn& column, double value) {
    row.numbers[std::string(column.identifier)] = IsValid() ? value : kNone;
  };
  add("log_likelihood"_column, logLikelihood);
  add("aic"_column, aic);
  add("bic"_column, bic);
  add(result_columns::kCensoredSearch[0], iterations);
  add(result_columns::kCensoredSearch[1], gradient);
  add(result_columns::kCurveDistance[0], distance);
  return row;
}

}  // namespace brenvolt
