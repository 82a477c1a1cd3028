#!/usr/bin/env python3
"""Installs a build into a folder of its own, uses it there as its users do, and uninstalls it.

    installation.py BUILD
"""

import filecmp
import glob
import gzip
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile

BUILD = os.path.abspath(sys.argv.pop())
TESTS = os.path.dirname(os.path.abspath(__file__))
MANIFEST = os.path.join(BUILD, "install_manifest.txt")
# Nothing that a shell of this tree may have set reaches what is installed.
BARE = {"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"}


def run(*call, **options):
    done = subprocess.run([str(word) for word in call], text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          stdin=subprocess.DEVNULL, **options)
    if done.returncode != 0:
        raise AssertionError(f"{call}: exit status {done.returncode}\n{done.stdout}")
    return done.stdout


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp()
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.prefix = os.path.join(cls.folder, "prefix")
        cls.work = os.path.join(cls.folder, "work")
        os.mkdir(cls.work)
        # The list of what a person has installed from this build is theirs.
        kept = os.path.join(cls.folder, "manifest")
        if os.path.exists(MANIFEST):
            shutil.copy(MANIFEST, kept)
        try:
            run("cmake", "--install", BUILD, "--prefix", cls.prefix)
            cls.manifest = shutil.copy(MANIFEST, os.path.join(cls.folder, "installed.txt"))
        finally:
            if os.path.exists(kept):
                shutil.copy(kept, MANIFEST)
            elif os.path.exists(MANIFEST):
                os.remove(MANIFEST)

    def installed(self, *parts):
        return os.path.join(self.prefix, *parts)

    def brenvolt(self, *arguments):
        return run(self.installed("bin/brenvolt"), *arguments, cwd=self.work, env=BARE)

    def commands(self):
        return re.findall(r"^  ([a-z]+) ", self.brenvolt("--help").split("Subcommands:")[1], re.MULTILINE)

    def test_files_are_there(self):
        for file in ("share/doc/brenvolt/LICENSE", "share/doc/brenvolt/README.md", "share/doc/brenvolt/docs/README.md",
                     "share/doc/brenvolt/examples/faithful.csv", "include/brenvolt/host/tables/csv.h",
                     "lib/cmake/brenvolt/brenvolt-config.cmake", "share/bash-completion/completions/brenvolt",
                     "share/zsh/vendor-completions/_brenvolt", "share/fish/vendor_completions.d/brenvolt.fish",
                     "share/man/man1/brenvolt.1.gz"):
            self.assertTrue(os.path.isfile(self.installed(file)), file)
        self.assertEqual(glob.glob(self.installed("include/**/*_test.h"), recursive=True), [])
        if os.path.exists(self.installed("bin/brenvolt-desktop")):
            for file in ("share/applications/brenvolt-desktop.desktop", "share/mime/packages/brenvolt-project.xml",
                         "share/icons/hicolor/scalable/apps/brenvolt.svg", "share/man/man1/brenvolt-desktop.1.gz"):
                self.assertTrue(os.path.isfile(self.installed(file)), file)

    def test_no_run_path_leads_to_the_working_folder(self):
        binaries = [os.path.join(place, name) for root in (self.prefix, *(os.path.join(BUILD, part)
                                                                          for part in ("bin", "lib", "python")))
                    for place, _, names in os.walk(root) for name in names]
        read = 0
        for binary in binaries:
            with open(binary, "rb") as file:
                if file.read(4) != b"\x7fELF":
                    continue
            read += 1
            dynamic = run("readelf", "-d", binary)
            for line in re.findall(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]", dynamic):
                for element in line.split(":"):
                    self.assertRegex(element, r"^(\$ORIGIN|/)", f"{binary}: {line}")
        self.assertGreater(read, 4)

    def test_version_names_commit_and_libraries(self):
        lines = dict(line.split(": ", 1) for line in self.brenvolt("--version").splitlines()[1:])
        self.assertRegex(lines["commit"], r"^([0-9a-f]{7,40} \(\d{4}-\d\d-\d\d\)|unknown: )")
        self.assertRegex(lines["instruction set"], r"^[A-Z]+[\w-]*\d$")
        self.assertRegex(lines["libraries"], r"\bSQLite 3\.\d+")

    def test_examples_of_the_help_name_installed_files(self):
        named = set()
        for command in self.commands():
            named.update(re.findall(r"\S*examples/\S+", self.brenvolt(command, "--help")))
        self.assertGreater(len(named), 5)
        for file in named:
            self.assertTrue(os.path.isabs(file) and os.path.exists(file), file)

    def test_example_runs_in_another_folder(self):
        example = re.search(r"brenvolt (fit \S*groundbeef.csv --save beef.bvw)", self.brenvolt("fit", "--help"))[1]
        self.assertIn("Fits saved in beef.bvw", self.brenvolt(*example.split()))
        self.assertIn("groundbeef", self.brenvolt("show", "beef.bvw"))

    def test_macro_finds_the_package(self):
        if glob.glob(self.installed("lib/python3*/dist-packages/brenvolt/_brenvolt.*")):
            self.brenvolt("macro", self.installed("share/doc/brenvolt/examples/sea_level_macro.py"), "sea.bvw")
            self.assertIn("sealevel", self.brenvolt("show", "sea.bvw", "portpirie_sea_level"))

    def test_manual_pages_have_every_option_of_the_help(self):
        for command in self.commands():
            with gzip.open(self.installed(f"share/man/man1/brenvolt-{command}.1.gz"), "rt", encoding="utf-8") as page:
                text = page.read().replace("\\-", "-")
            for option in re.findall(r"^  (?:-\w,)?(--[a-z-]+)", self.brenvolt(command, "--help"), re.MULTILINE):
                self.assertIn(f"{option}\\fR", text, f"brenvolt-{command}.1")
            for file in re.findall(r"\S*examples/\S+", text):
                self.assertTrue(os.path.exists(file), file)

    @unittest.skipUnless(shutil.which("man"), "man is not installed")
    def test_manual_pages_render_without_warnings(self):
        for page in glob.glob(self.installed("share/man/man1/*")):
            self.assertEqual(self.warnings_of_man(page), "", page)

    def warnings_of_man(self, page):
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", page], capture_output=True, text=True,
                              env={**BARE, "MANWIDTH": "100"}, check=True)
        return done.stderr

    def complete(self, *words):
        script = self.installed("share/bash-completion/completions/brenvolt")
        listed = " ".join(f"'{word}'" for word in words)
        return run("bash", "-c", f"source {script}; COMP_WORDS=({listed}); COMP_CWORD={len(words) - 1}; _brenvolt; "
                                 "printf '%s\\n' \"${COMPREPLY[@]}\"", cwd=self.work, env=BARE).split()

    def test_bash_completes(self):
        for name in ("beefs.bvw", "beefs.csv"):
            open(os.path.join(self.work, name), "w", encoding="utf-8").close()
        for words, expected in (
                (("brenvolt", "ca"), ["capability"]),
                (("brenvolt", "fit", "--return"), ["--return-periods"]),
                (("brenvolt", "fit", "--format", "j"), ["json"]),
                (("brenvolt", "fit", "--format", "=", "j"), ["json"]),
                (("brenvolt", "simulate", "--method", "latin-hypercube-"), ["latin-hypercube-iman-conover"]),
                (("brenvolt", "fit", "--distributions", "weibull,log"), ["weibull,lognormal"]),
                (("brenvolt", "fit", "beefs"), ["beefs.bvw", "beefs.csv"]),
                (("brenvolt", "simulate", "beefs"), ["beefs.bvw"]),
                (("brenvolt", "fit", "--samples", "x"), [])):
            self.assertEqual(sorted(self.complete(*words)), expected, words)

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes(self):
        script = self.installed("share/fish/vendor_completions.d/brenvolt.fish")
        for line, expected in (("brenvolt ca", "capability"), ("brenvolt fit --format j", "json"),
                               ("brenvolt simulate --method latin-hypercube-", "latin-hypercube-iman-conover"),
                               ("brenvolt fit --distributions weibull,log", "weibull,lognormal")):
            printed = run("fish", "--no-config", "-c", f"source {script}; complete -C '{line}'", cwd=self.work,
                          env={**BARE, "HOME": self.work})
            self.assertIn(expected, [word.split("\t")[0] for word in printed.splitlines()], line)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_completes(self):
        """In a terminal of zsh's own, since its completion asks for one."""
        folder = self.installed("share/zsh/vendor-completions")
        for line, expected in (("brenvolt ca", "capability"), ("brenvolt fit --format j", "json"),
                               ("brenvolt simulate --method latin-hypercube-", "latin-hypercube-iman-conover")):
            program = (f"zmodload zsh/zpty; zpty t zsh -f -i; zpty -w t 'PS1=; fpath=({folder} $fpath); autoload -U "
                       "compinit; "
                       f"compinit -u -D; echo rea\"\"dy'; zpty -r t seen '*ready*'; zpty -w -n t $'{line}\\t'; "
                       f"zpty -r -m t seen '*{expected}*' && print -r -- $seen; zpty -d t")
            self.assertIn(expected, run("timeout", 20, "zsh", "-f", "-c", program, cwd=self.work,
                                        env={**BARE, "HOME": self.work, "TERM": "dumb"}))

    def test_a_program_links_the_library(self):
        build = os.path.join(self.folder, "consumer")
        run("cmake", "-S", os.path.join(TESTS, "consumer"), "-B", build, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        run("cmake", "--build", build)
        data = self.installed("share/doc/brenvolt/examples/faithful.csv")
        self.assertEqual(run(os.path.join(build, "consumer"), data, env=BARE), "272 cases, median 4.0\n")

    @unittest.skipUnless(glob.glob(os.path.join(BUILD, "python/brenvolt/_brenvolt.*.so")),
                         "the build has no Python package")
    def test_wheel_needs_nothing_beside_it(self):
        sys.path.insert(0, os.path.join(TESTS, "../packaging"))
        import wheel_backend
        wheel, unpacked = (os.path.join(self.folder, name) for name in ("brenvolt.whl", "unpacked"))
        wheel_backend.write_wheel(wheel, BUILD)
        with zipfile.ZipFile(wheel) as opened:
            opened.extractall(unpacked)
            names = opened.namelist()
        self.assertIn("brenvolt/py.typed", names)
        with open(glob.glob(f"{unpacked}/*.dist-info/RECORD")[0], encoding="utf-8") as record:
            self.assertEqual([line.split(",")[0] for line in record], names)
        # No library of the build is loaded, nor of an installation.
        program = ("import brenvolt; brenvolt.fit('{0}'); "
                   "print(*{{line.split()[-1] for line in open('/proc/self/maps') if 'lib/libbr' in line or "
                   "'libs/libbr' in line}})")
        printed = run(sys.executable, "-c", program.format(self.installed("share/doc/brenvolt/examples/faithful.csv")),
                      cwd=self.work, env={**BARE, "PYTHONPATH": unpacked})
        self.assertEqual({os.path.dirname(path) for path in printed.split()}, {os.path.join(unpacked, "brenvolt/libs")})

    def test_uninstall_leaves_nothing(self):
        """Into a second folder, as the other tests use the first."""
        with tempfile.TemporaryDirectory() as folder:
            copy = os.path.join(folder, "copy")
            shutil.copytree(self.prefix, copy, symlinks=True)
            self.assertEqual(filecmp.dircmp(self.prefix, copy).diff_files, [])
            manifest = os.path.join(folder, "manifest.txt")
            with open(self.manifest, encoding="utf-8") as installed, open(manifest, "w", encoding="utf-8") as moved:
                moved.write(installed.read().replace(self.prefix, copy))
            run("cmake", "-D", f"MANIFEST={manifest}", "-P", os.path.join(TESTS, "../cmake/uninstall.cmake"))
            self.assertEqual(os.listdir(copy), [])
            self.assertFalse(os.path.exists(manifest))


if __name__ == "__main__":
    unittest.main()
