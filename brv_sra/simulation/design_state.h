// A design as the design dialog edits it: which variables are simulated, from what, and how they are correlated. The
// simulation gets it only through the properties of the variables, the matrix file, and the options that the design
// sets.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/specification.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/matrix/matrix_file.h"
#include "brv_sra/simulation/sampling/simulation_design.h"

namespace brenvolt::sra {

struct DesignedVariable {
  std::string name;
  std::vector<DistributionSpecification> fitted;  // saved with the variable, best first, with its truncation
  std::optional<DistributionSpecification> own;   // the person's
  bool isLeftOut = false;                         // takes no part in the simulation
  // Of the matrix file; kNotSet: those of the distribution.
  double mean = kNotSet;
  double standardDeviation = kNotSet;
};

struct DesignState {
  std::vector<DesignedVariable> variables;
  // Of kFitted, the best fitted distribution without truncation counts wherever there is one, also where a person
  // entered another.
  ParameterSource source = ParameterSource::kUserSpecified;
  std::vector<double> correlations;  // k x k, row-major, symmetric with unit diagonal

  std::vector<std::string> Names() const;
};

// What a variable is simulated from; null: nothing is known of it.
const DistributionSpecification* SimulatedFrom(const DesignedVariable& variable, ParameterSource source);

bool TakesPart(const DesignedVariable& variable, ParameterSource source);

// Makes `names` the variables of the design, in that order. Variables that it has keep all they have, with their
// correlations; new ones are not correlated. The names must differ.
void SetDesignVariables(DesignState& design, std::span<const std::string> names);

// The distributions that a variable of the design carries in its sheet, or the reader's fault.
Result<std::vector<DistributionSpecification>> SavedDistributions(const VariablePropertyStore& store,
                                                                  int variableNumber);

// Writes what each variable is simulated from as the properties of the variable of its name, followed by the fitted
// others, in their order. A variable that is left out, or of which nothing is known, stays as it
// is.
void SaveDesign(VariablePropertyStore& store, std::span<const std::string> sheetVariables,
                const DesignState& design);

// The matrix file of the variables that take part. Means and deviations that a person did not give are those of the
// distribution before truncation; 0 and 1 if it has none.
MatrixFile MatrixOf(const DesignState& design);

// Takes the correlations of the variables that the file has, by name.
void TakeCorrelations(const MatrixFile& file, DesignState& design);

// Takes their means and deviations as well.
void TakeMatrix(const MatrixFile& file, DesignState& design);

}  // namespace brenvolt::sra
