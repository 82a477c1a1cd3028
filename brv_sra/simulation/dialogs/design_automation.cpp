// The automation interface of the design dialog: what its members do.
//
// iID counts the variables of the design from 1. A distribution is the array of frame/specification_array.h; its key
// alone names a fitted one. Correlations, means and deviations are in the order of the variables.
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/specification_array.h"
#include "brv_sra/matrix/dialogs/correlation_entries.h"
#include "brv_sra/resources/design_interface.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/simulation/dialogs/design_dialog.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

using namespace design_dialog;
using Dialog = CDesignSimulation;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;

Variant GetNames(Dialog& dialog, Indexes) {
  Variant::Array names;
  for (const DesignedVariable& variable : dialog.Design().variables) names.emplace_back(variable.name);
  return names;
}
void PutNames(Dialog& dialog, Indexes, const Variant& value) {
  std::vector<std::string> names;
  for (const Variant& name : value.ToArray()) names.push_back(name.ToText());
  dialog.SetVariables(names);
}

Variant GetCorrelations(Dialog& dialog, Indexes) {
  const DesignState& design = dialog.Design();
  return CorrelationArray(design.correlations, design.variables.size());
}
void PutCorrelations(Dialog& dialog, Indexes, const Variant& value) {
  DesignState& design = dialog.Design();
  design.correlations = CorrelationsFrom(value, design.Names());
}

template <double DesignedVariable::*Summary>
Variant GetSummary(Dialog& dialog, Indexes) {
  Variant::Array numbers;
  for (const DesignedVariable& variable : dialog.Design().variables) {
    numbers.emplace_back();
    if (!IsNotSet(variable.*Summary)) numbers.back() = variable.*Summary;
  }
  return numbers;
}

bool IsMean(double value) {
  return std::isfinite(value);
}
bool IsDeviation(double value) {
  return std::isfinite(value) && value > 0;
}

template <double DesignedVariable::*Summary, bool (*IsValid)(double)>
void PutSummary(Dialog& dialog, Indexes, const Variant& value) {
  const Variant::Array array = value.ToArray();
  std::vector<DesignedVariable>& variables = dialog.Design().variables;
  if (array.size() != variables.size())
    throw Error(std::to_string(array.size()) + " values for " + std::to_string(variables.size()) +
                " variables");
  std::vector<double> numbers;
  for (std::size_t i = 0; i < array.size(); ++i) {
    numbers.push_back(array[i].IsEmpty() ? kNotSet : array[i].ToReal());
    if (!IsNotSet(numbers.back()) && !IsValid(numbers.back()))
      throw Error(array[i].ToText() + " is out of range", "variable " + variables[i].name);
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) variables[i].*Summary = numbers[i];
}

DesignedVariable& Indexed(Dialog& dialog, Indexes indexes) {
  return dialog.VariableAt(indexes[0].ToInteger());
}

// Throws Error unless the array holds a distribution that a person may enter for the variable.
DistributionSpecification EnteredSpecification(const DesignedVariable& variable, const Variant& value) {
  const Variant::Array array = value.ToArray();
  if (array.empty()) throw Error("expected a distribution, got an empty array");
  return sra::EnteredSpecification(array, "variable " + variable.name);
}

Variant GetOwn(Dialog& dialog, Indexes indexes) {
  const DesignedVariable& variable = Indexed(dialog, indexes);
  return variable.own ? Variant(ArrayOf(*variable.own)) : Variant();
}
void PutOwn(Dialog& dialog, Indexes indexes, const Variant& value) {
  DesignedVariable& variable = Indexed(dialog, indexes);
  if (value.IsEmpty()) {
    variable.own.reset();
  } else {
    variable.own = EnteredSpecification(variable, value);
  }
  dialog.ShowVariables();
}

const DistributionSpecification& FittedAs(const DesignedVariable& variable, DistributionCode code) {
  for (const DistributionSpecification& fitted : variable.fitted) {
    if (fitted.code == code) return fitted;
  }
  throw Error("has no fitted " + std::string(DisplayName(code)) + " distribution",
              "variable " + variable.name);
}

Variant GetSimulated(Dialog& dialog, Indexes indexes) {
  const DesignedVariable& variable = Indexed(dialog, indexes);
  const ParameterSource source = dialog.Design().source;
  if (!TakesPart(variable, source)) return {};
  DistributionSpecification simulated = *SimulatedFrom(variable, source);
  if (source == ParameterSource::kFitted) {  // the bounds have no effect then
    simulated.truncateBelow = false;
    simulated.truncateAbove = false;
  }
  return ArrayOf(simulated);
}
// A distribution that is put counts as the person's own, which are then simulated.
void PutSimulated(Dialog& dialog, Indexes indexes, const Variant& value) {
  DesignedVariable& variable = Indexed(dialog, indexes);
  if (value.IsEmpty()) {
    variable.isLeftOut = true;
    return dialog.ShowVariables();
  }
  dialog.TakeOwn(variable, value.IsArray() ? EnteredSpecification(variable, value)
                                           : FittedAs(variable, CodeFromVariant(value)));
}

Variant GetLeftOut(Dialog& dialog, Indexes indexes) {
  return std::int32_t{Indexed(dialog, indexes).isLeftOut ? 1 : 0};
}
void PutLeftOut(Dialog& dialog, Indexes indexes, const Variant& value) {
  Indexed(dialog, indexes).isLeftOut = value.ToBoolean();
  dialog.ShowVariables();
}

std::int32_t VariableCount(Dialog& dialog) {
  return static_cast<std::int32_t>(dialog.Design().variables.size());
}

Variant CallSaveToInput(Dialog& dialog, Indexes) {
  dialog.SaveToInput();
  return {};
}
Variant GetCorrelationMatrix(Dialog& dialog, Indexes) {
  return Variant::Object(dialog.ShowCorrelationMatrix());
}

// The last two have places behind the members that macros know.
constexpr std::array<Member, 10> kMembers{{
    {"UserDefinedDesignMatrixVariableNames", GetNames, PutNames},
    {"UserDefinedDesignMatrixValues", GetCorrelations, PutCorrelations},
    {"UserDefinedDesignMatrixMean", GetSummary<&DesignedVariable::mean>,
     PutSummary<&DesignedVariable::mean, IsMean>},
    {"UserDefinedDesignMatrixStdDeviation", GetSummary<&DesignedVariable::standardDeviation>,
     PutSummary<&DesignedVariable::standardDeviation, IsDeviation>},
    Member{"CustomDistributionSpecification", GetOwn, PutOwn}.ShownUpTo(VariableCount),
    Member{"SimulationSpecificationOfVariable", GetSimulated, PutSimulated}.SaidByOthers(),
    Member{"SaveDistributionToInput", CallSaveToInput, nullptr}.ByButton(kSaveToInput),
    Member{"CorrelationMatrix", GetCorrelationMatrix, nullptr}.ByButton(kCorrelationMatrix),
    {"UseFittedDistributions", GetChecked<Dialog, kUseFitted>, PutChecked<Dialog, kUseFitted>},
    Member{"IsVariableLeftOut", GetLeftOut, PutLeftOut}.ShownUpTo(VariableCount),
}};
static_assert(Binds(kDesignSimulationInterface, kMembers));

}  // namespace

CDesignSimulation::CDesignSimulation(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, DesignTemplate()) {
  EnableAutomation<CDesignSimulation>(kDesignSimulationInterface, "CDesignSimulation", kMembers);
}

}  // namespace brenvolt::sra
