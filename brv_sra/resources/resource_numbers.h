// The numbers of the module's texts, by name. Numbers up to 10300 are fixed: macros, help and translations
// know them. Texts that have no fixed number take one from 20000 upward, a block for each dialog.
//
// Prefixes: Msg a message of a message box; Heading a column of a table; Label a caption beside a field;
// Title a title of a window, table or graph; Word and Lower a word to be put into a message; Name a display
// name; Method a simulation method; Progress a text of a progress bar. In the blocks from 20200 the dialog's
// own name comes first.
#pragma once

#include <cstdint>

#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

// Commands of the start-up dialog: the text of a command bears the command's number.
inline constexpr std::int32_t kCommandFitDistribution = 1004;
inline constexpr std::int32_t kCommandRunSimulation = 1005;
inline constexpr std::int32_t kCommandDesignSimulation = 1180;
inline constexpr std::int32_t kCommandProfiler = 1220;
inline constexpr std::int32_t kCommandAutoProfiler = 1254;

// The analysis, its caption, and the faults that any dialog can meet.
inline constexpr std::int32_t kAnalysisName = 10000;
inline constexpr std::int32_t kMsgInvalidInputOffsets = 10004;
inline constexpr std::int32_t kMsgInsufficientMemory = 10008;
inline constexpr std::int32_t kMsgTooFewVariables = 10009;
inline constexpr std::int32_t kProductName = 10010;
inline constexpr std::int32_t kMsgInvalidOffsets = 10011;
inline constexpr std::int32_t kMsgWeightsNotIntegers = 10012;
inline constexpr std::int32_t kMsgDatasetTooLarge = 10013;
inline constexpr std::int32_t kOffsetCaption = 10034;
inline constexpr std::int32_t kOffsetNote = 10035;

// The display name of a distribution, in the order of the codes; it is also the key of a variable's property.
constexpr std::int32_t NameResource(DistributionCode code) {
  return 10036 + static_cast<std::int32_t>(code);
}

// Column headings of parameters, and messages of the fit specification and the simulation.
inline constexpr std::int32_t kHeadingLocation = 10061;
inline constexpr std::int32_t kHeadingScale = 10062;
inline constexpr std::int32_t kHeadingShape = 10063;
inline constexpr std::int32_t kHeadingMin = 10064;
inline constexpr std::int32_t kHeadingMax = 10065;
inline constexpr std::int32_t kHeadingMode = 10066;
inline constexpr std::int32_t kMsgInvalidNumberOfSamples = 10068;
inline constexpr std::int32_t kMsgInvalidTrialsInSimulation = 10069;
inline constexpr std::int32_t kMsgInvalidSeed = 10071;
inline constexpr std::int32_t kMsgNoDistributionSelected = 10072;
inline constexpr std::int32_t kTitleCumulativeHistogramOf = 10073;
inline constexpr std::int32_t kTitleHistogramOf = 10075;
inline constexpr std::int32_t kMsgInvalidMixtureCountReverted = 10083;
inline constexpr std::int32_t kHeadingParamsDescription = 10084;
inline constexpr std::int32_t kGaussianMixtureLayoutNote = 10085;
inline constexpr std::int32_t kLowerLocation = 10086;
inline constexpr std::int32_t kLowerScale = 10087;
inline constexpr std::int32_t kLowerShape = 10088;
inline constexpr std::int32_t kMinMaxModeNote = 10089;
inline constexpr std::int32_t kAnalysisTitle = 10093;

