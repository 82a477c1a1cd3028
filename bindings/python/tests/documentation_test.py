"""docs/automating.md: what it shows is what happens."""

import ast
import os
import re
import subprocess
import tempfile
import unittest

import brenvolt

SOURCE = os.environ["BRENVOLT_SOURCE_DIR"]


def blocks(kind):
    with open(os.path.join(SOURCE, "docs", "automating.md"), encoding="utf-8") as file:
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


if __name__ == "__main__":
    unittest.main()
