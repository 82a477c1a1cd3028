"""The sixteen distributions against reference values made with mpmath (host/numeric/reference/distributions)."""

import csv
import math
import os
import pickle
import re
import signal
import threading
import unittest

import numpy

from brenvolt import distributions
from brenvolt.distributions import (Bernoulli, Binomial, GaussianMixture, GeneralExtremeValue, GeneralPareto,
                                    Histogram, Johnson, LogNormal, Normal, Poisson, Triangular, Weibull)

REFERENCE = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "host", "numeric", "reference", "distributions")
NAMES = distributions.__all__[2:]
FUNCTIONS = {"Density": "pdf", "LogDensity": "logpdf", "Cdf": "cdf", "Complement": "sf", "Quantile": "ppf",
             "ComplementQuantile": "isf", "Mean": "mean", "Variance": "var"}
# How the references call what signatures call otherwise.
KEYWORDS = {"threshold": "offset", "family": "type", "lambda": "lambda_"}


def rows(file):
    with open(os.path.join(REFERENCE, file + ".csv"), encoding="utf-8") as lines:
        yield from csv.DictReader(lines)


def distribution_of(kind, row):
    given = {key: value for key, value in row.items() if key not in ("function", "region", "argument", "value")}
    for groups, size in (("components", 3), ("classes", 2)):
        if groups in given:
            numbers = [float(number) for number in given[groups].split()]
            return kind([tuple(numbers[i:i + size]) for i in range(0, len(numbers), size)])
    return kind(**{KEYWORDS.get(key, key): float(value) for key, value in given.items()})


class References(unittest.TestCase):
    def check(self, name, file):
        kind, compared = getattr(distributions, name), 0
        for row in rows(file):
            # The body will do, to six digits: the library's own tests go through all.
            if row.get("region", "body") != "body":
                continue
            if len(row.get("components", "").split()) == 3:  # a mixture of one, which people may not enter
                continue
            method = getattr(distribution_of(kind, row), FUNCTIONS[row["function"]])
            value = method(float(row["argument"])) if "argument" in row else method()
            expected = float(row["value"])
            agrees = value == expected or math.isclose(value, expected, rel_tol=1e-6)
            self.assertTrue(agrees, f"{name}.{FUNCTIONS[row['function']]}: {row} gives {value}")
            compared += 1
        self.assertGreater(compared, 10, name)

    def test_every_distribution_is_offered_under_its_code(self):
        self.assertEqual(tuple(NAMES), distributions._distribution_names)
        for code, name in enumerate(NAMES):
            values = {"GaussianMixture": [0.5, 0, 1, 0.5, 1, 1], "Johnson": [2, 0, 1, 1, 0], "Histogram": [1, 1],
                      "Triangular": [0, 2, 1], "GeneralExtremeValue": [0, 1, 0.1]}.get(name, [0.5, 1.0])
            kind = getattr(distributions, name)
            single = name in ("HalfNormal", "Rayleigh", "Poisson", "Geometric", "Bernoulli")
            fitted = distributions.from_code(code, values[:1] if single else values)
            self.assertEqual((type(fitted), fitted.code), (kind, code))

    def test_parameters_arrive_where_they_belong(self):
        for name in NAMES:
            file = re.sub("(?<!^)(?=[A-Z])", "_", name).lower()
            with self.subTest(name):
                self.check(name, file)
                self.check(name, file + "_moments")