// The editors of user-defined distributions, edit labels, and the words that name a parameter inside messages.
inline constexpr std::int32_t kTitleCustomGaussianMixture = 10098;
inline constexpr std::int32_t kTableGaussianMixtureParameters = 10099;
inline constexpr std::int32_t kHeadingMixingCoefficient = 10100;
inline constexpr std::int32_t kHeadingMixtureMean = 10101;
inline constexpr std::int32_t kHeadingStandardDeviation = 10102;
inline constexpr std::int32_t kLabelMinimum = 10103;
inline constexpr std::int32_t kLabelMaximum = 10104;
inline constexpr std::int32_t kLabelMode = 10105;
inline constexpr std::int32_t kLabelScale = 10106;
inline constexpr std::int32_t kLabelShape = 10107;
inline constexpr std::int32_t kLabelLocation = 10108;
inline constexpr std::int32_t kLabelShape1 = 10109;
inline constexpr std::int32_t kLabelShape2 = 10110;
inline constexpr std::int32_t kTitleCustomHistogram = 10120;
inline constexpr std::int32_t kTableHistogramParameters = 10121;
inline constexpr std::int32_t kHeadingCode = 10122;
inline constexpr std::int32_t kHeadingClassProportion = 10123;
inline constexpr std::int32_t kMsgInvalidParameter = 10124;
inline constexpr std::int32_t kWordMinimumOrMode = 10125;
inline constexpr std::int32_t kWordModeOrMaximum = 10126;
inline constexpr std::int32_t kWordProportion = 10127;
inline constexpr std::int32_t kWordMean = 10128;
inline constexpr std::int32_t kWordTrials = 10129;
inline constexpr std::int32_t kWordCodeOrProportion = 10130;
inline constexpr std::int32_t kMsgProportionRange = 10131;
inline constexpr std::int32_t kLabelProportion = 10149;
inline constexpr std::int32_t kLabelTrials = 10150;
inline constexpr std::int32_t kLabelMean = 10151;
inline constexpr std::int32_t kWordStandardDeviation = 10152;
inline constexpr std::int32_t kWordMixingCoefficient = 10153;
inline constexpr std::int32_t kWordShape2 = 10154;
inline constexpr std::int32_t kWordScale = 10156;
inline constexpr std::int32_t kMsgInvalidTrialsOfVariable = 10159;
inline constexpr std::int32_t kLabelJohnsonType = 10160;
inline constexpr std::int32_t kLabelJohnsonGamma = 10161;
inline constexpr std::int32_t kLabelJohnsonDelta = 10162;
inline constexpr std::int32_t kLabelJohnsonLambda = 10163;
inline constexpr std::int32_t kLabelJohnsonXi = 10164;
inline constexpr std::int32_t kLabelJohnsonScale = 10165;

// Simulation methods and output, headings of result tables, and the Johnson family.
inline constexpr std::int32_t kMethodMonteCarlo = 10166;
inline constexpr std::int32_t kMethodLatinHypercube = 10167;
inline constexpr std::int32_t kMethodImanConover = 10168;
inline constexpr std::int32_t kMethodLatinHypercubeImanConover = 10169;
inline constexpr std::int32_t kHeadingSample = 10170;
inline constexpr std::int32_t kHeadingTrials = 10171;
inline constexpr std::int32_t kHeadingProportion = 10172;
inline constexpr std::int32_t kHeadingPoissonMean = 10173;
inline constexpr std::int32_t kLowerMin = 10174;
inline constexpr std::int32_t kLowerMax = 10175;
inline constexpr std::int32_t kLowerMode = 10176;
inline constexpr std::int32_t kTitleRankedByKolmogorovSmirnov = 10178;
inline constexpr std::int32_t kTitleRankedByChiSquare = 10179;
inline constexpr std::int32_t kTitleRankedByAndersonDarling = 10180;
inline constexpr std::int32_t kNameJohnsonSL = 10181;
inline constexpr std::int32_t kNameJohnsonSU = 10182;
inline constexpr std::int32_t kNameJohnsonSB = 10183;
inline constexpr std::int32_t kNameJohnsonSN = 10184;
inline constexpr std::int32_t kHeadingGamma = 10185;
inline constexpr std::int32_t kHeadingDelta = 10186;
inline constexpr std::int32_t kHeadingXi = 10187;
inline constexpr std::int32_t kHeadingLambda = 10188;
inline constexpr std::int32_t kHeadingJohnsonType = 10189;
inline constexpr std::int32_t kMsgTextVariablesSelected = 10207;
inline constexpr std::int32_t kKeyProportion = 10208;
inline constexpr std::int32_t kKeyNumberOfTrials = 10209;
inline constexpr std::int32_t kKeyMean = 10210;
inline constexpr std::int32_t kMsgSimulationFailedDistributions = 10214;
inline constexpr std::int32_t kMsgInvalidTotalProportion = 10219;
inline constexpr std::int32_t kMsgTooManySamples = 10220;
inline constexpr std::int32_t kMsgNoValidFits = 10221;

