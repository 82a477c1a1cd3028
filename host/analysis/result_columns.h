// The columns of result tables, and the rows of tables whose rows are statistics: each once, for the module
// that fills them and the programs that read them. A program finds a column by its identifier, a person by
// its heading, which is a text of the module and may be in any language. A new column is a row here, its
// heading among the module's texts, and its value in the module's table.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace brenvolt {

// What a number is, and so in which form a table for people shows it.
enum class Quantity : std::uint8_t {
  kMeasure,         // in the unit of the data, or without one: significant digits, as many as the table takes
  kLocation,        // a place among the data: as many more digits as show it against the spread of the row
  kCount,           // a whole number
  kStatistic,       // of a test: four significant digits
  kPValue,          // four decimals
  kInformation,     // an information criterion: two decimals
  kPartsPerMillion  // a whole number, which need not be one
};

struct ResultColumn {
  std::string_view identifier;  // also names the column in frames
  std::string_view json;        // its place in the object of a row in JSON (a pointer of RFC 6901), or empty
  std::int32_t heading;         // the number of a text of the module; 0 of what jobs find without it
  Quantity quantity = Quantity::kMeasure;
  bool hasLimits = false;  // of a statistic: whether there may be confidence limits for it
};

namespace result_columns {

// In the order of the reports. Columns that share a heading differ in the table or in their place in it.
using enum Quantity;
constexpr bool kHasLimits = true;

// Columns without a place in JSON of their own: texts, and those that are numbered ("parameter.1", …).
inline constexpr ResultColumn kOthers[] = {{"kind", "", 20740},        {"code", "", 20750},
                                           {"description", "", 20751}, {"offset", "", 20755},
                                           {"parameter", "", 20756},   {"standard_error", "", 20835},
                                           {"covariance", "", 20842},  {"reason", "", 20840},
                                           {"origin", "", 21120},      {"note", "", 21121},
                                           {"percentile", "", 20749},  {"response", "", 20606},
                                           {"table_rate", "", 20607},  {"table_ppm", "", 20608},
                                           {"saved_place", "", 21206}, {"variable_number", "", 21207},
                                           {"field", "", 20950},       {"field_value", "", 20951},
                                           {"density", "", 21197},     {"cumulative", "", 21198},
                                           {"quantile", "", 21199},    {"distinct", "", 21210}};
inline constexpr ResultColumn kMoments[] = {{"n", "/n", 20741, kCount},
                                            {"missing", "/missing", 20742, kCount},
                                            {"mean", "/mean", 20743, kLocation},
                                            {"standard_deviation", "/standardDeviation", 20744},
                                            {"skewness", "/skewness", 20745},
                                            {"kurtosis", "/kurtosis", 20746},
                                            {"minimum", "/minimum", 20747, kLocation},
                                            {"maximum", "/maximum", 20748, kLocation}};

// Of a fit.
inline constexpr ResultColumn kTests[] = {{"ks", "/kolmogorovSmirnov/statistic", 20752, kStatistic},
                                          {"ks_p", "/kolmogorovSmirnov/pValue", 20753, kPValue},
                                          {"chi_square", "/chiSquare/statistic", 20270, kStatistic},
                                          {"chi_square_df", "/chiSquare/degreesOfFreedom", 20272, kCount},
                                          {"chi_square_p", "/chiSquare/pValue", 20271, kPValue},
                                          {"ad", "/andersonDarling/statistic", 20273, kStatistic},
                                          {"ad_p", "/andersonDarling/pValue", 20274, kPValue}};
inline constexpr ResultColumn kLikelihood[] = {{"log_likelihood", "/logLikelihood", 20754},
                                               {"aic", "/aic", 20833, kInformation},
                                               {"bic", "/bic", 20834, kInformation}};
// What speaks against a fit: values of the data of density 0, values of a sign that the data do not have, and
// the order of the lowest moment that is infinite.
inline constexpr ResultColumn kReservations[] = {{"without_density", "/valuesWithoutDensity", 21202, kCount},
                                                 {"below_zero", "/probabilityBelowZero", 21203},
                                                 {"above_zero", "/probabilityAboveZero", 21204},
                                                 {"infinite_moment", "/firstInfiniteMoment", 21205, kCount}};
inline constexpr ResultColumn kBootstrap[] = {
    {"bootstrap_ks_p", "/bootstrap/kolmogorovSmirnov", 20836, kPValue},
    {"bootstrap_chi_square_p", "/bootstrap/chiSquare", 20837, kPValue},
    {"bootstrap_ad_p", "/bootstrap/andersonDarling", 20838, kPValue},
    {"bootstrap_samples", "/bootstrap/samples", 20839, kCount}};

// Of a pair of simulated variables.
inline constexpr ResultColumn kCorrelations[] = {
    {"asked", "/asked", 20733},       {"used", "/used", 20734},
    {"pearson", "/pearson", 20735},   {"pearson_p", "/pearsonPValue", 20906, kPValue},
    {"spearman", "/spearman", 20736}, {"spearman_p", "/spearmanPValue", 20907, kPValue}};

// Of a simulated response. An estimate is that of a row: a percentile, or a statistic of the capability.
inline constexpr ResultColumn kEstimates[] = {{"value", "/value", 20841},
                                              {"lower", "/lower", 20903},
                                              {"upper", "/upper", 20904},
                                              {"coverage", "/coverage", 20905}};
inline constexpr ResultColumn kFrequencies[] = {
    {"from", "/from", 20908},       {"to", "/to", 20909},
    {"count", "/count", 20910},     {"cumulative_count", "/cumulativeCount", 20911},
    {"percent", "/percent", 20912}, {"cumulative_percent", "/cumulativePercent", 20913}};
inline constexpr ResultColumn kSensitivity[] = {
    {"rank_correlation", "/rankCorrelation", 20736},
    {"contribution_to_variance", "/contributionToVariance", 20914},
    {"standardized_coefficient", "/standardizedCoefficient", 20915},
    {"linear_contribution", "/linearContribution", 20916},
    {"first_order", "/firstOrder", 20917}};
inline constexpr ResultColumn kDefects[] = {{"defects", "/defects", 20942, kCount},
                                            {"defect_runs", "/runs", 20943, kCount},
                                            {"defect_rate", "/rate", 20607},
                                            {"rate_lower", "/rateInterval/lower", 20946},
                                            {"rate_upper", "/rateInterval/upper", 20947},
                                            {"defect_ppm", "/ppm", 20608, kPartsPerMillion},
                                            {"ppm_lower", "/ppmInterval/lower", 20948, kPartsPerMillion},
                                            {"ppm_upper", "/ppmInterval/upper", 20949, kPartsPerMillion},
                                            {"defect_lsl", "/lower", 20870},
                                            {"defect_usl", "/upper", 20872}};

// Rows of the capability, beside those of the moments.
inline constexpr ResultColumn kCapability[] = {
    {"lsl", "/specification/lower", 20870},
    {"target", "/specification/target", 20871},
    {"usl", "/specification/upper", 20872},
    {"normal_p", "/normalPValue", 20874, kPValue},
    {"within_deviation", "/within/standardDeviation", 20873},
    {"cp", "/within/cp", 20875, kMeasure, kHasLimits},
    {"cpl", "/within/cpl", 20876, kMeasure, kHasLimits},
    {"cpu", "/within/cpu", 20877, kMeasure, kHasLimits},
    {"cpk", "/within/cpk", 20878, kMeasure, kHasLimits},
    {"within_below", "/within/expectedPpm/below", 20887, kPartsPerMillion, kHasLimits},
    {"within_above", "/within/expectedPpm/above", 20888, kPartsPerMillion, kHasLimits},
    {"within_total", "/within/expectedPpm/total", 20889, kPartsPerMillion, kHasLimits},
    {"overall_deviation", "/overall/standardDeviation", 20744},
    {"pp", "/overall/pp", 20880, kMeasure, kHasLimits},
    {"ppl", "/overall/ppl", 20881, kMeasure, kHasLimits},
    {"ppu", "/overall/ppu", 20882, kMeasure, kHasLimits},
    {"ppk", "/overall/ppk", 20883, kMeasure, kHasLimits},
    {"cpm", "/overall/cpm", 20879},
    {"overall_below", "/overall/expectedPpm/below", 20890, kPartsPerMillion, kHasLimits},
    {"overall_above", "/overall/expectedPpm/above", 20891, kPartsPerMillion, kHasLimits},
    {"overall_total", "/overall/expectedPpm/total", 20892, kPartsPerMillion, kHasLimits}};
inline constexpr ResultColumn kCapabilityByPercentiles[] = {
    {"low_point", "/percentiles/p0.135", 20893},
    {"median_point", "/percentiles/p50", 20894},
    {"high_point", "/percentiles/p99.865", 20895},
    {"percentile_pp", "/percentiles/pp", 20896},
    {"percentile_ppl", "/percentiles/ppl", 20897},
    {"percentile_ppu", "/percentiles/ppu", 20898},
    {"percentile_ppk", "/percentiles/ppk", 20899},
    {"percentile_below", "/percentiles/expectedPpm/below", 20900, kPartsPerMillion},
    {"percentile_above", "/percentiles/expectedPpm/above", 20901, kPartsPerMillion},
    {"percentile_total", "/percentiles/expectedPpm/total", 20902, kPartsPerMillion}};
inline constexpr ResultColumn kObserved[] = {
    {"observed_below", "/observedPpm/below", 20884, kPartsPerMillion, kHasLimits},
    {"observed_above", "/observedPpm/above", 20885, kPartsPerMillion, kHasLimits},
    {"observed_total", "/observedPpm/total", 20886, kPartsPerMillion, kHasLimits}};

// What jobs find without the module. The identifiers are those of frames, each the only one in its table: other tables may
// have it as well, so that "_column" does not find these.

// Of a value that is read off a fit; of a fit of censored values, beside the likelihood.
inline constexpr ResultColumn kReadOff[] = {
    {"probability", "/probability", 0},          {"value", "/value", 0},
    {"return_period", "/returnPeriod", 0},       {"lower", "/byCovariance/lower", 0},
    {"upper", "/byCovariance/upper", 0},         {"profile_lower", "/byProfile/lower", 0},
    {"profile_upper", "/byProfile/upper", 0},    {"bootstrap_lower", "/byBootstrap/lower", 0},
    {"bootstrap_upper", "/byBootstrap/upper", 0}};
inline constexpr ResultColumn kCensoredSearch[] = {{"iterations", "/iterations", 0, kCount},
                                                   {"gradient", "/gradient", 0}};
inline constexpr ResultColumn kCurveDistance[] = {{"distance", "/distance", 0, kStatistic}};
// Of a distribution function that is estimated without a distribution.
inline constexpr ResultColumn kCurveSteps[] = {
    {"from", "/from", 0}, {"to", "/to", 0}, {"before", "/before", 0}, {"after", "/after", 0}};
inline constexpr ResultColumn kPlottingPositions[] = {{"value", "/value", 0},
                                                      {"probability", "/probability", 0}};

// Of a measured process: the points of a control chart and its signals.
inline constexpr ResultColumn kChartLevels[] = {
    {"points", "/points", 0}, {"lower", "/lower", 0}, {"centre", "/centre", 0}, {"upper", "/upper", 0}};
inline constexpr ResultColumn kSignals[] = {
    {"point", "/point", 0}, {"rule", "/rule", 0, kCount}, {"text", "/text", 0}};
// Its figures, each with its limits.
inline constexpr ResultColumn kIndicesWithin[] = {{"cp", "/indices/cp", 0},
                                                  {"cpl", "/indices/cpl", 0},
                                                  {"cpu", "/indices/cpu", 0},
                                                  {"cpk", "/indices/cpk", 0}};
inline constexpr ResultColumn kIndicesOverall[] = {{"pp", "/indices/pp", 0},
                                                   {"ppl", "/indices/ppl", 0},
                                                   {"ppu", "/indices/ppu", 0},
                                                   {"ppk", "/indices/ppk", 0}};
inline constexpr ResultColumn kTargetIndex[] = {{"cpm", "/indices/cpm", 0}};
inline constexpr ResultColumn kIndicesByPercentiles[] = {{"percentiles_pp", "/percentiles/pp", 0},
                                                         {"percentiles_ppl", "/percentiles/ppl", 0},
                                                         {"percentiles_ppu", "/percentiles/ppu", 0},
                                                         {"percentiles_ppk", "/percentiles/ppk", 0}};
inline constexpr ResultColumn kPpmByPercentiles[] = {
    {"ppm_percentiles_below", "/percentiles/expectedPpm/below", 0, kPartsPerMillion},
    {"ppm_percentiles_above", "/percentiles/expectedPpm/above", 0, kPartsPerMillion},
    {"ppm_percentiles_total", "/percentiles/expectedPpm/total", 0, kPartsPerMillion}};
inline constexpr ResultColumn kPpmObserved[] = {
    {"ppm_observed_below", "/ppm/observed/below", 0, kPartsPerMillion},
    {"ppm_observed_above", "/ppm/observed/above", 0, kPartsPerMillion},
    {"ppm_observed_total", "/ppm/observed/total", 0, kPartsPerMillion}};
inline constexpr ResultColumn kPpmWithin[] = {
    {"ppm_expected_within_below", "/ppm/expectedWithin/below", 0, kPartsPerMillion},
    {"ppm_expected_within_above", "/ppm/expectedWithin/above", 0, kPartsPerMillion},
    {"ppm_expected_within_total", "/ppm/expectedWithin/total", 0, kPartsPerMillion}};
inline constexpr ResultColumn kPpmOverall[] = {
    {"ppm_expected_overall_below", "/ppm/expectedOverall/below", 0, kPartsPerMillion},
    {"ppm_expected_overall_above", "/ppm/expectedOverall/above", 0, kPartsPerMillion},
    {"ppm_expected_overall_total", "/ppm/expectedOverall/total", 0, kPartsPerMillion}};

}  // namespace result_columns

