"""The common jobs in one call: known answers, data in every form, and clear faults. That the command gives the same
is in same_calls_test.py."""

import os
import subprocess
import tempfile
import unittest
import warnings

import numpy
import pandas

import brenvolt
from brenvolt import Error, MessageWarning, Spreadsheet

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")


def example(name):
    return os.path.join(EXAMPLES, name + ".csv")


# y is 3 for the grade high, else 1.
GRADES = """<PMML version="4.4" xmlns="http://www.dmg.org/PMML-4_4"><Header/><DataDictionary>
<DataField name="grade" optype="categorical" dataType="string"><Value value="high"/><Value value="low"/></DataField>
<DataField name="y" optype="continuous" dataType="double"/></DataDictionary>
<RegressionModel functionName="regression"><MiningSchema><MiningField name="grade"/>
<MiningField name="y" usageType="target"/></MiningSchema><RegressionTable intercept="1">
<CategoricalPredictor name="grade" value="high" coefficient="2"/></RegressionTable></RegressionModel></PMML>"""


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def file(self, name):
        return os.path.join(self.folder, name)

    def command(self, *arguments):
        done = subprocess.run([os.environ["BRENVOLT_PROGRAM"], *arguments], cwd=self.folder, check=True,
                              capture_output=True, text=True)
        return done.stdout


class Scores(Folder):
    def test_cases_without_prediction_have_reasons(self):
        data = self.file("cases.csv")
        with open(data, "w") as file:
            file.write("temp,ibh,ibt\n40,2693,87\n41,,128\n")
        model = os.path.join(EXAMPLES, "ozone_regression.pmml")
        predictions = brenvolt.Application().score(model, data)
        self.assertEqual(predictions.unpredicted, [{"field": "ibh", "reason": "missing", "value": None, "lowest": None,
                                                    "highest": None, "count": 1}])
        self.assertEqual(brenvolt.Application().score(model, example("ozone")).unpredicted, [])
        self.assertEqual(brenvolt.score(model, data).attrs["unpredicted"], predictions.unpredicted)

    def test_predictions_have_the_index_of_their_frame(self):
        model = os.path.join(EXAMPLES, "ozone_regression.pmml")
        frame = pandas.read_csv(example("ozone")).set_index("doy").tail(3)
        scores = brenvolt.score(model, frame, keep="O3")
        self.assertEqual(scores.index.tolist(), frame.index.tolist())
        self.assertEqual(list(scores.columns), ["O3 (data)", "O3"])

    def test_a_profile_fails_for_its_reason_and_not_for_an_earlier_notice(self):
        with open(self.file("grades.pmml"), "w") as file:
            file.write(GRADES)
        data = pandas.DataFrame({"grade": ["high", "low", "mid", "high"]})
        notice = "Cases of grade whose class is unknown to every model are left out: mid (1)"
        with self.assertWarnsRegex(MessageWarning, "^Cases of grade"):
            with self.assertRaises(ValueError) as raised:
                brenvolt.profile(data, self.file("grades.pmml"), seed=1, fixed={"grade": "odd"})
        self.assertIn("unknown class: odd; the classes are high, low", str(raised.exception))
        with self.assertWarnsRegex(MessageWarning, "^Cases of grade"):
            result = brenvolt.profile(data, self.file("grades.pmml"), seed=1)
        self.assertEqual(result.notes, [notice])
        self.assertEqual(result.responses["y"].profiles["grade"]["value"].tolist(), ["high", "low"])

    def test_outputs_that_cannot_be_given_are_named(self):
        model = os.path.join(EXAMPLES, "../host/models/reference/exports/models/RegressionExport.pmml")
        frame = brenvolt.score(model, {"x": [1.0, 2.0]})
        self.assertEqual(list(frame.columns), ["y", "double"])
        self.assertEqual(list(frame.attrs["unavailable_outputs"]), ["error", "ofError"])