// The first of the untranslated keys that hold a blank.
inline constexpr std::int32_t kFirstSpacedKey = 10238;
// Progress, and the checks of variable properties and of the fit.
inline constexpr std::int32_t kProgressAutoUpdating = 10244;
inline constexpr std::int32_t kProgressPreparingResults = 10245;
inline constexpr std::int32_t kMsgVariableNotFitted = 10246;
inline constexpr std::int32_t kProgressContinuousVariables = 10249;
inline constexpr std::int32_t kProgressDiscreteVariables = 10250;
inline constexpr std::int32_t kMsgPropertyValueMissing = 10251;
inline constexpr std::int32_t kMsgOrderCountMismatch = 10252;
inline constexpr std::int32_t kMsgPropertyMissing = 10253;
inline constexpr std::int32_t kMsgInvalidTruncationProperty = 10254;
inline constexpr std::int32_t kMsgInvalidOrderProperty = 10255;
inline constexpr std::int32_t kMsgInvalidPropertyValues = 10256;
inline constexpr std::int32_t kMsgInputIsMatrixFile = 10260;
inline constexpr std::int32_t kMsgStoredProportionInvalid = 10268;
inline constexpr std::int32_t kMsgStoredMeanInvalid = 10269;
inline constexpr std::int32_t kMsgStoredTrialsInvalid = 10270;
inline constexpr std::int32_t kMsgStoredLocationInvalid = 10271;
inline constexpr std::int32_t kMsgStoredScaleInvalid = 10272;
inline constexpr std::int32_t kMsgStoredShapeInvalid = 10273;
inline constexpr std::int32_t kMsgStoredOffsetInvalid = 10274;
inline constexpr std::int32_t kMsgInvalidMixtureCount = 10278;
inline constexpr std::int32_t kMsgNoValidVariables = 10281;
inline constexpr std::int32_t kMsgInvalidDistributionString = 10292;

// The startup dialog.
inline constexpr std::int32_t kStartupSelection = 20110;
inline constexpr std::int32_t kStartupWeights = 20111;

// The fit specification dialog.
inline constexpr std::int32_t kFitTitle = 20200;
inline constexpr std::int32_t kFitTabQuick = 20201;
inline constexpr std::int32_t kFitTabContinuous = 20202;
inline constexpr std::int32_t kFitTabDiscrete = 20203;
inline constexpr std::int32_t kFitButtonOk = 20204;
inline constexpr std::int32_t kFitButtonCancel = 20205;
inline constexpr std::int32_t kFitButtonOptions = 20206;
inline constexpr std::int32_t kFitButtonOpenData = 20207;
inline constexpr std::int32_t kFitButtonVariables = 20208;
inline constexpr std::int32_t kFitButtonPrevious = 20209;
inline constexpr std::int32_t kFitButtonNext = 20210;
inline constexpr std::int32_t kFitButtonSelectAll = 20211;
inline constexpr std::int32_t kFitButtonClearAll = 20212;
inline constexpr std::int32_t kFitButtonToggle = 20213;
inline constexpr std::int32_t kFitGroupMissingData = 20214;
inline constexpr std::int32_t kFitRadioPairwise = 20215;
inline constexpr std::int32_t kFitRadioCasewise = 20216;
inline constexpr std::int32_t kFitListContinuous = 20217;
inline constexpr std::int32_t kFitListDiscrete = 20218;
inline constexpr std::int32_t kFitListEmpty = 20219;
inline constexpr std::int32_t kFitSelectVariables = 20220;
inline constexpr std::int32_t kFitSelectContinuous = 20221;
inline constexpr std::int32_t kFitSelectDiscrete = 20222;
// The caption of a distribution's check box, in the order of the codes.
constexpr std::int32_t FitCheckResource(DistributionCode code) {
  return 20223 + static_cast<std::int32_t>(code);
}
inline constexpr std::int32_t kFitCheckJohnsonPercentile = 20239;
inline constexpr std::int32_t kFitLabelMixtures = 20240;
inline constexpr std::int32_t kFitLabelTrials = 20241;
inline constexpr std::int32_t kFitListSentenceEnd = 20242;
inline constexpr std::int32_t kOpenDataTitle = 20243;
inline constexpr std::int32_t kOpenDataFilter = 20244;

// The options of the fit specification.
inline constexpr std::int32_t kFitOptionsGroupRankBy = 20250;
inline constexpr std::int32_t kFitOptionsContinuous = 20251;
inline constexpr std::int32_t kFitOptionsDiscrete = 20252;
inline constexpr std::int32_t kFitOptionsKolmogorovSmirnov = 20253;
inline constexpr std::int32_t kFitOptionsChiSquare = 20254;
inline constexpr std::int32_t kFitOptionsAndersonDarling = 20255;
inline constexpr std::int32_t kFitOptionsGroupBinning = 20256;
inline constexpr std::int32_t kFitOptionsEqualProbabilities = 20257;
inline constexpr std::int32_t kFitOptionsEqualIntervals = 20258;

