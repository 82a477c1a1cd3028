// The interface that every analysis dialog offers to automation; a module's own interfaces extend it.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt {

namespace common_member {
inline constexpr DispatchId kName = 0x0;
inline constexpr DispatchId kApplication = 0x1;
inline constexpr DispatchId kParent = 0x2;
inline constexpr DispatchId kOk = 0x3;
inline constexpr DispatchId kCancel = 0x4;
inline constexpr DispatchId kResultsSelection = 0x5;
inline constexpr DispatchId kResultsSelectionOption = 0x6;
inline constexpr DispatchId kResultsVariables = 0x7;
inline constexpr DispatchId kResultsOption = 0x8;
inline constexpr DispatchId kResultsCodes = 0x9;
inline constexpr DispatchId kResultsSaveFileName = 0xa;
inline constexpr DispatchId kResultsValues = 0xb;
inline constexpr DispatchId kResultsOutputFields = 0xc;
}  // namespace common_member

namespace dialog_interface {

using enum AutomationType;

inline constexpr std::array<MemberDescription, 13> kMembers{{
    Property("Name", common_member::kName, kText, kNone, "The title of the dialog."),
    Property("Application", common_member::kApplication, kObject, kNone,
             "The application that the analysis runs in."),
    Property("Parent", common_member::kParent, kObject, kNone, "The analysis that the dialog belongs to."),
    Method(
        "OK", common_member::kOk, kInteger,
        "Presses OK: the dialog checks its settings, does its work and hands over to the next one. Gives 1 "
        "when it did, 0 when it refused and stays open."),
    Method("Cancel", common_member::kCancel, kNone,
           "Presses Cancel: the analysis goes back to the dialog before, or ends."),
    Property(
        "ResultsSelection", common_member::kResultsSelection, kNone, kVariant,
        "The cases that the next result is made of: a condition over the variables (a text), or an array "
        "of the numbers of cases."),
    Property("ResultsSelectionOption", common_member::kResultsSelectionOption, kNone, kVariant,
             "How ResultsSelection is meant: 0 these cases, 1 all others."),
    Property("ResultsVariables", common_member::kResultsVariables, kNone, kVariant,
             "The variables that results are made of, where a dialog makes results of chosen variables."),
    Property("ResultsOption", common_member::kResultsOption, kNone, kInteger,
             "The kind of result that the next OK makes, a constant of OuptutType."),
    Property(
        "ResultsCodes", common_member::kResultsCodes, kNone, kVariant,
        "A grouping variable and its codes, an array: the next result is made of the cases that have one."),
    Property("ResultsSaveFileName", common_member::kResultsSaveFileName, kNone, kText,
             "The file that the next result is saved in; its ending says in which format."),
    Property("ResultsValues", common_member::kResultsValues, kNone, kVariant,
             "Points at which density, distribution function and quantile of the chosen fit are tabulated."),
    Property("ResultsOutputFields", common_member::kResultsOutputFields, kNone, kVariant,
             "The columns of the next table, an array of their identifiers or headings."),
}};

}  // namespace dialog_interface

inline constexpr InterfaceDescription kDialogInterface{
    "BrvAnalysisDialog", "{A2180096-6DDB-4AD2-87FC-A14DF8B92526}", "What every dialog of an analysis offers.",
    dialog_interface::kMembers};

}  // namespace brenvolt
