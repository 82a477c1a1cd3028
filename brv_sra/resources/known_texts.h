// Texts under the numbers that macros, help and translations know. Spelling, blanks and line ends are part of a text: some
// are odd, and all are kept as they are.
#pragma once

#include <array>

#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/string_resource.h"

namespace brenvolt::sra {

inline constexpr auto kKnownTexts = std::to_array<StringResource>({
    // Commands of the start-up dialog: the text of a command bears the command's number.
    {kCommandFitDistribution, "Fit Distribution"},
    {kCommandRunSimulation, "Run Simulation"},
    {kCommandDesignSimulation, "Design Simulation"},
    {kCommandProfiler, "Profiler"},
    {kCommandAutoProfiler, "AutoProfiler"},
    // The analysis, its caption, and the faults that any dialog can meet.
    {kAnalysisName, " Simulation and Risk Analysis and Variable Screening"},
    {kMsgInvalidInputOffsets,
     "One or more invalid distribution offset (threshold/location) values found. Please check the input "
     "offset values."},
    {kMsgInsufficientMemory, "Insufficient memory. Close other applications and try again."},
    {kMsgTooFewVariables,
     "Too few variables selected. Select at least one variable from one of the two variable lists to "
     "continue."},
    {kProductName, "Brenvolt"},
    {kMsgInvalidOffsets, "One or more invalid offset values found. Please enter valid offset values."},
    {kMsgWeightsNotIntegers,
     "Case weights should be integer. Please check and enter a valid case weight variable."},
    {kMsgDatasetTooLarge, "Too large dataset. Please consider to input a smaller dataset."},
    {kOffsetCaption, " Offset "},
    {kOffsetNote, "(threshold/location)"},
    // Column headings of parameters, and messages of the fit specification and the simulation.
    {kHeadingLocation, "Location"},
    {kHeadingScale, "Scale"},
    {kHeadingShape, "Shape"},
    {kHeadingMin, "Min"},
    {kHeadingMax, "Max"},
    {kHeadingMode, "Mode"},
    {kMsgInvalidNumberOfSamples,
     "Invalid number of samples. Please check to have a value greater than 0 and the analysis can handle "
     "data of maximum 300 MB for 32-bit and 2 GB for 64-bit versions."},
    {kMsgInvalidTrialsInSimulation,
     "Invalid number of trials. Please check to have the number of trials greater than 0."},
    {kMsgInvalidSeed,
     "Invalid random seed value. Please check to have the random seed value between 0 and 65535 inclusive."},
    {kMsgNoDistributionSelected,
     "Please check to ensure at least one distribution is selected for each variable selected."},
    {kTitleCumulativeHistogramOf, "Cumulative Histogram of %s"},
    {kTitleHistogramOf, "Histogram of %s"},
    {kMsgInvalidMixtureCountReverted,
     "Invalid number of mixtures for one or more variable(s). Please note that the value cannot be less than "
     "2 or greater than half the number (with the maximum of 20) of valid cases of a selected variable. "
     "Mixture value reverted to the highest default value."},
    {kHeadingParamsDescription, "(Params Description)"},
    {kGaussianMixtureLayoutNote, "(Mixing.Coef.1,Mean 1, Std.Dev 1, Mixing Coef.2,...)"},
    {kLowerLocation, "location"},
    {kLowerScale, "scale"},
    {kLowerShape, "shape"},
    {kMinMaxModeNote, "(min,max,mode)"},
    {kAnalysisTitle, "Distributions & Simulation analysis"},
    // The editors of user-defined distributions, edit labels, and the words that name a parameter inside messages.
    {kTitleCustomGaussianMixture, "Custom Gaussian mixture distribution"},
    {kTableGaussianMixtureParameters, "GM Parameters"},
    {kHeadingMixingCoefficient, "Mixing coef. "},
    {kHeadingMixtureMean, "Mean "},
    {kHeadingStandardDeviation, "Std.dev "},
    {kLabelMinimum, "Minimum:"},
    {kLabelMaximum, "Maximum:"},
    {kLabelMode, "Mode:"},
    {kLabelScale, "Scale:"},
    {kLabelShape, "Shape:"},
    {kLabelLocation, "Location:"},
    {kLabelShape1, "Shape 1:"},
    {kLabelShape2, "Shape 2:"},
    {kTitleCustomHistogram, "Custom Histogram distribution"},
    {kTableHistogramParameters, "Histogram Parameters"},
    {kHeadingCode, "Code"},
    {kHeadingClassProportion, "Proportion"},
    {kMsgInvalidParameter, "Invalid %s parameter entry for %s distribution. "},
    {kWordMinimumOrMode, "minimum and/or mode"},
    {kWordModeOrMaximum, "mode and/or maximum"},
    {kWordProportion, "proportion"},
    {kWordMean, "mean"},
    {kWordTrials, "trials"},
    {kWordCodeOrProportion, "code and/or proportion"},
    {kMsgProportionRange, "Proportion should be between 0 and 1."},
    {kLabelProportion, "Proportion:"},
    {kLabelTrials, "N:"},
    {kLabelMean, "Mean:"},
    {kWordStandardDeviation, "standard deviation"},
    {kWordMixingCoefficient, "mixing coefficient"},
    {kWordShape2, "shape 2"},
    {kWordScale, "scale"},
    {kMsgInvalidTrialsOfVariable,
     "Invalid number of trials for currently selected discrete variable. Please check the discrete variables "
     "tab to change the number of trials."},
    {kLabelJohnsonType, "Type:"},
    {kLabelJohnsonGamma, "Gamma:"},
    {kLabelJohnsonDelta, "Delta:"},
    {kLabelJohnsonLambda, "Lambda:"},
    {kLabelJohnsonXi, "xi:"},
    {kLabelJohnsonScale, "scale:"},
    // Simulation methods and output, headings of result tables, and the Johnson family.
    {kMethodMonteCarlo, "Monte Carlo method"},
    {kMethodLatinHypercube, "Latin Hypercube Sampling method"},
    {kMethodImanConover, "Iman Conover method"},
    {kMethodLatinHypercubeImanConover, "LHS with Iman Conover method"},
    {kHeadingSample, "Sample #"},
    {kHeadingTrials, "Number of trials"},
    {kHeadingProportion, "Proportion"},
    {kHeadingPoissonMean, "Lambda"},
    {kLowerMin, "min"},
    {kLowerMax, "max"},
    {kLowerMode, "mode"},
    {kTitleRankedByKolmogorovSmirnov, "Ranked by: Kolmogorov-Smirnov"},
    {kTitleRankedByChiSquare, "Ranked by: Chi-square"},
    {kTitleRankedByAndersonDarling, "Ranked by: Anderson-Darling"},
    {kNameJohnsonSL, "Johnson SL"},
    {kNameJohnsonSU, "Johnson SU"},
    {kNameJohnsonSB, "Johnson SB"},
    {kNameJohnsonSN, "Johnson SN"},
    {kHeadingGamma, "Gamma"},
    {kHeadingDelta, "Delta"},
    {kHeadingXi, "Xi"},
    {kHeadingLambda, "Lambda"},
    {kHeadingJohnsonType, "type"},
    {kMsgTextVariablesSelected,
     "One or more text variables selected. To proceed, please remove these variable(s):"},
    {kKeyProportion, "Proportion"},
    {kKeyNumberOfTrials, "NumberOfTrials"},
    {kKeyMean, "Mean"},
    {kMsgSimulationFailedDistributions,
     "Simulation failed.  Please review best fitting distributions for appropriate parameters."},
    {kMsgInvalidTotalProportion,
     "Invalid total proportion. Total proportion of the discrete distribution should be equal to 1."},
    {kMsgTooManySamples,
     "Insufficient memory exists to generate the requested number of samples.  Please decrease the requested "
     "number of samples."},
    {kMsgNoValidFits,
     "None of the variables selected has valid distributions to fit and hence invalid.  Please check to have "
     "a different variable selection with valid distributions."},
    // Progress, and the checks of variable properties and of the fit.
    {kProgressAutoUpdating, "Auto updating..."},
    {kProgressPreparingResults, "Preparing results..."},
    {kMsgVariableNotFitted,
     "The selected variable could not be fitted because its values do not vary or none of them is valid. "
     "Please select a different variable."},
    {kProgressContinuousVariables, "Processing continuous variables..."},
    {kProgressDiscreteVariables, "Processing discrete variables..."},
    {kMsgPropertyValueMissing, "%s distribution property exists for variable %s but its value is missing."},
    {kMsgOrderCountMismatch,
     "Number of fitted distributions does not match number of distributions in the order of distribution."},
    {kMsgPropertyMissing, "%s in order of distribution property has its parameter property missing."},
    {kMsgInvalidTruncationProperty, "Variable properties error. Truncate property is missing or invalid."},
    {kMsgInvalidOrderProperty, "Variable properties error. Distribution order property value is invalid."},
    {kMsgInvalidPropertyValues, "Variable properties error. One or more property values are invalid."},
    {kMsgInputIsMatrixFile,
     "Input is a valid Brenvolt matrix file. Do you want to run fit distribution on this?"},
    {kMsgStoredProportionInvalid,
     "Invalid proportion value for %s distribution of variable %d. Please check the variable's properties to "
     "have a valid proportion value."},
    {kMsgStoredMeanInvalid,
     "Invalid mean value for %s distribution of variable %d. Please check the variable's properties to have "
     "a valid mean value."},
    {kMsgStoredTrialsInvalid,
     "Invalid number of trials value for %s distribution of variable %d. Please check the variable's "
     "properties to have a valid number of trials value."},
    {kMsgStoredLocationInvalid,
     "Invalid location value for %s distribution of variable %d. Please check the variable's properties to "
     "have a valid location value."},
    {kMsgStoredScaleInvalid,
     "Invalid scale value for %s distribution of variable %d. Please check the variable's properties to have "
     "a valid scale value."},
    {kMsgStoredShapeInvalid,
     "Invalid shape value for %s distribution of variable %d. Please check the variable's properties to have "
     "a valid shape value."},
    {kMsgStoredOffsetInvalid,
     "Invalid offset value for %s distribution of variable %d. Please check the variable's properties to "
     "have a valid offset value."},
    {kMsgInvalidMixtureCount, "Invalid number of mixtures. Valid Range is 1<x<21"},
    {kMsgNoValidVariables, "No valid variables to proceed with the analysis"},
    {kMsgInvalidDistributionString, "Invalid distribution string"},
});

}  // namespace brenvolt::sra
