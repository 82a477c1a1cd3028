"""brenvolt.record: what a program does, as a macro that does it again."""

import os
import runpy
import tempfile
import unittest

import numpy
import pandas

import brenvolt

EXAMPLES = os.path.join(os.environ["BRENVOLT_SOURCE_DIR"], "examples")
FAITHFUL = os.path.join(EXAMPLES, "faithful.csv")


class Recording(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)

    def bytes_of(self, name):
        with open(name, "rb") as file:
            return file.read()

    def lines(self, name="job.py"):
        return self.bytes_of(name).decode().splitlines()

    def test_jobs_are_recorded_as_the_dialogs_they_drive(self):
        with brenvolt.record("job.py"):
            brenvolt.fit(FAITHFUL, distributions=["normal", "weibull"], offsets={"waiting": {"weibull": 40.1}},
                         save="p.bvw")
            brenvolt.simulate("p.bvw", 200, method="iman-conover", seed=7)
            book = brenvolt.open_workbook("p.bvw")
            book.sheet().selection = "waiting > 50"
            book["Correlation matrix"].to_csv("matrix.csv")
            book.save()
        left = {name: self.bytes_of(name) for name in ("p.bvw", "matrix.csv")}
        for name in left:
            os.remove(name)
        runpy.run_path("job.py")
        for name, bytes_ in left.items():
            self.assertEqual(self.bytes_of(name), bytes_, name)
        self.assertIn("dialog.WeibullOffset[2] = 40.1", self.lines())
        self.assertIn("dialog.CorrelationMatrix = matrix", self.lines())
        self.assertIn("dialog.ImanConoverMethod = True", self.lines())

    def test_recording_ends_with_its_block(self):
        with self.assertRaises(ZeroDivisionError), brenvolt.record("job.py"):
            analysis = brenvolt.Analysis(brenvolt.read_csv(FAITHFUL))
            raise ZeroDivisionError
        self.assertFalse(os.path.exists("job.py"))
        with brenvolt.record("job.py", origin="by hand"):
            analysis.Dialog.TypeOfAnalysis = brenvolt.scSRAFitDistribution  # of before the block
            with self.assertRaisesRegex(brenvolt.Error, "already"), brenvolt.record("other.py"):
                pass
        self.assertEqual(self.lines()[1:], ["# by hand", "from brenvolt import *", ""])

    def test_what_python_made_is_refused_not_left_out(self):
        sheet = brenvolt.read_csv(FAITHFUL)
        frame = pandas.DataFrame({"x": numpy.arange(9.0)})
        for work in (lambda: brenvolt.Analysis(sheet), lambda: brenvolt.fit(frame), lambda: sheet.to_csv("s.csv")):
            with self.assertRaisesRegex(brenvolt.Error, "cannot be recorded"), brenvolt.record("job.py"):
                work()
        with self.assertRaisesRegex(brenvolt.Error, "cannot be recorded"), brenvolt.record("job.py"):
            brenvolt.open_workbook(FAITHFUL).sheet()["waiting"] = numpy.zeros(272)
        self.assertFalse(os.path.exists("job.py"))


if __name__ == "__main__":
    unittest.main()
