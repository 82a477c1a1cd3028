#include "brv_sra/fitting/dialogs/fit_options_dialog.h"

#include <array>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/resources/dialog_templates.h"

namespace brenvolt::sra {
namespace {

using namespace fit_options;

// A radio button and the value that it sets.
template <class Value>
struct Choice {
  std::int32_t control;
  Value FitSpecification::*field;
  Value value;
};

constexpr std::array<Choice<RankingCriterion>, 5> kCriteria{{
    {kContinuousKolmogorovSmirnov, &FitSpecification::continuousCriterion,
     RankingCriterion::kKolmogorovSmirnov},
    {kContinuousChiSquare, &FitSpecification::continuousCriterion, RankingCriterion::kChiSquare},
    {kContinuousAndersonDarling, &FitSpecification::continuousCriterion, RankingCriterion::kAndersonDarling},
    {kDiscreteKolmogorovSmirnov, &FitSpecification::discreteCriterion, RankingCriterion::kKolmogorovSmirnov},
    {kDiscreteChiSquare, &FitSpecification::discreteCriterion, RankingCriterion::kChiSquare},
}};
constexpr std::array<Choice<ChiSquareBinning>, 2> kBinnings{{
    {kEqualProbabilities, &FitSpecification::binning, ChiSquareBinning::kEqualProbabilities},
    {kEqualIntervals, &FitSpecification::binning, ChiSquareBinning::kEqualIntervals},
}};

}  // namespace

FitOptionsModalDlg::FitOptionsModalDlg(AnalysisServices& analysis)
    : CSimulationAndRiskModalDialog(analysis, FitOptionsTemplate()) {}

void FitOptionsModalDlg::OnInitDialog() {
  const FitSpecification& specification = Services().Fit().specification;
  const auto show = [&](const auto& choices) {
    for (const auto& choice : choices) {
      if (specification.*choice.field == choice.value) Controls().SetChecked(choice.control, true);
    }
  };
  show(kCriteria);
  show(kBinnings);
}

void FitOptionsModalDlg::OnControlChanged(std::int32_t number) {
  FitSpecification& specification = Services().Fit().specification;
  const auto take = [&](const auto& choices) {
    for (const auto& choice : choices) {
      if (choice.control == number && Controls().IsChecked(number))
        specification.*choice.field = choice.value;
    }
  };
  take(kCriteria);
  take(kBinnings);
}

}  // namespace brenvolt::sra
