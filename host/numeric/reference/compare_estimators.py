#!/usr/bin/env python3
"""Compares the estimators with SciPy and R on real and simulated samples and writes docs/evidence/estimators.md.

Run by hand, after building bench/fit_estimator (cmake -DBRENVOLT_BENCH=ON):
    host/numeric/reference/compare_estimators.py [build/bin/fit_estimator [estimator ...]]
Needs SciPy; the columns of R need Rscript with the packages evd and mclust, and are left out without them.

Every log-likelihood, ours and theirs, is computed here from the parameters by the same function. Maximum likelihood is
judged by the likelihood reached; estimators from moments by the moments of the fitted distribution, by quadrature.
"""
import csv
import math
import pathlib
import subprocess
import sys
import tempfile
import warnings

import numpy as np
from scipy import optimize, special, stats

ROOT = pathlib.Path(__file__).resolve().parents[3]
PROGRAM = ROOT / "build/bin/fit_estimator"
OUTPUT = ROOT / "docs/evidence/estimators.md"
LIMIT = 1e-8  # the relative shortfall of a likelihood that counts
NO_MAXIMUM = 8
# By the numbers that bench/fit_estimator prints.
STATUS = {2: "too few values", 3: "value outside the support", 4: "value outside the support", 5: "no spread",
          6: "no spread", 7: "not finite", NO_MAXIMUM: "no maximum", 9: "no solution", 10: "invalid argument",
          11: "invalid argument"}
warnings.filterwarnings("ignore")


# ---- log-densities, summed ----------------------------------------------------------------------------------------

def total(terms):
    terms = np.asarray(terms, dtype=float)
    if len(terms) >= LARGE:  # extended precision, which is faster
        return float(np.sum(terms, dtype=np.longdouble)) if np.all(np.isfinite(terms)) else -math.inf
    return math.fsum(terms) if np.all(np.isfinite(terms)) else -math.inf


def lognormal(data, p, offset):
    y = np.log(data - offset)
    return total(-0.5 * ((y - p[0]) / p[1]) ** 2 - math.log(p[1]) - 0.5 * math.log(2 * math.pi) - y)


def half_normal(data, p, offset):
    z = (data - offset) / p[0]
    return total(-0.5 * z * z - math.log(p[0]) + 0.5 * math.log(2 / math.pi))


def rayleigh(data, p, offset):
    z = (data - offset) / p[0]
    return total(np.log(z) - 0.5 * z * z - math.log(p[0]))


def folded_normal(data, p, offset):
    z, m = (data - offset) / p[1], p[0] / p[1]
    return total(-0.5 * (z - m) ** 2 + np.log1p(np.exp(-2 * z * m)) - math.log(p[1]) - 0.5 * math.log(2 * math.pi))


def gev(data, p, _=0.0):
    location, scale, shape = p[:3]
    if not scale > 0:
        return -math.inf
    z = (data - location) / scale
    if np.any(1 + shape * z <= 0):
        return -math.inf
    w = z if abs(shape) < 1e-14 else np.log1p(shape * z) / shape
    return total(-math.log(scale) - (1 + shape) * w - np.exp(-w))


def gpd(data, p, _=0.0):
    threshold, scale, shape = p[:3]
    if not scale > 0:
        return -math.inf
    z = (data - threshold) / scale
    if np.any(1 + shape * z <= 0):
        return -math.inf
    w = z if abs(shape) < 1e-14 else np.log1p(shape * z) / shape
    return total(-math.log(scale) - (1 + shape) * w)


def mixture(data, p, _=0.0):
    logs = [math.log(w) - math.log(d) - 0.5 * math.log(2 * math.pi) - 0.5 * ((data - m) / d) ** 2
            for w, m, d in np.reshape(p, (-1, 3)) if w > 0 and d > 0]
    return total(special.logsumexp(logs, axis=0))


# ---- the others' fits ---------------------------------------------------------------------------------------------

def nelder_mead(log_likelihood, start):
    """SciPy's simplex, restarted until it stays."""
    best = np.asarray(start, dtype=float)
    for _ in range(6):
        result = optimize.minimize(lambda p: -log_likelihood(p), best, method="Nelder-Mead",
                                   options={"xatol": 1e-13, "fatol": 1e-13, "maxiter": 20000, "maxfev": 20000})
        best = result.x
    return best


