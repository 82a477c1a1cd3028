#!/usr/bin/env python3
"""Does what README, the guides and the reference show, and compares the output with what they show.

    documentation.py [PAGE...]            runs the pages (all, if none is named); exit status 1 if one is wrong
    documentation.py --update [PAGE...]   puts the output that the programs print into the pages
    documentation.py --links              checks the links between the documents
    documentation.py --self-test

Command and package are those of build/, or of the folder that BRENVOLT_BUILD_DIR names. The blocks of a page run in
their order in an empty folder that has examples/. What a block is stands behind its ```:

    console             commands behind "$ ", each followed by what it prints
    python              statements, all of a page in one program; a block without a word right behind it is the value
                        of the last one. Where lines begin with >>>, an interactive session.
    python file=NAME    a program, written to the file; a command of the page runs it
    python made=NAME    the content of a file that a command of the page has written
    sh json text        shown, not run

A line "…" stands for any number of lines. A picture (SVG) that a page shows is made by a command of the page under the
same name, and says the same.
"""

import ast
import code
import contextlib
import difflib
import glob
import io
import os
import re
import shutil
import subprocess
import sys
import tempfile
import traceback

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.environ.get("BRENVOLT_BUILD_DIR", os.path.join(ROOT, "build"))
PAGES = ["README.md", "examples/README.md", *sorted(glob.glob("docs/tutorial/*.md", root_dir=ROOT)
                                                    + glob.glob("docs/guide/*.md", root_dir=ROOT)
                                                    + glob.glob("docs/reference/*.md", root_dir=ROOT))]
