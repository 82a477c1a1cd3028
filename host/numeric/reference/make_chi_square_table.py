#!/usr/bin/env python3
"""Writes chi_square.csv beside this script: both tail probabilities of the chi-square distribution.

Run by hand (needs mpmath; about a minute); the table is committed. Every argument is a double, taken exactly. With a =
half the degrees of freedom and x = half the statistic, the lower tail is the power series x^a exp(-x) sum x^i / Gamma(a +
i + 1), every term positive, at 60 digits more than the upper tail, its complement, needs.

Columns: statistic, degrees of freedom, upper tail, lower tail.
"""
import csv
import pathlib

from mpmath import exp, log, loggamma, mp, mpf

FOLDER = pathlib.Path(__file__).parent
SMALLEST = mpf("1e-300")
DEGREES = [1, 1.5, 2, 3, 4.25, 7, 10, 19, 30, 55.5, 100, 333, 1000, 4321.75, 39999, 40000, 40001.5, 123456, 1e6]
STEPS = [-36, -25, -15, -9, -6, -4.5, -3, -2, -1.2, -0.6, -0.2, 0, 0.1, 0.5, 1, 1.7, 2.5, 3.4, 4.6, 6, 8, 12, 18, 26, 35]


def lower_tail(statistic, degrees):
    a, x = mpf(degrees) / 2, mpf(statistic) / 2
    term = exp(a * log(x) - x - loggamma(a + 1))
    total, i = term, 1
    while term > total * mpf(10) ** -mp.dps:
        term = term * x / (a + i)
        total += term
        i += 1
    return total


def statistics(degrees):
    """Wilson & Hilferty's (1931) normal deviates, and small values, where those end."""
    c = 2 / (9 * degrees)
    points = {degrees * (1 - c + step * c ** 0.5) ** 3 for step in STEPS}
    points |= {degrees * 10.0 ** -e for e in (0.3, 1, 2, 4, 8, 16, 40)}
    return sorted(float("%.12g" % x) for x in points if x > 0)


def main():
    with open(FOLDER / "chi_square.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["statistic", "degrees of freedom", "upper tail", "lower tail"])
        for degrees in DEGREES:
            for statistic in statistics(degrees):
                with mp.workdps(380 if statistic > degrees else 80):
                    low = lower_tail(statistic, degrees)
                    high = 1 - low
                    if low > SMALLEST and high > SMALLEST:
                        writer.writerow([repr(statistic), repr(float(degrees)), repr(float(high)), repr(float(low))])


if __name__ == "__main__":
    main()
