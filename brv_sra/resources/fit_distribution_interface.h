// The automation interface SRAFitDistribution: its members with their numbers, types and help.
#pragma once

#include <array>

#include "host/automation/type_library.h"

namespace brenvolt::sra {
namespace fit_distribution_interface {

using enum AutomationType;

inline constexpr std::array<ArgumentDescription, 1> kPlace{{{"iID", kInteger}}};

// BootstrapSamples and those behind it are younger than the members before, whose numbers stand in recorded
// macros.
inline constexpr std::array<MemberDescription, 45> kMembers{{
    Property("Variables", 0x60030000, kText, kVariant,
             "Both lists of variables: their numbers, continuous ones before a bar, discrete ones behind it "
             "(\"1-3 | 5\"). Takes such a text, or an array of two arrays of numbers."),
    Property("ContinuousKolmogorovSmirovTest", 0x60030002, kInteger, kInteger,
             "Whether fits of continuous variables are ranked by the Kolmogorov-Smirnov test. Putting true "
             "chooses it; putting false changes nothing."),
    Property("ContinuousChiSquareTest", 0x60030004, kInteger, kInteger,
             "Whether fits of continuous variables are ranked by the chi-square test. Putting true chooses "
             "it; putting false changes nothing."),
    Property("ContinuousAndersonDarlingTest", 0x60030006, kInteger, kInteger,
             "Whether fits of continuous variables are ranked by the Anderson-Darling test. Putting true "
             "chooses it; putting false changes nothing."),
    Property("DiscreteKolmogorovSmirovTest", 0x60030008, kInteger, kInteger,
             "Whether fits of discrete variables are ranked by the Kolmogorov-Smirnov test. Putting true "
             "chooses it; putting false changes nothing."),
    Property("DiscreteChiSquareTest", 0x6003000a, kInteger, kInteger,
             "Whether fits of discrete variables are ranked by the chi-square test. Putting true chooses it; "
             "putting false changes nothing."),
    Property("EqualProbability", 0x6003000c, kInteger, kInteger,
             "Whether the classes of the chi-square test have equal probabilities. Putting true chooses it; "
             "putting false changes nothing."),
    Property("EqualInterval", 0x6003000e, kInteger, kInteger,
             "Whether the classes of the chi-square test have equal widths. Putting true chooses it; putting "
             "false changes nothing."),
    Property("IsPairwise", 0x60030010, kInteger, kInteger,
             "Whether each variable uses all of its own valid cases. Putting true chooses it; putting false "
             "changes nothing."),
    Property("IsCasewise", 0x60030012, kInteger, kInteger,
             "Whether a case in which any selected variable is missing is left out for all. Putting true "
             "chooses it; putting false changes nothing."),
    Property("ContinuousVariable", 0x60030014, kText, kVariant,
             "The list of continuous variables: their numbers as a text (\"1-3 5\"). Takes such a text, a "
             "number or an array of numbers."),
    Property("IsNormalDistribution", 0x60030016, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by the normal distribution.",
             kPlace),
    Property(
        "IsLogNormalDistribution", 0x60030018, kInteger, kBoolean,
        "Whether the variable at place iID of the continuous list is fitted by the lognormal distribution.",
        kPlace),
    Property("IsFoldedNormalDistribution", 0x6003001a, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by the folded normal "
             "distribution.",
             kPlace),
    Property(
        "IsHalfNormalDistribution", 0x6003001c, kInteger, kBoolean,
        "Whether the variable at place iID of the continuous list is fitted by the half-normal distribution.",
        kPlace),
    Property(
        "IsRayleighDistribution", 0x6003001e, kInteger, kBoolean,
        "Whether the variable at place iID of the continuous list is fitted by the Rayleigh distribution.",
        kPlace),
    Property(
        "IsWeibullDistribution", 0x60030020, kInteger, kBoolean,
        "Whether the variable at place iID of the continuous list is fitted by the Weibull distribution.",
        kPlace),
    Property("IsGaussianMixtureDistribution", 0x60030022, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by a mixture of Gaussians.",
             kPlace),
    Property("NumberOfMixtures", 0x60030024, kInteger, kInteger,
             "The number of components of the Gaussian mixture for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("IsJohnsonDistribution", 0x60030026, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by a Johnson distribution.",
             kPlace),
    Property("IsGeneralizedExtremeValueDistribution", 0x60030028, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by the generalized extreme "
             "value distribution.",
             kPlace),
    Property("IsGeneralizedParetoDistribution", 0x6003002a, kInteger, kBoolean,
             "Whether the variable at place iID of the continuous list is fitted by the generalized Pareto "
             "distribution.",
             kPlace),
    Property(
        "IsTriangularDistribution", 0x6003002c, kInteger, kBoolean,
        "Whether the variable at place iID of the continuous list is fitted by the triangular distribution.",
        kPlace),
    Property("LogNormalOffset", 0x6003002e, kReal, kReal,
             "The offset (threshold) of the lognormal distribution for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("FoldedNormalOffset", 0x60030030, kReal, kReal,
             "The offset (threshold) of the folded normal distribution for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("HalfNormalOffset", 0x60030032, kReal, kReal,
             "The offset (threshold) of the half-normal distribution for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("RayleighOffset", 0x60030034, kReal, kReal,
             "The offset (threshold) of the Rayleigh distribution for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("WeibullOffset", 0x60030036, kReal, kReal,
             "The offset (threshold) of the Weibull distribution for the variable at place iID of the "
             "continuous list; -444 if none is entered.",
             kPlace),
    Property("GeneralizedParetoOffset", 0x60030038, kReal, kReal,
             "The offset (threshold) of the generalized Pareto distribution for the variable at place iID of "
             "the continuous list; -444 if none is entered.",
             kPlace),
    {"DiscreteVariable",
     0x6003003a,
     MemberKind::kProperty,
     {},
     kInteger,
     kInteger,
     {},
     "The list of discrete variables: the number of its only variable, otherwise a text (\"3-4\", empty for "
     "none). Takes a number, such a text or an array of numbers.",
     true},
    Property("IsBinomialDistribution", 0x6003003c, kInteger, kBoolean,
             "Whether the variable at place iID of the discrete list is fitted by the binomial distribution.",
             kPlace),
    Property("IsNumberOfTrials", 0x6003003e, kInteger, kBoolean,
             "Whether the number of trials entered for the variable at place iID of the discrete list is "
             "used; else the binomial distribution estimates it.",
             kPlace),
    Property("NumberOfTrials", 0x60030040, kInteger, kInteger,
             "The number of trials of the binomial distribution for the variable at place iID of the "
             "discrete list; -444 if none is entered.",
             kPlace),
    Property("IsPoissonDistribution", 0x60030042, kInteger, kBoolean,
             "Whether the variable at place iID of the discrete list is fitted by the Poisson distribution.",
             kPlace),
    Property(
        "IsGeometricDistribution", 0x60030044, kInteger, kBoolean,
        "Whether the variable at place iID of the discrete list is fitted by the geometric distribution.",
        kPlace),
    Property(
        "IsBernoulliDistribution", 0x60030046, kInteger, kBoolean,
        "Whether the variable at place iID of the discrete list is fitted by the Bernoulli distribution.",
        kPlace),
    Property(
        "IsDiscreteDistribution", 0x60030048, kInteger, kBoolean,
        "Whether the variable at place iID of the discrete list is fitted by its own histogram of values.",
        kPlace),
    Property("FitJohnsonByPercentile", 0x6003004a, kInteger, kBoolean,
             "Whether the Johnson distribution of the variable at place iID of the continuous list is fitted "
             "from percentiles instead of moments.",
             kPlace),
    Property("BootstrapSamples", 0x6003004c, kInteger, kInteger,
             "How many bootstrap samples judge each fit; 0 for none."),
    Property("BootstrapSeed", 0x6003004e, kInteger, kInteger,
             "Where the random numbers of the bootstrap start: 0 or more."),
    Property(
        "ContinuousAkaikeCriterion", 0x60030050, kInteger, kInteger,
        "Whether fits of continuous variables are ranked by Akaike's information criterion. Putting true "
        "chooses it; putting false changes nothing."),
    Property("ContinuousBayesCriterion", 0x60030052, kInteger, kInteger,
             "Whether fits of continuous variables are ranked by the Bayesian information criterion. Putting "
             "true chooses it; putting false changes nothing."),
    Property("DiscreteAkaikeCriterion", 0x60030054, kInteger, kInteger,
             "Whether fits of discrete variables are ranked by Akaike's information criterion. Putting true "
             "chooses it; putting false changes nothing."),
    Property("DiscreteBayesCriterion", 0x60030056, kInteger, kInteger,
             "Whether fits of discrete variables are ranked by the Bayesian information criterion. Putting "
             "true chooses it; putting false changes nothing."),
    Property(
        "ContradictedFitsLast", 0x60030058, kInteger, kBoolean,
        "Whether fits that give a value of the data density 0 are ranked behind all others by "
        "Kolmogorov-Smirnov and Anderson-Darling, too, and saved only if an order names them or no other "
        "fit is valid."),
}};

}  // namespace fit_distribution_interface

inline constexpr InterfaceDescription kFitDistributionInterface{
    "SRAFitDistribution", "{3AFA6811-17F1-41E5-B54F-1E9729B330F9}",
    "The fit specification: variables, distributions, tests. An index counts the variables of a list from 1.",
    fit_distribution_interface::kMembers};

}  // namespace brenvolt::sra
