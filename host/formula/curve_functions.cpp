#include "host/formula/curve_functions.h"

#include <muParser.h>

#include <limits>
#include <variant>

#include "host/numeric/distributions.h"

namespace brenvolt {
namespace {

double OrNan(double value) {
  return IsNotSet(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

// The shapes in which a distribution's function becomes a function of formulas: by the number of arguments,
// with a threshold that is 0 (the formula shifts x), or with the threshold in the second place.
template <double (*kFunction)(double, double)>
double Two(double x, double a) {
  return OrNan(kFunction(x, a));
}
template <double (*kFunction)(double, double, double)>
double TwoUnshifted(double x, double a) {
  return OrNan(kFunction(x, a, 0));
}
template <double (*kFunction)(double, double, double)>
double Three(double x, double a, double b) {
  return OrNan(kFunction(x, a, b));
}
template <double (*kFunction)(double, double, double, double)>
double ThreeUnshifted(double x, double a, double b) {
  return OrNan(kFunction(x, a, b, 0));
}
template <double (*kFunction)(double, double, double, double)>
double Four(double x, double a, double b, double c) {
  return OrNan(kFunction(x, a, b, c));
}
template <double (*kFunction)(double, double, double, double)>
double FourThresholdFirst(double x, double threshold, double a, double b) {
  return OrNan(kFunction(x, a, b, threshold));
}
template <double (*kFunction)(double, double, double, double, double, double)>
double Six(double x, double a, double b, double c, double d, double e) {
  return OrNan(kFunction(x, a, b, c, d, e));
}

struct CurveFunction {
  const char* name;
  std::variant<mu::fun_type2, mu::fun_type3, mu::fun_type4, mu::fun_type6> function;
};

const CurveFunction kCurveFunctions[] = {
    {"Normal", Three<normal::Density>},
    {"iNormal", Three<normal::Cdf>},
    {"Lognorm", ThreeUnshifted<lognormal::Density>},
    {"iLognorm", ThreeUnshifted<lognormal::Cdf>},
    {"FoldedNormal", ThreeUnshifted<folded_normal::Density>},
    {"FoldeNormal", ThreeUnshifted<folded_normal::Density>},
    {"iFoldedNormal", ThreeUnshifted<folded_normal::Cdf>},
    {"HalfNormal", TwoUnshifted<half_normal::Density>},
    {"iHalfNormal", TwoUnshifted<half_normal::Cdf>},
    {"Rayl", TwoUnshifted<rayleigh::Density>},
    {"IRayl", TwoUnshifted<rayleigh::Cdf>},
    {"weibull", Four<weibull::Density>},
    {"iWeibull", Four<weibull::Cdf>},
    {"Johnson", Six<johnson::Density>},
    {"iJohnson", Six<johnson::Cdf>},
    {"GEV", Four<gev::Density>},
    {"IGEV", Four<gev::Cdf>},
    {"GPD", FourThresholdFirst<gpd::Density>},
    {"IGPD", FourThresholdFirst<gpd::Cdf>},
    {"Triangular", Four<triangular::Density>},
    {"iTriangular", Four<triangular::Cdf>},
    {"Binom", Three<binomial::Density>},
    {"iBinom", Three<binomial::Cdf>},
    {"Poisson", Two<poisson::Density>},
    {"iPoisson", Two<poisson::Cdf>},
    {"Geom", Two<geometric::Density>},
    {"iGeom", Two<geometric::Cdf>},
};

}  // namespace

void DefineCurveFunctions(mu::Parser& parser) {
  for (const CurveFunction& entry : kCurveFunctions) {
    std::visit([&](auto function) { parser.DefineFun(entry.name, function); }, entry.function);
  }
}

}  // namespace brenvolt
