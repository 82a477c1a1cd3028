// The sub-editors of the design dialog as data, by template number, with the numbers of their controls.
#pragma once

#include <cstdint>

#include "host/controls/dialog_template.h"

namespace brenvolt::sra {

const DialogTemplate& DesignDistributionTemplate();  // 15001
const DialogTemplate& DesignCorrelationsTemplate();  // 15002
const DialogTemplate& DesignDefaultsTemplate();      // 15003
const DialogTemplate& DesignUserDefinedTemplate();   // 15004

namespace design_distribution {
inline constexpr std::int32_t kVariable = 1410;
inline constexpr std::int32_t kTypes = 1411;
inline constexpr std::int32_t kParameter = 1412;       // the first of five
inline constexpr std::int32_t kParameterLabel = 1417;  // the first of five
inline constexpr std::int32_t kMinimum = 1422;
inline constexpr std::int32_t kMaximum = 1423;
inline constexpr std::int32_t kMixtures = 1424;
inline constexpr std::int32_t kLevels = 1425;
inline constexpr std::int32_t kGroup = 1426;
}  // namespace design_distribution

namespace design_correlations {
inline constexpr std::int32_t kFirst = 1440;
inline constexpr std::int32_t kSecond = 1441;
inline constexpr std::int32_t kCorrelation = 1442;
inline constexpr std::int32_t kPairs = 1443;
inline constexpr std::int32_t kEditMatrix = 1444;
inline constexpr std::int32_t kVariable = 1445;
inline constexpr std::int32_t kMean = 1446;
inline constexpr std::int32_t kDeviation = 1447;
inline constexpr std::int32_t kVerdict = 1448;
inline constexpr std::int32_t kChanges = 1449;
}  // namespace design_correlations

namespace design_defaults {
inline constexpr std::int32_t kVariables = 1460;
inline constexpr std::int32_t kFitted = 1461;
inline constexpr std::int32_t kTakeOver = 1462;
inline constexpr std::int32_t kTakeOverAll = 1463;
inline constexpr std::int32_t kLeave = 1464;
inline constexpr std::int32_t kTakesPart = 1465;
inline constexpr std::int32_t kUseFitted = 1466;
inline constexpr std::int32_t kBounds = 1467;
}  // namespace design_defaults

namespace design_user_defined {
inline constexpr std::int32_t kVariable = 1480;
inline constexpr std::int32_t kMixture = 1481;
inline constexpr std::int32_t kHistogram = 1482;
inline constexpr std::int32_t kParameter = 1483;       // the first of three
inline constexpr std::int32_t kParameterLabel = 1486;  // the first of three
inline constexpr std::int32_t kMinimum = 1489;
inline constexpr std::int32_t kMaximum = 1490;
inline constexpr std::int32_t kMixtures = 1491;
inline constexpr std::int32_t kLevels = 1492;
inline constexpr std::int32_t kGroup = 1493;
inline constexpr std::int32_t kTitle = 1494;
inline constexpr std::int32_t kTable = 1495;
inline constexpr std::int32_t kNote = 1496;
inline constexpr std::int32_t kTotal = 1497;
}  // namespace design_user_defined

}  // namespace brenvolt::sra