def scipy_lognormal(data, offset):
    s, _, scale = stats.lognorm.fit(data, floc=offset)
    return [math.log(scale), s]


def scipy_half_normal(data, offset):
    return [stats.halfnorm.fit(data, floc=offset)[1]]


def scipy_rayleigh(data, offset):
    return [stats.rayleigh.fit(data, floc=offset)[1]]


def scipy_folded_normal(data, offset):
    c, _, scale = stats.foldnorm.fit(data, floc=offset)
    start = [c * scale, math.log(scale)]
    p = nelder_mead(lambda q: folded_normal(data, [abs(q[0]), math.exp(q[1])], offset), start)
    return [abs(p[0]), math.exp(p[1])]


def scipy_gev(data, _):
    c, location, scale = stats.genextreme.fit(data)
    best = None
    for start in ([location, scale, -c], [np.mean(data) - 0.45 * np.std(data), 0.78 * np.std(data), 0.1]):
        if not np.isfinite(gev(data, start)):
            continue
        p = nelder_mead(lambda q: gev(data, [q[0], math.exp(q[1]), q[2]]) if abs(q[2]) < 30 else -math.inf,
                        [start[0], math.log(start[1]), start[2]])
        p = [p[0], math.exp(p[1]), p[2]]
        if best is None or (-1 < p[2] < 20) > (-1 < best[2] < 20) or (
                (-1 < p[2] < 20) == (-1 < best[2] < 20) and gev(data, p) > gev(data, best)):
            best = p
    return best


def scipy_gpd(data, threshold):
    shape, _, scale = stats.genpareto.fit(data, floc=threshold)
    best = None
    for start in ([scale, shape], [np.mean(data - threshold), 0.05]):
        if not np.isfinite(gpd(data, [threshold, *start])):
            continue
        p = nelder_mead(lambda q: gpd(data, [threshold, math.exp(q[0]), q[1]]) if abs(q[1]) < 30 else -math.inf,
                        [math.log(start[0]), start[1]])
        p = [threshold, math.exp(p[0]), p[1]]
        if best is None or (-1 < p[2] < 20) > (-1 < best[2] < 20) or (
                (-1 < p[2] < 20) == (-1 < best[2] < 20) and gpd(data, p) > gpd(data, best)):
            best = p
    return best


def numpy_mixture(data, k):
    """Plain expectation-maximisation from random values as means, ten times; the best run that has not collapsed. Large
    samples, for which it is too slow, are left to R."""
    if len(data) >= LARGE:
        return None
    generator, k, best = rng(20), int(k), None
    for _ in range(10):
        m, d, w = generator.choice(data, k, replace=False), np.full(k, np.std(data) / k), np.full(k, 1 / k)
        last = -math.inf
        for _ in range(3000):
            logs = np.log(w) - np.log(d) - 0.5 * ((data[:, None] - m) / d) ** 2
            norm = special.logsumexp(logs, axis=1)
            r = np.exp(logs - norm[:, None])
            weight = r.sum(axis=0)
            m = r.T @ data / weight
            d = np.sqrt(np.maximum((r * (data[:, None] - m) ** 2).sum(axis=0) / weight, 0))
            w = weight / len(data)
            reached = norm.mean()
            if not np.all(d > 0) or not np.isfinite(reached) or abs(reached - last) < 1e-12:
                break
            last = reached
        p = np.column_stack([w, m, d]).ravel()
        if is_regular("mixture", p, data) and (best is None or mixture(data, p) > mixture(data, best)):
            best = p
    return None if best is None else list(best)


R_FITS = {
    "gev": "suppressMessages(library(evd)); fit <- function(x, o) { f <- fgev(x, std.err=FALSE); f$estimate }",
    "gpd": "suppressMessages(library(evd)); fit <- function(x, o) { f <- fpot(x, o - 1e-12 * max(abs(x - o)), "
           "std.err=FALSE); c(o, f$estimate) }",
    "mixture": "suppressMessages(library(mclust)); fit <- function(x, k) { p <- Mclust(x, G=k, modelNames='V', "
               "verbose=FALSE, control=emControl(tol=c(1e-12, 1e-12), itmax=c(100000, 100000)))$parameters; "
               "as.vector(rbind(p$pro, p$mean, sqrt(p$variance$sigmasq))) }",
}


