#include "brv_sra/simulation/dialogs/design_user_defined_dialog.h"

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/resources/design_editor_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace design_user_defined;

constexpr DistributionControls kFields{kParameter, kParameterLabel, 3,       kMinimum,
                                       kMaximum,   kMixtures,       kLevels, kGroup};

struct Texts {
  std::int32_t title;
  std::int32_t table;
  std::int32_t note;
};
constexpr Texts kMixtureTexts{kTitleCustomGaussianMixture, kTableGaussianMixtureParameters,
                              kGaussianMixtureLayoutNote};
constexpr Texts kHistogramTexts{kTitleCustomHistogram, kTableHistogramParameters, kDesignHistogramLayoutNote};

// "1: Mixing coef. 0.5, Mean 0, Std.dev 1"; a value that is not given is left out.
std::string LineOf(DistributionCode code, std::size_t group, std::span<const double> values) {
  std::string line;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string_view heading = Trim(ResourceString(TextsOf(code, i).heading));
    line += (i > 0 ? ", " : " ") + std::string(heading);
    if (!IsNotSet(values[i])) line += " " + FormatNumber(kListedNumberFormat, values[i]);
  }
  return std::to_string(group) + ":" + line;
}

}  // namespace

DesignSimUserDefinedModalDlg::DesignSimUserDefinedModalDlg(AnalysisServices& analysis, std::string variable,
                                                           const DistributionSpecification* start)
    : EnteredDistributionDialog(analysis, DesignUserDefinedTemplate(), std::move(variable), start, kFields) {}

void DesignSimUserDefinedModalDlg::OnInitDialog() {
  Controls().SetText(kVariable, variable_);
  const bool histogram = start_ != nullptr && start_->code == DistributionCode::kHistogram;
  Controls().SetChecked(histogram ? kHistogram : kMixture, true);
  Start(histogram ? DistributionCode::kHistogram : DistributionCode::kGaussianMixture);
}

void DesignSimUserDefinedModalDlg::Start(DistributionCode code) {
  const Texts& texts = code == DistributionCode::kHistogram ? kHistogramTexts : kMixtureTexts;
  Controls().SetText(kTitle, szLoadResString(texts.title) + ": " + szLoadResString(texts.table));
  Controls().SetText(kNote, szLoadResString(texts.note));
  fields_.Edit(code, start_);
  ShowAll();
}

void DesignSimUserDefinedModalDlg::ShowAll() {
  const DistributionSpecification& edited = fields_.Edited();
  const std::size_t size = Facts(edited.code).ParameterCount();
  const std::size_t share = edited.code == DistributionCode::kHistogram ? 1 : 0;
  const std::span<const double> values(edited.values);
  std::vector<std::string> lines;
  double total = 0;
  for (std::size_t i = 0; i + size <= values.size(); i += size) {
    lines.push_back(LineOf(edited.code, i / size + 1, values.subspan(i, size)));
    if (!IsNotSet(values[i + share])) total += values[i + share];
  }
  Controls().SetItems(kTable, std::move(lines));
  Controls().SetText(kTotal, FormatResource(kDesignTotal, FormatNumber(kListedNumberFormat, total)));
}

void DesignSimUserDefinedModalDlg::OnControlChanged(std::int32_t number) {
  if (fields_.OnChanged(number)) ShowAll();
  if (number == kMixture) Start(DistributionCode::kGaussianMixture);
  if (number == kHistogram) Start(DistributionCode::kHistogram);
}

}  // namespace brenvolt::sra