// The correlation matrix file.
inline constexpr std::int32_t kMsgMatrixCreateQuestion = 20305;
inline constexpr std::int32_t kMsgMatrixWrongType = 20306;
inline constexpr std::int32_t kMsgMatrixCases = 20307;
inline constexpr std::int32_t kMsgMatrixInvalid = 20308;
inline constexpr std::int32_t kMsgMatrixMean = 20309;
inline constexpr std::int32_t kMsgMatrixReadCancelled = 20310;
inline constexpr std::int32_t kMsgMatrixMeansDeselected = 20311;
inline constexpr std::int32_t kMsgMatrixStandardDeviation = 20312;
inline constexpr std::int32_t kMsgMatrixDeviationsDeselected = 20313;
inline constexpr std::int32_t kMsgMatrixValidCases = 20314;
inline constexpr std::int32_t kMatrixSelectVariables = 20315;
inline constexpr std::int32_t kMatrixSelectVariablesList = 20316;

// The simulation, its design and its sampling.
inline constexpr std::int32_t kMethodNormalToAnything = 20400;
inline constexpr std::int32_t kProgressComputing = 20401;
inline constexpr std::int32_t kMsgSimulationFailedMatrix = 20402;

// The profiler: instructions and commands.
inline constexpr std::int32_t kProfilerTitle = 20500;
inline constexpr std::int32_t kProfilerInstructionsDistributions = 20501;
inline constexpr std::int32_t kProfilerInstructionsSimulate = 20502;
inline constexpr std::int32_t kProfilerInstructionsDefects = 20503;
inline constexpr std::int32_t kProfilerTabProfiler = 20504;
inline constexpr std::int32_t kProfilerTabOutput = 20505;
inline constexpr std::int32_t kProfilerButtonSimulate = 20506;
inline constexpr std::int32_t kProfilerButtonDefects = 20507;
inline constexpr std::int32_t kProfilerButtonLoadModels = 20508;
inline constexpr std::int32_t kProfilerButtonOptions = 20509;
inline constexpr std::int32_t kProfilerCheckSeed = 20510;
inline constexpr std::int32_t kProfilerCheckAutoUpdate = 20511;

// The profiler: page of predictor distributions.
inline constexpr std::int32_t kProfilerListPredictors = 20520;
inline constexpr std::int32_t kProfilerListDistributions = 20521;
inline constexpr std::int32_t kProfilerListSelected = 20522;
inline constexpr std::int32_t kProfilerLabelMin = 20523;
inline constexpr std::int32_t kProfilerLabelMax = 20524;
inline constexpr std::int32_t kProfilerGroupMixture = 20525;
inline constexpr std::int32_t kProfilerGroupHistogram = 20526;
inline constexpr std::int32_t kProfilerLabelValue = 20527;
inline constexpr std::int32_t kProfilerLabelOffset = 20528;
inline constexpr std::int32_t kProfilerLabelMixtures = 20529;
inline constexpr std::int32_t kProfilerLabelLevels = 20530;
inline constexpr std::int32_t kProfilerButtonAdd = 20531;
inline constexpr std::int32_t kProfilerCheckCorrelations = 20532;
inline constexpr std::int32_t kProfilerButtonEditCorrelation = 20533;
inline constexpr std::int32_t kProfilerButtonFitBest = 20534;
inline constexpr std::int32_t kProfilerFixed = 20535;
inline constexpr std::int32_t kProfilerFixedValue = 20536;

// The profiler: page of output and specifications.
inline constexpr std::int32_t kProfilerGroupSpecs = 20540;
inline constexpr std::int32_t kProfilerLabelRuns = 20541;
inline constexpr std::int32_t kProfilerLabelEditSpec = 20542;
inline constexpr std::int32_t kProfilerNoNoise = 20543;
inline constexpr std::int32_t kProfilerRandomNoise = 20544;
inline constexpr std::int32_t kProfilerMultivariateNoise = 20545;
inline constexpr std::int32_t kProfilerLabelStandardDeviation = 20546;
inline constexpr std::int32_t kProfilerButtonEditCorrelationY = 20547;
inline constexpr std::int32_t kProfilerLabelModel = 20548;
inline constexpr std::int32_t kProfilerNoModel = 20549;
inline constexpr std::int32_t kProfilerLabelLsl = 20550;
inline constexpr std::int32_t kProfilerLabelUsl = 20551;
inline constexpr std::int32_t kProfilerLabelTarget = 20552;
inline constexpr std::int32_t kProfilerButtonCapability = 20553;
inline constexpr std::int32_t kProfilerButtonSummaryStats = 20554;
inline constexpr std::int32_t kProfilerButtonSummaryGraph = 20555;
inline constexpr std::int32_t kProfilerLabelFormula = 20556;
inline constexpr std::int32_t kProfilerButtonSetFormula = 20557;
inline constexpr std::int32_t kProfilerButtonUndoFormula = 20558;
inline constexpr std::int32_t kProfilerOpenModelsTitle = 20559;
inline constexpr std::int32_t kProfilerOpenModelsFilter = 20560;
inline constexpr std::int32_t kProfilerOpenModelsExtension = 20561;

