#!/usr/bin/env python3
"""Writes ../anderson_darling_tables.h: the tables of the distribution function of the Anderson-Darling statistic.

    make_anderson_darling_tables.py limit > LIMIT     # the limiting distribution function alone
    anderson_darling_corrections LIMIT > CORRECTIONS  # a program of bench/; some minutes
    make_anderson_darling_tables.py CORRECTIONS

Run by hand (needs mpmath); the header is committed.

Limit: the distribution function for n -> infinity by the series of Anderson & Darling (1952), eq. 4.35,
    F(z) = sqrt(2 pi)/z sum_j binomial(-1/2, j) (4j+1) exp(-(4j+1)^2 pi^2 / (8z))
           integral_0^inf exp(z / (8 (w^2 + 1)) - (4j+1)^2 pi^2 w^2 / (8z)) dw,
summed at 50 digits and rounded to 8 decimals (the first two to six significant digits). KNOWN_* hold the entries that
are fixed: they stand as they are. The script prints how far they lie from the series, and stops above LARGEST_DISTANCE.
"""
import csv
import pathlib
import sys

from mpmath import binomial, exp, inf, mp, mpf, nstr, pi, quad, sqrt

mp.dps = 50
TARGET = pathlib.Path(__file__).parent.parent / "anderson_darling_tables.h"
ENTRIES = 103
LARGEST_DISTANCE = 2e-5
KNOWN_LIMIT = {0: "0", 1: "1.7315e-10", 2: "2.80781e-05", 3: "0.00140856", 4: "0.00958772", 5: "0.02960552",
               6: "0.06185146", 7: "0.10357152", 100: "0.99712528", 101: "0.99727872", 102: "0.99742384"}
KNOWN_CORRECTION = {**{k: "0" for k in range(5)}, 5: "-0.00187", 6: "0.00898", 7: "0.0209", 8: "0.03087",
                    9: "0.0377", 10: "0.0414", 11: "0.04386", 102: "-0.0016"}


def limiting_distribution(z):
    """P(A^2 <= z) for n -> infinity."""
    total = mpf(0)
    j = 0
    while True:
        rate = (4 * j + 1) ** 2 * pi ** 2 / (8 * z)
        if j > 0 and rate > 150:
            break
        # w in units of the width of its exponential
        width = 1 / sqrt(rate)
        integral = quad(lambda w: exp(z / (8 * (w * w + 1)) - rate * w * w),
                        [width * k for k in (0, 0.5, 1, 2, 4, 8, 12)])
        total += binomial(mpf(-1) / 2, j) * (4 * j + 1) * exp(-rate) * integral
        j += 1
    return sqrt(2 * pi) / z * total


def limit_entry(k):
    value = limiting_distribution(mpf(k) / 20)
    return repr(float(nstr(value, 6))) if value < mpf("1e-3") else f"{float(value):.8f}"


def limit_table():
    texts = ["0"] + [limit_entry(k) for k in range(1, ENTRIES)]
    for k, known in KNOWN_LIMIT.items():
        if k == 0 or float(known) == float(texts[k]):
            continue
        distance = float(mpf(known) - limiting_distribution(mpf(k) / 20))
        print(f"limit {k}: {known} is fixed, the series gives {texts[k]}, distance {distance:.1e}", file=sys.stderr)
        if abs(distance) > LARGEST_DISTANCE:
            sys.exit("too far")
        texts[k] = known
    return texts


def correction_table(path):
    texts = ["0"] * ENTRIES
    with open(path, newline="") as file:
        for row in csv.DictReader(file):
            texts[int(row["k"])] = repr(round(float(row["correction"]), 5))
    for k, known in KNOWN_CORRECTION.items():
        texts[k] = known
    return texts


def cpp_rows(texts):
    return ",\n".join("    " + ", ".join(texts[i:i + 6]) for i in range(0, len(texts), 6))


HEADER = """// The tables of the distribution function of the Anderson-Darling statistic, at z = 0, 0.05, …, 5.10.
// Written by reference/make_anderson_darling_tables.py; docs/evidence/anderson-darling.md says where the values
// come from.
#pragma once

#include <array>

namespace brenvolt::sra {

inline constexpr int kAndersonDarlingEntries = %d;
inline constexpr double kAndersonDarlingSpacing = 0.05;

// The limiting distribution function, n -> infinity.
inline constexpr std::array<double, kAndersonDarlingEntries> kAndersonDarlingLimit{
%s};

// n times the difference of the distribution function for n values from the limiting one.
inline constexpr std::array<double, kAndersonDarlingEntries> kAndersonDarlingCorrection{
%s};

}  // namespace brenvolt::sra
"""


def main():
    if sys.argv[1] == "limit":
        print("\n".join(limit_table()))
        return
    TARGET.write_text(HEADER % (ENTRIES, cpp_rows(limit_table()), cpp_rows(correction_table(sys.argv[1]))))


if __name__ == "__main__":
    main()
