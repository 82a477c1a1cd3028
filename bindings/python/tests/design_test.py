"""Designs by hand in Python: the same projects, bytes and refusals as by the command."""

import json
import math
import os
import subprocess
import tempfile
import unittest

import numpy
import pandas

import brenvolt
from brenvolt.distributions import Histogram, Normal, Poisson, Triangular, Weibull

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")
# The examples as the dialog of the design takes them: key, values, offset, then the bounds.
WITHOUT = [0, 0.0, 0, 0.0]
DIALOG = {
    "tolerance_stack": {
        "housing": ["Normal", 120.0, 0.04, *WITHOUT], "a": ["Normal", 30.0, 0.02, *WITHOUT],
        "b": ["Normal", 25.5, 0.02, *WITHOUT], "c": ["Triangular", 39.9, 40.1, 40.0, *WITHOUT],
        "d": ["LogNormal", 3.178, 0.001, 0.0, 1, 23.9, 1, 24.1]},
    "risk_register": {
        "foundations": ["Triangular", 180.0, 320.0, 220.0, *WITHOUT],
        "structure": ["Triangular", 900.0, 1400.0, 1050.0, *WITHOUT],
        "services": ["Triangular", 600.0, 1100.0, 750.0, *WITHOUT],
        "fitting": ["Normal", 420.0, 35.0, 1, 300.0, 0, 0.0],
        "planning": ["Normal", 160.0, 12.0, *WITHOUT], "fees": ["LogNormal", 4.6, 0.25, 0.0, *WITHOUT],
        "contaminated_soil": ["Histogram", 0.0, 0.85, 240.0, 0.15, *WITHOUT],
        "permit_delay": ["Histogram", 0.0, 0.7, 45.0, 0.2, 110.0, 0.1, *WITHOUT],
        "steel_price": ["Histogram", 0.0, 0.6, 80.0, 0.3, 190.0, 0.1, *WITHOUT],
        "contractor_fails": ["Histogram", 0.0, 0.96, 500.0, 0.04, *WITHOUT], "frost_days": ["Poisson", 6.0, *WITHOUT],
        "rework": ["Weibull", 30.0, 1.4, 0.0, *WITHOUT]}}
PAIRS = {"tolerance_stack": {("a", "b"): 0.6},
         "risk_register": {("structure", "services"): 0.5, ("structure", "steel_price"): 0.4}}


def by_dialog(name, samples, seed):
    """The samples of an example that is entered through the members of the dialogs."""
    distributions, pairs = DIALOG[name], PAIRS[name]
    names = list(distributions)
    application = brenvolt.Application()
    analysis = application.Analysis(application.NewSheet("Design"))
    analysis.dialog.TypeOfAnalysis = 2
    analysis.dialog.OK()
    design = analysis.dialog
    design.UserDefinedDesignMatrixVariableNames = names
    for place, specification in enumerate(distributions.values(), start=1):
        design.SimulationSpecificationOfVariable[place] = specification
    rows = numpy.eye(len(names))
    for (first, second), value in pairs.items():
        i, j = names.index(first), names.index(second)
        rows[i, j] = rows[j, i] = value
    design.UserDefinedDesignMatrixValues = rows.tolist()
    design.OK()
    simulation = analysis.dialog
    simulation.LHSwithImanMethod = True
    simulation.NumberOfSamples, simulation.IsSeedRandomNumber, simulation.RandomSeedNumber = samples, True, seed
    return simulation.SimulationResults.sheet.to_pandas()


def command(*arguments):
    done = subprocess.run([os.environ["BRENVOLT_PROGRAM"], *arguments], text=True, capture_output=True)
    assert done.returncode == 0, done.stderr
    return done.stdout