def r_fits(estimator, files, options):
    """All samples of an estimator by one R process: a list of parameters or None each."""
    if estimator not in R_FITS:
        return [None] * len(files)
    calls = "\n".join(f"show('{file}', {option!r})" for file, option in zip(files, options))
    script = (R_FITS[estimator] + "\nshow <- function(file, o) { r <- tryCatch(suppressWarnings(fit(read.csv(file)[[1]],"
              " o)), error=function(e) NULL); cat('RESULT', sprintf('%.17g', r), '\\n') }\n" + calls + "\n")
    try:
        run = subprocess.run(["Rscript", "-e", script], capture_output=True, text=True, check=False)
    except FileNotFoundError:
        return [None] * len(files)
    lines = [line.split()[1:] for line in run.stdout.splitlines() if line.startswith("RESULT")]
    if len(lines) != len(files):
        raise RuntimeError(run.stderr)
    return [[float(v) for v in line] if line and "NA" not in line and "NaN" not in line else None for line in lines]


# ---- samples ------------------------------------------------------------------------------------------------------

def example(name, column=0):
    with open(ROOT / "examples" / name, newline="") as file:
        return np.array([float(row[column]) for row in list(csv.reader(file))[1:]])


def rng(seed):
    return np.random.Generator(np.random.Philox(seed))


REAL = {"Port Pirie": example("portpirie_sea_level.csv"), "eruptions": example("faithful.csv", 0),
        "waiting": example("faithful.csv", 1), "ground beef": example("groundbeef.csv"),
        "Danish losses": example("danish_fire_losses.csv")}


LARGE = 40000  # above the size from which the estimators search a thinned sample


def positive_samples():
    """(name, data, offset) for distributions of a magnitude."""
    sets = [(name, x, 0.0) for name, x in REAL.items()]
    sets.append(("Danish losses above 1", REAL["Danish losses"], 0.999))
    sets.append(("toxocara + 1", example("toxocara.csv") + 1.0, 0.0))
    for n in (3, 5, 10, 50, 500, 5000):
        z = rng(n).standard_normal(n)
        sets.append((f"abs(normal), n = {n}", np.abs(z), 0.0))
        sets.append((f"abs(normal + 0.7), n = {n}", np.abs(z + 0.7), 0.0))
        sets.append((f"abs(normal + 2) + 10, n = {n}", np.abs(z + 2) + 10.0, 10.0))
    z = rng(77).standard_normal(100)
    for scale in (1e-9, 1e9):
        sets.append((f"abs(normal + 1.5) times {scale:g}", np.abs(z + 1.5) * scale, 0.0))
    sets.append(("abs(normal + 1.5) + 1e6", np.abs(z + 1.5) + 1e6, 1e6))
    sets.append(("rounded to 0.5, ties", np.round(2 * np.abs(z + 1)) / 2 + 0.5, 0.0))
    sets.append(("three values, two tied", np.array([1.0, 1.0, 2.0]), 0.0))
    sets.append(("nearly constant", 5.0 + 1e-7 * z, 0.0))
    sets.append(("nearly constant, n = 3", np.array([7.0, 7.0 + 1e-9, 7.0 - 2e-9]), 0.0))
    sets.append(("exponential", rng(5).exponential(size=200), 0.0))
    sets.append(("Pareto, shape 1", rng(6).pareto(1.0, size=200) + 0.01, 0.0))
    sets.append(("two clusters", np.concatenate([np.abs(z) * 0.1, 5 + 0.1 * z]), -1e-6))
    for location in (0.3, 1.0, 3.0):
        x = np.sort(np.abs(rng(LARGE).standard_normal(LARGE) + location))  # thinned only where sorted
        sets.append((f"abs(normal + {location:g}), n = {LARGE}", x, 0.0))
    sets.append((f"Gamma(2.5), n = {LARGE}", np.sort(rng(12).gamma(2.5, size=LARGE)), 0.0))
    return [(name, x, offset) for name, x, offset in sets if np.all(x > offset)]


