"""Designs by hand in Python: the same projects, bytes and refusals as by the command."""

import os
import subprocess
import tempfile
import unittest

import brenvolt
from brenvolt.distributions import Histogram, Normal, Weibull


class Designs(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        former = os.getcwd()
        self.addCleanup(os.chdir, former)
        os.chdir(self.folder.name)

    def test_design_of_objects_is_the_one_of_the_notation(self):
        design = brenvolt.design("a.bvw", {"h": Normal(50.2, 0.05), "t": Weibull(3, 2, 10), "cost": "triangular(100, 180, 120) in [, 170]",
                                           "r": Histogram({0: 0.9, 25: 0.1})},
                                 correlations={("h", "cost"): 0.4})
        lines = str(design).splitlines()
        self.assertEqual(lines, ["h ~ normal(location=50.2, scale=0.05)", "t ~ weibull(scale=3, shape=2, offset=10)",
                                 "cost ~ triangular(min=100, max=180, mode=120) in [, 170]", "r ~ histogram(0:0.9, 25:0.1)",
                                 "correlation h, cost = 0.4"])
        self.assertEqual(design.correlations.loc["cost", "h"], 0.4)
        with open("plan.txt", "w") as file:
            file.write(str(design))
        again = brenvolt.design("b.bvw", from_file="plan.txt")
        self.assertEqual(str(again), str(design))
        first = brenvolt.simulate("a.bvw", 100, "iman-conover", seed=7)
        self.assertTrue(first.equals(brenvolt.simulate("b.bvw", 100, "iman-conover", seed=7)))

    def test_a_frame_of_correlations_and_later_changes(self):
        frame = brenvolt.design("a.bvw", {"x": "normal(0, 1)", "y": "normal(0, 1)"}, correlations={("x", "y"): -0.3}).correlations
        design = brenvolt.design("b.bvw", ["x ~ poisson(2)", "y ~ normal(1, 2)"], correlations=frame)
        self.assertEqual(design.correlations.loc["x", "y"], -0.3)
        self.assertEqual(brenvolt.design("b.bvw", {"x": "poisson(3)"}).variables,
                         {"x": "poisson(3)", "y": "normal(location=1, scale=2)"})

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


if __name__ == "__main__":
    unittest.main()
