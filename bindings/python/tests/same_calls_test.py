"""One table of calls, made as commands and in Python: what one refuses the other refuses in the same words, and what
both do gives the same numbers. A call is written once, as the arguments of Python."""

import json
import os
import re
import subprocess
import tempfile
import unittest

import numpy
import pandas

import brenvolt

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")
# The options that are not spelt as their arguments.
OPTIONS = {"offsets": "--offset", "formulas": "--formula", "models": "--model", "fixed": "--fix",
           "specifications": "--spec", "output": "-o"}
# The options for what is given by hand, of which functions take several at once.
BY_HAND = {"--variable": "variables", "--correlation": "correlations", "--from": "from_file"}
REPEATED = ("formulas", "models")
DATA = {"x": [1.0, 2, 3, 4, 7], "n": [1.0, 2, 0, 5, 1], "w": [1.0, 2, 1, 1, 1]}

# Calls of fit() over DATA, and the message for each: a fault of the call by its end, one of the data as a whole.
REFUSED_FITS = (
    ({"rank_by": "likelihood"}, "one of aic, anderson-darling, bic, chi-square, ks; got 'likelihood' (rank_by)"),
    ({"discrete": ["n"], "discrete_rank_by": "anderson-darling"}, "got 'anderson-darling' (discrete_rank_by)"),
    ({"binning": "equal"}, "expected one of equal-interval, equal-probability; got 'equal' (binning)"),
    ({"discrete": ["n"], "binning": "equal-interval"}, "no continuous variable is fitted (binning)"),
    ({"missing": "never"}, "expected one of casewise, pairwise; got 'never' (missing)"),
    ({"continuous": ["x", "x"]}, "'x' is given twice (continuous)"),
    ({"continuous": ["x"], "discrete": ["x"]}, "'x' is given both as continuous and as discrete (discrete)"),
    ({"continuous": ["z"]}, "sheet d has no variable called 'z' (continuous)"),
    ({"weights": "z"}, "sheet d has no variable called 'z' (weights)"),
    ({"save": "p.bvw", "graphs": "g.png"}, "expected a file ending in .json, got g.png (graphs)"),
    ({"save": "p.bvw", "plot": "p.gif"}, "expected a file ending in .png, .svg or .pdf, got p.gif (plot)"),
    ({"report": "r.txt"}, "expected a file ending in .html, .md, .pdf or .xlsx, got r.txt (report)"),
    ({"report": "none/r.html"}, "the folder of none/r.html does not exist (report)"),
    ({"plot": "p.png", "plot_kind": "pie"}, "pp, qq, return-levels; got 'pie' (plot_kind)"),
    ({"plot": "p.png", "plot_theme": "blue"}, "expected one of dark, light; got 'blue' (plot_theme)"),
    ({"plot_width": 640}, "this affects only a picture; give the file of the picture as well (plot_width)"),
    ({"plot": "p.png", "plot_width": 12}, "expected a whole number from 320 to 8000, got 12 (plot_width)"),
    ({"distributions": ["weibul"]}, "geometric, bernoulli, histogram (distributions)"),
    ({"distributions": ["poisson"]}, "is fitted as discrete only if it is given as discrete (distributions)"),
    ({"discrete": ["n"], "distributions": ["gev"]}, "none of these is for discrete variables (distributions)"),
    ({"discrete": ["n"], "johnson_percentiles": True}, "no continuous variable is fitted (johnson_percentiles)"),
    ({"distributions": ["normal"], "johnson_percentiles": True}, "the johnson distribution is not tried"
                                                                 " (johnson_percentiles)"),
    ({"discrete": ["n"], "rank_by": "ks"}, "no continuous variable is fitted (rank_by)"),
    ({"discrete_rank_by": "ks"}, "no discrete variable is fitted (discrete_rank_by)"),
    ({"distributions": ["normal", "poisson"]}, "is fitted as discrete only if it is given as discrete (distributions)"),
    ({"discrete": ["n"], "distributions": ["normal", "poisson"]},
     "the normal distribution is for continuous variables, but no continuous variable is fitted (distributions)"),
    ({"yes": True}, "the data are not a correlation matrix, so there is nothing to confirm (yes)"),
    ({"rank_by": ""}, "expected a value, got an empty text (rank_by)"),
    ({"plot": ""}, "expected a value, got an empty text (plot)"),
    ({"weights": ""}, "the data have no case weights to leave out (weights)"),
    ({"select": ""}, "the data have no selection of cases to leave out (select)"),
    ({"continuous": ["x"], "save": "p.bvw", "truncate": {"x": (None, None)}}, "'x' has no bounds that could be removed (truncate)"),
    ({"offsets": {"x": {"normal": 1}}}, "the normal distribution has no offset (offsets)"),
    ({"offsets": {"x": {"weibul": 1}}}, "bernoulli, histogram (offsets)"),
    ({"offsets": {"x": {"weibull": -444}}}, "-444 means that no offset is set and cannot be an offset (offsets)"),
    ({"offsets": {"x": {"weibull": 1}}, "distributions": ["gev"]}, "the weibull distribution is not tried (offsets)"),
    ({"offsets": {"x": {"weibull": 1, "Weibull": 2}}}, "'x:weibull' is given twice (offsets)"),
    ({"offsets": {"z": {"weibull": 1}}}, "'z' is not fitted as a continuous variable (offsets)"),
    ({"continuous": ["n"], "offsets": {"x": {"weibull": 1}}}, "'x' is not fitted as a continuous variable (offsets)"),
    ({"mixtures": {"x": 2.5}}, "'x': expected a whole number from 2 to 20, got 2.5 (mixtures)"),
    ({"mixtures": {"x": 3}, "distributions": ["gev"]}, "the gaussianmixture distribution is not tried (mixtures)"),
    ({"discrete": ["n"], "trials": {"n": 0}}, "from 1 to 2147483647, got 0 (trials)"),
    ({"trials": {"n": 3}}, "no discrete variable is fitted (trials)"),
    ({"discrete": ["n"], "trials": {"x": 3}}, "'x' is not fitted as a discrete variable (trials)"),
    ({"mixtures": {"x": 21}}, "'x': expected a whole number from 2 to 20, got 21 (mixtures)"),
    ({"distributions": ["gev", "GEV"]}, "'generalextremevalue' is given twice (distributions)"),
    ({"save": "none/p.bvw"}, "the folder of none/p.bvw does not exist (save)"),
    ({"graphs": "none/g.json"}, "the folder of none/g.json does not exist (graphs)"),
    ({"bootstrap": 0}, "expected a whole number from 1 to 1000000, got 0 (bootstrap)"),
    ({"bootstrap": 1e7}, "got 10000000 (bootstrap)"),
    ({"bootstrap_seed": 3}, "a seed has no effect without a bootstrap (bootstrap_seed)"),
    ({"bootstrap": 9, "bootstrap_seed": -1}, "from 0 to 2147483647, got -1 (bootstrap_seed)"),
    ({"quantiles": [0.5, 1]}, "expected a probability between 0 and 1, got 1 (quantiles)"),
    ({"intervals": "profile"}, "no quantile is asked for, and no probability or return level (intervals)"),
    ({"return_periods": [1]}, "expected a period longer than 1, got 1 (return_periods)"),
    ({"discrete": ["n"], "exceed": [2.5]}, "no continuous variable is fitted (exceed)"),
    ({"confidence": 0.9}, "no quantile is asked for, and no probability or return level (confidence)"),
    ({"quantiles": [0.5], "confidence": 95}, "expected a number between 0 and 1, got 95 (confidence)"),
    ({"save": "p.csv"}, "expected a file ending in .bvw, got p.csv (save)"),
    ({"select": "x >"}, "selection condition, character 4: the formula is incomplete (select)"),
    ({"save": "p.bvw", "truncate": {"x": (3, 3)}}, "'x': the lower bound must be less than the upper one (truncate)"),
    ({"save": "p.bvw", "truncate": {"x": (-444, None)}}, "-444 means that no bound is set and cannot be a bound (truncate)"),
    ({"save": "p.bvw", "truncate": {"z": (1, 2)}}, "'z' is not fitted (truncate)"),
    ({"save": "p.bvw", "order": {"x": ["gev", "normal", "GEV"]}}, "'generalextremevalue' is given twice (order)"),
    ({"save": "p.bvw", "order": {"x": ["weibul"]}}, "bernoulli, histogram (order)"),
    ({"save": "p.bvw", "continuous": ["x"], "order": {"x": ["poisson"]}},
     "'x': the poisson distribution is for discrete variables (order)"),
    ({"save": "p.bvw", "order": {"x": ["weibull"]}, "distributions": ["gev"]}, "weibull distribution is not tried"
                                                                               " (order)"),
    ({"rank_by": "caic", "mixtures": {"x": 0.5}, "bootstrap": 0}, "got 0 (bootstrap)"),
)
# Calls of simulate() over the fits of DATA.
REFUSED_SIMULATIONS = (
    ({"method": "sobol"}, "latin-hypercube-iman-conover, monte-carlo, norta; got 'sobol' (method)"),
    ({"samples": 0}, "expected a whole number from 1 to 1000000000000, got 0 (samples)"),
    ({"samples": 2.5}, "expected a whole number from 1 to 1000000000000, got 2.5 (samples)"),
    ({"seed": 10**23}, "from 0 to 2147483647, got 100000000000000000000000 (seed)"),
    ({"seed": -1}, "expected a whole number from 0 to 2147483647, got -1 (seed)"),
    ({"matrix": "m", "method": "monte-carlo"}, "only methods that induce correlation follow a matrix; monte-carlo does not (matrix)"),
    ({"matrix": "m", "method": "iman-conover"}, "this is neither a sheet of the project nor a file (matrix m)"),
    ({"variables": ["x", "x"]}, "'x' is given twice (variables)"),
    ({"variables": ["z"]}, "sheet d has no variable called 'z' (variables)"),
    ({"method": "norta"}, "nothing was produced: this method has no generator (norta)"),
)
# Calls of profile() over DATA.
FORMULA = "y = x + 2 * n"
REFUSED_PROFILES = (
    ({}, "nothing to predict: give a model or a formula (models)"),
    ({"formulas": ["x + n"]}, "expected RESPONSE=EXPRESSION, got 'x + n' (formulas)"),
    ({"formulas": [FORMULA], "samples": 0}, "expected a whole number from 1 to 2147483647, got 0 (samples)"),
    ({"formulas": [FORMULA], "seed": 0}, "expected a whole number from 1 to 2147483647, got 0 (seed)"),
    ({"formulas": [FORMULA], "noise": {"y": -1}}, "the standard deviation must not be less than 0 (noise)"),
    ({"formulas": [FORMULA], "noise": {"z": 1}}, "no response called 'z'; the responses are y (noise)"),
    ({"formulas": [FORMULA], "specifications": {"y": (5, None, 3)}}, "must be less than the upper one (specifications)"),
    ({"formulas": [FORMULA], "fixed": {"z": 1}}, "no predictor called 'z'; the predictors are x, n (fixed)"),
    ({"formulas": [FORMULA], "truncate": {"x": (3, 3)}}, "'x': the lower bound must be less than the upper one (truncate)"),
    ({"formulas": [FORMULA], "output": "r.txt"}, "expected a file ending in .csv, .npz, .xlsx, .sav, .dta or .bvw, got r.txt (output)"),
    ({"formulas": [FORMULA], "output": "none/r.csv"}, "the folder of none/r.csv does not exist (output)"),
    ({"formulas": ["y = x"], "correlated": True}, "there is only one predictor, so it cannot be correlated with another (correlated)"),
    ({"formulas": [FORMULA], "correlated": True, "fixed": {"x": 1}},
     "only one predictor is drawn at random, so it cannot be correlated with another (correlated)"),
    ({"formulas": [FORMULA], "fixed": {"x": 1}, "truncate": {"x": (0, 2)}},
     "'x': a predictor that is fixed has no draws (truncate)"),
    ({"formulas": [FORMULA], "truncate": {"x": (None, None)}}, "'x' has no bounds that could be removed (truncate)"),
    ({"formulas": ["y = z", "z = y"]}, "the formula for y (it is predicted from itself)"),
    ({"formulas": [FORMULA], "output": "d.csv"}, "would replace d.csv, which is read (output)"),
    ({"formulas": ["y = q"]}, "no variable called 'q' with values to start the predictor from; give it a distribution, or fix it at a value (d.csv)"),
    ({"models": ["none.pmml"]}, "(none.pmml)"),
)
# Calls of capability() over DATA.
LIMITS = {"x": (0, None, 9)}
REFUSED_CAPABILITIES = (
    ({}, "missing specification: capability is judged against limits (specifications)"),
    ({"specifications": {"x": (5, None, 5)}}, "must be less than the upper one (specifications)"),
    ({"specifications": {"x": (5, 7, 6)}}, "'x': the target lies outside the limits (specifications)"),
    ({"response": "n", "specifications": LIMITS}, "'x' is not the response, which is 'n' (specifications)"),
    ({"specifications": {"z": (5, None, 6)}}, "sheet d has no variable called 'z' (response)"),
    ({"specifications": LIMITS, "subgroup": "1"}, "leave this out for single values (subgroup)"),
    ({"specifications": LIMITS, "subgroup": "z"}, "sheet d has no variable called 'z' (subgroup)"),
    ({"specifications": LIMITS, "subgroup": 2, "within": "range"},
     "expected one of moving-range, pooled, r-bar, s-bar; got 'range' (within)"),
    ({"specifications": LIMITS, "control_chart": "x-bar-s"}, "so their chart is i-mr (control_chart)"),
    ({"specifications": LIMITS, "confidence": 1}, "expected a number between 0 and 1, got 1 (confidence)"),
    ({"specifications": LIMITS, "rank_by": "best"}, "(rank_by)"),
    ({"specifications": LIMITS, "distribution": "weibul"}, "bernoulli, histogram (distribution)"),
    ({"specifications": LIMITS, "bootstrap_seed": 3}, "a seed has no effect without a bootstrap (bootstrap_seed)"),
    ({"specifications": LIMITS, "select": "x > 100"}, "no case meets the condition 'x > 100' (select)"),
)
# Calls of fit() over DATA, of which values are censored.
REFUSED_CENSORED = (
    ({"censor": "z"}, "name the variable that is censored: one of x, n, w (continuous)"),
    ({"continuous": ["x"], "censor": "z"}, "sheet d has no variable called 'z' (censor)"),
    ({"continuous": ["x"], "censor": "n"}, "0 or right, 1 or exact, 2 or left, 3 or interval, or in a column called after"
                                           " censoring 0 or 1; or say which one is an event (censor)"),
    ({"continuous": ["x"], "censor_upper": "n"}, "case 3: the upper bound 0 is below the lower one, 3 (censor_upper)"),
    ({"top": 0}, "expected a whole number from 1 to 1000, got 0 (top)"),
    ({"plot": "{nmae}.png"}, "{nmae} has no meaning in the name of a picture; expected {name}, the variable or response"
                             " (plot)"),
    ({"continuous": ["x"], "censor": "w", "bootstrap": 9}, "intervals by the covariance of the estimates (bootstrap)"),
    ({"discrete": ["x"], "censor": "w"}, "censored values are fitted as continuous ones (discrete)"),
    ({"continuous": ["x"], "censor": "w", "rank_by": "ks"}, "ranked by aic or bic (rank_by)"),
    ({"continuous": ["x"], "censor": "w", "distributions": ["triangular"]}, "weibull, generalextremevalue (distributions)"),
    ({"continuous": ["x"], "censor": "w", "quantiles": [2]}, "a probability between 0 and 1, got 2 (quantiles)"),
)
FANS = {"continuous": ["hours"], "censor": "status"}
CENSORED = (
    FANS,
    {**FANS, "quantiles": [0.1, 0.5], "exceed": [1000], "rank_by": "bic", "select": "hours > 1000"},
    {**FANS, "censor_event": "1", "quantiles": [0.1], "intervals": "profile"},
    {**FANS, "distributions": ["weibull"], "offsets": {"hours": {"weibull": -100}}, "return_periods": [10]},
)
# And over an example.
PROCESS = {"size": (5.49, 5.64, 5.79)}
CAPABILITIES = (
    ("process", {"specifications": PROCESS}),
    ("process", {"specifications": PROCESS, "subgroup": "sample", "within": "r-bar", "rules": "nelson"}),
    ("process", {"specifications": PROCESS, "subgroup": 10, "select": "sample <= 12", "confidence": 0.9}),
    ("danish_fire_losses", {"specifications": {"Loss": (None, None, 50)}, "distribution": "lognormal",
                            "bootstrap": 50}),
    ("danish_fire_losses", {"specifications": {"Loss": (None, None, 50)}, "rank_by": "aic"}),
)
# Variables and correlations by hand that every job refuses, and what it says.
NORMAL = "normal(0, 1)"
REFUSED_INPUTS = (
    ({"h": "normal(1, -2)"}, {}, "expected a number above 0 for scale, got '-2'; normal takes location, scale (character 15"),
    ({"h": "triangular(5, 1, 3)"}, {}, "min must not be above max (character 23 of"),
    ({"h": "triangular(1, 5, 6)"}, {}, "the mode must lie between min and max"),
    ({"h": "gaussianmixture(1:0:1)"}, {}, "a gaussianmixture has from 2 to 20 components, not 1 (character"),
    ({"h": "histogram(0:0.3, 1:0.4, 0:0.3)"}, {}, "the level 0 is there twice (character 29 of"),
    ({"h": "histogram(0:0.5, 1:0.4)"}, {}, "the proportions must add up to 1; they add up to 0.9"),
    ({"h": "nomral(1, 2)"}, {}, "no distribution is called 'nomral'; did you mean normal?"),
    ({"h": "normal(1, 2) in [50, 60]"}, {}, "the bounds leave nothing of the distribution"),
    ({"h": "normal(1, 2) in [3, 2]"}, {}, "the lower bound must be below the upper one"),
    ({"h": "normal(1)"}, {}, "scale is missing; normal takes location, scale"),
    ({"h": "normal(nan, 1)"}, {}, "expected a finite number for location, got 'nan'"),
    ({"": NORMAL}, {}, "expected the name of a variable before '~'"),
    ({"h": NORMAL, "c": NORMAL}, {("h", "c"): 1.01}, "a correlation lies between -1 and 1, got 1.01 for h,c (correlations)"),
    ({"h": NORMAL, "c": NORMAL}, {("h", "c"): 0.1, ("c", "h"): 0.2}, "correlation of c and h is given twice (correlations)"),
    ({"h": NORMAL, "c": NORMAL}, {("h", "h"): 0.5}, "a variable is correlated with itself by 1"),
    ({"h": NORMAL, "c": NORMAL}, {("h", "cc"): 0.5}, "no variable is called 'cc'; did you mean c? (correlations)"),
)
# Calls of fit() over an example.
FITS = (
    ("groundbeef", {}),
    ("groundbeef", {"rank_by": "aic"}),
    ("toxocara", {"discrete": ["number"], "discrete_rank_by": "bic"}),
    ("faithful", {"rank_by": "anderson-darling", "binning": "equal-interval", "distributions": ["weibull", "gev"],
                  "offsets": {"eruptions": {"Weibull": 1}}}),
    ("faithful", {"mixtures": {"waiting": 3}, "johnson_percentiles": True, "select": "waiting > 60",
                  "missing": "casewise"}),
    ("faithful", {"save": "p.bvw", "truncate": {"waiting": (None, 90)}, "order": {"waiting": ["normal", "weibull"]}}),
    ("toxocara", {"discrete": ["number"], "discrete_rank_by": "chi-square", "trials": {"number": 100}}),
    ("portpirie_sea_level", {"bootstrap": 50, "quantiles": [0.01, 0.5], "exceed": [4.5], "return_periods": [100],
                             "intervals": "profile", "confidence": 0.9, "distributions": ["generalextremevalue"]}),
    ("faithful", {"quantiles": [0.1], "distributions": ["johnson", "weibull"]}),
    ("portpirie_sea_level", {"bootstrap": 20, "bootstrap_seed": 5, "distributions": ["normal"]}),
)
# Calls of profile() over the ozone data, whose sensitivity is small enough to run, and of score().
OZONE = os.path.join(EXAMPLES, "ozone_regression.pmml")
PROFILES = (
    {"models": [OZONE], "samples": 400, "correlated": True, "noise": {"O3": 4.75},
     "specifications": {"O3": (None, None, 25)}},
    {"formulas": ["y = temp * 2"], "samples": 300, "fit_best": True, "truncate": {"temp": (10, 30)},
     "specifications": {"y": (None, 100, 110)}},
)
SCORES = ({}, {"leave_invalid": True}, {"keep": ["doy", "O3"]})
SIMULATIONS = ({}, {"variables": ["waiting"]}, {"method": "monte-carlo"}, {"method": "latin-hypercube", "truncate": True}, {"method": "iman-conover"},
               {"method": "latin-hypercube-iman-conover", "variables": ["waiting", "eruptions"], "samples": 500})


