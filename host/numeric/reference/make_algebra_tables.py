#!/usr/bin/env python3
"""Writes algebra.csv: matrices with their eigenvalues, Cholesky factors and inverses, by mpmath at 60 digits.

Run by hand: python3 host/numeric/reference/make_algebra_tables.py
Rows: name,quantity,k,elements... (row-major). A matrix is first rounded to doubles; the references belong to the
rounded one. A matrix that is not positive definite has no rows "cholesky" and "inverse".
"""
import os
import random

import mpmath as mp

mp.mp.dps = 60


def matrices():
    yield "one", [[2.5]]
    yield "zero", [[0.0] * 4 for _ in range(4)]
    yield "identity", [[float(i == j) for j in range(5)] for i in range(5)]
    for k in (4, 8, 12):
        yield f"hilbert{k}", [[1 / (i + j + 1) for j in range(k)] for i in range(k)]
    for r in (-0.9, -0.5, 0.999999, 0.5):
        yield f"equicorrelated{r}", [[1.0 if i == j else r for j in range(3)] for i in range(3)]
    yield "repeated", [[3.0 if i == j else 1.0 for j in range(8)] for i in range(8)]
    n = 21  # Wilkinson's W21+: pairs of eigenvalues that agree to many digits
    yield "wilkinson21", [[abs(10.0 - i) if i == j else float(abs(i - j) == 1) for j in range(n)] for i in range(n)]
    yield "indefinite", [[0.0, 1.0, 2.0, 3.0], [1.0, 0.0, 4.0, 5.0], [2.0, 4.0, 0.0, 6.0], [3.0, 5.0, 6.0, 0.0]]
    yield "graded", [[10.0 ** (-(i + j)) * (2.0 if i == j else 1.0) for j in range(6)] for i in range(6)]
    yield "huge", [[1e300 * (2.0 if i == j else 0.5) for j in range(3)] for i in range(3)]
    yield "tiny", [[1e-300 * (2.0 if i == j else 0.5) for j in range(3)] for i in range(3)]
    generator = random.Random(5)
    a = [[generator.gauss(0, 1) for _ in range(14)] for _ in range(10)]
    yield "random10", [[sum(x * y for x, y in zip(a[i], a[j])) for j in range(10)] for i in range(10)]


def row(name, quantity, k, values):
    return ",".join([name, quantity, str(k)] + [repr(float(v)) for v in values]) + "\n"


def flat(matrix, k):
    return [matrix[i, j] for i in range(k) for j in range(k)]


def main():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "algebra.csv")
    with open(path, "w") as out:
        for name, elements in matrices():
            k = len(elements)
            exact = mp.matrix(elements)
            out.write(row(name, "matrix", k, flat(exact, k)))
            values = sorted(mp.eigsy(exact, eigvals_only=True))
            out.write(row(name, "eigenvalues", k, values))
            if values[0] <= abs(values[-1]) * mp.mpf(10) ** -40:
                continue
            scale = abs(exact[0, 0])  # mpmath refuses pivots that are small in themselves
            factor = mp.cholesky(exact / scale) * mp.sqrt(scale)
            out.write(row(name, "cholesky", k, flat(factor, k)))
            out.write(row(name, "inverse", k, flat(factor**-1, k)))


main()
