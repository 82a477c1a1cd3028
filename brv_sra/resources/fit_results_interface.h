// The automation interface SRAFitDistributionResults: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace fit_results_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};
inline constexpr std::array<ArgumentDescription, 1> kVariable{{{"VarNo", kInteger}}};
inline constexpr std::array<ArgumentDescription, 2> kVariableAndDistribution{
    {{"VarNo", kInteger}, {"sDistrName", kText}}};

// Variables, DistributionDetails and RunSimulation are younger than the members before, whose numbers stand in recorded
// macros.
inline constexpr std::array<MemberDescription, 27> kMembers{{
    Property("QuickTabVariable", 0x60030000, kInteger, kInteger,
             "The variable of the Quick tab: its place among the fitted variables, continuous ones first, "
             "from 1."),
    Property("QuickTabDistribution", 0x60030002, kInteger, kInteger,
             "The distribution of the Quick tab: its place among the ranked fits of the variable, from 1."),
    Property("SummaryStats", 0x60030004, kObject, kNone,
             "Shows and gives the summary statistics of the selected variables, a spreadsheet."),
    Property("SummaryGraph", 0x60030005, kObject, kNone,
             "Shows and gives one graph with the histogram, the box plot, the P-P plot, the Q-Q plot and the "
             "moments of the fit of the Quick tab."),
    Property("EmpiricalCDFPlot", 0x60030006, kObject, kNone,
             "Shows and gives the empirical distribution function with the fitted one, a graph."),
    Property("HistogramWithFit", 0x60030007, kObject, kNone,
             "Shows and gives the histogram with the fitted density, a graph."),
    Property("CumulativeHistogram", 0x60030008, kObject, kNone,
             "Shows and gives the cumulative histogram with the fitted distribution function, a graph."),
    Property("PPPlot", 0x60030009, kObject, kNone,
             "Shows and gives the probability-probability plot of the fit, a graph."),
    Property("QQPlot", 0x6003000a, kObject, kNone,
             "Shows and gives the quantile-quantile plot of the fit, a graph."),
    Property("BoxPlot", 0x6003000b, kObject, kNone, "Shows and gives the box plot of the variable, a graph."),
    Property("SaveFitTabVariable", 0x6003000c, kInteger, kInteger,
             "The variable of the Save/plot tab: its place among the fitted variables, continuous ones "
             "first, from 1."),
    Property("CorrelationMatrix", 0x6003000e, kObject, kNone,
             "Shows and gives the correlation matrix file of the selected variables that have a valid fit, a "
             "spreadsheet."),
    Property("QuickTabDistributionSummaryStats", 0x6003000f, kObject, kNone,
             "Shows and gives the ranked fits of the Quick tab's variable with their tests, a spreadsheet."),
    Property(
        "SavePlotTabDistributionSummaryStats", 0x60030010, kObject, kNone,
        "Shows and gives the ranked fits of the Save/plot tab's variable with their tests, a spreadsheet."),
    Property("SaveDistributionFit", 0x60030011, kObject, kNone,
             "Saves the fits of the selected variables as properties of the variables of the input; shows "
             "and gives the correlation matrix file that goes beside them."),
    Property("DistributionOrder", 0x60030012, kText, kVariant,
             "The distributions of the fitted variable at place iID (continuous ones first) in the order in "
             "which they are saved: names, each followed by a semicolon. Takes such a text, or an array of "
             "names, keys or codes; an empty one restores the ranking.",
             kPlace),
    Property("IsUserDefinedDistributions", 0x60030014, kInteger, kInteger,
             "Whether the person's own values and orders are saved instead of those of the fit."),
    Property("UserDefinedDistributionOrder", 0x60030016, kText, kVariant,
             "The order in which the fitted variable at place iID (continuous ones first) saves its "
             "distributions if the person's own are saved; read and put as DistributionOrder.",
             kPlace),
    Property("IsDefaultDistributionSettings", 0x60030018, kInteger, kBoolean,
             "Whether a distribution of the fitted variable at place VarNo (continuous ones first) is saved "
             "as fitted. Putting true drops the person's own values; putting false takes the fitted ones as "
             "a start for them.",
             kVariableAndDistribution),
    Property(
        "UserDefinedDistributions", 0x6003001a, kVariant, kVariant,
        "The person's own values of a distribution of the fitted variable at place VarNo (continuous ones "
        "first): an array of its parameters in catalogue order, the offset last if the type has one. "
        "Takes also such an array between the distribution's constant and four zeros, as recorded macros "
        "have it: Array(scNormalDistr, 4.0, 0.25, 0, 0, 0, 0).",
        kVariableAndDistribution),
    Property("IsUserDefinedTruncMin", 0x6003001c, kInteger, kBoolean,
             "Whether the fitted variable at place VarNo (continuous ones first) is truncated below.",
             kVariable),
    Property("UserDefinedTruncMin", 0x6003001e, kReal, kReal,
             "The bound below which the fitted variable at place VarNo (continuous ones first) is truncated; "
             "-444 if none is entered.",
             kVariable),
    Property("IsUserDefinedTruncMax", 0x60030020, kInteger, kBoolean,
             "Whether the fitted variable at place VarNo (continuous ones first) is truncated above.",
             kVariable),
    Property("UserDefinedTruncMax", 0x60030022, kReal, kReal,
             "The bound above which the fitted variable at place VarNo (continuous ones first) is truncated; "
             "-444 if none is entered.",
             kVariable),
    Property("Variables", 0x60030024, kText, kVariant,
             "The selected variables, which are summarised, correlated and saved: by default all that were "
             "fitted. Read and put as in the fit specification."),
    Property("DistributionDetails", 0x60030026, kObject, kNone,
             "Shows and gives the details of the distribution of the Quick tab: parameters with standard "
             "errors, information criteria and tests, a spreadsheet."),
    Method("RunSimulation", 0x60030027, kInteger,
           "Saves the fits of the selected variables and opens the simulation, whose Cancel comes back here. "
           "Gives 1 when it did, 0 when it was refused."),
}};

}  // namespace fit_results_interface

inline constexpr InterfaceDescription kFitDistributionResultsInterface{
    "SRAFitDistributionResults", "{3DCCA1A5-570A-43D9-98C5-0B0FF4286E77}",
    "The results of a fit: tables, graphs, and the saving of fits. An index counts the fitted variables, "
    "continuous ones first, from 1.",
    fit_results_interface::kMembers};

}  // namespace brenvolt::sra
