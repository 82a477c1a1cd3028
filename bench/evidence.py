"""Pages of docs/evidence from templates: bench/evidence/PAGE.md holds the text, {{…}} marks what is measured.

What stands between the braces is a Python expression over the values of a page. Every page has `command`, how it is
printed, and `machine`, what it was measured on and when.
"""
import os
import pathlib
import platform
import re
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
TEMPLATES = ROOT / "bench/evidence"
PAGES = ROOT / "docs/evidence"
# Pages that programs print from words of their own: the beginning, in which {name} stands for what was found.
HEADS = {"accuracy": ROOT / "bench/accuracy.cpp", "random-stream": ROOT / "bench/stream_battery.cpp",
         "estimators": ROOT / "host/numeric/reference/compare_estimators.py",
         "comparison-fits": ROOT / "brv_sra/fitting/reference/compare_fits.py"}
HEAD = re.compile(r'R"\((.*?)\)"|^PREFACE = """(.*?)"""', re.DOTALL | re.MULTILINE)
CELL = re.compile(r"\{\{(.*?)\}\}")
FIELD = re.compile(r"\{(\w+)\}")
# What machine() says.
MACHINE = r".+, \d+ processors, GCC [\d.]+; load average [\d.]+ to [\d.]+, this work included; \d+ \w+ \d{4}"
# Pages of a time before programs said what they ran on; whoever prints one again takes it out here.
MACHINE_BY_HAND = {"benchmarks-algebra", "benchmarks-fitting", "benchmarks-formulas", "benchmarks-numeric",
                   "benchmarks-simulation", "comparison"}


def command(call, page, targets):
    """How a page is printed, from a fresh clone."""
    return (f"    cmake --preset release -DBRENVOLT_BENCH=ON && cmake --build build --target {targets}\n"
            f"    {call} > docs/evidence/{page}.md")


def processor():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        found = re.search(r"model name\s*: (.*)", file.read())
    return found[1] if found else platform.machine()


def machine(loads):
    compiler = subprocess.run(["g++", "-dumpfullversion"], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()
    return (f"{processor()}, {os.cpu_count()} processors, GCC {compiler}; load average {min(loads):.1f} to "
            f"{max(loads):.1f}, this work included; {time.strftime('%-d %B %Y')}")


def template(page):
    return (TEMPLATES / f"{page}.md").read_text(encoding="utf-8")


def fill(page, values):
    return CELL.sub(lambda cell: str(eval(cell[1], {}, values)), template(page))


def line_pattern(line, cell=CELL, machine=".*"):
    """A cell stands for anything within its line; a line that is one cell, for any lines."""
    if cell.fullmatch(line):
        return "(?:.*\n)*?.*"
    parts = cell.split(line)
    return "".join(re.escape(part) if k % 2 == 0 else machine if part == "machine" else ".*"
                   for k, part in enumerate(parts))


def head_difference(page, text):
    head = next(filter(None, HEAD.search(HEADS[page].read_text(encoding="utf-8")).groups()))
    if re.match("\n".join(line_pattern(line, FIELD) for line in head.rstrip("\n").split("\n")), text):
        return None
    return f"docs/evidence/{page}.md: does not begin as {HEADS[page].name} prints it"


def difference(page):
    """How a page differs from what its program prints, whatever was measured; nothing if it does not."""
    text = (PAGES / f"{page}.md").read_text(encoding="utf-8")
    if page in HEADS:
        return head_difference(page, text)
    lines = template(page).split("\n")
    is_printed = page not in MACHINE_BY_HAND
    strict = [line_pattern(line, machine=MACHINE) for line in lines]
    patterns = strict if is_printed else [line_pattern(line) for line in lines]
    if re.fullmatch("\n".join(patterns), text):
        if is_printed or not re.fullmatch("\n".join(strict), text):
            return None
        return f"docs/evidence/{page}.md: is printed as a whole; take it out of MACHINE_BY_HAND in bench/evidence.py"
    agree = next(k for k in reversed(range(len(lines))) if re.match("\n".join(patterns[:k]) + "(?:\n|$)", text))
    return f"docs/evidence/{page}.md: not as line {agree + 1} of bench/evidence/{page}.md: {lines[agree]}"


def differences():
    pages = [*HEADS, *(path.stem for path in TEMPLATES.glob("*.md"))]
    return [found for found in map(difference, sorted(pages)) if found]