def gev_samples():
    sets = [(name, x, 0.0) for name, x in REAL.items()]
    sets.append(("toxocara", example("toxocara.csv"), 0.0))
    for shape in (-0.8, -0.5, -0.45, -0.2, -1e-6, 0.0, 0.2, 0.5, 1.0, 1.5):
        for n in (20, 60, 1000):
            x = stats.genextreme.rvs(-shape, size=n, random_state=rng(1000 + n))
            sets.append((f"GEV({shape:g}), n = {n}", x, 0.0))
    for n in (3, 4, 5, 10):
        for seed in (1, 2, 3):
            sets.append((f"Gumbel, n = {n}, no. {seed}",
                         stats.gumbel_r.rvs(size=n, random_state=rng(10 * n + seed)), 0.0))
    x = stats.genextreme.rvs(-0.15, size=80, random_state=rng(9))
    for name, y in (("times 1e-9", x * 1e-9), ("times 1e9", x * 1e9), ("+ 1e6", x + 1e6),
                    ("rounded to 0.5, ties", np.round(2 * x) / 2), ("nearly constant", 5 + 1e-9 * x),
                    ("uniform", rng(3).uniform(size=100)), ("normal", rng(4).standard_normal(200)),
                    ("negative exponential", -rng(5).exponential(size=50)),
                    ("three values, two tied", np.array([1.0, 1.0, 2.0])),
                    ("mostly one value", np.array([2.0] * 18 + [2.5, 3.0]))):
        sets.append((name, y, 0.0))
    for shape in (-0.4, 0.05, 0.6):
        sets.append((f"GEV({shape:g}), n = {LARGE}", stats.genextreme.rvs(-shape, size=LARGE, random_state=rng(13)), 0.0))
    sets.append((f"normal, n = {LARGE}", rng(14).standard_normal(LARGE), 0.0))
    return sets


def gpd_samples():
    danish = REAL["Danish losses"]
    sets = [(f"Danish losses above {u:g}", danish[danish > u], u) for u in (1.0, 3.0, 5.0, 10.0, 20.0)]
    sets.append(("ground beef", REAL["ground beef"], 0.0))
    sets.append(("waiting above 70", REAL["waiting"][REAL["waiting"] > 70], 70.0))
    sets.append(("Port Pirie above 3.5", REAL["Port Pirie"], 3.5))
    for shape in (-0.8, -0.5, -0.45, -0.2, -1e-6, 0.0, 0.2, 0.5, 1.0, 1.5):
        for n in (20, 60, 1000):
            x = stats.genpareto.rvs(shape, size=n, random_state=rng(2000 + n))
            sets.append((f"GPD({shape:g}), n = {n}", x, 0.0))
    for n in (3, 4, 5, 10):
        for seed in (1, 2, 3):
            sets.append((f"exponential, n = {n}, no. {seed}", rng(10 * n + seed).exponential(size=n), 0.0))
    x = stats.genpareto.rvs(0.25, size=80, random_state=rng(9))
    for name, y, u in (("times 1e-9", x * 1e-9, 0.0), ("times 1e9", x * 1e9, 0.0), ("+ 1e6", x + 1e6, 1e6),
                       ("rounded to 0.5 + 0.25, ties", np.round(2 * x) / 2 + 0.25, 0.0),
                       ("uniform", rng(3).uniform(size=100), 0.0), ("nearly constant", 5 + 1e-6 * x, 0.0),
                       ("three values, two tied", np.array([1.0, 1.0, 2.0]), 0.0),
                       ("three values, heavy", np.array([0.01, 0.1, 30.0]), 0.0)):
        sets.append((name, y, u))
    for shape in (-0.4, 0.05, 0.6):
        sets.append((f"GPD({shape:g}), n = {LARGE}", stats.genpareto.rvs(shape, size=LARGE, random_state=rng(15)), 0.0))
    sets.append((f"abs(normal), n = {LARGE}", np.abs(rng(16).standard_normal(LARGE)), 0.0))
    return sets


