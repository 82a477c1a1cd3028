#!/usr/bin/env python3
"""Writes kolmogorov_smirnov.csv beside this script: P(D_n >= d) for doubles d, taken exactly.

Run by hand (needs numpy and mpmath; some minutes); the table is committed. The method is Durbin's matrix in the form of
Marsaglia, Tsang & Wang (2003), which shares nothing with the library's own, in fixed-point integers of some hundred
bits. Rows `exact` come from it. Rows `limit` are the limiting distribution, 2 sum (-1)^(k-1) exp(-2 k^2 n d^2), for n so
large that its distance from the exact value, of order d, is below the tolerance that the test gives these rows.

Columns: kind, n, d, value.
"""
import csv
import pathlib
from fractions import Fraction
from math import ceil, comb, factorial, sqrt

import numpy
from mpmath import exp, mp, mpf

mp.dps = 60
FOLDER = pathlib.Path(__file__).parent
SMALLEST = mpf("1e-300")


def distribution_function(n, d, bits):
    """P(D_n < d) as a fixed-point integer of that many bits."""
    c = n * Fraction(d)
    k = ceil(c)
    h = k - c
    m = 2 * k - 1
    one = 1 << bits

    def fixed(x):
        return (x.numerator << bits) // x.denominator

    def power(base, e):
        return Fraction(fixed(base ** e), one) if e < 64 else Fraction(power_fixed(base, e), one)

    def power_fixed(base, e):
        result, square = one, fixed(base)
        while e:
            if e & 1:
                result = result * square >> bits
            square = square * square >> bits
            e >>= 1
        return result

    # Row i holds 1/(i-j+1)!; the first column and the last row lose powers of h.
    inverse = [Fraction(1, factorial(i)) for i in range(m + 2)]
    matrix = numpy.zeros((m, m), dtype=object)
    for i in range(m):
        for j in range(min(m, i + 2)):
            entry = Fraction(1)
            if j == 0:
                entry -= power(h, i + 1)
            if i == m - 1:
                entry -= power(h, m - j)
            if j == 0 and i == m - 1 and 2 * h > 1:
                entry += power(2 * h - 1, m)
            matrix[i, j] = fixed(entry * inverse[i - j + 1])
    # Every step is scaled by 1/e, which keeps the numbers near 1; n!/n^n e^n makes good for it at the end.
    with mp.workprec(bits + 64):
        shrink = int(mp.floor(exp(-1) * one))
        scale = mp.factorial(n) / mpf(n) ** n * exp(n)
    matrix = matrix * shrink >> bits
    row = numpy.zeros(m, dtype=object)
    row[k - 1] = one
    if n < 25 * m:
        for _ in range(n):
            row = row.dot(matrix) >> bits
    else:
        e = n
        while e:
            if e & 1:
                row = row.dot(matrix) >> bits
            e >>= 1
            if e:
                matrix = matrix.dot(matrix) >> bits
    with mp.workprec(bits + 64):
        return int(mpf(row[k - 1]) * scale)


def exact(n, d, bits=400):
    f = distribution_function(n, d, bits)
    with mp.workprec(bits):
        return 1 - mpf(int(f)) / mpf(2) ** bits


def points(n):
    """Distances over the whole range: around the closed forms, and n d^2 through the p-values from 1 to 1e-300."""
    edges = [0.3 / n, 0.5 / n, 0.75 / n, 1.0 / n, 1.3 / n, 1 - 1 / n, 1 - 0.6 / n, 1 - 0.01 / n, 0.4999, 0.5, 0.5001]
    squares = [0.05, 0.1, 0.2, 0.35, 0.5, 0.7, 0.9, 1.2, 1.6, 2.1, 2.7, 3.3, 4.0, 4.6, 4.99, 5.01, 6, 8, 12, 20, 40,
               80, 150]
    chosen = {d for d in edges + [sqrt(s / n) for s in squares] if 0 < d < 1}
    # The larger matrices only where they are not too slow.
    return sorted(d for d in chosen if n <= 50 or n * d < 130 or (n == 500 and 0.39 < d < 0.41))


def main():
    rows = []
    for n in (1, 2, 3, 5, 10, 20, 50, 100, 141, 200, 499, 500):
        for d in points(n):
            value = exact(n, d, 1300 if n * d * d > 30 or n * d > 0.9 * n else 400)
            if value > SMALLEST:
                rows.append(("exact", n, d, value))
    for n in (501, 1000, 2000):
        for square in (0.05, 0.2, 0.45, 0.55, 1.0, 2.0, 4.5, 6.0):
            d = sqrt(square / n)
            rows.append(("exact", n, d, exact(n, d)))
    for n, square in ((10000, 0.05), (10000, 0.2), (10000, 0.45), (10000, 0.55), (10000, 1.0), (20000, 0.55)):
        d = sqrt(square / n)
        rows.append(("exact", n, d, exact(n, d)))
    for n in (10 ** 8, 10 ** 9):
        for square in (0.1, 0.3, 0.6, 1.0, 2.0, 5.5):
            d = sqrt(square / n)
            exponent = -2 * n * mpf(d) ** 2
            limit = 2 * sum((-1) ** (k - 1) * exp(exponent * k * k) for k in range(1, 60))
            rows.append(("limit", n, d, limit))
    with open(FOLDER / "kolmogorov_smirnov.csv", "w", newline="") as file:
        writer = csv.writer(file, lineterminator="\n")
        writer.writerow(["kind", "n", "d", "value"])
        for kind, n, d, value in rows:
            writer.writerow([kind, n, repr(d), repr(float(value))])


if __name__ == "__main__":
    main()
