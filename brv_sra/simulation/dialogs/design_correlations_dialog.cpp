#include "brv_sra/simulation/dialogs/design_correlations_dialog.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "brv_sra/matrix/dialogs/correlation_entries.h"
#include "brv_sra/matrix/dialogs/correlation_verdict.h"
#include "brv_sra/resources/design_editor_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace design_correlations;

// The variables that are not left out, and the correlations among them.
struct Participants {
  std::vector<std::string> names;
  std::vector<double> matrix;

  Participants(const DesignState& design, std::span<const double> correlations) {
    const std::size_t k = design.variables.size();
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < k; ++i) {
      if (!design.variables[i].isLeftOut) places.push_back(i);
    }
    for (const std::size_t i : places) {
      names.push_back(design.variables[i].name);
      for (const std::size_t j : places) matrix.push_back(correlations[i * k + j]);
    }
  }
};

}  // namespace

DesignSimCorrelationParamsModalDlg::DesignSimCorrelationParamsModalDlg(AnalysisServices& analysis,
                                                                       DesignState& design)
    : CSimulationAndRiskModalDialog(analysis, DesignCorrelationsTemplate()),
      target_(design),
      edited_(design) {}

std::size_t DesignSimCorrelationParamsModalDlg::Selected(std::int32_t list) const {
  return static_cast<std::size_t>(std::max(0, Controls().Selection(list)));
}

double& DesignSimCorrelationParamsModalDlg::Correlation(std::size_t i, std::size_t j) {
  return edited_.correlations[i * edited_.variables.size() + j];
}

void DesignSimCorrelationParamsModalDlg::OnInitDialog() {
  for (const std::int32_t list : {kFirst, kSecond, kVariable}) {
    Controls().SetItems(list, edited_.Names());
    Controls().Select(list, list == kSecond ? 1 : 0);
  }
  ShowMatrix();
  ShowSummaries();
}

// A variable and itself have nothing to be entered.
void DesignSimCorrelationParamsModalDlg::ShowPair() {
  const std::size_t first = Selected(kFirst);
  const std::size_t second = Selected(kSecond);
  Controls().SetDlgItemDouble(kCorrelation, Correlation(first, second));
  Controls().Enable(kCorrelation, first != second);
}

void DesignSimCorrelationParamsModalDlg::ShowMatrix() {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < edited_.variables.size(); ++i) {
    for (std::size_t j = i + 1; j < edited_.variables.size(); ++j) {
      if (Correlation(i, j) == 0) continue;
      lines.push_back(edited_.variables[i].name + ", " + edited_.variables[j].name + ": " +
                      ShortestNumber(Correlation(i, j)));
    }
  }
  Controls().SetItems(kPairs, std::move(lines));
  ShowPair();
  ShowVerdict();
}

MatrixVerdict DesignSimCorrelationParamsModalDlg::VerdictOn(std::span<const double> correlations) const {
  const Participants taking(edited_, correlations);
  return VerdictOnCorrelations(taking.matrix, taking.names);
}

void DesignSimCorrelationParamsModalDlg::ShowVerdict() {
  MatrixVerdict verdict = VerdictOn(edited_.correlations);
  Controls().SetText(kVerdict, std::move(verdict.text));
  Controls().SetItems(kChanges, std::move(verdict.changes));
}

void DesignSimCorrelationParamsModalDlg::ShowSummaries() {
  const DesignedVariable& variable = edited_.variables[Selected(kVariable)];
  Controls().SetDlgItemDouble(kMean, variable.mean);
  Controls().SetDlgItemDouble(kDeviation, variable.standardDeviation);
}

bool DesignSimCorrelationParamsModalDlg::OnCommand(std::int32_t number) {
  if (number != kEditMatrix) return CSimulationAndRiskModalDialog::OnCommand(number);
  const auto judge = [this](const std::vector<double>& correlations) { return VerdictOn(correlations); };
  if (!EditCorrelations(Analysis(), kDesignCorrelationTitle, edited_.Names(), edited_.correlations, judge))
    return false;
  ShowMatrix();
  return true;
}

void DesignSimCorrelationParamsModalDlg::OnControlChanged(std::int32_t number) {
  switch (number) {
    case kFirst:
    case kSecond:
      return ShowPair();
    case kCorrelation:
      return TakeCorrelation();
    case kVariable:
      return ShowSummaries();
    case kMean:
    case kDeviation:
      return TakeSummary(number);
    default:
      return;
  }
}

void DesignSimCorrelationParamsModalDlg::TakeCorrelation() {
  const auto entered = EnteredCorrelation(Controls().Text(kCorrelation));
  if (entered) {
    Correlation(Selected(kFirst), Selected(kSecond)) = *entered;
    Correlation(Selected(kSecond), Selected(kFirst)) = *entered;
  } else {
    Analysis().ShowMessage(szLoadResString(kMsgProfilerEntriesReset));
  }
  ShowMatrix();
}

void DesignSimCorrelationParamsModalDlg::TakeSummary(std::int32_t control) {
  DesignedVariable& variable = edited_.variables[Selected(kVariable)];
  const bool isMean = control == kMean;
  double value = kNotSet;
  const bool read = Controls().GetDlgItemDouble(control, value) == 0;
  const bool isValid = read && std::isfinite(value) && !IsNotSet(value) && (isMean || value > 0);
  if (isValid || Trim(Controls().Text(control)).empty()) {
    (isMean ? variable.mean : variable.standardDeviation) = value;
  } else {
    Analysis().ShowMessage(FormatResource(isMean ? kMsgDesignMean : kMsgDesignDeviation, variable.name));
  }
  ShowSummaries();
}

bool DesignSimCorrelationParamsModalDlg::OnOk() {
  target_ = std::move(edited_);
  return true;
}

}  // namespace brenvolt::sra