class Fits(Folder):
    def test_known_answers(self):
        """Weibull by mpmath, generalized extreme value as printed by Coles (2001)."""
        beef = brenvolt.fit(pandas.read_csv(example("groundbeef")))
        weibull = beef.variables["serving"].distribution("weibull")
        self.assertAlmostEqual(weibull.scale, 83.34666883163219, places=9)
        self.assertAlmostEqual(weibull.shape, 2.185612332259384, places=9)
        sea = brenvolt.fit(example("portpirie_sea_level")).variables["sealevel"]
        self.assertEqual([round(sea.best.parameters[name], 3) for name in ("location", "scale", "shape")],
                         [3.875, 0.198, -0.05])
        errors = sea.standard_errors("gev")
        self.assertEqual([round(errors[name], 2) for name in ("location", "scale", "shape")], [0.03, 0.02, 0.10])

    def test_data_in_any_form_give_the_same_fit(self):
        frame = pandas.read_csv(example("faithful"))
        sheet = brenvolt.read_csv(example("faithful"))
        workbook = brenvolt.open_workbook(example("faithful"))
        expected = brenvolt.fit(frame, "waiting").best["waiting"]
        for data in (sheet, workbook, example("faithful"), frame["waiting"], {"waiting": frame["waiting"].tolist()},
                     Spreadsheet.from_pandas(frame)):
            self.assertEqual(brenvolt.fit(data, "waiting").best["waiting"], expected)
        self.assertEqual(brenvolt.fit(frame["waiting"].to_numpy()).best["x"], expected)
        self.assertEqual(brenvolt.fit(frame.to_numpy()).best["x2"], expected)
        self.assertEqual(brenvolt.fit(pandas.DataFrame(frame.to_numpy()), 1).best["1"], expected)

    def test_texts_are_left_out_and_a_variable_without_a_fit_has_none(self):
        frame = pandas.DataFrame({"x": numpy.arange(20.0), "same": 3.0, "machine": ["a", "b"] * 10})
        with self.assertWarnsRegex(MessageWarning, "text variables are left out: machine") as warned:
            result = brenvolt.fit(frame)
        self.assertEqual(warned.filename, __file__)
        self.assertEqual(list(result.best), ["x"])
        self.assertEqual(result.variables["same"].fits.shape[0], 0)
        self.assertIsNone(result.variables["same"].best)

    def test_the_best_fit_of_counts_is_no_histogram(self):
        toxocara = brenvolt.fit(example("toxocara"), discrete="number").variables["number"]
        self.assertEqual(toxocara.fits["distribution"][0], "Histogram")
        self.assertEqual(type(toxocara.best).__name__, toxocara.fits["distribution"][1])
        self.assertAlmostEqual(toxocara.distribution("poisson").mean(), 8.679, places=3)
        self.assertEqual(toxocara.distribution("histogram").pmf(0), 14 / 53)

    def test_weights_count_cases(self):
        plain = brenvolt.fit({"x": [1.0, 2, 2, 4, 4, 4]}, distributions="normal").best["x"]
        weighted = brenvolt.fit({"x": [1.0, 2, 4], "w": [1, 2, 3]}, weights="w", distributions="normal")
        self.assertEqual(list(weighted.variables), ["x"])
        self.assertAlmostEqual(weighted.best["x"].scale, plain.scale, places=12)

    def test_tables_of_other_libraries_are_taken_by_what_they_offer(self):
        frame = pandas.DataFrame({"x": [1.0, 2, 4, numpy.nan], "t": ["a", "b", "a", None]})

        class Exchanged:
            def __dataframe__(self, nan_as_null=False, allow_copy=True):
                return frame.__dataframe__(nan_as_null, allow_copy)

        class Converted(Exchanged):
            def to_pandas(self):
                return frame

        class WithoutItsPart(Exchanged):
            def to_pandas(self):
                raise ModuleNotFoundError("pyarrow")

        expected = brenvolt.fit(frame, distributions="normal").best["x"]
        for table in (Exchanged(), Converted(), WithoutItsPart()):
            with self.subTest(type(table).__name__):
                self.assertEqual(brenvolt.fit(table, distributions="normal").best["x"], expected)

    def test_a_column_asked_for_is_refused_by_its_kind(self):
        frame = pandas.DataFrame({"x": [1.0, 2, 4], "when": pandas.period_range("2020-01", periods=3, freq="M")})
        with self.assertRaisesRegex(TypeError, "column 'when' holds period values"):
            brenvolt.fit(frame, ["x", "when"])
        with self.assertWarnsRegex(MessageWarning, "left out: when"):
            self.assertEqual(list(brenvolt.fit(frame, distributions="normal").variables), ["x"])
        columns = {"x": [1.0, 2, 4], "when": list(frame["when"]), "c": [1j, 2j, 3j]}
        with self.assertWarnsRegex(MessageWarning, r"left out: when \(period\), c \(complex\)"):
            self.assertEqual(list(brenvolt.fit(columns, distributions="normal").variables), ["x"])
        with self.assertRaisesRegex(TypeError, "column 'c' holds complex values"):
            brenvolt.fit({"x": [1.0, 2, 4], "c": [1j, 2j, 3j]}, ["x", "c"])

    def test_counts_and_truth_values_are_offered_as_discrete(self):
        frame = pandas.DataFrame({"x": [1.5, 2, 4, 3], "n": [0, 2, 0, 5], "b": [True, False, True, True]})
        with self.assertWarnsRegex(MessageWarning, "may be counts.*given as discrete: n, b$"):
            brenvolt.fit(frame, distributions="normal")
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            brenvolt.fit(frame, "x", discrete=["n", "b"], distributions=["normal", "poisson"])
        offered = {"true": pandas.array([True, None, True], dtype="boolean"), "false": [False] * 3,
                   "rating": [3, 4, 4], "defects": list(range(22)) * 2 + [None]}
        others = {"constant": [5.0] * 3, "year": [2001, 2002, 2002], "once": [0, 1, 2], "half": [0, 0.5, 0.5]}
        for name, column in {**offered, **others}.items():
            with warnings.catch_warnings(record=True) as caught:
                warnings.simplefilter("always")
                brenvolt.fit(pandas.DataFrame({name: column, "z": numpy.arange(len(column)) + 0.5}), distributions="normal")
            self.assertEqual(len(caught), name in offered, name)

    def test_a_summary_has_identifiers_for_keys(self):
        result = brenvolt.fit({"x": [1.0, 2, 4], "n": [0.0, 2, 2]}, continuous="x", discrete="n")
        self.assertEqual(result.summary.columns[:5].tolist(), ["kind", "n", "missing", "mean", "standard_deviation"])
        self.assertEqual(result.summary["kind"].to_dict(), {"x": "continuous", "n": "discrete"})
        self.assertEqual(result.summary.loc["x", "maximum"], 4)

    def test_the_best_fit_follows_the_order(self):
        result = brenvolt.fit(example("faithful"), "waiting", distributions=["normal", "weibull"])
        for first in ("Normal", "Weibull"):
            result.keep(order={"waiting": [first]})
            self.assertEqual(type(result.best["waiting"]).__name__, first)

    def test_a_sheet_keeps_its_own_weights_and_selection(self):
        sheet = Spreadsheet.from_pandas(pandas.DataFrame({"x": [1.0, 2, 3, 5, 8, 13], "w": [1, 1, 1, 2, 2, 2],
                                                          "v": [1, 1, 1, 1, 1, 2]}))
        workbook = brenvolt.Workbook()
        workbook.add(sheet)
        wanted = {"weights": "w", "select": "x > 2", "distributions": "normal"}
        for weight, selection in ((None, None), ("v", "x < 9")):
            sheet.weight_variable, sheet.selection = weight, selection
            result = brenvolt.fit(workbook, "x", **wanted, save=self.file("own.bvw"))
            for refused in ({"continuous": "z", **wanted}, {**wanted, "offsets": {"x": {"normal": 1}}},
                            {"weights": "w", "select": "x >"}):
                with self.assertRaises(ValueError):
                    brenvolt.fit(sheet, **refused)
            self.assertEqual((sheet.weight_variable, sheet.selection), (weight, selection))
            # Outputs are still those of the fit.
            self.assertEqual(result.variables["x"].n, 7)
            self.assertEqual(result.variables["x"].graph("histogram").bars[0]["heights"].sum(), 7)
            self.assertEqual(result.keep().to_pandas().loc["No.Cases", "x"], 7)
            self.assertEqual((sheet.weight_variable, sheet.selection), (weight, selection))
            saved = brenvolt.open_workbook(self.file("own.bvw")).sheet()
            self.assertEqual((saved.weight_variable, saved.selection), ("w", "x > 2"))
        own = brenvolt.fit({"x": [1.0, 2, 3, 5]}, select="x > 1", distributions="normal")
        self.assertEqual(own.sheet.selection, "x > 1")

    def test_data_of_a_wrong_type_are_refused_at_once(self):
        with warnings.catch_warnings():
            warnings.simplefilter("error")
            for data in (None, [], 5, b"12", numpy.zeros((2, 2, 2)), object()):
                with self.assertRaisesRegex(TypeError, "data must be a Series, DataFrame, mapping"):
                    brenvolt.fit(data)
            for source in (pandas.DataFrame({"x": [1.0]}), None, 5):
                with self.assertRaisesRegex(TypeError, "simulate needs a project, a fit result or distributions by name, not "):
                    brenvolt.simulate(source)

    def test_columns_that_are_none_are_refused_by_name(self):
        cases = (({"x": 5}, TypeError, "column 'x' must be an array or list of values, not int"),
                 ({"x": "abc"}, TypeError, "column 'x' must be an array or list of values, not str"),
                 ({"x": None}, TypeError, "column 'x' must be an array or list of values, not NoneType"),
                 ({"x": numpy.zeros((2, 2))}, ValueError, "column 'x' must have one axis, not 2"),
                 ({"x": [1.0, 2], "y": [1.0]}, ValueError, "column 'y' has 1 values, the ones before have 2"),
                 ({"x": [1, 10**400]}, ValueError, "column 'x' holds a number that is too large"),
                 ({}, TypeError, "and not empty"), ({1.0, 2.0}, TypeError, "not set"))
        for data, kind, message in cases:
            with self.subTest(message), self.assertRaisesRegex(kind, message):
                brenvolt.fit(data)

    def test_rows_and_records_are_tables(self):
        records = numpy.array([(1, 2.5), (2, 3.0), (4, 7.0)], dtype=[("a", int), ("b", float)])
        self.assertEqual(list(brenvolt.fit(records, distributions="normal").variables), ["a", "b"])
        rows = brenvolt.fit([[1, 2.5], [2, 3.0], [4, numpy.ma.masked]], distributions="normal")
        self.assertEqual([(one.n, one.missing) for one in rows.variables.values()], [(3, 0), (2, 1)])

    def test_a_sheet_cannot_be_chosen_where_there_is_none_to_choose(self):
        sheet = Spreadsheet.from_pandas(pandas.DataFrame({"x": [1.0, 2, 4]}))
        result = brenvolt.fit(sheet, distributions="normal")
        for call in (lambda: brenvolt.fit(sheet, sheet="s"), lambda: brenvolt.simulate(result, sheet="s"),
                     lambda: brenvolt.simulate(sheet, sheet="s")):
            with self.assertRaisesRegex(ValueError, "sheet has no effect: (data|source) is a (Spreadsheet|FitResult)"):
                call()
        with self.assertRaisesRegex(TypeError, "sheet must be a name, not int"):
            brenvolt.simulate(result, sheet=5)

    def test_calls_of_a_wrong_type_say_which(self):
        data = {"x": [1.0, 2, 3, 4]}
        formula = {"data": data, "formulas": "y = x"}
        model = os.path.join(EXAMPLES, "ozone_regression.pmml")
        result = brenvolt.fit(data, distributions="normal")
        cases = ((brenvolt.simulate, {"source": result, "samples": "5"}, "samples must be a number, not str"),
                 (brenvolt.simulate, {"source": result, "seed": True}, "seed must be a number, not bool"),
                 (brenvolt.simulate, {"source": result, "truncate": (0, 1)}, "truncate must be True or False, not tuple"),
                 (brenvolt.simulate, {"source": result, "matrix": 5}, "matrix must be a square DataFrame, .*, not int"),
                 (brenvolt.profile, {**formula, "models": [5]}, r"models\[0\] must be a path, not int"),
                 (brenvolt.profile, {"data": data, "formulas": 5}, "formulas must be a formula or several, not int"),
                 (brenvolt.profile, {**formula, "fixed": {"x": None}},
                  r"fixed\['x'\] must be a number or the name of a class, not NoneType"),
                 (brenvolt.profile, {**formula, "specifications": {"y": 5}},
                  r"specifications\['y'\] must be \(lower limit, target, upper limit\), not int"),
                 (brenvolt.score, {"model": model, "data": data, "sheet": 5}, "sheet must be a name, not int"),
                 (result.save, {"path": 5}, "path must be a path, not int"),
                 (result.variables["x"].graph, {"kind": []}, "kind must be a text, not list"),
                 (result.variables["x"].distribution, {"name": 5}, "distribution must be a text, not int"))
        for call, arguments, message in cases:
            with self.subTest(message), self.assertRaisesRegex((TypeError, ValueError), message):
                call(**arguments)
        with self.assertRaisesRegex(ValueError, r"specifications\['y'\] must be .*, not 2 values"):
            brenvolt.profile(**formula, specifications={"y": (1, 2)})

    def test_calls_that_make_no_sense_are_refused(self):
        data = {"x": [1.0, 2, 3, 4], "y": [1.0, 2, 3, 5]}
        cases = [({"distributions": "weibul"}, ValueError, r"no distribution called 'weibul'; did you mean weibull\? The distributions are normal"),
                 ({"continuous": "x", "discrete": "x"}, ValueError, "as continuous and as discrete"),
                 ({"rank_by": "caic"}, ValueError,
                  r"expected one of aic, anderson-darling, bic, chi-square, ks; got 'caic'; did you mean aic\? \(rank_by\)$"),
                 ({"rank_by": "caic", "binning": "x", "save": "p.csv"}, ValueError,
                  r"\(rank_by\)\n.*\(binning\)\n.*ending in .bvw, got p.csv \(save\)$"),
                 ({"continuous": "z"}, ValueError, "no variable called 'z'"),
                 ({"select": "x >"}, ValueError, "selection condition"),
                 ({"bootstrap": "9"}, TypeError, "bootstrap must be a number, not str"),
                 ({"rank_by": 3}, TypeError, "rank_by must be a text, not int"),
                 ({"mixtures": 3}, TypeError, "mixtures must be a mapping {variable: components}, not int"),
                 ({"mixtures": {"x": "3"}}, TypeError, r"mixtures\['x'\] must be a number, not str"),
                 ({"trials": [1]}, TypeError, "trials must be a mapping"),
                 ({"offsets": {"x": 1}}, TypeError, r"offsets\['x'\] must be a mapping {distribution: offset}"),
                 ({"offsets": {"x": {"weibull": "1"}}}, TypeError, r"offsets\['x'\]\['weibull'\] must be a number"),
                 ({"continuous": 3.5}, TypeError, "continuous must be a name or names, not float"),
                 ({"weights": 3}, TypeError, "weights must be a text, not int"),
                 ({"select": ["x > 1"]}, TypeError, "select must be a text, not list"),
                 ({"continuous": [None]}, TypeError, r"continuous\[0\] must be a name, not NoneType"),
                 ({"distributions": [5]}, TypeError, r"distributions\[0\] must be a name, not int"),
                 ({"bootstrap": True}, TypeError, "bootstrap must be a number, not bool"),
                 ({"bootstrap": 10**400}, ValueError, "bootstrap is too large a number"),
                 ({"yes": 1}, TypeError, "yes must be True or False, not int"),
                 ({"offsets": {"x": {"weibull": 10**400}}}, ValueError, r"\['weibull'\] is too large a number"),
                 ({"trials": {"x": True}}, TypeError, r"trials\['x'\] must be a number, not bool"),
                 ({"save": 3}, TypeError, "save must be a path, not int"),
                 ({"save": ""}, ValueError, r"expected a value, got an empty text \(save\)"),
                 ({"sheet": ""}, ValueError, r"expected a value, got an empty text \(sheet\)"),
                 ({"continuous": ["x", ""]}, ValueError, r"expected a value, got an empty text \(continuous\)"),
                 ({"sheet": 3}, TypeError, "sheet must be a name, not int")]
        for arguments, kind, message in cases:
            with self.assertRaisesRegex(kind, message):
                brenvolt.fit(data, **arguments)

    def test_a_notebook_shows_all_fits(self):
        result = brenvolt.fit({"a<b": [1.0, 2, 3, 5]}, distributions=["normal", "weibull"])
        html = result._repr_html_()
        for shown in ("a&lt;b", "Normal", "Weibull", "ks_p"):
            self.assertIn(shown, html)
        self.assertIn("Mean", result.dialog.SummaryStats._repr_html_())

    def test_graphs_are_of_the_variable_and_fit_asked_for(self):
        result = brenvolt.fit(example("faithful"))
        for name, variable in result.variables.items():
            title = variable.graph("histogram", "weibull")
            self.assertIn(name, f"{title.Title} {title.XAxisTitle}")
            self.assertRegex(title.curves[0]["formula"], "(?i)weib")
        with self.assertRaisesRegex(ValueError, "kind must be one of histogram"):
            variable.graph("pie")