def mixture_samples():
    sets = [("eruptions", REAL["eruptions"], k) for k in (2, 3, 4)]
    sets += [("waiting", REAL["waiting"], k) for k in (2, 3)]
    sets += [("ground beef", REAL["ground beef"], k) for k in (2, 3)]
    sets += [("Danish losses", REAL["Danish losses"], k) for k in (2, 3, 4)]
    sets.append(("ln(Danish losses)", np.log(REAL["Danish losses"]), 3))
    sets += [("Port Pirie", REAL["Port Pirie"], k) for k in (2, 3)]

    def draw(seed, n, parts):
        g = rng(seed)
        c = g.choice(len(parts), size=n, p=[w for w, _, _ in parts])
        return np.array([m for _, m, _ in parts])[c] + np.array([d for _, _, d in parts])[c] * g.standard_normal(n)

    distributions = {"apart": [(0.5, 0, 1), (0.5, 6, 1)], "overlapping": [(0.5, 0, 1), (0.5, 1.5, 1)],
            "concentric": [(0.7, 0, 1), (0.3, 0, 4)], "rare": [(0.95, 0, 1), (0.05, 4, 0.3)],
            "three, overlapping": [(0.3, 0, 1), (0.4, 2, 1), (0.3, 4, 0.7)],
            "narrow beside wide": [(0.5, 0, 1e-3), (0.5, 1, 1)],
            "five": [(0.2, 3.0 * i, 0.6) for i in range(5)]}
    for seed, (name, parts) in enumerate(distributions.items()):
        for n in (40, 300, 3000):
            sets.append((f"{name}, n = {n}", draw(100 * seed + n, n, parts), len(parts)))
    for name in ("apart", "concentric", "rare", "three, overlapping"):
        sets.append((f"{name}, n = {LARGE}", draw(17, LARGE, distributions[name]), len(distributions[name])))
    for count in (5, 20):
        x = np.concatenate([rng(18).standard_normal(LARGE), 6 + 0.2 * rng(19).standard_normal(count)])
        sets.append((f"normal and {count} values beyond 5 deviations, n = {len(x)}", x, 2))
    x = draw(9, 150, distributions["apart"])
    for name, y in (("apart, times 1e-9", x * 1e-9), ("apart, times 1e9", x * 1e9), ("apart, + 1e6", x + 1e6),
                    ("apart, rounded to 0.5, ties", np.round(2 * x) / 2), ("normal, one in truth", rng(8).normal(size=200)),
                    ("nearly constant", 5 + 1e-9 * x), ("n = 6", np.array([0.0, 0.1, 0.25, 5.0, 5.2, 5.3])),
                    ("two values only", np.array([1.0, 2.0] * 10))):
        sets.append((name, y, 2))
    return [(f"{name}; {k} components", x, k) for name, x, k in sets]


# ---- whether there is a maximum at all ------------------------------------------------------------------------------

def has_maximum(estimator, data, threshold):
    """Whether the profile of the likelihood has an inner maximum with shape above -1, by brute force.

    For the extreme value distribution the profile is followed up to shape 2. Beyond, small samples climb to the pole at their least
    value, where double precision no longer resolves the likelihood. Ties can make it infinite at a shape below as well.
    """
    if estimator == "gpd":
        y = (data - threshold) / np.max(data - threshold)
        ratios = np.concatenate([-1 + np.geomspace(1e-14, 1, 20000, endpoint=False), np.geomspace(1e-6, 1e12, 20000)])
        shapes = np.array([np.mean(np.log1p(r * y)) for r in ratios])
        values = -np.log(shapes / ratios) - shapes
        inner = (values[1:-1] > values[:-2] + 1e-12) & (values[1:-1] > values[2:] + 1e-12)
        return bool(np.any(inner & (shapes[1:-1] > -1) & (np.abs(ratios[1:-1]) > 1e-4)))
    z = (data - np.median(data)) / np.ptp(data)
    values = []
    for shape in np.arange(-0.99, 2, 0.05):
        best = -math.inf
        for location, scale in ((0, 0.3), (np.min(z), 0.3), (0, 2.0), (np.min(z) + 0.1, 1.0)):
            while not np.isfinite(gev(z, [location, scale, shape])) and scale < 1e4:
                scale *= 1.5
            at = [location, math.log(scale)]
            for _ in range(3):
                result = optimize.minimize(lambda q: -gev(z, [q[0], math.exp(q[1]), shape]), at, method="Nelder-Mead",
                                           options={"xatol": 1e-10, "fatol": 1e-12, "maxiter": 1500})
                at = result.x
            best = max(best, math.inf if at[1] < -15 else -result.fun)
        values.append(best)
    values = np.array(values)
    return bool(np.any((values[1:-1] > values[:-2] + 1e-7) & (values[1:-1] > values[2:] + 1e-7)))


