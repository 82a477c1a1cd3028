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
# Pages that programs print from words of their own.
HEADS = {"accuracy": ROOT / "bench/accuracy.cpp", "random-stream": ROOT / "bench/stream_battery.cpp"}
CELL = re.compile(r"\{\{(.*?)\}\}")


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


def line_pattern(line):
    """A cell stands for anything within its line; a line that is one cell, for any lines."""
    if CELL.fullmatch(line):
        return "(?:.*\n)*?.*"
    words = CELL.split(line)[::2]
    return ".*".join(map(re.escape, words))


def difference(page):
    """How a page differs from what its program prints, whatever was measured; nothing if it does not."""
    text = (PAGES / f"{page}.md").read_text(encoding="utf-8")
    if page in HEADS:
        head = re.search(r'R"\((.*?)\)"', HEADS[page].read_text(encoding="utf-8"), re.DOTALL)[1]
        return None if text.startswith(head) else f"docs/evidence/{page}.md: does not begin as {HEADS[page].name} prints it"
    lines = template(page).split("\n")
    patterns = [line_pattern(line) for line in lines]
    if re.fullmatch("\n".join(patterns), text):
        return None
    agree = next(k for k in reversed(range(len(lines))) if re.match("\n".join(patterns[:k]) + "(?:\n|$)", text))
    return f"docs/evidence/{page}.md: not as line {agree + 1} of bench/evidence/{page}.md: {lines[agree]}"


def differences():
    pages = [*HEADS, *(path.stem for path in TEMPLATES.glob("*.md"))]
    return [found for found in map(difference, sorted(pages)) if found]
