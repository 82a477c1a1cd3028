"""Graphs drawn with matplotlib, and saved as the command draws them."""

import gc
import json
import math
import os
import re
import subprocess
import sys
import tempfile
import unittest
import weakref

os.environ["MPLBACKEND"] = "Agg"

import matplotlib.colors
import matplotlib.pyplot
import numpy
import pandas

import brenvolt

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")
OZONE = {"data": os.path.join(EXAMPLES, "ozone.csv"), "models": os.path.join(EXAMPLES, "ozone_regression.pmml"),
         "seed": 7}


def snake(name):
    return re.sub("[A-Z]", lambda letter: "_" + letter[0].lower(), name)


class Plots(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.fits = brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), distributions=["weibull", "normal"])
        cls.waiting = cls.fits.variables["waiting"]

    def tearDown(self):
        matplotlib.pyplot.close("all")

    def test_bars_and_curve_are_those_of_the_graph(self):
        graph = self.waiting.graph("histogram")
        axes = graph.plot()
        heights = [patch.get_height() for patch in axes.patches]
        numpy.testing.assert_array_equal(heights, graph.bars[0]["heights"])
        self.assertEqual([patch.get_x() for patch in axes.patches], list(graph.bars[0]["bounds"][:-1]))
        numpy.testing.assert_array_equal(axes.lines[0].get_ydata(), graph.curves[0]["y"])
        self.assertEqual(axes.get_title(), "Histogram of waiting")
        self.assertEqual(axes.get_xlabel(), "waiting")

    def test_colours_are_those_of_the_pictures_that_are_saved(self):
        graph = self.waiting.graph("histogram")
        axes = graph.plot()
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "g.svg")
            graph.save(path)
            with open(path, encoding="utf-8") as file:
                saved = file.read().lower()
        for drawn in (axes.patches[0].get_facecolor(), axes.patches[0].get_edgecolor(), axes.lines[0].get_color()):
            self.assertIn(matplotlib.colors.to_hex(drawn), saved)

    def test_every_kind_draws_on_the_axes_given(self):
        for kind in ("histogram", "cumulative-histogram", "pp", "qq", "empirical-distribution", "box-plot"):
            given = matplotlib.pyplot.subplots()[1]
            self.assertIs(self.waiting.plot(kind, ax=given), given)
            self.assertTrue(given.lines or given.patches, kind)
            given.figure.canvas.draw()

    def test_several_variables_have_axes_of_their_own(self):
        axes = self.fits.plot("qq")
        self.assertEqual([one.get_title() for one in axes], ["Q-Q Plot of eruptions", "Q-Q Plot of waiting"])
        given = matplotlib.pyplot.subplots(1, 2)[1]
        self.assertEqual(list(self.fits.plot(ax=given)), list(given))
        with self.assertRaisesRegex(ValueError, "2 axes are needed, not 1"):
            self.fits.plot(ax=given[0])

    def test_a_summary_is_drawn_for_one_variable_at_a_time(self):
        with self.assertRaisesRegex(ValueError, r"one at a time: variables\['eruptions'\]\.plot\('summary'\)"):
            self.fits.plot("summary")

    def test_return_levels_are_drawn_as_the_command_does(self):
        graph = self.waiting.graph("return-levels", "normal")
        self.assertEqual(graph.title, "Return levels of waiting")
        line = next(one for one in graph.series if one["style"] == "line")
        expected = self.waiting.distribution("normal").ppf(math.exp(-math.exp(-line["x"][50])))
        self.assertAlmostEqual(line["y"][50], expected, 9)

    def test_a_variable_without_fits_is_drawn_by_its_data(self):
        fits = brenvolt.fit({"x": [1.0, 2, 4, 3, 6, 5], "flat": [3.0] * 6}, distributions=["normal"])
        axes = fits.plot("histogram")
        self.assertEqual([len(one.lines) + len(one.patches) > 0 for one in axes], [True, True])
        self.assertEqual(fits.variables["flat"].distributions, [])
        self.assertIn("<svg", fits.variables["flat"]._repr_html_())
        self.assertEqual(len(fits.plot("qq")), 2)

    def test_a_graph_of_panels_draws_each(self):
        axes = self.waiting.plot("summary")
        self.assertEqual(len(axes), 4)
        self.assertEqual(axes[1].get_title(), "Box Plot of waiting")

    def test_a_graph_saves_as_the_command_draws_it(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "g.svg")
            self.waiting.graph("histogram").save(path, theme="dark", width=640)
            with open(path, encoding="utf-8") as file:
                picture = file.read()
            self.assertIn(">Histogram of waiting</text>", picture)
            self.assertIn('viewBox="0 0 640', picture)
            with self.assertRaisesRegex(ValueError, "expected a file ending in .png, .svg or .pdf"):
                self.waiting.graph("histogram").save(os.path.join(folder, "g.gif"))

    def test_dialogs_save_graphs_as_pictures(self):
        with tempfile.TemporaryDirectory() as folder:
            dialog = self.fits.dialog
            dialog.ResultsSaveFileName = os.path.join(folder, "qq.svg")
            dialog.QQPlot
            with open(os.path.join(folder, "qq.svg"), encoding="utf-8") as file:
                self.assertIn("Q-Q Plot of", file.read())
            for name, message in (("t.png", "a table goes into .csv, .npz, .xlsx, .sav, .dta or .bvw"),
                                  ("t.gif", "in .json, .png, .svg or .pdf")):
                with self.assertRaisesRegex(brenvolt.Error, message):
                    dialog.ResultsSaveFileName = os.path.join(folder, name)
                    dialog.SummaryStats
            self.assertEqual(os.listdir(folder), ["qq.svg"])

    def test_fit_simulate_and_profile_write_pictures(self):
        with tempfile.TemporaryDirectory() as folder:
            path = lambda name: os.path.join(folder, name)
            brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), plot=path("{name}.png"), plot_kind="qq")
            brenvolt.simulate(self.fits, method="iman-conover", seed=1, plot=path("pairs.svg"))
            brenvolt.profile(**OZONE, plot=path("response.pdf"))
            self.assertEqual(sorted(os.listdir(folder)), ["eruptions.png", "pairs.svg", "response.pdf", "waiting.png"])
            with open(path("pairs.svg"), encoding="utf-8") as file:
                self.assertRegex(file.read(), r">reached 0\.\d+</text>")

    def test_reports_are_those_of_the_command(self):
        with tempfile.TemporaryDirectory() as folder:
            def text(name):
                with open(os.path.join(folder, name), encoding="utf-8") as file:
                    return file.read()

            data = os.path.join(EXAMPLES, "faithful.csv")
            fits = brenvolt.fit(data, distributions=["normal"], select="waiting > 60",
                                report=os.path.join(folder, "f.html"), save=os.path.join(folder, "p.bvw"))
            self.assertIn("brenvolt fit " + data, text("f.html"))
            fits.report(os.path.join(folder, "f.md"))
            self.assertIn("Cases with: waiting &gt; 60", text("f.md"))
            self.fits.report(os.path.join(folder, "again.html"))
            frame = brenvolt.open_workbook(data).sheet("")
            brenvolt.fit(frame, distributions=["normal"], select="waiting > 70", report=os.path.join(folder, "lent.md"))
            self.assertIn("Cases with: waiting &gt; 70", text("lent.md"))
            self.assertIn("no command repeats this", text("lent.md"))
            brenvolt.simulate({"a": "normal(0, 1)"}, 100, report=os.path.join(folder, "s.md"))
            self.assertRegex(text("s.md"), r"brenvolt simulate --variable 'a ~ normal\(0, 1\)' --method monte-carlo")
            brenvolt.profile(lambda a: a * a, {"a": "normal(0, 1)"}, samples=200, report=os.path.join(folder, "r.html"))
            self.assertIn("no command repeats this", text("r.html"))
            brenvolt.open_workbook(os.path.join(folder, "p.bvw")).report(os.path.join(folder, "p.html"))
            self.assertIn("<title>Project p.bvw</title>", text("p.html"))
            with self.assertRaisesRegex(ValueError, "expected a file ending in .html, .md, .pdf or .xlsx"):
                fits.report(os.path.join(folder, "f.doc"))

    def test_responses_draw_as_the_command_draws_them(self):
        found = brenvolt.profile(**OZONE, specifications={"O3": (2, None, 25)})
        axes = found.plot("tornado")
        numpy.testing.assert_allclose([bar.get_width() for bar in axes.patches],
                                      found.responses["O3"].sensitivity["rank_correlation"])
        axes = found.plot("histogram", "O3")
        self.assertEqual([line.get_label() for line in axes.lines][:2], ["LSL 2", "USL 25"])
        self.assertEqual(sum(bar.get_height() for bar in axes.containers[0]), found.runs)
        excluded = found.responses["O3"].graph("histogram").regions
        self.assertEqual([(one["from"], one["to"]) for one in excluded], [(-math.inf, 2), (25, math.inf)])
        axes = found.plot("profile")
        self.assertEqual([one.get_xlabel() for one in axes], list(found.predictors))
        band = found.responses["O3"].graph("profile").panels[0].bands[0]
        filled = axes[0].collections[0].get_paths()[0].vertices
        self.assertEqual(filled[:, 1].min(), band["lower"].min())
        self.assertEqual([one.get_ylabel() for one in found.plot("defect-profile")], ["Defect Rate"]
                         * len(found.predictors))
        self.assertEqual(found.plot("capability").get_title(), "Capability of O3")
        with self.assertRaisesRegex(ValueError, "kind must be one of .*tornado, profile.*, not 'pie'"):
            found.plot("pie")
        with self.assertRaisesRegex(ValueError, "not 'capability'"):
            brenvolt.profile(**OZONE).plot("capability")

    def test_samples_draw_what_was_asked_for_and_what_came(self):
        samples = brenvolt.simulate({"a": "normal(10, 2)", "k": "poisson(3)"}, 2000, "iman-conover", seed=1,
                                    correlations={("a", "k"): 0.5})
        axes = samples.plot("scatter-matrix")
        self.assertEqual(axes.shape, (4,))
        reached = samples.corr("spearman").loc["a", "k"]
        self.assertEqual(axes[1].texts[0].get_text(), f"reached {reached:.3f}\nasked 0.500")
        histogram, counts = samples.plot("histogram")
        line = histogram.lines[0]
        width = histogram.patches[0].get_width()
        x, y = line.get_data()
        density = numpy.exp(-(((x - 10) / 2) ** 2) / 2) / (2 * math.sqrt(2 * math.pi))
        numpy.testing.assert_allclose(y, 2000 * width * density)
        self.assertEqual(line.get_label(), "normal(location=10, scale=2)")
        expected = dict(zip(*counts.lines[0].get_data()))
        self.assertAlmostEqual(expected[3], 2000 * math.exp(-3) * 27 / 6)
        given = matplotlib.pyplot.subplots()[1]
        self.assertIs(samples.plot("heat-map", ax=given), given)
        self.assertEqual(samples.plot.hist().get_ylabel(), "Frequency")
        self.assertEqual(len(samples.plot(kind="line").lines), 2)
        self.assertIs(type(samples), pandas.DataFrame)
        bars = brenvolt.simulate({"a": "normal(0, 1)"}, seed=1).plot("histogram").containers[0]
        self.assertEqual(sum(bar.get_height() for bar in bars), 1000)
        samples["b"] = samples.a * 2
        self.assertEqual(len(samples.plot("histogram")), 3)
        alive = weakref.ref(samples)
        gc.disable()
        self.addCleanup(gc.enable)
        self.assertIn("<svg", samples._repr_html_())
        del samples
        self.assertIsNone(alive())

    def test_names_are_those_of_the_json(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "g.json")
            fits = brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), distributions=["weibull"], graphs=path)
            with open(path, encoding="utf-8") as file:
                written = {graph["kind"]: graph for graph in json.load(file)["variables"][1]["graphs"]}
            brenvolt.profile(**OZONE, specifications={"O3": (2, None, 25)}, graphs=path)
            with open(path, encoding="utf-8") as file:
                profile = json.load(file)
        # Here the graphs are made when they are asked for, of the runs that were made then.
        sheet = brenvolt.open_workbook(OZONE["data"]).sheet()
        found = brenvolt.profile(sheet, OZONE["models"], seed=7, specifications={"O3": (2, None, 25)})
        self.assertNotIn("_graphs", vars(found))
        sheet.selection = "temp > 70"
        pairs = [(written[kind], fits.variables["waiting"].graph(kind)) for kind in written]
        for kind, graph in zip(("histogram", "tornado"), profile["responses"][0]["graphs"], strict=True):
            pairs.append((graph, found.responses["O3"].graph(kind)))
        pairs += zip(profile["defectProfile"]["panels"], found.responses["O3"].graph("defect-profile").panels)
        pairs += zip(profile["profiles"]["panels"], found.responses["O3"].graph("profile").panels)
        seen = set()
        for wanted, graph in pairs:
            for key, value in wanted.items():
                seen.add(key)
                self._compare(value, getattr(graph, snake(key)), key)
        self.assertLessEqual({"kind", "xTitle", "bars", "series", "curves", "boxes", "bands", "regions"}, seen)

    def _compare(self, wanted, found, key):
        if isinstance(wanted, dict):
            self.assertEqual([snake(name) for name in wanted], list(found), key)
            for name, value in wanted.items():
                self._compare(value, found[snake(name)], name)
        elif isinstance(wanted, list):
            self.assertEqual(len(wanted), len(found), key)
            for one, other in zip(wanted[:3], found):
                self._compare(one, other, key)
        elif wanted is None:
            self.assertFalse(math.isfinite(found), key)
        else:
            self.assertEqual(wanted, found, key)

    def test_fits_are_compared_and_banded(self):
        graph = self.waiting.graph("fit-comparison")
        self.assertEqual([curve["name"].split("(")[0] for curve in graph.curves], ["Weibull", "Normal"])
        band = self.waiting.graph("qq", "normal", band=True).bands[0]
        self.assertTrue((band["lower"] < band["upper"]).all())
        self.assertEqual(self.waiting.graph("qq", "normal").bands, [])

    def test_notebooks_show_a_small_picture(self):
        self.assertIn("<svg", self.waiting._repr_html_())
        self.assertIn("<svg", brenvolt.profile(**OZONE)._repr_html_())
        self.assertTrue(re.match(r"<\?xml", self.waiting.graph("qq")._repr_svg_()))

    def test_matplotlib_is_imported_only_to_draw(self):
        program = ("import brenvolt, sys; r = brenvolt.fit({'x': [1., 2, 4, 3, 7]}); r.variables['x'].graph('qq');"
                   " assert 'matplotlib' not in sys.modules; sys.modules['matplotlib'] = None;"
                   " r.plot()")
        done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True)
        self.assertIn("drawing in Python needs matplotlib; Debian's package is python3-matplotlib", done.stderr)


if __name__ == "__main__":
    unittest.main()