# ---- the comparison -----------------------------------------------------------------------------------------------

def run_ours(estimator, file, option):
    out = subprocess.run([PROGRAM, estimator, file, repr(float(option))], capture_output=True, text=True, check=True)
    status, *values = out.stdout.split()
    return int(status), [float(v) for v in values]


def is_regular(estimator, p, data):
    """Whether a reference stopped where the likelihood is bounded."""
    if estimator == "mixture":
        parts = np.reshape(p, (-1, 3))
        return bool(np.all(parts[:, 0] * len(data) >= 2) and np.all(parts[:, 2] > 1e-6 * np.std(data)))
    return estimator not in ("gev", "gpd") or -1 < p[2] < 20


def number(x):
    return "–" if x is None else f"{x:.9g}"


MAXIMUM_LIKELIHOOD = {
    "lognormal": ("Log Normal", positive_samples, lognormal, scipy_lognormal),
    "half_normal": ("Half Normal", positive_samples, half_normal, scipy_half_normal),
    "rayleigh": ("Rayleigh", positive_samples, rayleigh, scipy_rayleigh),
    "folded_normal": ("Folded Normal", positive_samples, folded_normal, scipy_folded_normal),
    "gev": ("Generalized extreme value", gev_samples, gev, scipy_gev),
    "gpd": ("Generalized Pareto", gpd_samples, gpd, scipy_gpd),
    "mixture": ("Gaussian mixture", mixture_samples, mixture, numpy_mixture),
}


def compare_likelihood(estimator, folder, lines):
    title, samples, log_likelihood, scipy_fit = MAXIMUM_LIKELIHOOD[estimator]
    sets = samples()
    files = []
    for i, (_, data, _) in enumerate(sets):
        files.append(folder / f"{estimator}{i}.csv")
        files[-1].write_text("x\n" + "\n".join(repr(float(v)) for v in data) + "\n")
    options = [option for _, _, option in sets]
    theirs = r_fits(estimator, files, options)
    rows, worst, fitted, below, none = [], 0.0, 0, 0, 0
    for (name, data, option), file, r in zip(sets, files, theirs):
        status, ours = run_ours(estimator, file, option)
        try:
            others = [scipy_fit(data, option), r]
        except Exception:  # a reference may fail on hard data
            others = [None, r]
        reached = []
        for p in others:
            value = None if p is None else log_likelihood(data, p, option)
            reached.append(None if value is None or not math.isfinite(value) else value)
        notes = [f"{tool} ends at shape {p[2]:.3g}" if estimator != "mixture" else f"{tool} collapsed" for tool, p, value in zip(("NumPy" if estimator == "mixture" else "SciPy", "R"), others, reached)
                 if value is not None and not is_regular(estimator, p, data)]
        regular = [value for p, value in zip(others, reached) if value is not None and is_regular(estimator, p, data)]
        difference = None
        if status != 0:
            none += 1
            mine = None
            notes.insert(0, STATUS[status])
            stopped = [f"{p[2]:.3g}" for p, value in zip(others, reached)
                       if value is not None and estimator in ("gev", "gpd") and is_regular(estimator, p, data)]
            if status == NO_MAXIMUM and estimator in ("gev", "gpd"):
                found = has_maximum(estimator, data, option)
                notes.append("but the profile has one" if found else "none in the profile by brute force either")
            if stopped:
                notes.append("reference stops at shape " + ", ".join(stopped))
        else:
            fitted += 1
            mine = log_likelihood(data, ours, option)
            if regular:
                difference = (mine - max(regular)) / max(1.0, abs(max(regular)))
                worst = min(worst, difference)
                below += difference < -LIMIT
        cells = [name, str(len(data)), number(mine), number(reached[0])]
        if estimator in R_FITS:
            cells.append(number(reached[1]))
        cells += ["–" if difference is None else f"{difference:.1e}", "; ".join(notes)]
        rows.append("| " + " | ".join(cells) + " |")
    heads = ["sample", "n", "ours", "plain EM (NumPy)" if estimator == "mixture" else "SciPy"] + (["R"] if estimator in R_FITS else []) + ["relative difference", "note"]
    lines += [f"## {title}", "",
              f"{len(sets)} samples: {fitted} fitted, {none} with a status instead. Greatest relative shortfall "
              f"against the better reference: {-worst:.1e}; samples that fall short by more than {LIMIT:g}: {below}.",
              "", "| " + " | ".join(heads) + " |", "|---" * len(heads) + "|", *rows, ""]
    print(f"{title}: {len(sets)} samples, {fitted} fitted, {none} status, worst {-worst:.1e}, below {below}")