// "ad_p"_column: the column of that identifier. One that is misspelt does not compile.
consteval const ResultColumn& operator""_column(const char* text, std::size_t length) {
  const std::string_view identifier(text, length);
  const ResultColumn* found = nullptr;
  const auto search = [&](const auto&... groups) {
    const auto searchGroup = [&](const auto& group) {
      for (const ResultColumn& column : group) {
        if (column.identifier != identifier) continue;
        if (found != nullptr) throw std::invalid_argument("two columns of this identifier");
        found = &column;
      }
    };
    (searchGroup(groups), ...);
  };
  using namespace result_columns;
  search(kOthers, kMoments, kTests, kLikelihood, kReservations, kBootstrap, kCorrelations, kEstimates,
         kFrequencies, kSensitivity, kDefects, kCapability, kCapabilityByPercentiles, kObserved);
  if (found == nullptr) throw std::invalid_argument("no column of this identifier");
  return *found;
}

// The codes of the texts in the column "kind".
inline constexpr double kContinuousKind = 1;
inline constexpr double kDiscreteKind = 2;

// The identifier of one of several columns: "parameter.2", "percentile.0.135".
inline std::string NumberedIdentifier(const ResultColumn& column, std::string_view number) {
  return std::string(column.identifier) + "." + std::string(number);
}

}  // namespace brenvolt