class Folder(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        former = os.getcwd()
        self.addCleanup(os.chdir, former)
        os.chdir(self.folder.name)


class Designs(Folder):
    def test_design_of_objects_is_the_one_of_the_notation(self):
        design = brenvolt.design("a.bvw", {"h": Normal(50.2, 0.05), "t": Weibull(3, 2, 10),
                                           "cost": "triangular(100, 180, 120) in [, 170]",
                                           "r": Histogram({0: 0.9, 25: 0.1})},
                                 correlations={("h", "cost"): 0.4})
        lines = str(design).splitlines()
        self.assertEqual(lines, ["h ~ normal(location=50.2, scale=0.05)", "t ~ weibull(scale=3, shape=2, offset=10)",
                                 "cost ~ triangular(min=100, max=180, mode=120) in [, 170]",
                                 "r ~ histogram(0:0.9, 25:0.1)", "correlation h, cost = 0.4"])
        self.assertEqual(design.correlations.loc["cost", "h"], 0.4)
        with open("plan.txt", "w") as file:
            file.write(str(design))
        again = brenvolt.design("b.bvw", from_file="plan.txt")
        self.assertEqual(str(again), str(design))
        first = brenvolt.simulate("a.bvw", 100, "iman-conover", seed=7)
        self.assertTrue(first.equals(brenvolt.simulate("b.bvw", 100, "iman-conover", seed=7)))

    def test_a_frame_of_correlations_and_later_changes(self):
        frame = brenvolt.design("a.bvw", {"x": "normal(0, 1)", "y": "normal(0, 1)"},
                                correlations={("x", "y"): -0.3}).correlations
        design = brenvolt.design("b.bvw", ["x ~ poisson(2)", "y ~ normal(1, 2)"], correlations=frame)
        self.assertEqual(design.correlations.loc["x", "y"], -0.3)
        self.assertEqual(brenvolt.design("b.bvw", {"x": "poisson(3)"}).variables,
                         {"x": "poisson(3)", "y": "normal(location=1, scale=2)"})

    def test_the_same_numbers_by_options_file_python_project_and_dialogs(self):
        how = ["--method", "latin-hypercube-iman-conover", "--samples", "500", "--seed", "7", "-o", "s.csv"]
        for name in DIALOG:
            with self.subTest(name):
                file = os.path.join(EXAMPLES, name + ".txt")
                with open(file, encoding="utf-8") as lines:
                    lines = [line.strip() for line in lines if line.strip() and not line.startswith("#")]
                variables = dict(line.split(" ~ ") for line in lines if "~" in line)
                options = [word for line in lines if "~" in line for word in ("--variable", line)]
                options += [word for pair, value in PAIRS[name].items()
                            for word in ("--correlation", f"{pair[0]},{pair[1]}={value}")]
                brenvolt.design("p.bvw", from_file=file)
                expected = by_dialog(name, 500, 7)
                for call in (["--from", file], options, ["p.bvw"]):
                    command("simulate", *call, *how)
                    samples = pandas.read_csv("s.csv", index_col="Sample #", float_precision="round_trip")
                    pandas.testing.assert_frame_equal(samples, expected, check_exact=True, check_dtype=False)
                matrix = pandas.DataFrame(numpy.eye(len(variables)), list(variables), list(variables))
                for (first, second), value in PAIRS[name].items():
                    matrix.loc[first, second] = matrix.loc[second, first] = value
                for correlations in (PAIRS[name], matrix, matrix.to_numpy()):
                    samples = brenvolt.simulate(variables, 500, "latin-hypercube-iman-conover", seed=7,
                                                correlations=correlations)
                    pandas.testing.assert_frame_equal(samples, expected, check_exact=True)
                samples = brenvolt.simulate(None, 500, "latin-hypercube-iman-conover", seed=7, from_file=file)
                pandas.testing.assert_frame_equal(samples, expected, check_exact=True)
                os.remove("p.bvw")

    def test_names_may_hold_the_signs_of_the_notation(self):
        names = ["a ~ b", "# of parts", "x, y = 1"]
        wanted = {("a ~ b", "# of parts"): 0.5, ("# of parts", "x, y = 1"): -0.25}
        samples = brenvolt.simulate({name: "normal(0, 1)" for name in names}, 50, "iman-conover", seed=1,
                                    correlations=wanted)
        self.assertEqual(list(samples), names)
        self.assertEqual(samples.attrs["correlations"]["asked"]["# of parts"],
                         {"a ~ b": 0.5, "# of parts": 1.0, "x, y = 1": -0.25})
        self.assertEqual(list(brenvolt.profile({name: Normal(0, 1) for name in names}, formulas="y = 'a ~ b' + 1",
                                               samples=200).predictors)[0],
                         "a ~ b")

    def test_samples_tell_what_they_were_drawn_from(self):
        inputs = {"h": Normal(50.2, 0.05), "cost": "triangular(100, 180, 120) in [, 170]", "n": Poisson(3)}
        wanted = {("h", "cost"): 0.9, ("h", "n"): 0.9, ("cost", "n"): -0.9}
        samples = brenvolt.simulate(inputs, 2000, "iman-conover", seed=3, correlations=wanted)
        attrs = samples.attrs
        self.assertEqual((attrs["method"], attrs["seed"]), ("iman-conover", 3))
        self.assertEqual(attrs["distributions"]["cost"], "triangular(min=100, max=180, mode=120) in [, 170]")
        self.assertEqual({pair: attrs["correlations"]["asked"][pair[0]][pair[1]] for pair in wanted}, wanted)
        self.assertEqual(json.loads(json.dumps(attrs)), attrs)
        self.assertIs(attrs["truncate"], False)
        repaired = pandas.DataFrame(attrs["repaired_matrix"])
        self.assertGreater(numpy.linalg.eigvalsh(repaired).min(), -1e-12)
        self.assertAlmostEqual(attrs["correlations"]["pearson"]["cost"]["h"], samples.corr().loc["h", "cost"],
                               places=12)
        again = brenvolt.simulate(attrs["distributions"], 2000, attrs["method"], seed=attrs["seed"],
                                  correlations=attrs["correlations"]["asked"])
        self.assertTrue(again.equals(samples))
        self.assertIsNone(brenvolt.simulate(inputs, 100).attrs["repaired_matrix"])
        pandas.concat([samples, again])  # which compares the attributes

    def test_simulations_are_repeated_from_their_reports(self):
        call = ["simulate", "--from", os.path.join(EXAMPLES, "risk_register.txt"), "--method", "iman-conover",
                "--samples", "300", "--format", "json", "-o", "first.csv"]
        report = json.loads(command(*call))
        text = command("simulate", "--from", os.path.join(EXAMPLES, "risk_register.txt"), "--method", "iman-conover",
                       "--samples", "300", "--seed", str(report["seed"]))
        with open("again.txt", "w", encoding="utf-8") as file:
            file.write(text[text.index("\nDrawn by iman-conover from\n"):].split("\n", 2)[2])
        command("simulate", "--from", "again.txt", "--method", report["drawn"]["method"], "--samples", "300", "--seed",
                str(report["seed"]), "-o", "second.csv")
        options = [word for one in report["drawn"]["variables"]
                   for word in ("--variable", f"{one['name']} ~ {one['distribution']}")]
        options += [word for one in report["drawn"]["correlations"]
                    for word in ("--correlation", f"{one['first']},{one['second']}={one['value']!r}")]
        command("simulate", *options, "--method", "iman-conover", "--samples", "300", "--seed", str(report["seed"]),
                "-o", "third.csv")
        for name in ("second.csv", "third.csv"):
            with open("first.csv", "rb") as first, open(name, "rb") as other:
                self.assertEqual(first.read(), other.read())

    def test_correlations_that_a_method_does_not_follow_are_said(self):
        file = os.path.join(EXAMPLES, "risk_register.txt")
        brenvolt.design("p.bvw", from_file=file)
        note = ("The correlations of 2 pairs, the strongest that of structure and services, 0.5, are left out: "
                "monte-carlo "
                "draws each variable by itself; the iman-conover methods follow correlations.")
        for source, given in (("p.bvw", {}), (None, {"from_file": file}), (brenvolt.design("p.bvw").variables, {})):
            notes = brenvolt.simulate(source, 50, "monte-carlo", seed=1, **given).attrs["notes"]
            self.assertEqual(notes, [note] if not isinstance(source, dict) else [])
        for source in (["p.bvw"], ["--from", file]):
            self.assertIn(f"\n  {note}\n", command("simulate", *source, "--method", "monte-carlo", "--samples", "50"))
            report = json.loads(command("simulate", *source, "--method", "monte-carlo", "--samples", "50", "--format",
                                        "json"))
            self.assertEqual((report["notes"], report["drawn"]["correlations"]), ([note], []))
        one = brenvolt.simulate("p.bvw", 50, "latin-hypercube", variables=["structure", "steel_price"]).attrs["notes"]
        self.assertEqual(one, ["The correlation of structure and steel_price, 0.4, is left out: latin-hypercube "
                               "draws each "
                               "variable by itself; the iman-conover methods follow correlations."])
        self.assertEqual(brenvolt.simulate("p.bvw", 50, variables=["structure"]).attrs["notes"], [])
        self.assertFalse([one for one in brenvolt.simulate("p.bvw", 50, "iman-conover").attrs["notes"]
                          if "left out" in one])
        fits = brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), distributions="normal")
        self.assertIn("eruptions and waiting, 0.9008", brenvolt.simulate(fits, 50, "monte-carlo").attrs["notes"][0])

    # The mean of a triangular distribution between bounds by its closed form: the density is linear on each side of the
    # mode, and the integral of x (x - a) is x^3 / 3 - a x^2 / 2.
    def test_truncated_triangular_has_its_exact_mean(self):
        low, high, mode, below, above = 100.0, 180.0, 120.0, 110.0, 170.0

        def rising(x, power):
            return ((x**3 / 3 - low * x**2 / 2) if power else (x**2 / 2 - low * x)) * 2 / ((high - low) * (mode - low))

        def falling(x, power):
            return ((high * x**2 / 2 - x**3 / 3) if power
                    else (high * x - x**2 / 2)) * 2 / ((high - low) * (high - mode))

        share, moment = (rising(mode, p) - rising(below, p) + falling(above, p) - falling(mode, p) for p in (0, 1))
        samples = brenvolt.simulate({"x": f"triangular({low}, {high}, {mode}) in [{below}, {above}]"}, 100000,
                                    "latin-hypercube", seed=5)["x"]
        self.assertAlmostEqual(samples.mean(), moment / share, places=3)
        self.assertTrue(samples.between(below, above).all())

    def test_matrices_of_every_odd_kind(self):
        names = ["h", "a"]
        inputs = {name: Normal(0, 1) for name in names}
        good = pandas.DataFrame([[1, 0.5], [0.5, 1]], names, names)
        expected = brenvolt.simulate(inputs, 200, "iman-conover", seed=1, correlations=good)
        off = good.copy()
        off.iloc[0, 1] += 4e-10
        good.to_csv("m.csv")
        for matrix in (off, good.to_numpy(), {("h", "a"): 0.5}):
            self.assertTrue(brenvolt.simulate(inputs, 200, "iman-conover", seed=1,
                                              correlations=matrix).equals(expected))
        for matrix in ("m.csv", good):
            self.assertTrue(brenvolt.simulate(inputs, 200, "iman-conover", seed=1, matrix=matrix).equals(expected))
        command("simulate", "--variable", "h ~ normal(0, 1)", "--variable", "a ~ normal(0, 1)", "--matrix", "m.csv",
                "--method", "iman-conover", "--samples", "200", "--seed", "1", "-o", "s.csv")
        samples = pandas.read_csv("s.csv", index_col="Sample #", float_precision="round_trip")
        pandas.testing.assert_frame_equal(samples, expected, check_exact=True)
        for place, value, message in (((0, 1), 0.4, "not symmetric: 0.5 in row a, column h, but 0.4 in row h, column "
                                                    "a"),
                                      ((0, 0), 0.9, "with itself is not 1"), ((0, 1), 1.5, "not between -1 and 1"),
                                      ((0, 1), math.nan, "missing")):
            wrong = good.copy()
            wrong.iloc[place] = value
            for call in (lambda: brenvolt.simulate(inputs, 9, "iman-conover", correlations=wrong),
                         lambda: brenvolt.simulate(inputs, 9, "iman-conover", matrix=wrong),
                         lambda: brenvolt.design("x.bvw", inputs, correlations=wrong)):
                with self.assertRaisesRegex((ValueError, brenvolt.Error), message):
                    call()
        sheet = brenvolt.Spreadsheet("m")
        sheet["h"], sheet["a"] = [1, 0.4, 0, 1, 1, 1], [0.5, 1, 0, 1, math.nan, math.nan]
        sheet.is_matrix = True
        brenvolt.design("two.bvw", inputs)
        for source in (inputs, "two.bvw"):
            with self.assertRaisesRegex(brenvolt.Error, "not symmetric: 0.4 in row a, column h, but 0.5 in row h, "
                                                        "column a"):
                brenvolt.simulate(source, 9, "iman-conover", matrix=sheet)
        with self.assertRaisesRegex(brenvolt.Error, "not symmetric"):
            brenvolt.profile(inputs, formulas="y = h + a", matrix=sheet)
        for matrix, message in ((good.rename(index={"a": "b"}), 'called "b", not a'), (good.iloc[:1], "has 1 rows"),
                                (good.rename(index={"a": "z"}, columns={"a": "z"}), "no variable is called 'z'"),
                                (numpy.eye(3), "has 3 rows and 3 columns for 2 variables: h, a"),
                                (pandas.DataFrame(numpy.eye(3)), "for 2 variables: h, a"),
                                (numpy.ones(2), "the array has 1 axes")):
            with self.assertRaisesRegex(ValueError, message):
                brenvolt.simulate(inputs, 9, "iman-conover", correlations=matrix)
        lacking = good.rename(index={"a": "z"}, columns={"a": "z"})
        lacking.to_csv("z.csv")
        note = "The matrix lacks a, which counts as uncorrelated."
        self.assertEqual(brenvolt.simulate(inputs, 99, "iman-conover", matrix=lacking).attrs["notes"], [note])
        self.assertIn(note, brenvolt.profile(inputs, formulas="y = h + a", matrix=lacking, samples=99).notes)
        self.assertEqual(brenvolt.design("y.bvw", inputs, matrix="z.csv").notes, [note])
        os.remove("y.bvw")
        self.assertIn(f"\n# {note}\n", command("design", "y.bvw", "--variable", "h ~ normal(0, 1)", "--variable",
                                               "a ~ normal(0, 1)", "--matrix", "z.csv"))
        unlabelled = brenvolt.simulate(inputs, 200, "iman-conover", seed=1,
                                       correlations=pandas.DataFrame(good.to_numpy()))
        self.assertTrue(unlabelled.equals(expected), "labels that are none stand for the order of the variables")
        profiled = lambda *given, **how: brenvolt.profile(given[0], formulas="y = h + a", matrix=how["matrix"])
        for call in (brenvolt.simulate, profiled):
            with self.assertRaisesRegex(ValueError, "matrix does not name the variables"):
                call(inputs, 9, "iman-conover", matrix=good.to_numpy())
        self.assertFalse(os.path.exists("x.bvw"))

    def test_refusals_are_those_of_the_command(self):
        for variables, correlations in [({"h": "nomral(1, 2)"}, None), ({"h": "normal(1, 0)"}, None),
                                        ({"h": "normal(1, 1)"}, {("h", "x"): 0.5}), ({"h": "histogram(0:0.5)"}, None),
                                        ({"h": "normal(1, 1)", "a": "poisson(1)"}, {("h", "a"): 1.5})]:
            with self.assertRaises(ValueError) as raised:
                brenvolt.design("plan.bvw", variables, correlations=correlations)
            call = [os.environ["BRENVOLT_PROGRAM"], "design", "plan.bvw"]
            for name, text in variables.items():
                call += ["--variable", f"{name} ~ {text}"]
            for pair, value in (correlations or {}).items():
                call += ["--correlation", f"{pair[0]},{pair[1]}={value!r}"]
            done = subprocess.run(call, text=True, capture_output=True)
            self.assertEqual(done.returncode, 2, done.stderr)
            message = str(raised.exception).split(" (")[0]
            self.assertIn(message, done.stderr)
            self.assertFalse(os.path.exists("plan.bvw"))
        with self.assertRaises(TypeError):
            brenvolt.design("plan.bvw", {"h": 3})