class Arguments(unittest.TestCase):
    def test_invalid_parameters_are_named(self):
        cases = [(lambda: Weibull(0, 2), "scale must be a number above 0, not 0"),
                 (lambda: Weibull(1, -2.5), "shape must be a number above 0, not -2.5"),
                 (lambda: Weibull(1, 2, math.nan), "offset must be a finite number"),
                 (lambda: Normal(math.inf, 1), "location must be a finite number"),
                 (lambda: Binomial(1.5, 3), "proportion must be a number from 0 to 1, not 1.5"),
                 (lambda: Binomial(0.5, 2.5), "trials must be a whole number"),
                 (lambda: Poisson(0), "mean must be a number above 0"),
                 (lambda: Triangular(0, 1, 2), "mode must lie between min and max"),
                 (lambda: Johnson("SX", 0, 1, 1, 0), "type must be one of SL, SU, SB, SN"),
                 (lambda: Johnson(5, 0, 1, 1, 0), "type must be SL, SU, SB or SN, not 5"),
                 (lambda: Histogram({1: 0.5, 2: 0.4}), "proportions must add up to 1"),
                 (lambda: GaussianMixture([(1.0, 0.0)]), "components must be one or more groups of 3"),
                 (lambda: GaussianMixture([(1.0, 0.0, 0.0)]), "standard deviation must be a number above 0"),
                 (lambda: GaussianMixture([(1.0, 0.0, 1.0)]), "a gaussianmixture has from 2 to 20 components, not 1"),
                 (lambda: GaussianMixture([(0.04, 0.0, 1.0)] * 25), "from 2 to 20 components, not 25")]
        for make, message in cases:
            with self.assertRaisesRegex(ValueError, message):
                make()

    def test_arguments_of_a_wrong_type_are_named(self):
        normal = Normal(0, 1)
        cases = [(lambda: Normal("1", 1), TypeError, "location must be a number, not str"),
                 (lambda: Normal(1, None), TypeError, "scale must be a number, not NoneType"),
                 (lambda: Normal(1j, 1), TypeError, "location must be a number, not complex"),
                 (lambda: Normal(10**400, 1), ValueError, "location is too large"),
                 (lambda: Weibull(1, 2, offset=[1]), TypeError, "offset must be a number, not list"),
                 (lambda: GaussianMixture(5), TypeError, "components must be one or more groups"),
                 (lambda: GaussianMixture([(1, "0", 1)]), TypeError, "mean must be a number, not str"),
                 (lambda: Histogram({1: "1"}), TypeError, "proportion must be a number, not str"),
                 (lambda: Johnson(None, 1, 1, 1, 1), TypeError, "type must be a number"),
                 (lambda: normal.pdf("many"), TypeError, "x must be a number or an array"),
                 (lambda: normal.cdf([[1], [2, 3]]), TypeError, "x must be a number or an array"),
                 (lambda: normal.ppf(1j), TypeError, "p must be a number or an array"),
                 (lambda: normal.isf({}), TypeError, "q must be a number or an array"),
                 *((lambda seed=seed: normal.rvs(seed=seed), ValueError, "seed must be from 0 to 2147483647")
                   for seed in (-1, 2**31, 10**30)),
                 *((lambda seed=seed: normal.rvs(seed=seed), TypeError, "seed must be a whole number")
                   for seed in (1.5, "1")),
                 (lambda: normal.rvs(-1), ValueError, "size must not be negative"),
                 *((lambda size=size: normal.rvs(size), TypeError, "size must be a whole number or a sequence")
                   for size in (2.5, "ab", [1, None]))]
        for call, kind, message in cases:
            with self.assertRaisesRegex(kind, message):
                call()
        expected = normal.rvs((2, 3), seed=7)
        numpy.testing.assert_array_equal(normal.rvs(numpy.array([2, 3]), seed=numpy.int64(7)), expected)
        numpy.testing.assert_array_equal(normal.rvs(numpy.int32(6), seed=7), expected.ravel())

    def test_numbers_give_numbers_and_arrays_arrays_of_their_shape(self):
        weibull = Weibull(83.35, 2.186)
        self.assertIs(type(weibull.cdf(100)), float)
        self.assertIs(type(weibull.cdf(numpy.float32(100))), float)
        grid = numpy.arange(6).reshape(2, 3)
        for given in (grid, grid.T, grid[:, ::2], [[0, 1], [2, 3]], numpy.empty((0, 2))):
            values = weibull.pdf(given)
            self.assertEqual(values.shape, numpy.shape(given))
            for index in numpy.ndindex(values.shape):
                self.assertEqual(values[index], weibull.pdf(float(numpy.asarray(given)[index])))

    def test_what_a_mask_hides_has_no_value(self):
        hidden = numpy.ma.masked_array([0.25, 0.5, 0.75], [False, True, False])
        for function in (Normal(0, 1).pdf, Normal(0, 1).cdf, Normal(0, 1).ppf):
            self.assertEqual(numpy.isnan(function(hidden)).tolist(), [False, True, False])
        self.assertEqual(Normal(0, 1).cdf(numpy.ma.masked_array([0, 1]))[0], 0.5)

    def test_arguments_that_make_no_distribution_are_named(self):
        cases = ((lambda: distributions.from_code("a", [1]), "code must be a whole number, not str"),
                 (lambda: distributions.from_code(0, 5), "values must be a list of numbers, not int"),
                 (lambda: distributions.Distribution([1, 2]), "make one of those, such as Normal"))
        for make, message in cases:
            with self.assertRaisesRegex(TypeError, message):
                make()

    def test_probabilities_outside_0_to_1_have_no_quantile(self):
        for kind in (Normal(0, 1), Poisson(3)):
            self.assertTrue(numpy.isnan(kind.ppf([-1e-9, 1.5, math.nan])).all())
        self.assertEqual(Weibull(2, 3, offset=5).ppf([0, 1]).tolist(), [5, math.inf])
        # Where 1 - q rounds to 1.
        self.assertAlmostEqual(Normal(0, 1).isf(1e-300), 37.0471, places=4)

    def test_parameters_are_attributes_and_survive_copies(self):
        for fitted in (Weibull(83.35, 2.186, 1.0), GaussianMixture([(0.3, 0, 1), (0.7, 5, 2)]),
                       Histogram({1: 0.25, 3: 0.75}), Poisson(8.5), Johnson("SB", 1, 2, 3, 4)):
            self.assertEqual(pickle.loads(pickle.dumps(fitted)), fitted)
            self.assertEqual(eval(repr(fitted), vars(distributions)), fitted)
        self.assertEqual((Weibull(2, 3).scale, Weibull(2, 3).offset), (2, 0))
        self.assertEqual(Johnson("su", 1, 2, 3, 4).type, 2)
        # A parameter called as a method leaves the method as it is.
        self.assertEqual(Poisson(mean=8.5).mean(), 8.5)
        with self.assertRaises(AttributeError):
            Normal(0, 1).shape

    def test_discrete_distributions_have_the_probability_of_a_value(self):
        self.assertAlmostEqual(Poisson(2).pmf(0), math.exp(-2), places=15)
        self.assertAlmostEqual(Binomial(0.5, 2).logpmf(1), math.log(0.5), places=15)
        self.assertFalse(hasattr(Normal(0, 1), "pmf"))
        self.assertFalse(Bernoulli(0.5).is_continuous)


