"""brenvolt macro, and the package as it is installed."""

import ast
import os
import subprocess
import sys
import tempfile
import unittest

import brenvolt

PROGRAM = os.environ["BRENVOLT_PROGRAM"]
SOURCE = os.environ["BRENVOLT_SOURCE_DIR"]


class Macro(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def run_program(self, *arguments, **environment):
        """The command away from the tree, where no PYTHONPATH helps."""
        inherited = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, env={**inherited, **environment},
                              capture_output=True, text=True)

    def write(self, name, text):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(text)

    def test_the_example_does_the_whole_job(self):
        done = self.run_program("macro", os.path.join(SOURCE, "examples", "sea_level_macro.py"), "sea.bvw")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertIn("saved in sea.bvw: portpirie_sea_level, Correlation matrix", done.stdout)
        self.assertIn("1000 samples, mean ", done.stdout)
        sheet = brenvolt.open_workbook(os.path.join(self.folder, "sea.bvw")).sheet()
        properties = sheet.variable("sealevel").properties
        self.assertIn("Location=4.000000000000e+00; Scale=2.500000000000e-01", properties["Normal"])
        self.assertIn("Offset=3.500000000000e+00", properties["Weibull"])
        self.assertTrue(properties["zTruncProp"].startswith("(1; "))

    def test_arguments_status_and_path_are_the_macros(self):
        self.write("m.py", "import sys, brenvolt, beside\nprint(sys.argv[1:], '/own' in sys.path)\nsys.exit(7)\n")
        self.write("beside.py", "")
        done = self.run_program("macro", "m.py", "--help", "-x", "a b", "--", PYTHONPATH="/own")
        self.assertEqual((done.returncode, done.stdout), (7, "['--help', '-x', 'a b', '--'] False\n"))

    def test_no_module_is_taken_from_the_working_folder(self):
        for name in ("brenvolt", "json", "shlex", "numpy"):
            os.mkdir(os.path.join(self.folder, name))
            self.write(f"{name}/__init__.py", f"print('planted {name}')\n")
        self.write("m.py", "import json, shlex, numpy, brenvolt\nprint(brenvolt.Application())\n")
        for call in (("m.py",), ("--record", "r.py", "m.py"), ("--check", "m.py")):
            done = self.run_program("macro", *call, PYTHONPATH="")
            self.assertNotIn("planted", done.stdout + done.stderr)

    def test_checked_macros_hold_calls_on_dialogs_alone(self):
        with brenvolt.record(os.path.join(self.folder, "r.py")):
            brenvolt.fit(os.path.join(SOURCE, "examples", "faithful.csv"), save=os.path.join(self.folder, "p.bvw"))
        done = self.run_program("macro", "--check", "r.py")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertRegex(done.stdout, r"line \d+: dialog\.OK\(\)\n")
        self.assertTrue(done.stdout.endswith("nothing but calls on dialogs and their documents.\n"))
        start = "from brenvolt import *\na = Application()\n"
        refused = ("import os", "from os import system", "from brenvolt import fit", "from . import x", "print(1)",
                   "open('x', 'w')", "a.__class__", "a._hidden", "eval('1')", "a.Open(__file__)",
                   "Application.Open = a",
                   "for i in a: i.OK()", "if a: a.OK()", "def f(): pass", "class A: pass", "lambda: 1",
                   "x = [i for i in a]",
                   "a.Open(f'{a}')", "a.Sheet().to_pandas().eval('1')", "x = a.Open\nx.to_pickle('y')", "del a",
                   "with a: pass", "Application = a", "a.Open(*a)", "a.Open(**a)", "(lambda: 1)()", "a[0](1)", "a or a",
                   "x: int = 1", "x += 1", "a.Open(x := 1)", "assert a", "raise a", "global a", "a if a else a",
                   "{a: a}",
                   "import brenvolt", "'x'.format(a)", "f = b = __builtins__", "a.b.c.d()",
                   "match a:\n  case 1: a.OK()",
                   "\0", "a.Open(", "(" * 500 + ")" * 500, "-" * 100_000 + "1", "a" + "[0]" * 20_000)
        for line in refused:
            self.write("m.py", start + line + "\n")
            with self.assertRaises(brenvolt.Error, msg=line[:60]):
                brenvolt.check_macro(os.path.join(self.folder, "m.py"))
        self.write("m.py", start + "import os\n")
        done = self.run_program("macro", "--check", "m.py")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr, "brenvolt: 'import os' is neither a call nor an assignment; run only macros "
                                      "that you"
                                      " trust (m.py, line 3)\n")

    def test_a_refusal_ends_the_macro_with_the_systems_message(self):
        self.write("m.py", "from brenvolt import *\nApplication().Open('none.bvw')\nprint('further')\n")
        done = self.run_program("macro", "m.py")
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertRegex(done.stderr, r"Error: .*No such file.*\(none.bvw\)")

    def test_what_cannot_be_run_is_told_in_one_line(self):
        self.write("m.py", "")
        os.mkdir(os.path.join(self.folder, "folder"))
        cases = [(("none.py",), {}, 1, "no such macro (none.py)"), (("folder",), {}, 1, "is a folder"),
                 ((), {}, 2, "FILE.py"),
                 (("m.py",), {"BRENVOLT_PYTHON": "/none/python3"}, 1,
                  "the program cannot be started: No such file or directory")]
        for arguments, environment, status, said in cases:
            done = self.run_program("macro", *arguments, **environment)
            self.assertEqual((done.returncode, done.stdout), (status, ""))
            self.assertIn(said, done.stderr)
            self.assertEqual(done.stderr.count("\n"), 1)

    def test_help_is_the_commands(self):
        done = self.run_program("macro", "--help")
        self.assertEqual(done.returncode, 0)
        self.assertIn("FILE.py", done.stdout)