def entries(argument, value):
    """What an option is given for an argument, once for each."""
    if argument in REPEATED:
        return value
    if not isinstance(value, dict):
        return [",".join(map(str, value)) if isinstance(value, list) else str(value)]
    if argument == "offsets":
        return [f"{variable}:{name}={offset}" for variable, given in value.items() for name, offset in given.items()]
    separator = "," if argument == "specifications" else ":"
    texts = {tuple: lambda bounds: separator.join("" if bound is None else str(bound) for bound in bounds), list: ",".join}
    return [f"{variable}={texts.get(type(entry), str)(entry)}" for variable, entry in value.items()]


def words(arguments):
    """The arguments as a command has them."""
    found = []
    for argument, value in arguments.items():
        option = OPTIONS.get(argument, "--" + argument.replace("_", "-"))
        found += [option] if value is True else [word for text in entries(argument, value) for word in (option, text)]
    return found


def fit(data, arguments):
    saving = {name: arguments[name] for name in ("truncate", "order") if name in arguments}
    left = ("truncate", "order", "save") if saving else ()
    result = brenvolt.fit(data, **{name: value for name, value in arguments.items() if name not in left})
    if saving:
        result.save(arguments["save"], **saving)
    return result

REFUSED_IMPORTS = (
    ({"output": "p.csv"}, "expected a file ending in .bvw, got p.csv (output)"),
    ({"output": "p.bvw", "kind": "graph"}, "expected data or matrix, got 'graph' (kind)"),
    ({"output": "p.bvw", "sheet": "e"}, "the file has no sheet called e; its sheet is d (d.csv)"),
    ({"output": "none/p.bvw"}, "the folder of none/p.bvw does not exist (output)"),
    ({"output": "p.bvw", "kind": "matrix"}, "must hold numbers (d.csv)"),
)
REFUSED_EXPORTS = (
    ({"output": "d.txt"}, "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got d.txt (output)"),
    ({"output": "fits.bvw"}, "expected a file ending in .csv, .npz, .xlsx, .sav or .dta, got fits.bvw (output)"),
)


