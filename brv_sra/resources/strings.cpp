// The one table of texts. Spelling, blanks and line ends are part of a text: some are odd, and all are kept
// as they are, because macros and translations refer to them.
#include "brv_sra/resources/strings.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "brv_sra/resources/resource_numbers.h"
#include "host/analysis/result_columns.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::sra {
namespace {

constexpr auto kStrings = std::to_array<StringResource>({
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
    // Display names of the distribution types, in code order; they are also keys of variable properties.
    {kNameNormal, "Normal"},
    {kNameLogNormal, "Log Normal"},
    {kNameFoldedNormal, "Folded Normal"},
    {kNameHalfNormal, "Half Normal"},
    {kNameRayleigh, "Rayleigh"},
    {kNameWeibull, "Weibull"},
    {kNameGaussianMixture, "Gaussian Mixture"},
    {kNameJohnson, "Johnson"},
    {kNameGeneralExtremeValue, "General Extreme Value"},
    {kNameGeneralPareto, "General Pareto"},
    {kNameTriangular, "Triangular"},
    {kNameBinomial, "Binomial"},
    {kNamePoisson, "Poisson"},
    {kNameGeometric, "Geometric"},
    {kNameBernoulli, "Bernoulli"},
    {kNameHistogram, "Histogram"},
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
    {kTriangularLayoutNote, "(min,max,mode)"},
    {kAnalysisTitle, "Distributions & Simulation analysis"},
    // The editors of user-defined types, edit labels, and the words that name a parameter inside messages.
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
    // The untranslated keys that hold a blank.
    {kSpacedKeyLogNormal, "DontTranslate!!Log Normal"},
    {kSpacedKeyFoldedNormal, "DontTranslate!!Folded Normal"},
    {kSpacedKeyHalfNormal, "DontTranslate!!Half Normal"},
    {kSpacedKeyGaussianMixture, "DontTranslate!!Gaussian Mixture"},
    {kSpacedKeyGeneralExtremeValue, "DontTranslate!!General Extreme Value"},
    {kSpacedKeyGeneralPareto, "DontTranslate!!General Pareto"},
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
    // Compact untranslated keys, in code order.
    {kCompactKeyNormal, "DontTranslate!!Normal"},
    {kCompactKeyLogNormal, "DontTranslate!!LogNormal"},
    {kCompactKeyFoldedNormal, "DontTranslate!!FoldedNormal"},
    {kCompactKeyHalfNormal, "DontTranslate!!HalfNormal"},
    {kCompactKeyRayleigh, "DontTranslate!!Rayleigh"},
    {kCompactKeyWeibull, "DontTranslate!!Weibull"},
    {kCompactKeyGaussianMixture, "DontTranslate!!GaussianMixture"},
    {kCompactKeyJohnson, "DontTranslate!!Johnson"},
    {kCompactKeyGeneralExtremeValue, "DontTranslate!!GeneralExtremeValue"},
    {kCompactKeyGeneralPareto, "DontTranslate!!GeneralPareto"},
    {kCompactKeyTriangular, "DontTranslate!!Triangular"},
    {kCompactKeyBinomial, "DontTranslate!!Binomial"},
    {kCompactKeyPoisson, "DontTranslate!!Poisson"},
    {kCompactKeyGeometric, "DontTranslate!!Geometric"},
    {kCompactKeyBernoulli, "DontTranslate!!Bernoulli"},
    {kCompactKeyHistogram, "DontTranslate!!Histogram"},
    // Automation: how a fault inside a call is described, and the log line of a crash report. The two texts
    // with a code
    // ("%d", "%0lX") take a number.
    {kAutomationExceptionPrefix, "Exception in automation method ["},
    {kAutomationExceptionSuffix, "]"},
    {kAutomationUnexpectedError, "Unexpected Error"},
    {kAutomationDispatchError, "IDispatch error #%d"},
    {kAutomationUnknownError, "Unknown error 0x%0lX"},
    {kLogDumpGenerated, "Process dump was generated in [%s]"},
    // The fit specification dialog.
    {kFitTitle, "Fit Distributions"},
    {kFitTabQuick, "Quick"},
    {kFitTabContinuous, "Continuous variables"},
    {kFitTabDiscrete, "Discrete variables"},
    {kFitButtonOk, "g&OK"},
    {kFitButtonCancel, "Cancel"},
    {kFitButtonOptions, "Options"},
    {kFitButtonOpenData, "`Open D&ata"},
    {kFitButtonVariables, "h&Variables:"},
    {kFitButtonPrevious, "<< &Prev."},
    {kFitButtonNext, "&Next >>"},
    {kFitButtonSelectAll, "S&elect all"},
    {kFitButtonClearAll, "&Clear all"},
    {kFitButtonToggle, "&Toggle"},
    {kFitGroupMissingData, "MD deletion"},
    {kFitRadioPairwise, "Pairwise"},
    {kFitRadioCasewise, "Casewise"},
    {kFitListContinuous, "Continuous:"},
    {kFitListDiscrete, "Discrete:"},
    {kFitListEmpty, "none"},
    {kFitSelectVariables, "Select variables for the analysis"},
    {kFitSelectContinuous, "Continuous variables:"},
    {kFitSelectDiscrete, "Discrete variables:"},
    {kFitCheckNormal, "Nor&mal"},
    {kFitCheckLogNormal, "&Log-Normal"},
    {kFitCheckFoldedNormal, "Folded normal"},
    {kFitCheckHalfNormal, "Half normal "},
    {kFitCheckRayleigh, "&Rayleigh"},
    {kFitCheckWeibull, "Weib&ull"},
    {kFitCheckGaussianMixture, "&Gaussian mixture"},
    {kFitCheckJohnson, "&Johnson distribution (general non-normal, single mode)"},
    {kFitCheckJohnsonPercentile, "&Percentile fit"},
    {kFitCheckGeneralExtremeValue, "Generalized Extreme Value"},
    {kFitCheckGeneralPareto, "Generalized Pareto"},
    {kFitCheckTriangular, "Triangular"},
    {kFitLabelMixtures, "Number of mixtures:"},
    {kFitCheckBinomial, "Binomial"},
    {kFitCheckPoisson, "Poisson"},
    {kFitCheckGeometric, "Geometric"},
    {kFitCheckBernoulli, "Bernoulli"},
    {kFitCheckHistogram, "Histogram"},
    {kFitLabelTrials, "  Number of trials:"},
    {kFitListSentenceEnd, "%s."},
    {kOpenDataTitle, "Open Data"},
    {kOpenDataFilter, "Data files (*.csv;*.bvw)|*.csv;*.bvw|All files (*.*)|*.*||"},
    // The options of the fit specification.
    {kFitOptionsGroupRankBy, "Rank results by"},
    {kFitOptionsContinuous, "Continuous variables"},
    {kFitOptionsDiscrete, "Discrete variables"},
    {kFitOptionsKolmogorovSmirnov, "Kolmogorov-Smirnov"},
    {kFitOptionsChiSquare, "Chi-square"},
    {kFitOptionsAndersonDarling, "Anderson-Darling"},
    {kFitOptionsGroupBinning, "Chi-square binning"},
    {kFitOptionsEqualProbabilities, "Equal probabilities"},
    {kFitOptionsEqualIntervals, "Equal intervals"},
    // Columns of the fit results, and the faults of the goodness-of-fit computation.
    {kHeadingChiSquare, " Chi-square "},
    {kHeadingChiSquarePValue, " Chi-square \n p-value "},
    {kHeadingChiSquareDegrees, " Chi-square \n df "},
    {kHeadingAndersonDarling, "   AD Stat   "},
    {kHeadingAndersonDarlingPValue, " AD p-value "},
    {kMsgAndersonDarlingNoValues, "andersonDarling: n <= 0"},
    {kMsgAndersonDarlingCdfNoValues, "n <= 0"},
    // The correlation matrix file.
    {kMatrixTitle, kCorrelationMatrixTitle},
    {kMatrixRowMeans, matrix_row::kMeans},
    {kMatrixRowStandardDeviations, matrix_row::kStandardDeviations},
    {kMatrixRowCases, matrix_row::kValidCases},
    {kMatrixRowType, "DontTranslate!!Matrix"},
    {kMsgMatrixCreateQuestion, "The input is not a valid Brenvolt matrix file. Do you want to create one?"},
    {kMsgMatrixWrongType, "Only correlation and covariance matrices can be processed."},
    {kMsgMatrixCases, "Cases error"},
    {kMsgMatrixInvalid,
     "Invalid correlation matrix. Please check the validity of the input correlation matrix."},
    {kMsgMatrixMean, "Mean error"},
    {kMsgMatrixReadCancelled, "User cancelled the progress while reading mean."},
    {kMsgMatrixMeansDeselected, "Case selection condition disabled variables' mean information"},
    {kMsgMatrixStandardDeviation, "Std. Dev error"},
    {kMsgMatrixDeviationsDeselected,
     "Case selection condition disabled variables' standard deviation information"},
    {kMsgMatrixValidCases, "Valid cases error"},
    {kMatrixSelectVariables, "Select variables of the correlation matrix"},
    {kMatrixSelectVariablesList, "Variables:"},
    // The simulation, its design and its sampling.
    {kMethodNormalToAnything, "Normal to anything method"},
    {kProgressComputing, "Computing..."},
    {kMsgSimulationFailedMatrix, "Simulation failed. Please check the correlation matrix."},
    {kSimulationCaseName, "%i"},
    {kDesignTruncationMinimum, "TruncMin=%f"},
    {kDesignTruncationMaximum, "TruncMax=%f"},
    // The profiler: instructions and commands.
    {kProfilerTitle, "Model Profiler"},
    {kProfilerInstructionsDistributions,
     "To specify distributions for simulation, follow these steps: \n1. Highlight the variable, then the "
     "desired distribution.\n2. Specify the parameters for the chosen distribution; Click Add button.\n"},
    {kProfilerInstructionsSimulate,
     "3. Click Simulate button to simulate the responses and create the predicted profiles graph and the "
     "simulated spreadsheet.\n"},
    {kProfilerInstructionsDefects,
     "4. Defect Profiler becomes visible when a valid spec limit is set.\n5. It can be used to produce the "
     "defect parametric profile.\n"},
    {kProfilerTabProfiler, "Profiler"},
    {kProfilerTabOutput, "Output"},
    {kProfilerButtonSimulate, "Simulate"},
    {kProfilerButtonDefects, "Defect Profiler"},
    {kProfilerButtonLoadModels, "Load models"},
    {kProfilerButtonOptions, "Options"},
    {kProfilerCheckSeed, "Seed random number"},
    {kProfilerCheckAutoUpdate, "Auto update spreadsheet"},
    // The profiler: page of predictor distributions.
    {kProfilerListPredictors, "Predictor V&ariables:"},
    {kProfilerListDistributions, "Distributio&ns:"},
    {kProfilerListSelected, "Selected predictor distributio&ns:"},
    {kProfilerLabelMin, "Min:"},
    {kProfilerLabelMax, "Max:"},
    {kProfilerGroupMixture, "GM parameters"},
    {kProfilerGroupHistogram, "Histogram parameters"},
    {kProfilerLabelValue, "Value:"},
    {kProfilerLabelOffset, "Offset:"},
    {kProfilerLabelMixtures, "Mixtures:"},
    {kProfilerLabelLevels, "Levels:"},
    {kProfilerButtonAdd, "Add Distribution"},
    {kProfilerCheckCorrelations, "Simulate correlations of inputs"},
    {kProfilerButtonEditCorrelation, "Edit Correlation"},
    {kProfilerButtonFitBest, "Fit Best Distributions"},
    {kProfilerFixed, "Fixed"},
    {kProfilerFixedValue, "(%f)"},
    // The profiler: page of output and specifications.
    {kProfilerGroupSpecs, "Simulation Specs for Dependent Variables:"},
    {kProfilerLabelRuns, "No. of runs:"},
    {kProfilerLabelEditSpec, "Edit Spec for:"},
    {kProfilerNoNoise, "No Noise"},
    {kProfilerRandomNoise, "Add Random Noise"},
    {kProfilerMultivariateNoise, "Add Multivariate Noise"},
    {kProfilerLabelStandardDeviation, "Std.Dev:"},
    {kProfilerButtonEditCorrelationY, "Edit Correlation Y"},
    {kProfilerLabelModel, "Prediction Model:"},
    {kProfilerNoModel, "none"},
    {kProfilerLabelLsl, "LSL:"},
    {kProfilerLabelUsl, "USL:"},
    {kProfilerLabelTarget, "Target:"},
    {kProfilerButtonCapability, "Capability Stats"},
    {kProfilerButtonSummaryStats, "Summary Stats"},
    {kProfilerButtonSummaryGraph, "Summary Graph"},
    {kProfilerLabelFormula, "Prediction Formula:"},
    {kProfilerButtonSetFormula, "Set Forumula"},
    {kProfilerButtonUndoFormula, "Undo Forumula"},
    {kProfilerOpenModelsTitle, "Open PMML files"},
    {kProfilerOpenModelsFilter, "XML files (*.xml)|*.xml|All files (*.*)|*.*||"},
    {kProfilerOpenModelsExtension, ".xml"},
    // The profiler: messages and captions of message boxes.
    {kMsgProfilerFileNames, "Improper string provided for PMML file names."},
    {kMsgProfilerMinimumMaximum, "Minimum value must be less than maximum."},
    {kMsgProfilerRunsReset,
     "Invalid value for No. of runs, the value is reset to 5000. Valid range is 100<=x<=100000."},
    {kMsgProfilerNoRandomPredictor, "At least one variable distribution specification must be random."},
    {kMsgProfilerCheckFormula, "Please check the formula for "},
    {kMsgProfilerInvalidSpec, "Please set valid Lower/Upper Specification Limit and Target values."},
    {kMsgProfilerCorrelationFailed, "Correlation Failed!"},
    {kCaptionBasicStatsError, "BasicStats Error"},
    {kCaptionCorrelationsError, "Correlations Error"},
    {kCaptionRangeError, "Error Calculating Range"},
    {kCaptionProcessCapabilityError, "Process Capability Error"},
    {kCaptionSummaryStatsError, "SummaryStats Error"},
    {kCaptionSummaryGraphError, "SummaryGraph Error"},
    {kCaptionSimulationError, "Simulation Error"},
    {kMsgProfilerSingularNoise,
     "Unable to add multivariate noise, the response covariance matrix maybe singular. Check the Y "
     "correlation matrix."},
    {kMsgProfilerTooManyGraphs, "Too Many Graphs to plot. Maximum allowed is 32 predictors."},
    {kMsgProfilerGraphFailed,
     "Graph creation failed.  Please review distribution parameters for appropriate values."},
    {kMsgProfilerEntriesReset,
     "Some of the entries were invalid and reset to original value. Values should be between -1 and 1."},
    {kMsgProfilerInvalidCorrelation,
     "Invalid input correlation. Please use a valid correlation to continue."},
    {kMsgDefectProfileFailed, "Defect profile creation failed."},
    // The profiler: titles and headings of its results.
    {kProfilerResultsTitle, "Simulated Results"},
    {kProfilerProfilesTitle, "Profiles for predicted values"},
    {kProfilerCorrelationTitle, "Correlation Matrix of Predictors"},
    {kProfilerCorrelationYTitle, "Correlation Matrix of Dependents"},
    {kProfilerCorrelationNote, "Note: Enter values in upper diagonal, others are ignored."},
    {kDefectTitle, "Defect Profiler"},
    {kDefectHeadingResponse, "Response"},
    {kDefectHeadingRate, "Defect Rate"},
    {kDefectHeadingPpm, "PPM"},
    {kDefectRowOverall, "Overall Rate"},
    {kDefectGraphExpression, "%s ( %f MISSING %f %f ) "},
    // The profiler: help texts of its automation members.
    {kHelpProfiler, "Profiler startup dialog"},
    {kHelpAutoProfiler, "Automated call to Profiler"},
    {kHelpInputCorrMatrix, "Input correlation matrix"},
    {kHelpLoadModels, "Load models"},
    {kHelpUserDefinedDesignMatrixValuesY, "Correlation values defined by the user"},
    {kHelpVariableDistributionParams, "Distribution specification for the variables in correlation"},
    {kHelpNumberOfSamples, "Number of Samples"},
    {kHelpDependentForResult, "Dependent variable for results"},
    {kHelpLsl, "Lower spec limit for selected dependent"},
    {kHelpUsl, "Upper spec limit for selected dependent"},
    {kHelpTarget, "Target value for selected dependent"},
    {kHelpCapabilityStats, "Process Capability stats for selected dependent"},
    {kHelpSummaryStats, "Summary stats for selected dependent"},
    {kHelpSummaryGraph, "Summary graphs for selected dependent"},
    {kHelpAutoUpdateSameSheet, "Auto-update the simulated spreadsheet"},
    {kHelpSimulationResults, "Simulation output"},
    {kHelpDefectProfile, "Defect profile graph"},
    {kHelpStdDevY, "Standard deviations for multivariate dependent noise"},
    {kMsgStepNotAvailable, "This step of the analysis is not available."},
    {kFitResultsTitle, "Fit Distributions: Results"},
    {kFitResultsVariable, "Variable:"},
    {kFitResultsDistribution, "Distribution:"},
    {kFitResultsSummary, "Summary statistics"},
    {kFitResultsDistributionSummary, "Distribution summary"},
    {kFitResultsSave, "Save distribution fits"},
    {kSimulationTitle, "Simulation from Distributions"},
    {kSimulationSamples, "Number of samples:"},
    {kSimulationSeedSwitch, "Seed random number"},
    {kSimulationSeed, "Seed:"},
    {kSimulationTruncate, "Truncate simulation data"},
    {kSimulationMethodGroup, "Method"},
    {kMsgNoDistributionsInInput,
     "No variable of the input has a fitted distribution. Please fit distributions and save them first."},
    {kSimulationResultsTitle, "Simulation Results"},
    {kSimulationSummary, "Simulation summary"},
    // Columns of result tables.
    {kColumnKind, result_column::kKind},
    {kColumnCount, result_column::kCount},
    {kColumnMissing, result_column::kMissing},
    {kColumnMean, result_column::kMean},
    {kColumnStandardDeviation, result_column::kStandardDeviation},
    {kColumnSkewness, result_column::kSkewness},
    {kColumnKurtosis, result_column::kKurtosis},
    {kColumnMinimum, result_column::kMinimum},
    {kColumnMaximum, result_column::kMaximum},
    {kColumnPercentile, result_column::kPercentile},
    {kColumnCode, result_column::kCode},
    {kColumnDescription, result_column::kDescription},
    {kColumnKolmogorovSmirnov, result_column::kKolmogorovSmirnov},
    {kColumnKolmogorovSmirnovPValue, result_column::kKolmogorovSmirnovPValue},
    {kColumnLogLikelihood, result_column::kLogLikelihood},
    {kColumnOffset, result_column::kOffset},
    {kColumnParameter, result_column::kParameter},
    {kKindContinuous, "continuous"},
    {kKindDiscrete, "discrete"},
});

// The look-up halves the table: out of order it would miss texts, and a number used twice would hide one.
static_assert(std::ranges::adjacent_find(kStrings, std::ranges::greater_equal(), &StringResource::number) ==
              kStrings.end());

bool IsConversion(std::string_view text) {
  return text.starts_with("%s") || text.starts_with("%d") || text.starts_with("%i");
}

// The text with its conversions replaced by the arguments in order. Conversions left over stay as they are.
std::string Fill(std::string_view text, std::initializer_list<std::string_view> arguments) {
  std::string filled;
  const auto* argument = arguments.begin();
  while (!text.empty()) {
    if (argument != arguments.end() && IsConversion(text)) {
      filled += *argument++;
      text.remove_prefix(2);
    } else {
      filled += text.front();
      text.remove_prefix(1);
    }
  }
  return filled;
}

}  // namespace

std::span<const StringResource> AllStringResources() {
  return kStrings;
}

std::string_view ResourceString(std::int32_t number) {
  const auto found = std::ranges::lower_bound(kStrings, number, {}, &StringResource::number);
  return found != kStrings.end() && found->number == number ? found->text : std::string_view();
}

std::string FormatResource(std::int32_t number, std::string_view argument) {
  return Fill(ResourceString(number), {argument});
}

std::string FormatResource(std::int32_t number, std::string_view first, std::string_view second) {
  return Fill(ResourceString(number), {first, second});
}

std::string FormatResource(std::int32_t number, std::string_view first, int second) {
  return Fill(ResourceString(number), {first, std::to_string(second)});
}

std::string_view StripDontTranslate(std::string_view text) {
  return text.starts_with(kDontTranslate) ? text.substr(kDontTranslate.size()) : text;
}

}  // namespace brenvolt::sra
