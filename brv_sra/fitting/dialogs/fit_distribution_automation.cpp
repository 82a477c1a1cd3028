// The automation interface of the fit specification: what its members do.
//
// An index counts the variables of a list from 1; a call with one shows that variable on its tab, as a person
// would, and works on its controls. A field that is empty reads as "not set" (-444) and is emptied by putting
// that value.
#include <array>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "brv_sra/fitting/dialogs/fit_distribution_dialog.h"
#include "brv_sra/fitting/dialogs/variable_lists.h"
#include "brv_sra/frame/control_members.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/fit_distribution_interface.h"
#include "brv_sra/resources/resource_numbers.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/numeric/distributions/all_distributions.h"

namespace brenvolt::sra {
namespace {

using Dialog = CFitDistribution;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;
using Numbers = std::vector<std::int16_t>;
using namespace fit_dialog;

Numbers VariableList(const Dialog& dialog, const Variant& value) {
  const Spreadsheet* table = dialog.GetInputTable();
  if (table == nullptr) throw Error("no input spreadsheet");
  return VariableNumbers(value, table->VariableCount());
}

Variant GetLists(Dialog& dialog, Indexes) {
  const FitSpecification& specification = dialog.Specification();
  return dialog.Analysis().dsplst(specification.continuous) + " " + kListBar + " " +
         dialog.Analysis().dsplst(specification.discrete);
}

// Like the selection dialog, refuses a selection without any variable.
void PutLists(Dialog& dialog, Indexes, const Variant& value) {
  const Spreadsheet* table = dialog.GetInputTable();
  if (table == nullptr) throw Error("no input spreadsheet");
  const auto [continuous, discrete] = VariableListsFrom(value, table->VariableCount());
  if (continuous.empty() && discrete.empty()) throw Error(dialog.szLoadResString(kMsgTooFewVariables));
  dialog.SelectLists(continuous, discrete);
}

Variant GetContinuousList(Dialog& dialog, Indexes) {
  return dialog.Analysis().dsplst(dialog.Specification().continuous);
}
void PutContinuousList(Dialog& dialog, Indexes, const Variant& value) {
  dialog.SelectLists(VariableList(dialog, value), dialog.Specification().discrete);
}

// The type library has a 32-bit integer here, which holds no more than one variable: a list of one is that
// integer, any other is a text as the continuous list is. A put takes either, and an array of numbers.
Variant GetDiscreteList(Dialog& dialog, Indexes) {
  const Numbers& list = dialog.Specification().discrete;
  if (list.size() == 1) return std::int32_t{list.front()};
  return dialog.Analysis().dsplst(list);
}
void PutDiscreteList(Dialog& dialog, Indexes, const Variant& value) {
  dialog.SelectLists(dialog.Specification().continuous, VariableList(dialog, value));
}

// What the options dialog's radio buttons set, without the dialog. A choice is made, never taken back, by a
// put.
template <auto Field, auto Value>
Variant GetOption(Dialog& dialog, Indexes) {
  return std::int32_t{dialog.Specification().*Field == Value ? 1 : 0};
}
template <auto Field, auto Value>
void PutOption(Dialog& dialog, Indexes, const Variant& value) {
  if (value.ToBoolean()) dialog.Specification().*Field = Value;
}
template <auto Field, auto Value>
constexpr Member Option(std::string_view name) {
  return Member{name, GetOption<Field, Value>, PutOption<Field, Value>}.AsChoice();
}

using Show = void (Dialog::*)(int);

// Where the tabs' controls are.
template <Show ShowVariable>
std::int32_t ShownPlace(Dialog& dialog) {
  return ShowVariable == &Dialog::ShowContinuousVariable ? dialog.ShownContinuousVariable()
                                                         : dialog.ShownDiscreteVariable();
}
template <Show ShowVariable>
constexpr Member OfVariable(std::string_view name, Member::Get get, Member::Put put) {
  return Member{name, get, put}.ShownAt(ShownPlace<ShowVariable>);
}

template <Show ShowVariable, std::int32_t Control>
Variant GetCheckOf(Dialog& dialog, Indexes indexes) {
  (dialog.*ShowVariable)(indexes[0].ToInteger());
  return GetChecked<Dialog, Control>(dialog, indexes);
}
template <Show ShowVariable, std::int32_t Control>
void PutCheckOf(Dialog& dialog, Indexes indexes, const Variant& value) {
  (dialog.*ShowVariable)(indexes[0].ToInteger());
  PutChecked<Dialog, Control>(dialog, indexes, value);
}
template <std::int32_t Control>
constexpr Member Continuous(std::string_view name) {
  constexpr Show kShow = &Dialog::ShowContinuousVariable;
  return OfVariable<kShow>(name, GetCheckOf<kShow, Control>, PutCheckOf<kShow, Control>);
}
template <std::int32_t Control>
constexpr Member Discrete(std::string_view name) {
  constexpr Show kShow = &Dialog::ShowDiscreteVariable;
  return OfVariable<kShow>(name, GetCheckOf<kShow, Control>, PutCheckOf<kShow, Control>);
}

template <std::int32_t Control>
Variant GetOffset(Dialog& dialog, Indexes indexes) {
  dialog.ShowContinuousVariable(indexes[0].ToInteger());
  double value = kNotSet;
  dialog.Controls().GetDlgItemDouble(Control, value);
  return value;
}
template <std::int32_t Control>
void PutOffset(Dialog& dialog, Indexes indexes, const Variant& value) {
  dialog.ShowContinuousVariable(indexes[0].ToInteger());
  if (!std::isfinite(value.ToReal())) throw Error("not a finite number");
  EnterNumber(dialog, Control, value.ToReal());
}
template <std::int32_t Control>
constexpr Member Offset(std::string_view name) {
  return OfVariable<&Dialog::ShowContinuousVariable>(name, GetOffset<Control>, PutOffset<Control>);
}

template <Show ShowVariable, std::int32_t Control>
Variant GetCount(Dialog& dialog, Indexes indexes) {
  (dialog.*ShowVariable)(indexes[0].ToInteger());
  return GetNumber<Dialog, Control>(dialog, indexes);
}
template <Show ShowVariable, std::int32_t Control>
void PutCount(Dialog& dialog, Indexes indexes, const Variant& value) {
  (dialog.*ShowVariable)(indexes[0].ToInteger());
  EnterCount(dialog, Control, value.ToInteger());
}
template <Show ShowVariable, std::int32_t Control>
constexpr Member Count(std::string_view name) {
  return OfVariable<ShowVariable>(name, GetCount<ShowVariable, Control>, PutCount<ShowVariable, Control>);
}

// Settings without a control: the number of bootstrap samples (0 for none), and where their random numbers
// start.
template <std::int32_t FitSpecification::*Field>
Variant GetSetting(Dialog& dialog, Indexes) {
  return dialog.Specification().*Field;
}
template <std::int32_t FitSpecification::*Field>
void PutSetting(Dialog& dialog, Indexes, const Variant& value) {
  const std::int32_t setting = value.ToInteger();
  if (setting < 0) throw Error("less than 0: " + value.ToText());
  dialog.Specification().*Field = setting;
}

Variant GetContradictedLast(Dialog& dialog, Indexes) {
  return std::int32_t{dialog.Specification().contradictedLast ? 1 : 0};
}
void PutContradictedLast(Dialog& dialog, Indexes, const Variant& value) {
  dialog.Specification().contradictedLast = value.ToBoolean();
}

using enum RankingCriterion;
using enum ChiSquareBinning;
constexpr auto kContinuousRank = &FitSpecification::continuousCriterion;
constexpr auto kDiscreteRank = &FitSpecification::discreteCriterion;
constexpr auto kBins = &FitSpecification::binning;

// What is not one of each distribution.
constexpr std::array<Member, 23> kOwnMembers{{
    Member{"Variables", GetLists, PutLists}.SaidByOthers(),
    Option<kContinuousRank, kKolmogorovSmirnov>("ContinuousKolmogorovSmirovTest"),
    Option<kContinuousRank, kChiSquare>("ContinuousChiSquareTest"),
    Option<kContinuousRank, kAndersonDarling>("ContinuousAndersonDarlingTest"),
    Option<kDiscreteRank, kKolmogorovSmirnov>("DiscreteKolmogorovSmirovTest"),
    Option<kDiscreteRank, kChiSquare>("DiscreteChiSquareTest"),
    Option<kBins, kEqualProbabilities>("EqualProbability"),
    Option<kBins, kEqualIntervals>("EqualInterval"),
    Member{"IsPairwise", GetChecked<Dialog, kPairwise>, PutChosen<Dialog, kPairwise>}.AsChoice(),
    Member{"IsCasewise", GetChecked<Dialog, kCasewise>, PutChosen<Dialog, kCasewise>}.AsChoice(),
    {"ContinuousVariable", GetContinuousList, PutContinuousList},
    Count<&Dialog::ShowContinuousVariable, kMixtures>("NumberOfMixtures"),
    {"DiscreteVariable", GetDiscreteList, PutDiscreteList},
    Discrete<kUseTrials>("IsNumberOfTrials"),
    Count<&Dialog::ShowDiscreteVariable, kTrials>("NumberOfTrials"),
    Continuous<kJohnsonPercentile>("FitJohnsonByPercentile"),
    {"BootstrapSamples", GetSetting<&FitSpecification::bootstrapSamples>,
     PutSetting<&FitSpecification::bootstrapSamples>},
    {"BootstrapSeed", GetSetting<&FitSpecification::bootstrapSeed>,
     PutSetting<&FitSpecification::bootstrapSeed>},
    Option<kContinuousRank, kAkaike>("ContinuousAkaikeCriterion"),
    Option<kContinuousRank, kBayes>("ContinuousBayesCriterion"),
    Option<kDiscreteRank, kAkaike>("DiscreteAkaikeCriterion"),
    Option<kDiscreteRank, kBayes>("DiscreteBayesCriterion"),
    {"ContradictedFitsLast", GetContradictedLast, PutContradictedLast},
}};

constexpr bool IsJoined(std::string_view name, std::string_view head, std::string_view middle,
                        std::string_view tail) {
  return name.size() == head.size() + middle.size() + tail.size() && name.starts_with(head) &&
         name.substr(head.size()).starts_with(middle) && name.ends_with(tail);
}

// The member of that name if it checks the distribution D or enters its offset.
template <class D>
constexpr void BindIfOf(std::string_view name, Member& member) {
  constexpr DistributionFacts kFacts = D::kFacts;
  constexpr std::int32_t kCheck = CheckOf(kFacts.code);
  if (IsJoined(name, "Is", kFacts.longName, "Distribution"))
    member = kFacts.isContinuous ? Continuous<kCheck>(name) : Discrete<kCheck>(name);
  if constexpr (kFacts.HasOffset()) {
    if (IsJoined(name, "", kFacts.longName, "Offset")) member = Offset<FieldOf(kFacts.code)>(name);
  }
}

template <class... D>
constexpr Member MemberOf(std::string_view name, DistributionList<D...> /*list*/) {
  Member member = kOwnMembers.front();
  for (const Member& own : kOwnMembers) {
    if (own.name == name) member = own;
  }
  (BindIfOf<D>(name, member), ...);
  return member;
}

template <std::size_t... Place>
constexpr auto MembersInOrder(std::index_sequence<Place...> /*places*/) {
  using fit_distribution_interface::kMembers;
  return std::array{MemberOf(kMembers[Place].name, AllDistributions())...};
}
constexpr auto kMembers =
    MembersInOrder(std::make_index_sequence<fit_distribution_interface::kMembers.size()>());
static_assert(Binds(kFitDistributionInterface, kMembers));

}  // namespace

CFitDistribution::CFitDistribution(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, FitDistributionTemplate()) {
  EnableAutomation<CFitDistribution>(kFitDistributionInterface, "CFitDistribution", kMembers);
}

}  // namespace brenvolt::sra
