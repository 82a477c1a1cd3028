#include "brv_sra/resources/design_editor_templates.h"

#include <utility>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {
namespace {

using enum ControlKind;

std::string_view Text(std::int32_t number) {
  return ResourceString(number);
}

std::vector<RowTemplate> OkAndCancel() {
  return {{{kControlOk, kButton, Text(kFitButtonOk)}, {kControlCancel, kButton, Text(kFitButtonCancel)}}};
}

void AddParameters(std::vector<RowTemplate>& rows, std::int32_t label, std::int32_t field,
                   std::int32_t count) {
  for (std::int32_t i = 0; i < count; ++i)
    rows.push_back({{label + i, kLabel, ""}, {field + i, kRealField, ""}});
}

// How many groups a user-defined distribution has, and which of them is shown.
RowTemplate GroupsRow(std::int32_t mixtures, std::int32_t levels, std::int32_t group) {
  return {{mixtures, kIntegerField, Text(kProfilerLabelMixtures)},
          {levels, kIntegerField, Text(kProfilerLabelLevels)},
          {group, kComboBox, ""}};
}

GroupTemplate BoundsGroup(std::int32_t minimum, std::int32_t maximum) {
  return {Text(kFitResultsGroupTruncation),
          {{{minimum, kRealField, Text(kProfilerLabelMin)}, {maximum, kRealField, Text(kProfilerLabelMax)}}}};
}

}  // namespace

const DialogTemplate& DesignDistributionTemplate() {
  using namespace design_distribution;
  static const DialogTemplate result = [] {
    std::vector<RowTemplate> rows{{{kVariable, kLabel, ""}},
                                  {{kTypes, kListBox, Text(kProfilerListDistributions)}},
                                  GroupsRow(kMixtures, kLevels, kGroup)};
    AddParameters(rows, kParameterLabel, kParameter, 5);
    return DialogTemplate{15001,
                          Text(kDesignDistributionTitle),
                          OkAndCancel(),
                          {{"", {{"", std::move(rows)}, BoundsGroup(kMinimum, kMaximum)}}}};
  }();
  return result;
}

const DialogTemplate& DesignCorrelationsTemplate() {
  using namespace design_correlations;
  static const DialogTemplate result{15002,
                                     Text(kDesignCorrelationTitle),
                                     OkAndCancel(),
                                     {{"",
                                       {{"",
                                         {{{kFirst, kComboBox, Text(kDesignLabelFirst)},
                                           {kSecond, kComboBox, Text(kDesignLabelSecond)},
                                           {kCorrelation, kRealField, Text(kDesignLabelCorrelation)}},
                                          {{kPairs, kListBox, Text(kDesignListPairs)}},
                                          {{kEditMatrix, kButton, Text(kDesignButtonMatrix)}},
                                          {{kVerdict, kLabel, ""}},
                                          {{kChanges, kListBox, Text(kDesignListChanges)}}}},
                                        {"",
                                         {{{kVariable, kComboBox, Text(kDesignLabelVariable)}},
                                          {{kMean, kRealField, Text(kDesignLabelMean)}},
                                          {{kDeviation, kRealField, Text(kDesignLabelDeviation)}}}}}}}};
  return result;
}

const DialogTemplate& DesignDefaultsTemplate() {
  using namespace design_defaults;
  static const DialogTemplate result{
      15003,
      Text(kDesignDefaultsTitle),
      OkAndCancel(),
      {{"",
        {{"",
          {{{kVariables, kListBox, Text(kDesignLabelVariable)}, {kFitted, kListBox, Text(kDesignListFitted)}},
           {{kTakeOver, kButton, Text(kDesignButtonTakeOver)},
            {kTakeOverAll, kButton, Text(kDesignButtonTakeOverAll)},
            {kLeave, kButton, Text(kDesignButtonLeave)}},
           {{kTakesPart, kCheckBox, Text(kDesignCheckTakesPart)}},
           {{kUseFitted, kCheckBox, Text(kDesignCheckUseFitted)}},
           {{kBounds, kLabel, ""}}}}}}}};
  return result;
}

const DialogTemplate& DesignUserDefinedTemplate() {
  using namespace design_user_defined;
  static const DialogTemplate result = [] {
    std::vector<RowTemplate> rows{GroupsRow(kMixtures, kLevels, kGroup)};
    AddParameters(rows, kParameterLabel, kParameter, 3);
    rows.push_back({{kTable, kListBox, ""}});
    rows.push_back({{kNote, kLabel, ""}, {kTotal, kLabel, ""}});
    GroupTemplate kinds{"",
                        {{{kVariable, kLabel, ""}},
                         {{kMixture, kRadioButton, Text(kProfilerGroupMixture)},
                          {kHistogram, kRadioButton, Text(kProfilerGroupHistogram)}},
                         {{kTitle, kLabel, ""}}}};
    return DialogTemplate{15004,
                          Text(kDesignUserDefinedTitle),
                          OkAndCancel(),
                          {{"", {std::move(kinds), {"", std::move(rows)}, BoundsGroup(kMinimum, kMaximum)}}}};
  }();
  return result;
}

}  // namespace brenvolt::sra