# ---- estimators from moments: the moments of the fitted distribution against those of the sample ------------------------------

def johnson(p):
    """The value of a Johnson member at a standard normal deviate."""
    family, gamma, delta, scale, xi = p[:5]
    inverse = {1: np.exp, 2: np.sinh, 3: special.expit, 4: lambda t: t}[int(family)]
    return lambda z: xi + scale * inverse((z - gamma) / delta)


def weighted_moments(data, estimator, offset):
    """The unbiased probability-weighted moments that the estimator matches."""
    x = np.sort(data) - offset
    n, j = len(x), np.arange(len(x))
    if estimator == "gpd_moments":
        return [np.mean(x), np.mean(x * (n - 1 - j) / (n - 1))]
    return [np.mean(x), np.mean(x * j / (n - 1)), np.mean(x * j * (j - 1) / ((n - 1) * (n - 2)))]


def law_moments(estimator, p, offset):
    if estimator == "johnson_moments":
        z = np.linspace(-30, 30, 300001)
        w = np.exp(-0.5 * z * z) / math.sqrt(2 * math.pi) * (z[1] - z[0])
        x = johnson([*p[:4], p[4] - offset])(z)
        mean = np.sum(w * x)
        d = x - mean
        s = math.sqrt(np.sum(w * d * d))
        return [mean, s, np.sum(w * d ** 3) / s ** 3, np.sum(w * d ** 4) / s ** 4 - 3]
    # Over t = ln(p / (1 - p)), far enough for tails that fall slowly.
    t = np.linspace(-60, 700, 760001)
    low, high = -np.logaddexp(0, -t), -np.logaddexp(0, t)  # ln p, ln(1 - p)
    y = -high if estimator == "gpd_moments" else -np.log(-low)
    x = (p[0] - offset) + p[1] * (y if abs(p[2]) < 1e-14 else np.expm1(p[2] * y) / p[2])
    weights = [high] * 2 if estimator == "gpd_moments" else [low] * 3
    return [np.sum(x * np.exp(low + high + r * weight)) * (t[1] - t[0]) for r, weight in enumerate(weights)]


MOMENTS = {
    "gev_moments": ("Generalized extreme value, probability-weighted moments", gev_samples),
    "gpd_moments": ("Generalized Pareto, probability-weighted moments", gpd_samples),
    "johnson_moments": ("Johnson from moments",
                        lambda: [(name, x, o) for name, x, o in gev_samples() if len(x) > 3]),
}


def compare_moments(estimator, folder, lines):
    title, samples = MOMENTS[estimator]
    sets = samples()
    rows, worst, fitted = [], 0.0, 0
    for i, (name, data, option) in enumerate(sets):
        file = folder / f"{estimator}{i}.csv"
        file.write_text("x\n" + "\n".join(repr(float(v)) for v in data) + "\n")
        status, p = run_ours(estimator, file, option)
        if status != 0:
            rows.append(f"| {name} | {len(data)} | – | – | {STATUS[status]} |")
            continue
        fitted += 1
        is_johnson = estimator == "johnson_moments"
        centre = option if estimator == "gpd_moments" else np.median(data)  # so that this arithmetic loses no digits
        wanted = [p[5] - centre, *p[6:]] if is_johnson else weighted_moments(data, estimator, centre)
        found = law_moments(estimator, p, centre)
        units = [p[6], p[6], 1, max(1, abs(p[8]))] if is_johnson else [np.std(data)] * 3
        error = max(abs(a - b) / u for a, b, u in zip(wanted, found, units))
        note = ["", "SL", "SU", "SB", "SN"][int(p[0])] if is_johnson else ""
        if not is_johnson and p[2] > 0.95:
            note = "not judged: the mean hardly exists"
        else:
            worst = max(worst, error)
        rows.append(f"| {name} | {len(data)} | {', '.join(f'{v:.6g}' for v in p[:5 if is_johnson else 3])} | {error:.1e} | "
                    f"{note} |")
    lines += [f"## {title}", "",
              f"{len(sets)} samples: {fitted} fitted. Greatest difference between a moment of the fitted distribution, by "
              f"quadrature, and that of the sample, in standard deviations of the sample (skewness and kurtosis: "
              f"relative to max(1, value)): {worst:.1e}.", "",
              "| sample | n | parameters | greatest difference | note |", "|---|---|---|---|---|", *rows, ""]
    print(f"{title}: {len(sets)} samples, {fitted} fitted, worst {worst:.1e}")


