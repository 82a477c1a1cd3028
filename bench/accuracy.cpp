// Prints docs/evidence/accuracy.md: the errors of the distribution functions against the tables of
// high-precision values, per distribution and function, measured now.
//
//   accuracy <folder of the tables>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <sstream>
#include <string>

#include "host/numeric/reference/distribution_references.h"

namespace brenvolt::references {
namespace {

const char* const kHead = R"(# Accuracy of the distribution functions

Largest relative error of each function against tables of high-precision values (50 digits and more, made with
mpmath by the scripts next to them in `host/numeric/reference/distributions`). The tables hold the body, both tails to
1e-300 and extreme parameters; "tail" means that the smaller tail probability is below 1e-6. The array forms
of Cdf and Quantile give the bits of the scalar forms: a test holds them to it on every row, another on every
instruction set that the machine offers, so that one figure serves both.

An error is relative to the value; of a log-density, to 1 if the value is smaller; of a quantile or mean, to
the distribution's locations and thresholds if these are larger than the value, because their rounding bounds it.
A quantile of a mixture at just the share of components that lie far apart is not in the table: every x in the
gap has that probability to the last bit. The tests hold every row to 1e-13 in the body and 1e-10 in the tails.

The round trip is the quantile of the probability of the nearer tail at each x of the table, as far as that is
above 1e-300. "Of x": the largest error of the x that comes back where four units in the last place of the
probability move x by less than 1e-12. Elsewhere the density is so low that doubles of the probability do not
tell the values of x apart; "of the probability" gives the largest error of the probability at the x that comes
back. The quantile of a discrete distribution has no error but a wrong value: every row is held to give the value of the
table, and the quantile of the probability of a count to be the least count that has it.

This document is printed by a program; to make it again:

    cmake --preset release -DBRENVOLT_BENCH=ON && cmake --build build --target accuracy
    build/bin/accuracy host/numeric/reference/distributions > docs/evidence/accuracy.md
)";

struct Worst {
  int count = 0;
  double error = 0.0;
  std::string where = "every point";  // of an error of 0

  void Take(double candidate, const std::string& place) {
    ++count;
    if (candidate <= error || std::isnan(error)) return;  // written so that NaN shows
    error = candidate;
    where = place;
  }
};

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string Short(double error) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1e", error);
  return text;
}

// Of long lists, the classes of histograms, the beginning.
std::string List(In parameters) {
  constexpr std::size_t kLong = 10;
  constexpr std::size_t kBeginning = 4;
  const bool isLong = parameters.size() > kLong;
  std::string text = "(";
  for (const double parameter : isLong ? parameters.first(kBeginning) : parameters) {
    text += (text.size() > 1 ? ", " : "") + Number(parameter);
  }
  return text + (isLong ? ", …)" : ")");
}

void PrintFunctions(const BoundDistribution& distribution, const std::vector<Row>& rows) {
  std::map<std::string, std::map<bool, Worst>> worst;
  for (const Row& row : rows) {
    const double computed = distribution.functions.at(row.function)(row.argument, row.parameters);
    worst[row.function][row.isTail].Take(RelativeError(distribution, row, computed),
                                         Number(row.argument) + " with " + List(row.parameters));
  }
  std::puts("| Function | Points | Body | Worst at | Tail | Worst at |\n|---|---:|---:|---|---:|---|");
  for (const char* name : {"Density", "LogDensity", "Cdf", "Complement", "Quantile", "ComplementQuantile"}) {
    const Worst& body = worst[name][false];
    const Worst& tail = worst[name][true];
    std::printf("| %s | %d | %s | %s | %s | %s |\n", name, body.count + tail.count, Short(body.error).c_str(),
                body.where.c_str(), Short(tail.error).c_str(), tail.where.c_str());
  }
}

void PrintMoments(const BoundDistribution& distribution, const std::vector<MomentRow>& rows) {
  std::map<std::string, Worst> worst;
  for (const MomentRow& row : rows) {
    worst[row.function].Take(
        RelativeError(distribution, row, distribution.moments.at(row.function)(row.parameters)),
        List(row.parameters));
  }
  std::puts("\n| Moment | Parameter sets | Error | Worst at |\n|---|---:|---:|---|");
  for (const auto& [name, most] : worst) {
    std::printf("| %s | %d | %s | %s |\n", name.c_str(), most.count, Short(most.error).c_str(),
                most.where.c_str());
  }
}

void PrintRoundTrips(const BoundDistribution& distribution, const std::vector<Row>& rows) {
  if (distribution.isDiscrete) return;  // the tests of exact jumps hold these
  Worst conditioned;
  Worst rest;
  for (const Row& row : rows) {
    if (!IsForRoundTrip(row)) continue;
    const RoundTrip trip = GoRound(distribution, row.argument, row.parameters);
    const std::string place = Number(row.argument) + " with " + List(row.parameters);
    if (trip.isConditioned) {
      conditioned.Take(trip.error, place);
    } else {
      rest.Take(trip.probability, place);
    }
  }
  std::puts("\n| Round trip | Points | Largest | Worst at |\n|---|---:|---:|---|");
  std::printf("| Of x | %d | %s | %s |\n", conditioned.count, Short(conditioned.error).c_str(),
              conditioned.where.c_str());
  if (rest.count == 0) return;
  std::printf("| Of the probability | %d | %s | %s |\n", rest.count, Short(rest.error).c_str(),
              rest.where.c_str());
}

// False when a table is missing.
bool Print(const std::string& folder) {
  std::fputs(kHead, stdout);
  for (const BoundDistribution& distribution : BoundDistributions()) {
    const std::vector<Row> rows = ReadTable(folder, distribution);
    if (rows.empty()) {
      std::fprintf(stderr, "accuracy: no table of %s in %s\n", distribution.name.c_str(), folder.c_str());
      return false;
    }
    std::printf("\n## %s\n\n", distribution.name.c_str());
    PrintFunctions(distribution, rows);
    PrintMoments(distribution, ReadMoments(folder, distribution));
    PrintRoundTrips(distribution, rows);
  }
  return true;
}

}  // namespace
}  // namespace brenvolt::references

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("accuracy: give the folder of the tables\n", stderr);
    return 2;
  }
  return brenvolt::references::Print(argv[1]) ? 0 : 1;
}
