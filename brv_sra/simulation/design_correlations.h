// The correlations of a design: where they come from and what became of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "brv_sra/matrix/correlation_target.h"
#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/simulation/sampling/simulation_design.h"

namespace brenvolt::sra {

struct DesignCorrelations {
  std::vector<double> matrix;  // k x k, row-major, over all variables of the design, symmetric
  // Of the variables that take part: those that the file does not have, and those whose name is not theirs
  // alone in the design and in the file.
  std::vector<std::string> missing;
  std::vector<std::string> ambiguous;
};

// The design's correlations out of a matrix file, which may have them in another order and may have further
// ones. Names agree whatever blanks stand at their ends. Only the triangle below the diagonal of the file
// counts. NaN if the file lacks a variable.
DesignCorrelations CorrelationsByName(const SimulationDesign& design, const MatrixFile& file);

// The design's correlations without the rows and columns of excluded variables. A design without a matrix
// has one for a single active variable; otherwise its correlations are NaN.
std::vector<double> ActiveCorrelations(const SimulationDesign& design);

// What a run with correlation asked for, over the m variables that took part, and how it went.
struct SimulatedCorrelations {
  std::vector<double> asked;  // m x m, row-major, symmetric
  bool scoreCorrection = true;
  std::optional<CorrelationRepair> repair;

  const std::vector<double>& Used() const { return repair ? repair->matrix : asked; }
};

}  // namespace brenvolt::sra
