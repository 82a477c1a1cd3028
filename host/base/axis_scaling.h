// Round numbers for an axis or for classes over a range of values.
#pragma once

namespace brenvolt {

// Rounds a range outwards, in place, to whole multiples of a round step, and returns the step: 1, 2 or 5
// times a power of ten. It is the coarsest such step that cuts the rounded range into `fewestSteps` steps at
// least and `mostSteps` at most; if none does both, the finest that gives at most `mostSteps`. With most
// >= 2.5 fewest, as in the usual 50 and 20, nearly every range finds both. Counts below 1 count as 1.
//
// Never fails:
// - A limit within 15 units in the last place of a multiple becomes that multiple; otherwise the rounded
//   range encloses the one given. Limits in the wrong order are exchanged.
// - A range too narrow for doubles to tell the steps apart counts as the point x in its middle, and becomes
//   the range from x - |x|/10 to x + |x|/10 before rounding; -1 to 1 about 0.
// - A rounded limit that would exceed the largest double becomes the largest multiple that does not.
// - Limits that are not finite come back as they are, with step 0.
double RoundAxis(double& minimum, double& maximum, int mostSteps, int fewestSteps);

}  // namespace brenvolt