class Simulations(Folder):
    def test_samples_follow_a_matrix(self):
        result = brenvolt.fit(example("faithful"))
        names = ["eruptions", "waiting"]
        wanted = pandas.DataFrame([[1, -0.5], [-0.5, 1]], names, names)
        for matrix in (wanted, wanted.to_numpy().tolist()):
            if isinstance(matrix, list):
                matrix = pandas.DataFrame(matrix, columns=names)
            samples = brenvolt.simulate(result, 5000, "iman-conover", seed=1, matrix=matrix)
            self.assertAlmostEqual(samples.corr("spearman").iloc[0, 1], -0.5, delta=0.03)
        self.assertAlmostEqual(result.correlations().loc["eruptions", "waiting"], 0.9008, places=4)

    def test_bounds_and_order_are_kept(self):
        result = brenvolt.fit(example("portpirie_sea_level"))
        result.save(self.file("sea.bvw"), truncate={"sealevel": (3.6, None)}, order={"sealevel": ["weibull", "gev"]})
        variable = brenvolt.open_workbook(self.file("sea.bvw")).sheet().variable("sealevel")
        self.assertEqual(variable.properties["zOrder"], "Weibull;General Extreme Value;")
        samples = brenvolt.simulate(self.file("sea.bvw"), 5000, seed=1)["sealevel"]
        self.assertGreaterEqual(samples.min(), 3.6)
        self.assertEqual(samples.index[[0, -1]].tolist(), [1, 5000])

    def test_results_of_one_sheet_do_not_mix(self):
        sheet = brenvolt.read_csv(example("faithful"))
        weibull = brenvolt.fit(sheet, "waiting", distributions="weibull")
        normal = brenvolt.fit(sheet, "waiting", distributions="normal")
        other = brenvolt.fit(sheet, "eruptions", distributions="normal")
        expected = [brenvolt.simulate(result, 50, seed=1) for result in (weibull, normal, other)]
        self.assertEqual([list(samples) for samples in expected], [["waiting"], ["waiting"], ["eruptions"]])
        self.assertFalse((expected[0] == expected[1]).to_numpy().any())
        again = [brenvolt.simulate(result, 50, seed=1) for result in (weibull, normal, other)]
        for former, latter in zip(expected, again):
            pandas.testing.assert_frame_equal(former, latter)

    def test_fit_saves_as_the_command_does(self):
        frame = pandas.read_csv(example("faithful"))
        sheet = Spreadsheet.from_pandas(frame, "faithful")
        brenvolt.fit(sheet, save=self.file("own.bvw"))
        self.command("fit", example("faithful"), "--save", "geyser.bvw")
        with open(self.file("own.bvw"), "rb") as own, open(self.file("geyser.bvw"), "rb") as commands:
            self.assertEqual(own.read(), commands.read())
        # A second save into the project leaves one sheet, whose fits it renews.
        workbook = brenvolt.open_workbook(self.file("own.bvw"))
        brenvolt.fit(workbook, distributions="weibull", save=self.file("own.bvw"))
        self.assertEqual(brenvolt.open_workbook(self.file("own.bvw")).names, ["faithful", "Correlation matrix"])
        sheet["waiting"] = sheet["waiting"] + 1
        with self.assertRaisesRegex(Error, "with other data"):
            brenvolt.fit(sheet, save=self.file("own.bvw"))

    def test_what_cannot_be_simulated_is_told(self):
        result = brenvolt.fit(example("faithful"))
        cases = [(lambda: brenvolt.simulate(result, method="sobol"), ValueError, "expected one of "),
                 (lambda: brenvolt.simulate(result, method="monte-carlo", matrix="m.csv"), ValueError, "only methods that induce"),
                 (lambda: brenvolt.simulate(result, 10, "iman-conover", matrix="none.csv"), Error, "neither a sheet"),
                 (lambda: brenvolt.simulate(result, 10, "iman-conover", matrix=[[1, 2, 3]]), ValueError, "does not name the variables"),
                 (lambda: brenvolt.simulate(result, 0), ValueError, "from 1 to 1000000000000, got 0"),
                 (lambda: brenvolt.simulate(result, 10, "norta"), Error, "no generator"),
                 (lambda: brenvolt.simulate(result, variables="none"), ValueError, "no variable called 'none'"),
                 (lambda: brenvolt.simulate(example("faithful"), 10), Error, "."),
                 (lambda: result.keep(truncate={"z": (1, 2)}), ValueError, r"'z' is not fitted \(truncate\)"),
                 (lambda: result.keep(truncate={"waiting": 50}), TypeError, r"truncate\['waiting'\] must be \(low, high\), not int"),
                 (lambda: result.keep(order=["weibull"]), TypeError, "order must be a mapping"),
                 (lambda: result.save(self.file("p.csv")), ValueError, "ending in .bvw")]
        for call, kind, message in cases:
            with self.assertRaisesRegex(kind, message):
                call()