LEFT_OUT = "…"
FENCE = re.compile(r"^```([^\n`]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


# ---- what is shown, and what is printed ------------------------------------------------------------------------------

def pieces(shown):
    """The runs of lines between those that stand for lines left out."""
    result = [[]]
    for line in shown:
        if line.strip() == LEFT_OUT:
            result.append([])
        else:
            result[-1].append(line)
    return result


def find(piece, lines, start):
    return next((at for at in range(start, len(lines) - len(piece) + 1) if lines[at:at + len(piece)] == piece), None)


def matches(shown, printed):
    """Whether the lines printed are those shown, as far as these are not left out."""
    first, *others = pieces(shown)
    if not others:
        return first == printed
    if printed[:len(first)] != first:
        return False
    at = len(first)
    *middle, last = others
    for piece in middle:
        found = find(piece, printed, at)
        if found is None:
            return False
        at = found + len(piece)
    return len(printed) - len(last) >= at and printed[len(printed) - len(last):] == last


def likeness(some, others):
    return difflib.SequenceMatcher(None, "\n".join(some), "\n".join(others), autojunk=False).ratio()


def updated(shown, printed):
    """What to show of the lines printed: as many as now, from the same places as far as these can be told."""
    if matches(shown, printed):
        return shown
    first, *others = pieces(shown)
    if not others:
        return printed
    result, at = printed[:len(first)], len(first)
    *middle, last = others
    for piece in middle:
        ends = range(at, len(printed) - len(last) - len(piece) + 1)
        at = max(ends, key=lambda start: likeness(piece, printed[start:start + len(piece)]), default=at)
        result += [LEFT_OUT, *printed[at:at + len(piece)]]
        at += len(piece)
    return result + [LEFT_OUT] + printed[max(at, len(printed) - len(last)):] if last else result + [LEFT_OUT]


def with_ends(lines):
    return "".join(line + "\n" for line in lines)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


# ---- running a page --------------------------------------------------------------------------------------------------

class Page:
    """Runs the blocks of a page in the current folder.

    `differences` says what the page shows wrongly, `failures` what could not be done at all.
    """

    def __init__(self, name, text):
        self.name, self.text = name, text
        self.differences, self.failures = [], []
        self.commands = self.blocks = 0
        self.names = {"__name__": "__main__"}

    def run(self):
        """The page put right."""
        result, end, value = [], 0, None
        for fence in FENCE.finditer(self.text):
            between = self.text[end:fence.start()]
            result.append(between)
            kind, content = fence[1].strip(), fence[2]
            self.line = self.text.count("\n", 0, fence.start()) + 1
            if value is not None and not kind and not between.strip():
                content, value = with_ends(self.compare("the value", content.splitlines(), value)), None
            else:
                content, value = self.block(kind, content)
            result.append(f"```{fence[1]}\n{content}```")
            end = fence.end()
        return "".join(result) + self.text[end:]

    def block(self, kind, content):
        """The content put right, and what the block printed, if it did not show it itself."""
        language, _, option = kind.partition(" ")
        if language == "console":
            return self.console(content), None
        if language == "python":
            self.blocks += 1
            if option.startswith("file="):
                with open(option[5:], "w", encoding="utf-8") as file:
                    file.write(content)
                return content, None
            if option.startswith("made="):
                return self.made(option[5:], content), None
            if ">>> " in content:
                return self.session(content), None
            return content, self.program(content)
        if language not in ("sh", "json", "text"):
            self.fail(f"a block does not say what it is ({kind or 'nothing'})")
        return content, None

    def compare(self, what, shown, printed):
        printed = [line.rstrip() for line in printed]
        if matches(shown, printed):
            return shown
        expected = with_ends(difflib.unified_diff(shown, printed, "shown", "printed", lineterm=""))
        self.differences.append(f"{self.name}:{self.line}: {what} prints something else\n{expected}")
        return updated(shown, printed)

    def compare_pictures(self, update):
        """The pictures that the page shows, with those of their names in the folder where its commands ran."""
        for link in re.findall(r"!\[[^\]]*\]\(([^)\s]+\.svg)\)", without_blocks(self.text)):
            made, shown = os.path.basename(link), os.path.join(ROOT, os.path.dirname(self.name), link)
            if not os.path.exists(made):
                self.fail(f"no command made the picture {made}")
            elif not os.path.exists(shown) or texts_of(made) != texts_of(shown):
                self.differences.append(f"{self.name}: the picture {made} says something else")
                if update:
                    os.makedirs(os.path.dirname(shown), exist_ok=True)
                    shutil.copy(made, shown)

    def fail(self, what):
        self.failures.append(f"{self.name}:{self.line}: {what}")

    def made(self, name, content):
        if not os.path.exists(name):
            self.fail(f"no command made {name}")
            return content
        return with_ends(self.compare(name, content.splitlines(), read(name).splitlines()))

    def console(self, content):
        result = []
        for command, shown in re.findall(r"^\$ ((?:.*\\\n)*.*\n)((?:(?!\$ ).*\n)*)", content, re.MULTILINE):
            self.commands += 1
            done = subprocess.run(["bash", "-c", command], text=True, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT)
            if done.returncode != 0 and "brenvolt: " not in shown:
                self.fail(f"exit status {done.returncode} of: {command}{done.stdout}")
            blank = re.search(r"\n*$", "\n" + shown)[0][1:]  # between this command and the next
            lines = self.compare(command.rstrip("\n"), shown.rstrip("\n").splitlines(),
                                 done.stdout.rstrip("\n").splitlines())
            result.append(f"$ {command}{with_ends(lines)}{blank}")
        return "".join(result)

    def program(self, content):
        """Runs the statements. The lines printed, and those of the last statement's value if that is an expression."""
        statements = ast.parse(content).body
        last = statements.pop() if isinstance(statements[-1], ast.Expr) else None
        output = io.StringIO()
        try:
            with contextlib.redirect_stdout(output):
                exec(compile(ast.Module(statements, []), self.name, "exec"), self.names)
                value = last and eval(compile(ast.Expression(last.value), self.name, "eval"), self.names)
        except Exception:  # whatever a page's program does wrong is a fault of the page
            self.fail(traceback.format_exc())
            return []
        return output.getvalue().splitlines() + ([] if value is None else str(value).splitlines())

    def session(self, content):
        result = []
        console = code.InteractiveConsole(self.names)
        for entered, shown in re.findall(r"^(>>> .*\n(?:\.\.\. .*\n)*)((?:(?!>>> ).*\n)*)", content, re.MULTILINE):
            output = io.StringIO()
            with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
                for line in entered.splitlines():
                    more = console.push(line[4:])
                if more:
                    console.push("")
            printed = output.getvalue().splitlines()
            if printed and printed[0].startswith("Traceback"):
                printed = printed[-1:]
            lines = self.compare(entered.rstrip("\n"), shown.splitlines(), printed)
            result.append(entered + with_ends(lines))
        return "".join(result)


def texts_of(picture):
    return re.findall(r">([^<>]+)</text>", read(picture))


def run_page(name, update):
    path = os.path.join(ROOT, name)
    page = Page(name, read(path))
    former = os.getcwd()
    with tempfile.TemporaryDirectory() as folder:
        os.symlink(os.path.join(ROOT, "examples"), os.path.join(folder, "examples"))
        os.chdir(folder)
        try:
            text = page.run()
            page.compare_pictures(update)
        finally:
            os.chdir(former)
    if update and not page.failures and text != page.text:
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
    return page


def run_pages(names, update):
    """Whether all pages show what happens, or now do."""
    if not os.path.exists(os.path.join(BUILD, "bin/brenvolt")):
        sys.exit(f"documentation.py: no bin/brenvolt in {BUILD}")
    os.environ.update(PATH=os.path.join(BUILD, "bin") + os.pathsep + os.environ["PATH"], LC_ALL="C.UTF-8")
    sys.path.insert(0, os.path.join(BUILD, "python"))
    pages = [run_page(name, update) for name in names or PAGES]
    differences, failures = ([fault for page in pages for fault in faults(page)]
                             for faults in (lambda page: page.differences, lambda page: page.failures))
    print("\n".join(failures + differences))
    print(f"{len(pages)} pages, {sum(page.commands for page in pages)} commands, {sum(page.blocks for page in pages)} "
          f"Python blocks: {len(differences)} {'updated' if update else 'wrong'}, {len(failures)} failed")
    return not failures and (update or not differences)


# ---- links -----------------------------------------------------------------------------------------------------------

def without_blocks(text):
    return FENCE.sub("", text)


def anchors(text):
    headings = re.findall(r"^#+ (.*)$", without_blocks(text), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def wrong_links():
    """Links to what is not there, and pages that the index of the documents does not name."""
    documents = [os.path.join(ROOT, name) for name in
                 [*glob.glob("*.md", root_dir=ROOT), "examples/README.md",
                  *glob.glob("docs/**/*.md", root_dir=ROOT, recursive=True)]]
    named = set()
    for document in documents:
        for link in re.findall(r"\]\(([^)\s]+)\)", without_blocks(read(document))):
            if re.match(r"[a-z]+:", link):
                continue
            path, _, anchor = link.partition("#")
            target = os.path.normpath(os.path.join(os.path.dirname(document), path)) if path else document
            if not os.path.exists(target) or (anchor and anchor not in anchors(read(target))):
                yield f"{os.path.relpath(document, ROOT)}: nothing at {link}"
            elif document == os.path.join(ROOT, "docs/README.md"):
                named.add(target)
    for document in sorted(set(documents) - named):
        if document.startswith(os.path.join(ROOT, "docs/")) and document != os.path.join(ROOT, "docs/README.md"):
            yield f"docs/README.md: does not name {os.path.relpath(document, ROOT)}"


# ---- the test of this program ----------------------------------------------------------------------------------------

# Lines shown, lines printed, whether they agree, and what an update shows: letters are lines.
COMPARISONS = [
    ("ab", "ab", True, "ab"),
    ("ab", "abc", False, "abc"),
    ("ab", "a", False, "a"),
    ("", "a", False, "a"),
    ("…", "abc", True, "…"),
    ("…", "", True, "…"),
    ("a…", "abc", True, "a…"),
    ("a…", "b", False, "b…"),
    ("a…c", "abbc", True, "a…c"),
    ("a…a", "a", False, "a…"),
    ("…b", "ab", True, "…b"),
    ("…b", "aba", False, "…a"),
    ("…b…", "abc", True, "…b…"),
    ("…b…", "aXc", False, "…a…"),
    ("a…cd…f", "abcdef", True, "a…cd…f"),
    ("a…ce…f", "abcdef", False, "a…cd…f"),
]
SHOWN = """
```console
$ echo one \\
    two; echo three
one two
three
$ printf '4\\n5\\n' && false
4
…
```
```python
x = 2
x + 1
```

```
4
```
```python
>>> x
2
>>> 1 / 0
ZeroDivisionError: division by zero
```
```python file=p.py
print("made", file=open("made.py", "w"))
```
```console
$ python3 p.py
```
```python made=made.py
mad
```
```
no word
```
"""
DIFFERENCES = ["the value prints", "made.py prints"]
FAILURES = ["exit status 1 of", "does not say what it is"]


def self_test():
    for shown, printed, agree, after in COMPARISONS:
        assert matches(list(shown), list(printed)) == agree, (shown, printed)
        found = updated(list(shown), list(printed))
        assert "".join(found) == after, (shown, printed, found)
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        page = Page("page", SHOWN)
        text = page.run()
        os.chdir(ROOT)
    for faults, expected in ((page.differences, DIFFERENCES), (page.failures, FAILURES)):
        assert len(faults) == len(expected) and all(text in fault for text, fault in zip(expected, faults)), faults
    assert text == SHOWN.replace("```\n4\n", "```\n3\n").replace("\nmad\n", "\nmade\n"), text
    assert (page.commands, page.blocks) == (3, 4)
    assert anchors("# A b, c-d\n```\n# no\n```\n## É 2") == {"a-b-c-d", "é-2"}
    return True


def main(arguments):
    if arguments == ["--self-test"]:
        return self_test()
    if arguments == ["--links"]:
        faults = list(wrong_links())
        print("\n".join(faults) or "every link leads somewhere")
        return not faults
    update = arguments[:1] == ["--update"]
    return run_pages(arguments[update:], update)


if __name__ == "__main__":
    sys.exit(0 if main(sys.argv[1:]) else 1)
