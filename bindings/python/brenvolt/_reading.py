"""The keywords that say how a text file of data is laid out; what is not said is found by looking at the file."""

from __future__ import annotations

import difflib
import inspect
import json
import os
from typing import Any

from . import _arguments, _brenvolt

_TEXTS = ("delimiter", "decimal", "thousands", "comment", "encoding")
_LISTS = ("missing_text", "text")


def options(keywords, function):
    """The structure of the system from the keywords of a call; the one that calls `function` gets the refusal of others."""
    reading = _brenvolt._Reading()
    for name, value in keywords.items():
        if name not in (*_TEXTS, *_LISTS, "header", "units_row"):
            raise TypeError(f"{function}() got an unexpected keyword argument {name!r}{_hint(name, function)}")
        if value is None:
            continue
        if name in _LISTS:
            value = _arguments.texts(value, name, "a text")
        elif name == "header":
            value = _header(value)
        _arguments.set_field(reading, name, value)
    return reading


def _hint(name, function):
    """"; did you mean 'rank_by'?" of the keyword that is closest, if one is close."""
    import brenvolt

    called = getattr(brenvolt, function, None) or getattr(brenvolt.Application, function, None)
    known = list(inspect.signature(called).parameters) if called is not None else []
    near = difflib.get_close_matches(name, [*known, *_TEXTS, *_LISTS, "header", "units_row"], 1, 0.75)
    return f"; did you mean {near[0]!r}?" if near else ""


def _header(value):
    if value is False:
        return "no"
    if isinstance(value, bool) or not isinstance(value, (str, int)):
        _arguments.refuse("header", "the number of a line, or False", value)
    return str(value)


def refuse(keywords, what, given):
    """For data that come from no file."""
    for name, value in keywords.items():
        if value is not None:
            raise ValueError(f"{name} has no effect: {what} is a {type(given).__name__}")


def preview(path: str | os.PathLike, sheet: str | None = None, decimal_comma: bool = False,
            **reading: Any) -> dict[str, Any]:
    """What a data file would be read as: a look at it that keeps nothing.

    sheet: of a workbook, that one alone. decimal_comma, reading: see fit().

    Returns what `brenvolt import --preview --format json` prints: `readAs`, what of the layout of a text file is not as
    usual; `doubts`, what could be otherwise, with the option that decides; and `sheets`, each with its variables, their
    types, units, counts of missing values, and first values as texts.
    """
    return json.loads(_brenvolt._preview(path, sheet or "", decimal_comma, options(reading, "preview")))


def open_workbook(path: str | os.PathLike, decimal_comma: bool = False, **reading: Any) -> _brenvolt.Workbook:
    """Opens a project, or a data file of another kind as a workbook; decimal_comma and reading: see fit()."""
    return _brenvolt.open_workbook(path, decimal_comma, options(reading, "open_workbook"))