GAP = "gap = housing - a - b - c - d"


class Profiles(Folder):
    def compare(self, report, result):
        self.assertEqual({one["name"]: one["distribution"] for one in report["predictors"]}, result.predictors)
        self.assertEqual({(one["first"], one["second"]): one["value"] for one in report["drawn"]["correlations"]},
                         result.correlations)
        for response in report["responses"]:
            self.assertEqual(response["statistics"]["mean"], result.responses[response["name"]].statistics["mean"])

    # The variance of the gap is the sum of the variances and of twice the covariance of a and b; the triangular one has
    # (range / 2)^2 / 6, the log-normal one, whose bounds lie four deviations off, (0.001 * 24)^2.
    def test_a_formula_over_designed_variables_needs_no_data(self):
        file = os.path.join(EXAMPLES, "tolerance_stack.txt")
        how = {"formulas": GAP, "samples": 20000, "seed": 7, "specifications": {"gap": (0.3, None, 0.7)}}
        report = json.loads(command("profile", "--from", file, "--formula", GAP, "--samples", "20000", "--seed", "7",
                                    "--spec", "gap=0.3,,0.7", "--format", "json"))
        result = brenvolt.profile(from_file=file, **how)
        self.compare(report, result)
        brenvolt.design("stack.bvw", from_file=file)
        designed = brenvolt.profile("stack.bvw", **how)
        self.assertEqual((designed.predictors, designed.correlations), (result.predictors, result.correlations))
        self.assertTrue(designed.samples.equals(result.samples))
        self.assertEqual(result.correlations, {("a", "b"): 0.6})
        statistics = result.responses["gap"].statistics
        variance = 0.04**2 + 2 * 0.02**2 * 1.6 + 0.1**2 / 6 + (0.001 * 24) ** 2
        self.assertAlmostEqual(statistics["mean"], 120 - 30 - 25.5 - 40 - math.exp(3.178 + 5e-7), delta=1e-4)
        self.assertAlmostEqual(statistics["standard_deviation"], math.sqrt(variance), delta=0.02 * math.sqrt(variance))
        again = brenvolt.profile(result.predictors, correlations=result.correlations, **how)
        self.assertTrue(again.samples.equals(result.samples))
        brenvolt.design("stack.bvw", from_file=file)
        for data, options in (("stack.bvw", {"correlated": True}), (None, {"from_file": file})):
            self.assertTrue(brenvolt.profile(data, **options, **how).samples.equals(result.samples), data)

    def test_profiles_are_repeated_from_their_reports(self):
        frame = pandas.DataFrame({"a": numpy.sin(numpy.arange(60.0)), "b": numpy.cos(numpy.arange(60.0)),
                                  "c": numpy.arange(60.0)})
        frame.to_csv("d.csv", index=False)
        how = ["--formula", "y = a + b + c", "--formula", "z = a * c", "--noise", "y=0.5", "--noise", "z=1",
               "--noise-correlation", "y,z=0.3", "--samples", "400", "--format", "json"]
        for options in ([], ["--correlated"], ["--fix", "c=3", "--truncate", "a=-1:2"],
                        ["--fit-best", "--correlation", "a,c=-0.5"],
                        ["--correlation", "a,c=0"], ["--variable", "c ~ poisson(4)"]):
            report = json.loads(command("profile", "d.csv", *how, *options, "-o", "first.csv"))
            drawn, fixed = report["drawn"], {one["predictor"]: one["value"] for one in report["drawn"]["fixed"]}
            variables = {one["name"]: one["distribution"] for one in report["predictors"] if one["name"] not in fixed}
            again = ["profile", "--samples", str(report["runs"]), "--seed", str(report["seed"]), "--format", "json",
                     "-o", "again.csv"]
            for option, values in (("--formula", drawn["formulas"]),
                                   ("--noise-correlation", drawn["noiseCorrelations"]),
                                   ("--variable", [f"{name} ~ {text}" for name, text in variables.items()]),
                                   ("--fix", [f"{name}={value!r}" for name, value in fixed.items()]),
                                   ("--noise", [f"{one['response']}={one['standardDeviation']!r}"
                                                for one in drawn["noise"]]),
                                   ("--correlation", [f"{one['first']},{one['second']}={one['value']!r}"
                                                      for one in drawn["correlations"]])):
                again += [word for value in values for word in (option, value)]
            repeated = json.loads(command(*again))
            self.assertEqual(repeated["drawn"], drawn, options)
            with open("first.csv", "rb") as first, open("again.csv", "rb") as other:
                self.assertEqual(first.read(), other.read(), options)
            result = brenvolt.profile("d.csv", formulas=drawn["formulas"], noise={"y": 0.5, "z": 1},
                                      seed=report["seed"],
                                      noise_correlations={("y", "z"): 0.3}, samples=400, variables=variables,
                                      fixed=fixed,
                                      correlations={(one["first"], one["second"]): one["value"]
                                                    for one in drawn["correlations"]})
            self.assertEqual((result.method, result.fixed), (drawn["method"], fixed))
            runs = pandas.read_csv("first.csv", float_precision="round_trip")[list(result.samples)]
            numpy.testing.assert_array_equal(result.samples.to_numpy(float), runs.to_numpy(float))

    def test_profiles_draw_the_saved_fits(self):
        data = Weibull(80, 1.5).ppf((numpy.arange(500) + 0.5) / 500)
        frame = pandas.DataFrame({"life": data, "load": numpy.arange(500.0)})
        brenvolt.fit(frame, distributions=["weibull", "normal"], save="p.bvw")
        brenvolt.design("p.bvw", {"load": "normal(100, 20) in [50, ]"})
        report = json.loads(command("profile", "p.bvw", "--formula", "y = life + load", "--samples", "100000", "--seed",
                                    "3", "--format", "json", "-o", "r.csv"))
        drawn = {one["name"]: one["distribution"] for one in report["predictors"]}
        self.assertEqual(drawn["load"], "normal(location=100, scale=20) in [50, ]")
        self.assertTrue(drawn["life"].startswith("weibull(scale="), drawn)
        runs = pandas.read_csv("r.csv", float_precision="round_trip")
        fitted = dict(part.split("=") for part in drawn["life"][len("weibull("):-1].split(", "))
        life = numpy.sort(runs["life"])
        cdf = Weibull(**{name: float(value) for name, value in fitted.items()}).cdf(life)
        places = numpy.arange(len(life))
        distance = max((cdf - places / len(life)).max(), ((places + 1) / len(life) - cdf).max())
        self.assertLess(distance * math.sqrt(len(life)), 1.63, "the 1 % point of Kolmogorov's distribution")
        self.assertGreaterEqual(runs["load"].min(), 50)
        self.compare(report, brenvolt.profile("p.bvw", formulas="y = life + load", samples=100000, seed=3))
        plain = brenvolt.profile("p.bvw", formulas="y = life + load", seed=3, saved_fits=False)
        self.assertTrue(plain.predictors["life"].startswith("normal("), plain.predictors)
        given = brenvolt.profile("p.bvw", formulas="y = life + load", seed=3, variables={"load": Poisson(4)})
        self.assertEqual(given.predictors["load"], "poisson(4)")
        self.assertEqual(given.predictors["life"], drawn["life"])

    def test_a_design_is_taken_as_it_is(self):
        variables, pair = {"h": "normal(0, 1)", "c": "weibull(80, 1.5)"}, {("h", "c"): 0.5}
        design = brenvolt.design("p.bvw", variables, correlations=pair)
        how = {"method": "iman-conover", "seed": 1}
        for given, correlations in ((None, pair), ({("c", "h"): -0.4}, {("h", "c"): -0.4})):
            frame = brenvolt.simulate(design, 500, correlations=given, **how)
            expected = brenvolt.simulate(variables, 500, correlations=correlations, **how)
            self.assertTrue(frame.equals(expected), given)
        result = brenvolt.profile(design, formulas="y = h + c", seed=1)
        self.assertEqual(result.correlations, pair)

    def test_noise_follows_its_correlations(self):
        how = {"formulas": ["y = x", "z = 2 * x"], "noise": {"y": 1, "z": 2}, "seed": 1, "samples": 20000}
        runs = brenvolt.profile({"x": Triangular(0, 10, 4)}, noise_correlations={("y", "z"): -0.7}, **how).samples
        noise = (runs["y"] - runs["x"], runs["z"] - 2 * runs["x"])
        self.assertAlmostEqual(numpy.corrcoef(*noise)[0, 1], -0.7, delta=0.02)
        self.assertAlmostEqual(noise[1].std(), 2, delta=0.05)

    def test_any_number_of_runs_is_summarized_as_one_sample(self):
        call = ["profile", "--variable", "x ~ weibull(80, 1.5)", "--variable", "n ~ poisson(3)", "--formula",
                "y = ln(x - 1) + n", "--spec", "y=0,,11", "--samples", "250000", "--seed", "3", "--format", "json"]
        report = json.loads(command(*call, "-o", "r.csv"))
        runs = pandas.read_csv("r.csv", float_precision="round_trip")
        self.assertEqual((report["runs"], len(runs)), (250000, 250000))
        self.assertFalse(runs["x"].duplicated().any(), "every batch has draws of its own")
        response, valid = report["responses"][0], runs["y"].dropna()
        self.assertEqual(response["statistics"]["n"], len(valid))
        self.assertEqual(response["statistics"]["missing"], 250000 - len(valid))
        report_again = json.loads(command(*call, "-o", "r.npz"))
        self.assertEqual(report_again["responses"], report["responses"])
        with numpy.load("r.npz") as columns:
            self.assertEqual(list(columns), ["x", "n", "y"])
            for name in columns:
                numpy.testing.assert_array_equal(columns[name], runs[name].to_numpy(float))
        self.assertFalse([name for name in os.listdir() if name.startswith(".")], "nothing temporary is left")
        self.assertGreater(response["statistics"]["missing"], 100, "runs without a prediction are met")
        for key, expected in (("mean", valid.mean()), ("standardDeviation", valid.std()), ("skewness", valid.skew()),
                              ("kurtosis", valid.kurt()), ("minimum", valid.min()), ("maximum", valid.max())):
            self.assertAlmostEqual(response["statistics"][key], expected, places=8)
        for row in response["percentiles"]:
            self.assertAlmostEqual(row["value"], valid.quantile(row["percent"] / 100), places=12)
            self.assertLessEqual(row["lower"], row["value"])
            self.assertLessEqual(row["value"], row["upper"])
        for defects in report["defects"]:
            self.assertEqual((defects["defects"], defects["runs"]),
                             (int(((valid < 0) | (valid > 11)).sum()), len(valid)))
            self.assertLess(defects["rateInterval"]["lower"], defects["rate"])
        result = brenvolt.profile({"x": Weibull(80, 1.5), "n": Poisson(3)}, formulas="y = ln(x - 1) + n",
                                  specifications={"y": (0, None, 11)}, samples=250000, seed=3)
        self.compare(report, result)
        self.assertEqual(result.defects["defects"].tolist(), [one["defects"] for one in report["defects"]])
        self.assertTrue(any("all runs" in note for note in result.notes), result.notes)
        first = brenvolt.profile({"x": Weibull(80, 1.5), "n": Poisson(3)}, formulas="y = ln(x - 1) + n", samples=83334,
                                 seed=3)
        self.assertTrue(first.samples.equals(result.samples), "the first batch has the seed that was given")

    def test_a_function_is_a_model(self):
        inputs = {"x": Triangular(0, 10, 4), "z": Normal(5, 1)}
        how = {"samples": 70000, "seed": 4, "specifications": {"y": (None, None, 12)}, "noise": {"y": 0.5}}
        by_formula = brenvolt.profile(inputs, formulas="y = x + z", **how)
        blocks = []

        def y(x, z=None):
            blocks.append(len(x))
            return x + z

        by_function = brenvolt.profile(y, inputs, **how)
        self.assertEqual(blocks, [65536, 70000 - 65536])
        self.assertEqual(list(by_function.predictors), ["x", "z"])
        self.assertTrue(by_function.samples.equals(by_formula.samples))
        self.assertTrue(by_function.responses["y"].sensitivity.equals(by_formula.responses["y"].sensitivity))
        self.assertTrue(by_function.responses["y"].capability.equals(by_formula.responses["y"].capability))
        self.assertTrue(by_function.defects.equals(by_formula.defects))
        two = brenvolt.profile(lambda columns: {"b": columns["x"] * 2, "a": columns["z"]}, inputs, responses=["a", "b"],
                               seed=1)
        self.assertEqual(list(two.responses), ["a", "b"])
        self.assertTrue((two.samples["b"] == 2 * two.samples["x"]).all())
        over_data = brenvolt.profile(lambda eruptions, waiting: waiting / eruptions,
                                     os.path.join(EXAMPLES, "faithful.csv"), responses="ratio", seed=1, correlated=True)
        self.assertEqual(list(over_data.predictors), ["eruptions", "waiting"])
        with self.assertRaisesRegex(ValueError, "cannot be recorded"), brenvolt.record("m.py"):
            brenvolt.profile(y, inputs)

    def test_a_response_without_a_name_gets_one_that_no_input_has(self):
        inputs = {"x": Normal(0, 1), "y": Normal(0, 1)}
        for function, name, count in ((lambda x, y: x + y, "response", 2), (lambda x: 2 * x, "y", 1),
                                      (lambda *all_: all_[0] - all_[1], "response", 2), (numpy.add, "add", 2)):
            result = brenvolt.profile(function, inputs, samples=500, seed=1)
            self.assertEqual((list(result.responses), len(result.predictors)), ([name], count))
        self.assertTrue((result.samples["add"] == result.samples["x"] + result.samples["y"]).all())
        sines = brenvolt.profile(numpy.sin, {"x": Normal(0, 1)}, samples=500, seed=1).samples
        self.assertTrue((sines["sin"] == numpy.sin(sines["x"])).all())

    def test_variables_that_nothing_reads_are_left_out_with_a_note(self):
        inputs = {"x": Normal(0, 1), "unused": Poisson(3), "z": Normal(0, 1)}
        expected = brenvolt.profile({name: inputs[name] for name in "xz"}, formulas="y = x + z", samples=500, seed=1)
        note = "Variables that nothing reads are left out: unused."
        for arguments in ((inputs, None, "y = x + z"), (lambda x, z: x + z, inputs)):
            result = brenvolt.profile(*arguments, samples=500, seed=1)
            self.assertEqual(result.notes, [*expected.notes, note])
            self.assertTrue(result.samples.equals(expected.samples))
        self.assertNotIn(note, expected.notes)
        with self.assertRaisesRegex((ValueError, brenvolt.Error),
                                    "no predictor called 'q'; the predictors are eruptions"):
            brenvolt.profile(os.path.join(EXAMPLES, "faithful.csv"), formulas="y = eruptions",
                             variables={"q": Poisson(3)})

    def test_what_a_function_gets_wrong_is_said_with_its_block(self):
        inputs = {"x": Normal(0, 1)}

        def failing(x):
            if len(x) < 65536:
                raise ZeroDivisionError("no width")
            return x

        cases = ((lambda x: x[:-1], "expected 500 numbers; the function gave an array of shape .499,. .<lambda>, "
                                    "runs 1 to 500"),
                 (lambda x: 3.5, "the function gave a float"),
                 (lambda x: numpy.log(x), "run .* has no number but nan; of the block"),
                 (lambda x: x.astype(str), "expected 500 numbers; the function gave an array of type <U"),
                 (lambda x: x + 1j, "expected 500 numbers; the function gave an array of type complex128"),
                 (lambda x: {"z": x}, "no column 'y'"),
                 (lambda x: numpy.outer(x, x), "an array of shape"), (lambda x: None, "the function gave a NoneType"))
        for function, message in cases:
            with self.assertRaisesRegex(brenvolt.Error, message):
                brenvolt.profile(function, inputs, samples=500, seed=1)
        message = "ZeroDivisionError: no width .failing, runs 65537 to 70000"
        with self.assertRaisesRegex(brenvolt.Error, message) as raised:
            brenvolt.profile(failing, inputs, samples=70000, seed=1)
        self.assertIsInstance(raised.exception.__cause__, ZeroDivisionError)
        with self.assertRaisesRegex(brenvolt.Error, "runs 80001 to 145536|runs 100001 to|runs 75001 to"):
            calls = []
            brenvolt.profile(lambda x: x if not calls.append(1) and len(calls) < 3 else x[1:], inputs, samples=150000,
                             seed=1)
        for responses, message in (([], "one response or more"), (["a", "b", "a"], "names 'a' twice"),
                                   ("x", "the response 'x' is an input of the function as well")):
            with self.assertRaisesRegex(ValueError, message):
                brenvolt.profile(lambda x: x, inputs, responses=responses)

        class Silent(Exception):
            def __str__(self):
                raise RuntimeError("no text")

        def silent(x):
            raise Silent

        with self.assertRaisesRegex(brenvolt.Error, "the function failed with Silent .silent, runs 1 to 500"):
            brenvolt.profile(silent, inputs, samples=500, seed=1)
        for function, message in ((numpy.add, "add takes 2 inputs, in their order; the inputs are x"),
                                  (lambda a, b: a, "takes a, b, which no input is called; the inputs are x"),
                                  (lambda: 1, "takes no parameters")):
            with self.assertRaisesRegex(ValueError, message):
                brenvolt.profile(function, inputs)
        with self.assertRaises(KeyboardInterrupt):
            brenvolt.profile(lambda x: (_ for _ in ()).throw(KeyboardInterrupt()), inputs)
        with self.assertRaisesRegex(ValueError, "responses are those of a function"):
            brenvolt.profile(inputs, formulas="y = x", responses="y")

    def test_refused_profiles_are_refused_alike(self):
        x = {"x": "normal(0, 1)"}
        cases = (({"variables": {"q": "normal(0, 1)"}}, "give it a distribution, or fix it at a value"),
                 ({"variables": {"x": "normal(0, -1)"}}, "(variables)"),
                 ({"variables": x, "correlations": {("x", "q"): 0.5}}, "no variable is called 'q' (correlations)"),
                 ({"variables": {**x, "n": "poisson(3)"}, "noise_correlations": {("y", "z"): 0.5}},
                  "(noise_correlations)"),
                 ({"variables": x}, "give it a distribution, or fix it at a value"))
        for arguments, end in cases:
            with self.assertRaises((ValueError, brenvolt.Error)) as raised:
                brenvolt.profile({}, formulas="y = x + n", **arguments)
            said = str(raised.exception)
            self.assertTrue(said.endswith(end), said)
            options = [word for name, text in arguments.get("variables", {}).items()
                       for word in ("--variable", f"{name} ~ {text}")]
            for argument, option in (("correlations", "--correlation"), ("noise_correlations", "--noise-correlation")):
                options += [word for pair, value in arguments.get(argument, {}).items()
                            for word in (option, f"{pair[0]},{pair[1]}={value}")]
            done = subprocess.run([os.environ["BRENVOLT_PROGRAM"], "profile", "--formula", "y = x + n", *options],
                                  text=True, capture_output=True)
            self.assertNotEqual(done.returncode, 0)
            if "variables" in arguments:
                self.assertIn(said.split(" (")[0], done.stderr)


if __name__ == "__main__":
    unittest.main()