def compare_percentiles(folder, lines):
    """Samples of known members: the distance between the fitted and the true distribution's quantiles."""
    members = [(2, -0.8, 1.5, 3, 10), (2, 0.4, 0.9, 1, -2), (2, 0, 2.5, 1, 0), (3, 0.7, 1.2, 5, 1), (3, -0.3, 0.6, 2, 0),
               (3, 1.5, 1.5, 1e9, 0), (1, 0.5, 1.8, 1, 4), (4, -3, 2, 1, 0)]
    rows, count = [], 0
    for k, member in enumerate(members):
        truth = johnson(member)
        for n in (30, 100, 1000, 10000):
            data = truth(rng(300 + 10 * k + n).standard_normal(n))
            file = folder / f"percentiles{count}.csv"
            file.write_text("x\n" + "\n".join(repr(float(v)) for v in data) + "\n")
            count += 1
            status, p = run_ours("johnson_percentiles", file, -1.0)
            q = run_ours("johnson_moments", file, 0.0)[1]
            z = np.linspace(-1.6449, 1.6449, 41)
            unit = truth(1.0) - truth(-1.0)
            distance = [np.max(np.abs(johnson(fit)(z) - truth(z))) / unit if fit[0] > 0 else math.nan
                        for fit in (p, q)]
            empirical = np.max(np.abs(np.quantile(data, special.ndtr(z)) - truth(z))) / unit
            names = ["", "SL", "SU", "SB", "SN"]
            rows.append(f"| {names[member[0]]}({', '.join(f'{v:g}' for v in member[1:])}) | {n} | "
                        f"{names[int(p[0])] if status == 0 else STATUS[status]} | {distance[0]:.3f} | {distance[1]:.3f} | "
                        f"{empirical:.3f} |")
    lines += ["## Johnson from percentiles", "",
              "Samples of known members. The greatest distance between the fitted and the true quantiles from 5 % to 95 %, "
              "in units of the true distance between 16 % and 84 %; beside it that of the fit from moments and that of the "
              "plain sample quantiles.", "",
              "| distribution | n | family found | percentiles | moments | sample quantiles |", "|---|---|---|---|---|---|", *rows, ""]
    print(f"Johnson from percentiles: {count} samples")


PREFACE = """# Estimators beside SciPy and R

This page is written by

    cmake --preset release -DBRENVOLT_BENCH=ON && cmake --build build --target fit_estimator
    host/numeric/reference/compare_estimators.py

Log-likelihoods reached; the relative difference is (ours − the better reference) / max(1, |reference|). References that ended where the likelihood has no bound are named in the note and not compared.
"""


def main():
    global PROGRAM
    if len(sys.argv) > 1:
        PROGRAM = pathlib.Path(sys.argv[1])
    lines = PREFACE.split("\n")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for estimator in sys.argv[2:] or [*MAXIMUM_LIKELIHOOD, *MOMENTS, "johnson_percentiles"]:
            if estimator in MAXIMUM_LIKELIHOOD:
                compare_likelihood(estimator, folder, lines)
            elif estimator in MOMENTS:
                compare_moments(estimator, folder, lines)
            else:
                compare_percentiles(folder, lines)
    OUTPUT.write_text("\n".join(lines))


if __name__ == "__main__":
    main()
