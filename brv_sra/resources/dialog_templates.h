// The module's dialogs as data, by template number, with the numbers of their controls.
#pragma once

#include <cstdint>

#include "host/controls/dialog_template.h"
#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt::sra {

const DialogTemplate& DefineTaskTemplate();         // 25980
const DialogTemplate& SimulationStartupTemplate();  // 25977
const DialogTemplate& FitDistributionTemplate();    // 25974
const DialogTemplate& FitOptionsTemplate();         // 25975
const DialogTemplate& FitResultsTemplate();         // 25983
const DialogTemplate& DesignTemplate();             // 15000
const DialogTemplate& SimulationTemplate();         // 25991
const DialogTemplate& SimulationResultsTemplate();  // 25988
const DialogTemplate& ProfilerTemplate();           // 15033

// The startup dialogs.
namespace define_task {
inline constexpr std::int32_t kSelectionConditions = 1001;
inline constexpr std::int32_t kCaseWeights = 1002;
inline constexpr std::int32_t kOpenData = 1003;
inline constexpr std::int32_t kFitDistribution = 1004;
inline constexpr std::int32_t kRunSimulation = 1005;
inline constexpr std::int32_t kTaskList = 1006;
inline constexpr std::int32_t kDesignSimulation = 1180;
inline constexpr std::int32_t kProfiler = 1220;
inline constexpr std::int32_t kAutoProfiler = 1254;
inline constexpr std::int32_t kSimulationStartup = 1255;
}  // namespace define_task

namespace fit_dialog {
inline constexpr std::int32_t kVariables = 1010;
inline constexpr std::int32_t kContinuousList = 1011;
inline constexpr std::int32_t kDiscreteList = 1012;
inline constexpr std::int32_t kPairwise = 1013;
inline constexpr std::int32_t kCasewise = 1014;
inline constexpr std::int32_t kOptions = 1015;
inline constexpr std::int32_t kOpenData = 1016;
inline constexpr std::int32_t kDeletionCaption = 1017;
inline constexpr std::int32_t kContinuousVariable = 1020;
inline constexpr std::int32_t kContinuousPrevious = 1021;
inline constexpr std::int32_t kContinuousNext = 1022;
inline constexpr std::int32_t kContinuousSelectAll = 1023;
inline constexpr std::int32_t kContinuousClearAll = 1024;
inline constexpr std::int32_t kContinuousToggle = 1025;
inline constexpr std::int32_t kJohnsonPercentile = 1038;
inline constexpr std::int32_t kDiscreteVariable = 1070;
inline constexpr std::int32_t kDiscretePrevious = 1071;
inline constexpr std::int32_t kDiscreteNext = 1072;
inline constexpr std::int32_t kDiscreteSelectAll = 1073;
inline constexpr std::int32_t kDiscreteClearAll = 1074;
inline constexpr std::int32_t kDiscreteToggle = 1075;
inline constexpr std::int32_t kUseTrials = 1089;
inline constexpr std::int32_t kTrials = 1090;
// The first check box of a distribution on each tab. The others follow in the order of the codes; on the first
// tab, the option of the Johnson fit stands among them.
inline constexpr std::int32_t kContinuousChecks = 1030;
inline constexpr std::int32_t kDiscreteChecks = 1080;
constexpr std::int32_t CheckOf(DistributionCode code) {
  const auto number = static_cast<std::int32_t>(code);
  if (number >= kContinuousCount) return kDiscreteChecks + number - kContinuousCount;
  const std::int32_t check = kContinuousChecks + number;
  return check < kJohnsonPercentile ? check : check + 1;
}
// The field beside the check box of a continuous distribution, of its offset or the number of components.
constexpr std::int32_t FieldOf(DistributionCode code) {
  return CheckOf(code) + 20;
}
inline constexpr std::int32_t kMixtures = FieldOf(DistributionCode::kGaussianMixture);
}  // namespace fit_dialog

namespace fit_options {
inline constexpr std::int32_t kContinuousCaption = 1140;
inline constexpr std::int32_t kContinuousKolmogorovSmirnov = 1141;
inline constexpr std::int32_t kContinuousChiSquare = 1142;
inline constexpr std::int32_t kContinuousAndersonDarling = 1143;
inline constexpr std::int32_t kDiscreteCaption = 1144;
inline constexpr std::int32_t kDiscreteKolmogorovSmirnov = 1145;
inline constexpr std::int32_t kDiscreteChiSquare = 1146;
inline constexpr std::int32_t kEqualProbabilities = 1147;
inline constexpr std::int32_t kEqualIntervals = 1148;
}  // namespace fit_options