class SameCalls(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)
        pandas.DataFrame(DATA).to_csv("d.csv", index=False)

    def command(self, *arguments):
        return subprocess.run([os.environ["BRENVOLT_PROGRAM"], *arguments], capture_output=True, text=True)

    def refused_by_command(self, *arguments):
        """How the call failed and what was said of it, options spelt as arguments."""
        done = self.command(*arguments)
        spelt = {**BY_HAND, **{option: name for name, option in OPTIONS.items()}}
        said = re.sub(r"\((--?[a-z-]+)\)", lambda o: "(" + spelt.get(o[1], o[1][2:].replace("-", "_")) + ")", done.stderr)
        return done.returncode, [line.removeprefix("brenvolt: ") for line in said.splitlines()]

    def refused_by_python(self, call):
        try:
            call()
        except ValueError as fault:
            return 2, str(fault).splitlines()
        except brenvolt.Error as error:
            return 1, str(error).splitlines()
        return 0, []

    def check_refusals(self, verb, file, call, table):
        for arguments, end in table:
            with self.subTest(verb, **arguments):
                refused = self.refused_by_command(verb, file, *words(arguments))
                self.assertEqual(refused, self.refused_by_python(lambda: call(arguments)))
                self.assertTrue(refused[1][-1].endswith(end), refused)
                self.assertFalse(os.path.exists("p.bvw"))

    def test_what_one_refuses_the_other_refuses(self):
        self.check_refusals("fit", "d.csv", lambda arguments: fit("d.csv", arguments), REFUSED_FITS)
        brenvolt.fit("d.csv", ["x", "n"], distributions=["normal"], save="fits.bvw")
        self.check_refusals("simulate", "fits.bvw", lambda arguments: brenvolt.simulate("fits.bvw", **arguments),
                            REFUSED_SIMULATIONS)
        self.check_refusals("profile", "d.csv", lambda arguments: brenvolt.profile("d.csv", **arguments),
                            REFUSED_PROFILES)
        self.check_refusals("capability", "d.csv", lambda arguments: brenvolt.capability("d.csv", **arguments),
                            REFUSED_CAPABILITIES)
        self.check_refusals("fit", "d.csv", lambda arguments: brenvolt.fit("d.csv", **arguments), REFUSED_CENSORED)
        application = brenvolt.Application()
        self.check_refusals("import", "d.csv", lambda arguments: application.import_file("d.csv", **arguments),
                            REFUSED_IMPORTS)
        self.check_refusals("export", "fits.bvw", lambda arguments: application.export_sheet("fits.bvw", **arguments),
                            REFUSED_EXPORTS)

    def test_what_a_macro_has_no_lines_for_is_refused_alike(self):
        refused = self.refused_by_command("fit", "d.csv", "--continuous", "x", "--censor", "w", "--record", "m.py")
        self.assertEqual(refused, (2, ["a fit of censored values cannot be recorded (record)"]))
        with brenvolt.record("m.py"):
            self.assertEqual(self.refused_by_python(lambda: brenvolt.fit("d.csv", "x", censor="w")), refused)
            self.assertEqual(self.refused_by_python(lambda: brenvolt.capability("d.csv", specifications=LIMITS)),
                             (2, ["the capability of a process cannot be recorded (record)"]))

    def test_a_profile_that_predicts_nothing_fails_for_the_same_reasons(self):
        arguments = {"formulas": ["y = ln(-1 - x * x)", "z = y + n"]}
        status, said = self.refused_by_command("profile", "d.csv", *words(arguments))
        with self.assertWarnsRegex(brenvolt.MessageWarning, "^Graph creation failed"):
            refused = self.refused_by_python(lambda: brenvolt.profile("d.csv", **arguments))
        self.assertEqual(refused, (status, said[1:]))
        self.assertEqual(refused, (1, ["no run has a prediction (y: the formula gives no number; "
                                       "z: field y, the value is missing)"]))

    def test_inputs_by_hand_are_refused_alike_by_all_jobs(self):
        for variables, pairs, said in REFUSED_INPUTS:
            options = [word for name, text in variables.items() for word in ("--variable", f"{name} ~ {text}")]
            options += [word for pair, value in pairs.items() for word in ("--correlation", f"{pair[0]},{pair[1]}={value!r}")]
            for verb, more, call in (
                    ("design", ["p.bvw"], lambda: brenvolt.design("p.bvw", variables, correlations=pairs)),
                    ("simulate", ["--method", "iman-conover", "-o", "s.csv"],
                     lambda: brenvolt.simulate(variables, 9, "iman-conover", correlations=pairs)),
                    ("profile", ["--formula", "y = h + c", "-o", "s.csv"],
                     lambda: brenvolt.profile(variables, formulas="y = h + c", correlations=pairs))):
                with self.subTest(verb, **{"variables": variables, "pairs": pairs}):
                    refused = self.refused_by_command(verb, *more, *options)
                    self.assertEqual(refused, self.refused_by_python(call))
                    self.assertEqual(refused[0], 2)
                    self.assertIn(said, refused[1][0])
                    self.assertFalse(os.path.exists("p.bvw") or os.path.exists("s.csv"))

    def test_a_design_has_a_project_in_a_folder_that_exists(self):
        for project in ("none/p.bvw", "p.csv"):
            refused = self.refused_by_command("design", "-o", project, "--variable", f"h ~ {NORMAL}")
            self.assertEqual((refused[0], len(refused[1])), (2, 1))
            python = self.refused_by_python(lambda: brenvolt.design(project, {"h": NORMAL}))
            self.assertEqual([line.replace("PROJECT.bvw", "project") for line in refused[1]], python[1])
            self.assertEqual(python[0], 2)
        self.assertEqual(self.refused_by_python(lambda: brenvolt.design("p.bvw", from_file="none.txt")),
                         self.refused_by_command("design", "p.bvw", "--from", "none.txt"))

    def test_data_without_fits_and_matrices_without_effect_are_refused_alike(self):
        self.assertEqual(self.refused_by_command("simulate", "d.csv"),
                         self.refused_by_python(lambda: brenvolt.simulate("d.csv")))
        brenvolt.fit("d.csv", ["x", "n"], distributions=["normal"], save="fits.bvw")
        matrix = pandas.DataFrame([[1, 0.5], [0.5, 1]], columns=["x", "n"])
        matrix.to_csv("m.csv", index=False)
        refused = self.refused_by_command("simulate", "fits.bvw", "--method", "monte-carlo", "--matrix", "m.csv")
        self.assertEqual(refused, self.refused_by_python(lambda: brenvolt.simulate("fits.bvw", method="monte-carlo",
                                                                                   matrix=matrix)))
        self.assertEqual(refused[0], 2)

    def test_files_are_read_alike_however_they_are_laid_out(self):
        with open("report.txt", "w", encoding="windows-1252") as file:
            file.write("Prüfer: Weiß\n\ngröße;n\n" + "".join(f"{i},5;{i % 3}\n" for i in range(1, 9)))
        done = self.command("fit", "report.txt", "--continuous", "größe,n", "--distributions", "normal", "--format", "json")
        self.assertEqual(done.stderr, "brenvolt: report.txt has windows-1252 text, fields separated by semicolons, decimal "
                                      "commas and the header in line 3\n")
        fitted = brenvolt.fit("report.txt", ["größe", "n"], distributions="normal")
        for expected in json.loads(done.stdout)["variables"]:
            self.compare(expected, fitted.variables[expected["name"]])
        self.assertEqual(fitted.summary.loc["größe", "mean"], 5)
        self.assertEqual("brenvolt: " + brenvolt.open_workbook("report.txt").read_as + "\n", done.stderr)
        with open("rare.csv", "w") as file:
            file.write("x\n" + "1.5\n2.5\n4\n" * 40 + "broken\n")
        self.assertEqual(self.refused_by_command("fit", "rare.csv"), self.refused_by_python(lambda: brenvolt.fit("rare.csv")))
        told = self.command("fit", "rare.csv", "--missing-text", "broken", "--distributions", "normal", "--format", "json")
        kept = brenvolt.fit("rare.csv", distributions="normal", missing_text="broken")
        self.compare(json.loads(told.stdout)["variables"][0], kept.variables["x"])
        with open("bare.csv", "w") as file:
            file.write("1.5,2\n2.5,3\n3.5,5\n")
        with self.assertWarnsRegex(brenvolt.MessageWarning, r"line 1 looks like data and is read as such.*\(header\)"):
            self.assertEqual(brenvolt.open_workbook("bare.csv").sheet().names, ["Var1", "Var2"])
        self.assertEqual(brenvolt.open_workbook("bare.csv", header=False).sheet().names, ["Var1", "Var2"])
        self.assertEqual(brenvolt.open_workbook("bare.csv", header=2).sheet().names, ["2.5", "3"])
        with self.assertRaisesRegex(TypeError, "unexpected keyword argument 'delimeter'"):
            brenvolt.fit("bare.csv", delimeter=";")
        for wrong, right in (("delimeter", "delimiter"), ("rankby", "rank_by"), ("quantile", "quantiles")):
            with self.subTest(wrong), self.assertRaisesRegex(TypeError, f"; did you mean {right!r}\\?$"):
                brenvolt.fit("bare.csv", **{wrong: ";"})
        with self.assertRaisesRegex(ValueError, "delimiter has no effect: data is a dict"):
            brenvolt.fit({"x": [1.0, 2.0]}, delimiter=";")

    def test_decimal_commas_are_read_alike(self):
        with open("comma.csv", "w") as file:
            file.write("temp;n\n" + "".join(f"{i},5;{i % 3}\n" for i in range(1, 9)))
        done = self.command("fit", "comma.csv", "--decimal-comma", "--distributions", "normal", "--format", "json")
        fitted = brenvolt.fit("comma.csv", distributions="normal", decimal_comma=True)
        for expected in json.loads(done.stdout)["variables"]:
            self.compare(expected, fitted.variables[expected["name"]])
        self.assertEqual(fitted.summary.loc["temp", "mean"], 5)
        profiled = brenvolt.profile("comma.csv", formulas="y = temp + n", samples=100, seed=1, decimal_comma=True)
        plain = brenvolt.profile(fitted.sheet, formulas="y = temp + n", samples=100, seed=1)
        pandas.testing.assert_frame_equal(profiled.samples, plain.samples)
        for call in (lambda data: brenvolt.fit(data, decimal_comma=True),
                     lambda data: brenvolt.profile(data, formulas="y = x", decimal_comma=True),
                     lambda data: brenvolt.score(OZONE, data, decimal_comma=True)):
            with self.assertRaisesRegex(ValueError, "decimal_comma has no effect: data is a dict"):
                call({"x": [1.0, 2, 3]})

    def test_all_faults_are_said_at_once(self):
        faults = self.refused_by_command("fit", "d.csv", *words(REFUSED_FITS[-1][0]))[1]
        self.assertEqual([fault[fault.rindex("("):] for fault in faults], ["(rank_by)", "(mixtures)", "(bootstrap)"])

    def test_fits_are_the_same(self):
        for name, arguments in FITS:
            with self.subTest(name, **arguments):
                file = os.path.join(EXAMPLES, name + ".csv")
                done = self.command("fit", file, *words(arguments), "--format", "json")
                saved = self.take("p.bvw")
                result = fit(file, arguments)
                self.assertEqual(saved, self.take("p.bvw"))
                report = json.loads(done.stdout)["variables"]
                self.assertEqual([variable["name"] for variable in report], list(result.variables))
                for expected in report:
                    self.compare(expected, result.variables[expected["name"]])

    def take(self, file):
        """The bytes of a file, which is then removed; None if it does not exist."""
        if not os.path.exists(file):
            return None
        with open(file, "rb") as content:
            found = content.read()
        os.remove(file)
        return found

    def compare(self, expected, variable):
        self.assertEqual((variable.kind, variable.n, variable.missing),
                         (expected["kind"], expected["n"], expected["missing"]))
        self.assertEqual(variable.cautions, [caution["message"] for caution in expected["cautions"]])
        self.assertEqual(variable.notes, expected["notes"])
        self.assertEqual(variable._quantiles, expected["quantiles"])
        rows = variable.fits.to_dict("records")
        for fitted, row, distribution in zip(expected["fits"], rows, variable.distributions, strict=True):
            for name in ("rank", "identifier", "distribution"):
                self.assertEqual(row[name], fitted[name])
            for text in ("reason", "origin", "note"):
                self.assertEqual(row[text], fitted[text] or "")
            if fitted["parameters"] is None:
                self.assertIsNone(distribution)
                continue
            self.assertEqual((distribution.code, distribution._values), (fitted["code"], fitted["parameters"]))
            self.compare_statistics(fitted, row)

    def compare_statistics(self, fitted, row):
        bootstrap = fitted["bootstrap"] or {}
        for column, expected in (("ks", fitted["kolmogorovSmirnov"]["statistic"]),
                                 ("ks_p", fitted["kolmogorovSmirnov"]["pValue"]), ("aic", fitted["aic"]),
                                 ("ad_p", fitted["andersonDarling"]["pValue"]), ("bic", fitted["bic"]),
                                 ("chi_square", fitted["chiSquare"]["statistic"]), ("offset", fitted["offset"]),
                                 ("chi_square_df", fitted["chiSquare"]["degreesOfFreedom"]),
                                 ("log_likelihood", fitted["logLikelihood"]),
                                 ("without_density", fitted["valuesWithoutDensity"]),
                                 ("bootstrap_ks_p", bootstrap.get("kolmogorovSmirnov"))):
            if column in row:
                value = row[column]
                self.assertTrue(value == expected or (expected is None and numpy.isnan(value)), (column, row, fitted))

    def test_samples_are_the_same(self):
        file = os.path.join(EXAMPLES, "faithful.csv")
        result = brenvolt.fit(file, save="fits.bvw")
        for arguments in SIMULATIONS:
            with self.subTest(**arguments):
                done = self.command("simulate", "fits.bvw", "--seed", "7", *words(arguments), "-o", "s.csv", "--format", "json")
                cautions = {}
                for caution in json.loads(done.stdout)["cautions"]:
                    cautions.setdefault(caution["variable"], []).append(caution["message"])
                expected = pandas.read_csv("s.csv", index_col="Sample #", float_precision="round_trip")
                for source in (result, "fits.bvw", brenvolt.open_workbook("fits.bvw")):
                    samples = brenvolt.simulate(source, seed=7, **arguments)
                    self.assertEqual(samples.attrs["method"], json.loads(done.stdout)["drawn"]["method"])
                    pandas.testing.assert_frame_equal(samples, expected, check_exact=True)
                    self.assertEqual(samples.attrs["cautions"], cautions)

    def test_profiles_are_the_same(self):
        file = os.path.join(EXAMPLES, "ozone.csv")
        for arguments in PROFILES:
            with self.subTest(**arguments):
                done = self.command("profile", file, "--seed", "7", *words(arguments), "-o", "r.csv", "--format", "json")
                report = json.loads(done.stdout)
                expected = pandas.read_csv("r.csv", float_precision="round_trip")
                for source in (file, pandas.read_csv(file), brenvolt.open_workbook(file)):
                    result = brenvolt.profile(source, seed=7, **arguments)
                    self.assertEqual((result.runs, result.seed), (report["runs"], report["seed"]))
                    numpy.testing.assert_array_equal(result.samples, expected[result.samples.columns])
                    self.assertEqual([response["name"] for response in report["responses"]], list(result.responses))
                    self.assertEqual({one["name"]: one["distribution"] for one in report["predictors"]},
                                     result.predictors)
                    for response in report["responses"]:
                        self.compare_response(response, result.responses[response["name"]])
                    self.assertEqual([defect["rate"] for defect in report["defects"]],
                                     result.defects["defect_rate"].tolist())

    def compare_response(self, expected, response):
        self.assertEqual(response.statistics["standard_deviation"], expected["statistics"]["standardDeviation"])
        self.assertEqual(response.r_squared, expected["rSquared"])
        tables = (("percentiles", "percent", {"value": "value", "lower": "lower"}),
                  ("frequencies", "class", {"count": "count", "from": "from"}),
                  ("correlations", "predictor", {"pearson": "pearson", "spearmanPValue": "spearman_p"}),
                  ("sensitivity", "predictor", {"contributionToVariance": "contribution_to_variance"}))
        for table, name, columns in tables:
            frame = getattr(response, table)
            self.assertEqual(frame.index.tolist(), [row[name] for row in expected[table]])
            for key, column in columns.items():
                given = [numpy.nan if row[key] is None else row[key] for row in expected[table]]
                numpy.testing.assert_array_equal(frame[column], given)
        self.assertEqual(response.unpredicted["runs"].tolist(), [one["runs"] for one in expected["unpredicted"]])
        for profile in expected["profiles"]:
            self.assertEqual(response.profiles[profile["predictor"]]["mean"].tolist(), profile["means"])
        capability = expected["capability"]
        for row, expected in (("overall_above", capability["overall"]["expectedPpm"]["above"]),
                              ("observed_below", capability["observedPpm"]["below"])):
            value = expected["value"] if isinstance(expected, dict) else expected
            numpy.testing.assert_equal(response.capability.loc[row, "value"], numpy.nan if value is None else value)
        self.assertEqual(response.capability_distribution, (capability["percentiles"] or {}).get("distribution", ""))

    def test_censored_fits_are_the_same(self):
        file = os.path.join(EXAMPLES, "generator_fans.csv")
        for arguments in CENSORED:
            with self.subTest(**arguments):
                done = self.command("fit", file, *words(arguments), "--format", "json")
                found = brenvolt.fit(file, **arguments)
                self.assertEqual(found.report, json.loads(done.stdout))
                hours = found.variables["hours"]
                self.assertEqual(hours.fits["distribution"][0], hours._fits[0]["distribution"])
                self.assertEqual(list(hours.standard_errors("weibull").values()),
                                 next(fit["standardErrors"] for fit in hours._fits if fit["distribution"] == "weibull"))

    def test_capabilities_are_the_same(self):
        for name, arguments in CAPABILITIES:
            file = os.path.join(EXAMPLES, name + ".csv")
            done = self.command("capability", file, *words(arguments), "--format", "json")
            expected = json.loads(done.stdout)
            for source in (file, pandas.read_csv(file), brenvolt.open_workbook(file)):
                with self.subTest(name, **arguments, source=type(source).__name__):
                    found = brenvolt.capability(source, **arguments)
                    self.assertEqual(found.report, expected)
                    self.assertEqual(found.indices.loc["ppk", "lower"], expected["indices"]["ppk"]["lower"])
                    self.assertEqual(found.ppm.loc[("observed", "above"), "value"],
                                     expected["ppm"]["observed"]["above"]["value"])
                    self.assertEqual(found.location["points"].tolist(), expected["stability"]["location"]["points"])

    def test_scores_are_the_same(self):
        file = os.path.join(EXAMPLES, "ozone.csv")
        for arguments in SCORES:
            with self.subTest(**arguments):
                self.command("score", OZONE, file, *words(arguments), "-o", "s.csv")
                expected = pandas.read_csv("s.csv", float_precision="round_trip")
                self.assertEqual(expected.pop("Case").tolist(), list(range(1, 331)))
                for source in (file, pandas.read_csv(file), brenvolt.open_workbook(file)):
                    scores = brenvolt.score(OZONE, source, **arguments)
                    pandas.testing.assert_frame_equal(scores, expected, check_exact=True, check_dtype=False)
        for data, options, status in (("d.csv", {}, 1), (file, {"probabilities": True}, 2), (file, {"keep": ["z"]}, 2)):
            refused = self.refused_by_command("score", OZONE, data, *words(options))
            self.assertEqual(refused, self.refused_by_python(lambda: brenvolt.score(OZONE, data, **options)))
            self.assertEqual(refused[0], status)

    def test_questions_are_answered_by_people_alone(self):
        brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), distributions="normal", save="p.bvw")
        matrix = {"sheet": "Correlation matrix", "distributions": ["normal"]}
        refused = self.refused_by_command("fit", "p.bvw", *words(matrix))
        self.assertEqual(refused, self.refused_by_python(lambda: brenvolt.fit("p.bvw", **matrix)))
        self.assertEqual((refused[0], len(refused[1])), (2, 1))
        self.assertEqual(refused[1], ["the rows of 'Correlation matrix' are those of a correlation matrix; confirm that they"
                                      " are meant as data (yes)"])
        self.command("export", "p.bvw:Correlation matrix", "-o", "m.csv")
        self.assertIn("the rows of 'm' are those of a correlation matrix", self.refused_by_command("fit", "m.csv")[1][0])
        self.assertEqual(self.command("fit", "p.bvw", *words(matrix), "--yes").returncode, 0)
        with self.assertWarnsRegex(brenvolt.MessageWarning, "valid Brenvolt matrix file"):
            self.assertEqual(list(brenvolt.fit("p.bvw", **matrix, yes=True).variables), ["eruptions", "waiting"])

    def test_bounds_without_values_are_refused_when_they_are_given(self):
        arguments = {"save": "p.bvw", "truncate": {"eruptions": (100, 200)}, "continuous": ["eruptions"],
                     "distributions": ["gaussianmixture", "triangular"]}
        file = os.path.join(EXAMPLES, "faithful.csv")
        refused = self.refused_by_command("fit", file, *words(arguments))
        self.assertEqual(refused, self.refused_by_python(lambda: fit(file, arguments)))
        self.assertRegex(refused[1][0], "'eruptions': the .* has no values within these bounds .truncate.$")
        self.assertFalse(os.path.exists("p.bvw"))


if __name__ == "__main__":
    unittest.main()
