#!/usr/bin/env python3
"""Prints the reference of the Python package as Markdown: its functions, classes and distributions, from their own
texts.

    python_reference.py FOLDER   FOLDER holds the package brenvolt
"""

import inspect
import re
import sys
import textwrap

sys.dont_write_bytecode = True
sys.path.insert(0, sys.argv[1])

import brenvolt  # noqa: E402 - found by the line before


def signature(value):
    """As the stubs have it, without the quotes of postponed annotations; of the extension, from its own first line."""
    if not inspect.isclass(value):
        try:
            return re.sub(r"'([^']*)'", r"\1", str(inspect.signature(value)))
        except ValueError:
            first = (value.__doc__ or "").splitlines()[0]
            return first[first.index("("):] if "(" in first else "()"
    return ""


def described(value):
    lines = (inspect.getdoc(value) or "").splitlines()
    if lines and re.match(r"\w+\(.*\)( -> .*)?$", lines[0]):
        lines = lines[1:]
    return "\n".join(lines).strip()


def entry(level, name, value):
    text = described(value)
    shown = signature(value)
    call = textwrap.wrap(name.rsplit(".", 1)[-1] + shown, 110, subsequent_indent="    ", break_long_words=False,
                         break_on_hyphens=False)
    call = ["```python", *call, "```", ""] if shown else []
    return [f"{'#' * level} {name}", "", *call, *(["```text", text, "```", ""] if text else [])]


def members(name, kind):
    """The public methods and properties that the class describes itself."""
    lines = []
    for member, value in sorted(vars(kind).items()):
        text = described(value)
        if not member.startswith("_") and text and (callable(value) or isinstance(value, property)):
            lines += [f"- `{member}`: {' '.join(text.split())}"]
    return [*lines, ""] if lines else []


def main():
    lines = ["# Python package", "",
             "What `import brenvolt` offers. [The guide](../../guide/python.md) shows it at work.", ""]
    offered = [(name, getattr(brenvolt, name)) for name in brenvolt._OFFERED]
    lines += ["## Functions", ""]
    for name, value in offered:
        if callable(value) and not inspect.isclass(value):
            lines += entry(3, f"brenvolt.{name}", value)
    lines += ["## Classes", ""]
    for name, value in offered:
        if inspect.isclass(value):
            lines += entry(3, f"brenvolt.{name}", value) + members(name, value)
    lines += ["## Distributions", "", "```text", described(brenvolt.distributions), "```", ""]
    base = brenvolt.distributions.Distribution
    lines += members("Distribution", base)
    for name, value in vars(brenvolt.distributions).items():
        if inspect.isclass(value) and issubclass(value, base) and value is not base and not name.startswith("_"):
            lines += entry(3, f"brenvolt.distributions.{name}", value)
    print("\n".join(lines))


main()