namespace fit_results {
inline constexpr std::int32_t kVariable = 1100;
inline constexpr std::int32_t kDistribution = 1101;
inline constexpr std::int32_t kSummaryStatistics = 1102;
inline constexpr std::int32_t kDistributionSummary = 1103;
inline constexpr std::int32_t kSaveFit = 1104;
inline constexpr std::int32_t kPrevious = 1105;
inline constexpr std::int32_t kNext = 1106;
inline constexpr std::int32_t kSummaryGraph = 1107;
inline constexpr std::int32_t kHistogram = 1108;
inline constexpr std::int32_t kCumulativeHistogram = 1109;
inline constexpr std::int32_t kEmpiricalPlot = 1110;
inline constexpr std::int32_t kProbabilityPlot = 1111;
inline constexpr std::int32_t kQuantilePlot = 1112;
inline constexpr std::int32_t kBoxPlot = 1113;
inline constexpr std::int32_t kDetails = 1114;
inline constexpr std::int32_t kSaveVariable = 1150;
inline constexpr std::int32_t kSavePrevious = 1151;
inline constexpr std::int32_t kSaveNext = 1152;
inline constexpr std::int32_t kOrder = 1153;
inline constexpr std::int32_t kMoveUp = 1154;
inline constexpr std::int32_t kMoveDown = 1155;
inline constexpr std::int32_t kLeaveOut = 1156;
inline constexpr std::int32_t kDefaultOrder = 1157;
inline constexpr std::int32_t kTruncateBelow = 1158;
inline constexpr std::int32_t kTruncationMinimum = 1159;
inline constexpr std::int32_t kTruncateAbove = 1160;
inline constexpr std::int32_t kTruncationMaximum = 1161;
inline constexpr std::int32_t kUserDefined = 1162;
inline constexpr std::int32_t kSaveDistributionSummary = 1163;
inline constexpr std::int32_t kCorrelationMatrix = 1164;
inline constexpr std::int32_t kSimulate = 1165;
}  // namespace fit_results

namespace design_dialog {
inline constexpr std::int32_t kVariables = 1400;
inline constexpr std::int32_t kVariableList = 1401;
inline constexpr std::int32_t kTakesPart = 1402;
inline constexpr std::int32_t kUseFitted = 1403;
inline constexpr std::int32_t kEditCorrelations = 1404;
inline constexpr std::int32_t kSaveToInput = 1405;
inline constexpr std::int32_t kCorrelationMatrix = 1406;
inline constexpr std::int32_t kEditDistribution = 1407;
inline constexpr std::int32_t kEditUserDefined = 1408;
inline constexpr std::int32_t kEditDefaults = 1409;
}  // namespace design_dialog

namespace simulation_dialog {
inline constexpr std::int32_t kVariables = 1120;
inline constexpr std::int32_t kVariableList = 1121;
inline constexpr std::int32_t kMonteCarlo = 1122;
inline constexpr std::int32_t kLatinHypercube = 1123;
inline constexpr std::int32_t kImanConover = 1124;
inline constexpr std::int32_t kLatinHypercubeImanConover = 1125;
inline constexpr std::int32_t kNormalToAnything = 1126;
inline constexpr std::int32_t kNumberOfSamples = 1127;
inline constexpr std::int32_t kSeedSwitch = 1128;
inline constexpr std::int32_t kSeed = 1129;
inline constexpr std::int32_t kTruncate = 1130;
inline constexpr std::int32_t kAutoUpdate = 1131;
inline constexpr std::int32_t kSimulate = 1132;
inline constexpr std::int32_t kUseFitted = 1133;
inline constexpr std::int32_t kLeaveOut = 1134;
inline constexpr std::int32_t kLeftOutList = 1135;
inline constexpr std::int32_t kMatrix = 1136;
}  // namespace simulation_dialog

namespace profiler_dialog {
inline constexpr std::int32_t kInstructions = 1300;
inline constexpr std::int32_t kDefects = 1301;
inline constexpr std::int32_t kLoadModels = 1302;
inline constexpr std::int32_t kOptions = 1303;
inline constexpr std::int32_t kSeedSwitch = 1304;
inline constexpr std::int32_t kSeed = 1305;
inline constexpr std::int32_t kAutoUpdate = 1306;
// The page of predictors.
inline constexpr std::int32_t kPredictors = 1310;
inline constexpr std::int32_t kDistributions = 1311;
inline constexpr std::int32_t kSelected = 1312;
inline constexpr std::int32_t kParameter = 1320;       // the first of five
inline constexpr std::int32_t kParameterLabel = 1325;  // the first of five
inline constexpr std::int32_t kMinimum = 1330;
inline constexpr std::int32_t kMaximum = 1331;
inline constexpr std::int32_t kMixtures = 1332;
inline constexpr std::int32_t kLevels = 1333;
inline constexpr std::int32_t kGroup = 1334;  // the component or level that the fields show
inline constexpr std::int32_t kAddDistribution = 1335;
inline constexpr std::int32_t kSimulateCorrelations = 1336;
inline constexpr std::int32_t kEditCorrelation = 1337;
inline constexpr std::int32_t kFitBest = 1338;
// The page of output.
inline constexpr std::int32_t kRuns = 1340;
inline constexpr std::int32_t kDependent = 1341;
inline constexpr std::int32_t kNoise = 1342;
inline constexpr std::int32_t kDeviation = 1343;
inline constexpr std::int32_t kEditCorrelationY = 1344;
inline constexpr std::int32_t kModel = 1345;
inline constexpr std::int32_t kLsl = 1346;
inline constexpr std::int32_t kUsl = 1347;
inline constexpr std::int32_t kTarget = 1348;
inline constexpr std::int32_t kCapability = 1349;
inline constexpr std::int32_t kSummaryStats = 1350;
inline constexpr std::int32_t kSummaryGraph = 1351;
inline constexpr std::int32_t kFormula = 1352;
inline constexpr std::int32_t kSetFormula = 1353;
inline constexpr std::int32_t kUndoFormula = 1354;
inline constexpr std::int32_t kSpecificationFault = 1355;
}  // namespace profiler_dialog

}  // namespace brenvolt::sra