class RandomValues(unittest.TestCase):
    def test_the_seed_decides(self):
        gev = GeneralExtremeValue(3.87, 0.198, -0.05)
        self.assertTrue((gev.rvs(1000, seed=7) == gev.rvs(1000, seed=7)).all())
        self.assertTrue((gev.rvs((10, 100), seed=7).ravel() == gev.rvs(1000, seed=7)).all())
        self.assertFalse((gev.rvs(10, seed=7) == gev.rvs(10, seed=8)).any())
        self.assertFalse((gev.rvs(10) == gev.rvs(10)).any())
        self.assertIs(type(gev.rvs()), float)
        for wrong in ({"size": -1}, {"seed": -1}):
            with self.assertRaises(ValueError):
                gev.rvs(**wrong)

    def test_values_follow_their_distribution(self):
        # More than one chunk of a call; the Kolmogorov-Smirnov distance of n values exceeds 2 / sqrt(n) once in 1500.
        for kind in (LogNormal(1, 0.5, offset=3), GeneralPareto(2, 0.3)):
            count = (1 << 18) + 1000
            u = numpy.sort(kind.cdf(kind.rvs(count, seed=3)))
            steps = numpy.arange(1, count + 1) / count
            self.assertLess(abs(u - steps).max(), 2 / math.sqrt(count))


class Interpreter(unittest.TestCase):
    def test_other_threads_go_on_during_a_call(self):
        ticks, done = [], threading.Event()

        def tick():
            while not done.is_set():
                ticks.append(None)
                done.wait(0.001)

        values = numpy.linspace(0.5, 20, 1 << 20)
        mixture = GaussianMixture([(0.5, 4, 1), (0.5, 9, 2)])
        thread = threading.Thread(target=tick)
        thread.start()
        try:
            before = len(ticks)
            mixture.ppf(values / 21)
            self.assertGreater(len(ticks), before + 1)
        finally:
            done.set()
            thread.join()

    def test_ctrl_c_ends_a_call(self):
        """Unheeded, the call would go on for minutes, and the test run into its time limit."""
        former = signal.signal(signal.SIGINT, signal.default_int_handler)
        self.addCleanup(signal.signal, signal.SIGINT, former)
        timer = threading.Timer(0.2, os.kill, (os.getpid(), signal.SIGINT))
        timer.start()
        self.addCleanup(timer.join)
        mixture = GaussianMixture([(0.5, 4, 1), (0.5, 9, 2)])
        with self.assertRaises(KeyboardInterrupt):
            mixture.rvs(1 << 27, seed=1)


if __name__ == "__main__":
    unittest.main()
