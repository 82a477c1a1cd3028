"""docs/guide/automating.md and docs/guide/python.md: what they show is what happens."""

import ast
import os
import re
import subprocess
import tempfile
import unittest

import numpy
import pandas

import brenvolt

SOURCE = os.environ["BRENVOLT_SOURCE_DIR"]


def blocks(kind, page="automating.md"):
    with open(os.path.join(SOURCE, "docs/guide", page), encoding="utf-8") as file:
        fenced = re.findall(r"^```(\w*)\n(.*?)^```$", file.read(), re.MULTILINE | re.DOTALL)
    return [text for language, text in fenced if language == kind]


class Automating(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        os.symlink(os.path.join(SOURCE, "examples"), os.path.join(self.folder, "examples"))

    def console(self, text):
        """Runs the commands of a console block, and compares what they print."""
        for line, shown in re.findall(r"^\$ brenvolt (.*)\n((?:(?!\$ ).*\n)*)", text, re.MULTILINE):
            done = subprocess.run([os.environ["BRENVOLT_PROGRAM"], *line.split()], cwd=self.folder, text=True,
                                  capture_output=True)
            self.assertEqual((done.stdout, done.stderr), (shown, ""), line)

    def file(self, name):
        with open(os.path.join(self.folder, name), "rb") as file:
            return file.read()

    def test_command_and_macro_do_the_same_job(self):
        commands, macro_run, recorded = blocks("console")
        self.console(commands)
        made = {name: self.file(name) for name in ("sea.bvw", "simulated.csv")}
        for name in made:
            os.remove(os.path.join(self.folder, name))
        with open(os.path.join(self.folder, "sea_levels.py"), "w", encoding="utf-8") as file:
            file.write(blocks("python")[0])
        self.console(macro_run)
        for name, bytes_ in made.items():
            self.assertEqual(self.file(name), bytes_, name)
        self.console(recorded)
        self.assertEqual(self.file("simulation.py").decode(), blocks("py")[0])
        self.assertEqual(self.file("again.csv"), made["simulated.csv"])
        os.remove(os.path.join(self.folder, "again.csv"))
        subprocess.run([os.environ["BRENVOLT_PROGRAM"], "macro", "simulation.py"], cwd=self.folder, check=True)
        self.assertEqual(self.file("again.csv"), made["simulated.csv"])

    def test_the_notebook_shows_what_its_cells_give(self):
        cells = [cell for cell in blocks("python")[1:] if "matplotlib" not in cell]
        shown = blocks("")
        self.assertEqual(len(cells), len(shown))
        former = os.getcwd()
        self.addCleanup(os.chdir, former)
        os.chdir(self.folder)
        names = {"brenvolt": brenvolt}
        for cell, text in zip(cells, shown):
            *statements, last = ast.parse(cell).body
            exec(compile(ast.Module(statements, []), "cell", "exec"), names)
            value = eval(compile(ast.Expression(last.value), "cell", "eval"), names)
            self.assertEqual(str(value), text.rstrip("\n"))


class Package(unittest.TestCase):
    def test_the_page_of_the_package_can_be_followed(self):
        """Its examples one after the other, as a reader enters them."""
        former = os.getcwd()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, former)
        os.chdir(folder.name)
        strength = numpy.random.default_rng(1).weibull(2.2, 60) * 80
        names = {"brenvolt": brenvolt, "frame": pandas.DataFrame({"strength": strength}), "new_values": strength + 1}
        fit, sheets, dialogs = [block for block in blocks("python", "python.md") if ">>>" not in block]
        exec(fit, names)
        self.assertEqual(names["samples"].shape, (10000, 1))
        exec(sheets, names)
        self.assertEqual(names["workbook"].names, ["parts", "Correlation matrix", "copy"])
        self.assertIs(names["workbook"]["parts"], names["sheet"])
        self.assertEqual(names["sheet"].variable("strength").properties, {})
        exec(dialogs, names)
        self.assertEqual(names["table"].NumberOfCases, 1)

    def test_constants_are_not_the_classes_of_distributions(self):
        names = {}
        exec("from brenvolt import *", names)
        self.assertEqual((names["Weibull"], names["distributions"].Weibull(2, 3).code), (5, 5))


if __name__ == "__main__":
    unittest.main()