// The profiler: messages and captions of message boxes.
inline constexpr std::int32_t kMsgProfilerFileNames = 20570;
inline constexpr std::int32_t kMsgProfilerMinimumMaximum = 20571;
inline constexpr std::int32_t kMsgProfilerRunsReset = 20572;
inline constexpr std::int32_t kMsgProfilerNoRandomPredictor = 20573;
inline constexpr std::int32_t kMsgProfilerCheckFormula = 20574;
inline constexpr std::int32_t kMsgProfilerInvalidSpec = 20575;
inline constexpr std::int32_t kMsgProfilerCorrelationFailed = 20576;
inline constexpr std::int32_t kCaptionBasicStatsError = 20577;
inline constexpr std::int32_t kCaptionCorrelationsError = 20578;
inline constexpr std::int32_t kCaptionRangeError = 20579;
inline constexpr std::int32_t kCaptionProcessCapabilityError = 20580;
inline constexpr std::int32_t kCaptionSummaryStatsError = 20581;
inline constexpr std::int32_t kCaptionSummaryGraphError = 20582;
inline constexpr std::int32_t kCaptionSimulationError = 20583;
inline constexpr std::int32_t kMsgProfilerSingularNoise = 20584;
inline constexpr std::int32_t kMsgProfilerTooManyGraphs = 20585;
inline constexpr std::int32_t kMsgProfilerGraphFailed = 20586;
inline constexpr std::int32_t kMsgProfilerEntriesReset = 20587;
inline constexpr std::int32_t kMsgProfilerInvalidCorrelation = 20588;
inline constexpr std::int32_t kMsgDefectProfileFailed = 20589;

// The profiler: titles and headings of its results.
inline constexpr std::int32_t kProfilerResultsTitle = 20600;
inline constexpr std::int32_t kProfilerProfilesTitle = 20601;
inline constexpr std::int32_t kProfilerCorrelationTitle = 20602;
inline constexpr std::int32_t kProfilerCorrelationYTitle = 20603;
inline constexpr std::int32_t kProfilerCorrelationNote = 20604;
inline constexpr std::int32_t kDefectTitle = 20605;
inline constexpr std::int32_t kDefectRowOverall = 20609;

// The fit results dialog, the simulation dialogs, and messages of the frame.
inline constexpr std::int32_t kFitResultsTitle = 20710;
inline constexpr std::int32_t kFitResultsVariable = 20711;
inline constexpr std::int32_t kFitResultsDistribution = 20712;
inline constexpr std::int32_t kFitResultsSummary = 20713;
inline constexpr std::int32_t kFitResultsDistributionSummary = 20714;
inline constexpr std::int32_t kFitResultsSave = 20715;
inline constexpr std::int32_t kSimulationTitle = 20720;
inline constexpr std::int32_t kSimulationSamples = 20721;
inline constexpr std::int32_t kSimulationSeedSwitch = 20722;
inline constexpr std::int32_t kSimulationSeed = 20723;
inline constexpr std::int32_t kSimulationTruncate = 20724;
inline constexpr std::int32_t kSimulationMethodGroup = 20725;
inline constexpr std::int32_t kMsgNoDistributionsInInput = 20726;
inline constexpr std::int32_t kMsgSimulationNoMatrix = 20727;
inline constexpr std::int32_t kMsgMatrixLacksVariables = 20728;
inline constexpr std::int32_t kMsgMatrixRepaired = 20729;
inline constexpr std::int32_t kSimulationResultsTitle = 20730;
inline constexpr std::int32_t kSimulationSummary = 20731;
inline constexpr std::int32_t kSimulationCorrelations = 20732;
inline constexpr std::int32_t kMsgTooFewSamplesForCorrelation = 20737;
inline constexpr std::int32_t kSimulationAutoUpdate = 20738;
inline constexpr std::int32_t kMsgMatrixNamesRepeated = 20762;
inline constexpr std::int32_t kRepairedMatrixTitle = 20739;