class Messages(unittest.TestCase):
    EVIL = "a\x1b[2Jb\x9b31mc\u202ed"
    SHOWN = "a\\u001b[2Jb\\u009b31mc\\u202ed"

    def test_text_from_outside_does_not_steer_a_terminal(self):
        data = os.path.join(EXAMPLES, "faithful.csv")
        calls = (lambda: brenvolt.fit(self.EVIL + ".csv"), lambda: brenvolt.fit(data, continuous=[self.EVIL]),
                 lambda: brenvolt.fit(data, distributions=[self.EVIL]), lambda: brenvolt.fit(data, sheet=self.EVIL),
                 lambda: brenvolt.profile(data, formulas=[f"y = waiting + '{self.EVIL}'"]))
        for number, call in enumerate(calls):
            with self.subTest(number), self.assertRaises((brenvolt.Error, ValueError)) as raised:
                call()
            self.assertIn(self.SHOWN, str(raised.exception), number)
            self.assertFalse(set("\x1b\x9b\u202e") & set(str(raised.exception)), number)
        with self.assertRaises(brenvolt.Error) as raised:
            brenvolt.fit(self.EVIL + ".csv")
        self.assertEqual(raised.exception.where, self.EVIL + ".csv")

    def test_an_empty_name_of_a_file_is_a_wrong_call(self):
        data = os.path.join(EXAMPLES, "faithful.csv")
        sheet = brenvolt.read_csv(data)
        application = brenvolt.Application()
        result = brenvolt.fit(data)
        calls = {"path": (lambda: sheet.to_csv(""), lambda: sheet.to_npz(""), lambda: sheet.to_file(""),
                          lambda: brenvolt.read_csv(""), lambda: brenvolt.Workbook().save(""), lambda: result.save(""),
                          lambda: result.report(""), lambda: brenvolt.record("").__enter__()),
                 "output": (lambda: application.import_file(data, ""), lambda: application.export_sheet("p.bvw", ""),
                            lambda: brenvolt.profile(data, formulas=["y = waiting"], output="")),
                 "source": (lambda: application.export_sheet("", "x.csv"),),
                 "file": (lambda: application.import_file("", "p.bvw"),),
                 "save": (lambda: brenvolt.fit(data, save=""),)}
        for field, group in calls.items():
            for number, call in enumerate(group):
                with self.subTest(field=field, number=number), self.assertRaises(ValueError) as raised:
                    call()
                self.assertEqual(str(raised.exception), f"expected a value, got an empty text ({field})")


if __name__ == "__main__":
    unittest.main()