class Package(unittest.TestCase):
    def test_import_waits_with_what_takes_long(self):
        loaded = subprocess.run([sys.executable, "-c", "import brenvolt, sys; print('pandas' in sys.modules, "
                                 "any('libbrv_sra' in line for line in open('/proc/self/maps')))"],
                                capture_output=True, text=True, check=True).stdout.split()
        self.assertEqual(loaded, ["False", "False"])

    def test_every_offered_name_exists(self):
        for name in brenvolt.__all__:
            self.assertTrue(hasattr(brenvolt, name), name)
            self.assertIn(name, dir(brenvolt))

    def test_stubs_name_what_there_is(self):
        """The classes of the extension module, whose stub is written by hand, and the constants and dialogs."""
        folder = os.path.dirname(brenvolt.__file__)

        def stubbed(file):
            with open(os.path.join(folder, file), encoding="utf-8") as text:
                return {node.name: node for node in ast.parse(text.read()).body if isinstance(node, ast.ClassDef)}

        def members(node):
            targets = [part.target if isinstance(part, ast.AnnAssign) else part.targets[0] for part in node.body
                       if isinstance(part, (ast.AnnAssign, ast.Assign))]
            functions = [part.name for part in node.body if isinstance(part, ast.FunctionDef)]
            return {name for name in [*(target.id for target in targets), *functions] if not name.startswith("_")}

        for module, file in ((brenvolt._brenvolt, "_brenvolt.pyi"), (brenvolt.dialogs, "dialogs.pyi"),
                             (brenvolt, "__init__.pyi")):
            for name, node in stubbed(file).items():
                if name.startswith("_"):
                    continue
                kind = getattr(module, name)
                own = {member for member in vars(kind) if not member.startswith("_")}
                self.assertEqual(members(node), own, f"{file}: {name}")
        readable = {part.name for part in stubbed("dialogs.pyi")["BrvAnalysisDialog"].body
                    if isinstance(part, ast.FunctionDef)}
        self.assertEqual(readable, {"Name", "Application", "Parent", "OK", "Cancel"})


if __name__ == "__main__":
    unittest.main()
