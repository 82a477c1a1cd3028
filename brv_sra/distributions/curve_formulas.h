// The formula text that draws a fitted distribution over the histogram of its variable: a factor "N*w" of the
// number of cases and the width of a class, then the distribution's function of x with its values. The names
// of functions are those of the host's formulas (host/formula/distribution_functions.h), irregular spellings
// included; the host evaluates the text (host/formula/curve.h).
//
// Any specification has a text; that of one that is not valid (specified_distribution.h) draws nothing
// meaningful. A value that is not there is written as kNotSet. An offset that is zero within 15 units in the
// last place, or not set, is none.
#pragma once

#include <cstdint>
#include <string>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

enum class CurveKind : std::uint8_t { kDensity, kCumulative };

// What one unit of density, or of probability, is worth on the axis of a histogram.
struct CurveFactor {
  double cases;  // N
  double width;  // w, of a class
};

// "100*0.5*Normal(x,10,2)". The code of another type gives the factor alone.
std::string ContinuousCurveFormula(const DistributionSpecification& specification, CurveKind kind,
                                   CurveFactor factor);

// A density of counts begins with "*" and the factor: "*100*1*Poisson(x,3)*(x>=0)"; one of proportions has no
// factor: "*Poisson(x,3)*(x>=0)". A cumulative curve begins with "=" and the factor, whatever the unit. The
// steps of a Bernoulli distribution or a histogram are a sum, which stands in parentheses behind a factor:
// "*100*1*(0.75*(x>=-0.5 & x<=0.5) + 0.25*(x>0.5 & x<=1.5))". A step of a histogram reaches from its code
// half the smallest distance between codes to either side, but at most 0.5. A code that is no discrete distribution's
// gives the text up to the factor.
enum class DensityUnit : std::uint8_t { kProportions, kCounts };
std::string DiscreteCurveFormula(const DistributionSpecification& specification, CurveKind kind,
                                 CurveFactor factor, DensityUnit unit);

// x in plain decimal notation, never with an exponent: the shortest text that reads back as exactly x, "0."
// before a fraction. What is not finite is "nan", "inf", "-inf", which no formula accepts.
std::string DecimalText(double x);

}  // namespace brenvolt::sra
