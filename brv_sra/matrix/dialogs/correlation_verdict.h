// What becomes of correlations in a run, for people who enter them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "host/analysis/user_interface.h"

namespace brenvolt::sra {

// Of a k x k matrix over k variables: whether a simulation takes it as it is, repairs it or cannot use it.
MatrixVerdict VerdictOnCorrelations(std::span<const double> matrix, std::span<const std::string> names);

// Of a matrix that noise is to follow, which nothing repairs.
MatrixVerdict VerdictOnNoiseCorrelations(const std::vector<double>& matrix);

}  // namespace brenvolt::sra