// Columns of result tables, and the kinds of variables named in them.
inline constexpr std::int32_t kKindContinuous = 20760;
inline constexpr std::int32_t kKindDiscrete = 20761;

// The fit results dialog: tabs and controls, its graphs, columns of its tables, and its messages.
inline constexpr std::int32_t kFitResultsTabSave = 20800;
inline constexpr std::int32_t kFitResultsSummaryGraph = 20801;
inline constexpr std::int32_t kFitResultsHistogram = 20802;
inline constexpr std::int32_t kFitResultsCumulativeHistogram = 20803;
inline constexpr std::int32_t kFitResultsEmpirical = 20804;
inline constexpr std::int32_t kFitResultsProbabilityPlot = 20805;
inline constexpr std::int32_t kFitResultsQuantilePlot = 20806;
inline constexpr std::int32_t kFitResultsBoxPlot = 20807;
inline constexpr std::int32_t kFitResultsDetails = 20808;
inline constexpr std::int32_t kFitResultsCorrelations = 20809;
inline constexpr std::int32_t kFitResultsOrder = 20810;
inline constexpr std::int32_t kFitResultsMoveUp = 20811;
inline constexpr std::int32_t kFitResultsMoveDown = 20812;
inline constexpr std::int32_t kFitResultsLeaveOut = 20813;
inline constexpr std::int32_t kFitResultsDefaultOrder = 20814;
inline constexpr std::int32_t kFitResultsGroupTruncation = 20815;
inline constexpr std::int32_t kFitResultsTruncateBelow = 20816;
inline constexpr std::int32_t kFitResultsTruncateAbove = 20817;
inline constexpr std::int32_t kFitResultsUserDefined = 20818;
inline constexpr std::int32_t kTitleProbabilityPlotOf = 20819;
inline constexpr std::int32_t kTitleQuantilePlotOf = 20820;
inline constexpr std::int32_t kTitleEmpiricalOf = 20821;
inline constexpr std::int32_t kTitleBoxPlotOf = 20822;
inline constexpr std::int32_t kTitleSummaryOf = 20823;
inline constexpr std::int32_t kTitleDetailsOf = 20824;
inline constexpr std::int32_t kAxisCount = 20825;
inline constexpr std::int32_t kAxisCumulativeCount = 20826;
inline constexpr std::int32_t kAxisTheoreticalProbability = 20827;
inline constexpr std::int32_t kAxisObservedProbability = 20828;
inline constexpr std::int32_t kAxisTheoreticalQuantile = 20829;
inline constexpr std::int32_t kAxisObservedQuantile = 20830;
inline constexpr std::int32_t kNameObserved = 20831;
inline constexpr std::int32_t kNameReference = 20832;
inline constexpr std::int32_t kMsgNotFittedHere = 20848;
inline constexpr std::int32_t kMsgOrderUnknown = 20849;
inline constexpr std::int32_t kMsgOrderTwice = 20850;
inline constexpr std::int32_t kMsgOrderKind = 20851;
inline constexpr std::int32_t kMsgTruncationBound = 20852;
inline constexpr std::int32_t kMsgTruncationCrossed = 20853;
inline constexpr std::int32_t kMsgCorrelationUndefined = 20854;
inline constexpr std::int32_t kMsgCorrelationsUndefined = 20855;
inline constexpr std::int32_t kMsgNotAmongResults = 20856;
inline constexpr std::int32_t kMsgNothingToSave = 20857;
inline constexpr std::int32_t kMsgInfiniteValue = 20858;
inline constexpr std::int32_t kMsgPercentilesNotFitted = 20859;
inline constexpr std::int32_t kMsgFormerFitsRemoved = 20860;

