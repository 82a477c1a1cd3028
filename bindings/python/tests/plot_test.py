"""Graphs drawn with matplotlib, and saved as the command draws them."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

os.environ["MPLBACKEND"] = "Agg"

import matplotlib.pyplot
import numpy

import brenvolt

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")
OZONE = {"data": os.path.join(EXAMPLES, "ozone.csv"), "models": os.path.join(EXAMPLES, "ozone_regression.pmml"), "seed": 7}


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

    def test_fit_simulate_and_profile_write_pictures(self):
        with tempfile.TemporaryDirectory() as folder:
            path = lambda name: os.path.join(folder, name)
            brenvolt.fit(os.path.join(EXAMPLES, "faithful.csv"), plot=path("{name}.png"), plot_kind="qq")
            brenvolt.simulate(self.fits, method="iman-conover", seed=1, plot=path("pairs.svg"))
            brenvolt.profile(**OZONE, plot=path("response.pdf"))
            self.assertEqual(sorted(os.listdir(folder)), ["eruptions.png", "pairs.svg", "response.pdf", "waiting.png"])
            with open(path("pairs.svg"), encoding="utf-8") as file:
                self.assertRegex(file.read(), r">reached 0\.\d+</text>")

    def test_responses_draw_what_drives_them(self):
        found = brenvolt.profile(**OZONE, specifications={"O3": (2, None, 25)})
        axes = found.plot("tornado")
        numpy.testing.assert_allclose([bar.get_width() for bar in axes.patches],
                                      found.responses["O3"].sensitivity["rank_correlation"])
        axes = found.plot("histogram", "O3")
        self.assertEqual([line.get_label() for line in axes.lines], ["LSL 2", "USL 25"])
        self.assertEqual(sum(bar.get_height() for bar in axes.patches), found.runs)
        self.assertEqual([one.get_xlabel() for one in found.plot("profile")], list(found.predictors))
        with self.assertRaisesRegex(ValueError, "kind must be one of tornado, histogram, profile, not 'pie'"):
            found.plot("pie")

    def test_notebooks_show_a_small_picture(self):
        self.assertIn("<svg", self.waiting._repr_html_())
        self.assertTrue(re.match(r"<\?xml", self.waiting.graph("qq")._repr_svg_()))

    def test_matplotlib_is_imported_only_to_draw(self):
        program = ("import brenvolt, sys; r = brenvolt.fit({'x': [1., 2, 4, 3, 7]}); r.variables['x'].graph('qq');"
                   " assert 'matplotlib' not in sys.modules; sys.modules['matplotlib'] = None;"
                   " r.plot()")
        done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True)
        self.assertIn("drawing in Python needs matplotlib; Debian's package is python3-matplotlib", done.stderr)


if __name__ == "__main__":
    unittest.main()
