// The interfaces of the host's own automation objects, documents, analysis and application, described as the
// type library describes those of the dialogs.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt {

namespace host_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kVariable{{{"Variable", kInteger}}};
inline constexpr std::array<ArgumentDescription, 1> kCase{{{"Case", kInteger}}};
inline constexpr std::array<ArgumentDescription, 2> kCell{{{"Case", kInteger}, {"Variable", kInteger}}};
inline constexpr std::array<ArgumentDescription, 1> kNumber{{{"Number", kInteger}}};

inline constexpr std::array<MemberDescription, 7> kSpreadsheetMembers{{
    Property("Title", 1, kText, kNone, "The title."),
    Property("NumberOfCases", 2, kInteger, kNone, "The number of cases (rows)."),
    Property("NumberOfVariables", 3, kInteger, kNone, "The number of variables (columns)."),
    Property("VariableName", 4, kText, kNone, "The name of a variable, counted from 1.", kVariable),
    Property("CaseName", 5, kText, kNone, "The name of a case, counted from 1.", kCase),
    Property("Value", 6, kReal, kNone, "The value of a case and a variable, both counted from 1.", kCell),
    Property("Text", 7, kText, kNone, "The text label of a value; empty where it has none.", kCell),
}};

inline constexpr std::array<MemberDescription, 12> kGraphMembers{{
    Property("Title", 1, kText, kNone, "The title."),
    Property("Kind", 2, kText, kNone, "What the graph is: \"histogram\", \"qq\", and so on."),
    Property("XAxisTitle", 3, kText, kNone, "The title of the horizontal axis."),
    Property("YAxisTitle", 4, kText, kNone, "The title of the vertical axis."),
    Property("NumberOfCurves", 5, kInteger, kNone, "The number of curves drawn by a formula."),
    Property("CurveName", 6, kText, kNone, "The name of a curve, counted from 1.", kNumber),
    Property("CurveFormula", 7, kText, kNone, "The formula of a curve, counted from 1.", kNumber),
    Property("NumberOfNotes", 8, kInteger, kNone, "The number of notes."),
    Property("Note", 9, kText, kNone, "What a reader must know of the data shown, counted from 1.", kNumber),
    Property("NumberOfPanels", 10, kInteger, kNone, "The number of graphs that this one is made of."),
    Property("Panel", 11, kObject, kNone, "One of the graphs that this one is made of, counted from 1.",
             kNumber),
    Property("Data", 12, kObject, kNone, "The data as a spreadsheet document."),
}};

inline constexpr std::array<ArgumentDescription, 1> kName{{{"Name", kText}}};

inline constexpr std::array<MemberDescription, 7> kAnalysisMembers{{
    Property("Name", 1, kText, kNone, "The name of the analysis."),
    Property("ID", 2, kInteger, kNone, "The number of the analysis."),
    Property("Application", 3, kObject, kNone, "The application that the analysis runs in."),
    Property("CurrentStep", 4, kInteger, kNone, "The step of the sequence whose dialog is open, or 0."),
    Property("Dialog", 5, kObject, kNone, "The open dialog; nothing where none is open."),
    Property("DialogInterface", 6, kObject, kNone, "The open dialog, where it is of the named interface.",
             kName),
    Property("InputName", 7, kText, kNone, "The name of the input spreadsheet."),
}};

inline constexpr std::array<MemberDescription, 3> kApplicationMembers{{
    Property("Name", 1, kText, kNone, "The name of the application."),
    Property("Version", 2, kText, kNone, "The version of the application."),
    Property("Module", 3, kText, kNone, "The file of the analysis module."),
}};

}  // namespace host_interface

inline constexpr InterfaceDescription kSpreadsheetInterface{
    "Spreadsheet", "{0C5F5E1B-52C0-4A8A-9B8E-6C57A1B2D301}", "A spreadsheet as a document, to read.",
    host_interface::kSpreadsheetMembers};
inline constexpr InterfaceDescription kGraphInterface{"Graph", "{0C5F5E1B-52C0-4A8A-9B8E-6C57A1B2D302}",
                                                      "A graph as a document, to read.",
                                                      host_interface::kGraphMembers};
inline constexpr InterfaceDescription kAnalysisInterface{
    "BrvAnalysis", "{0C5F5E1B-52C0-4A8A-9B8E-6C57A1B2D303}", "An analysis, as its dialogs know it.",
    host_interface::kAnalysisMembers};
inline constexpr InterfaceDescription kApplicationInterface{
    "BrvApplication", "{0C5F5E1B-52C0-4A8A-9B8E-6C57A1B2D304}", "The application, as its dialogs know it.",
    host_interface::kApplicationMembers};
inline constexpr std::array<const InterfaceDescription*, 4> kHostInterfaces{
    &kSpreadsheetInterface, &kGraphInterface, &kAnalysisInterface, &kApplicationInterface};

}  // namespace brenvolt
