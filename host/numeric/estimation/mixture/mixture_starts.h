// Mixtures from which climbing may begin: divisions of a sample, and changes of a mixture found. They depend
// on the data alone.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "host/numeric/estimation/mixture/mixture_climber.h"

namespace brenvolt::mixture {

// Mixtures of groups of the sorted values, divided in several ways, and mixtures about one mean. `deviation`
// is the standard deviation of the values, at least two for each component.
std::vector<Mixture> Starts(std::span<const double> sorted, std::size_t components, double deviation);

// Moves a component of the mixture upon another place: where one component is split in two, another is given
// up to its neighbour. Ways out of maxima that are only local (Ueda, Nakano, Ghahramani & Hinton 2000).
std::vector<Mixture> SplitAndMerged(const Mixture& mixture);

// The mixture with one of its components split in two, in several ways, for each component: starts for one
// component more (Verbeek, Vlassis & Krose 2003).
std::vector<Mixture> WithOneMore(const Mixture& mixture);

// The mixture with one component more, of the least or the greatest values: of 4, 16, 64, … up to `most` of
// them.
std::vector<Mixture> WithTail(const Mixture& mixture, std::span<const double> sorted, std::size_t most,
                              double deviation);

}  // namespace brenvolt::mixture