// The profiler: rows, columns, titles and axes of what it tells of a response.
inline constexpr std::int32_t kResponseTitleCapability = 20930;
inline constexpr std::int32_t kResponseTitleStatistics = 20932;
inline constexpr std::int32_t kResponseTitleCorrelations = 20933;
inline constexpr std::int32_t kResponseTitlePercentiles = 20934;
inline constexpr std::int32_t kResponseTitleFrequencies = 20935;
inline constexpr std::int32_t kResponseTitleSensitivity = 20936;
inline constexpr std::int32_t kResponseTitleTornado = 20937;
inline constexpr std::int32_t kResponseTitleGraphs = 20938;
inline constexpr std::int32_t kResponseAxisRankCorrelation = 20939;
inline constexpr std::int32_t kResponseAxisPredictors = 20940;
inline constexpr std::int32_t kResponseAllPredictors = 20941;
inline constexpr std::int32_t kResponseNoIntervals = 20944;
inline constexpr std::int32_t kDefectCountsTitle = 20945;
inline constexpr std::int32_t kUnpredictedTitle = 20952;
inline constexpr std::int32_t kUnpredictedFormula = 20953;
inline constexpr std::int32_t kResponseNotNormal = 20954;
inline constexpr std::int32_t kResponsePercentilesNoLimits = 20955;
inline constexpr std::int32_t kResponseWithinNotNormal = 20956;
inline constexpr std::int32_t kResponseTailNotFitted = 20957;
inline constexpr std::int32_t kResponseOfFewValues = 20958;
inline constexpr std::int32_t kResponseOutOfSpecification = 20959;

// The profiler: what goes beyond the texts above.
inline constexpr std::int32_t kMsgProfilerInfiniteValue = 21000;
inline constexpr std::int32_t kMsgProfilerNoValues = 21001;
inline constexpr std::int32_t kMsgProfilerFieldTypes = 21002;
inline constexpr std::int32_t kMsgProfilerNothingToFit = 21003;
inline constexpr std::int32_t kMsgProfilerNoSpecification = 21004;
inline constexpr std::int32_t kMsgProfilerNoiseDeviation = 21005;
inline constexpr std::int32_t kMsgProfilerNotSimulated = 21006;
inline constexpr std::int32_t kMsgProfilerNoDependent = 21007;
inline constexpr std::int32_t kMsgProfilerInvalidSeed = 21008;
inline constexpr std::int32_t kProfilerMean = 21009;
inline constexpr std::int32_t kProfilerNoSpecification = 21010;
inline constexpr std::int32_t kMsgProfilerUnknownClasses = 21012;

// The design dialog.
inline constexpr std::int32_t kDesignTitle = 21100;
inline constexpr std::int32_t kDesignButtonCorrelations = 21101;
inline constexpr std::int32_t kDesignButtonSave = 21102;
inline constexpr std::int32_t kDesignCheckTakesPart = 21103;
inline constexpr std::int32_t kDesignCheckUseFitted = 21104;
inline constexpr std::int32_t kDesignCorrelationTitle = 21105;
inline constexpr std::int32_t kDesignSheetName = 21106;
inline constexpr std::int32_t kDesignSelectVariables = 21107;
inline constexpr std::int32_t kDesignNoDistribution = 21108;
inline constexpr std::int32_t kDesignLeftOut = 21109;
inline constexpr std::int32_t kMsgDesignNothing = 21110;

// Why a fit failed, what it comes from, what speaks against it.
inline constexpr std::int32_t kReasonInCase = 21122;
inline constexpr std::int32_t kReasonNoValues = 21123;
inline constexpr std::int32_t kReasonTooFewValues = 21124;
inline constexpr std::int32_t kReasonAtOffset = 21125;
inline constexpr std::int32_t kReasonBelowOffset = 21126;
inline constexpr std::int32_t kReasonNoSpread = 21127;
inline constexpr std::int32_t kReasonEqualPercentiles = 21128;
inline constexpr std::int32_t kReasonNotFinite = 21129;
inline constexpr std::int32_t kReasonNoMaximum = 21130;
inline constexpr std::int32_t kReasonNoMaximumNorMoments = 21131;
inline constexpr std::int32_t kReasonNoJohnson = 21132;
inline constexpr std::int32_t kReasonTooManyComponents = 21133;
inline constexpr std::int32_t kReasonInvalidArgument = 21134;
inline constexpr std::int32_t kReasonNoConvergence = 21135;
inline constexpr std::int32_t kReasonSumVanishes = 21136;
inline constexpr std::int32_t kReasonPowerOverflows = 21137;
inline constexpr std::int32_t kReasonInvalidTrials = 21138;
inline constexpr std::int32_t kReasonFraction = 21139;
inline constexpr std::int32_t kReasonNegativeCount = 21140;
inline constexpr std::int32_t kReasonAboveTrials = 21141;
inline constexpr std::int32_t kReasonZeroOrOne = 21142;
inline constexpr std::int32_t kReasonAllZero = 21143;
inline constexpr std::int32_t kReasonNotPositive = 21144;
inline constexpr std::int32_t kReasonOffsetNoHelp = 21145;
inline constexpr std::int32_t kReasonMeansNotSet = 21146;
inline constexpr std::int32_t kReasonNoValidValues = 21147;
inline constexpr std::int32_t kReasonSingleValue = 21148;
inline constexpr std::int32_t kReasonAllEqual = 21149;
inline constexpr std::int32_t kOriginLikelihood = 21150;
inline constexpr std::int32_t kOriginMoments = 21151;
inline constexpr std::int32_t kOriginPercentiles = 21152;
inline constexpr std::int32_t kOriginExtremes = 21153;
inline constexpr std::int32_t kNoteNoMaximum = 21154;
inline constexpr std::int32_t kNoteNearSpike = 21155;
inline constexpr std::int32_t kNoteJohnsonBootstrap = 21156;
inline constexpr std::int32_t kNoteValueAtOffset = 21157;
inline constexpr std::int32_t kReasonVarianceVanishes = 21158;

// The editors of the design.
inline constexpr std::int32_t kMsgInvalidLevelCount = 21160;
inline constexpr std::int32_t kMsgBoundsLeaveNothing = 21161;
inline constexpr std::int32_t kMsgDesignMean = 21162;
inline constexpr std::int32_t kMsgDesignDeviation = 21163;
inline constexpr std::int32_t kDesignButtonDistribution = 21164;
inline constexpr std::int32_t kDesignButtonUserDefined = 21165;
inline constexpr std::int32_t kDesignButtonDefaults = 21166;
inline constexpr std::int32_t kDesignDistributionTitle = 21167;
inline constexpr std::int32_t kDesignUserDefinedTitle = 21168;
inline constexpr std::int32_t kDesignDefaultsTitle = 21169;
inline constexpr std::int32_t kDesignHistogramLayoutNote = 21170;
inline constexpr std::int32_t kDesignTotal = 21171;
inline constexpr std::int32_t kDesignLabelFirst = 21172;
inline constexpr std::int32_t kDesignLabelSecond = 21173;
inline constexpr std::int32_t kDesignLabelCorrelation = 21174;
inline constexpr std::int32_t kDesignButtonMatrix = 21175;
inline constexpr std::int32_t kDesignLabelVariable = 21176;
inline constexpr std::int32_t kDesignLabelMean = 21177;
inline constexpr std::int32_t kDesignLabelDeviation = 21178;
inline constexpr std::int32_t kDesignIsPositiveDefinite = 21179;
inline constexpr std::int32_t kDesignWouldBeRepaired = 21180;
inline constexpr std::int32_t kDesignCannotBeRepaired = 21181;
inline constexpr std::int32_t kDesignListFitted = 21182;
inline constexpr std::int32_t kDesignButtonTakeOver = 21183;
inline constexpr std::int32_t kDesignButtonTakeOverAll = 21184;
inline constexpr std::int32_t kDesignButtonLeave = 21185;
inline constexpr std::int32_t kDesignBoundsCount = 21186;
inline constexpr std::int32_t kDesignBoundsWithoutEffect = 21187;
inline constexpr std::int32_t kDesignListPairs = 21188;
inline constexpr std::int32_t kDesignListChanges = 21189;

// The ways between dialogs.
inline constexpr std::int32_t kFitResultsSimulate = 21190;
inline constexpr std::int32_t kSimulationLeaveOut = 21191;
inline constexpr std::int32_t kSimulationSelectLeftOut = 21192;
inline constexpr std::int32_t kSimulationMatrix = 21193;
inline constexpr std::int32_t kSimulationMatrixOfInput = 21194;
inline constexpr std::int32_t kStartupSimulation = 21195;
inline constexpr std::int32_t kSimulationNoneLeftOut = 21196;

// What becomes of correlations of noise.
inline constexpr std::int32_t kCorrelationsCarryNoNoise = 21220;

// What contradicts itself in a specification.
inline constexpr std::int32_t kProfilerSpecificationFault = 21221;

// Fits: what goes beyond the texts above.
inline constexpr std::int32_t kTitleRankedByAkaike = 21200;
inline constexpr std::int32_t kTitleRankedByBayes = 21201;
inline constexpr std::int32_t kTitleSavedFits = 21208;
inline constexpr std::int32_t kTitlePointsOf = 21209;

}  // namespace brenvolt::sra
