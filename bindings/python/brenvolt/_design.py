"""Distributions and correlations entered by hand."""

from __future__ import annotations

import os
from collections.abc import Iterable, Mapping
from typing import TYPE_CHECKING, Any

from . import _arguments, _brenvolt
from .distributions import Distribution

if TYPE_CHECKING:
    import numpy
    import pandas


class Design:
    """What a project is designed to simulate."""

    def __init__(self, variables, correlations, smallest_eigenvalue, notes):
        self.variables: dict[str, str] = variables
        """The distribution of each variable in the notation: {"h": "normal(location=50.2, scale=0.05)"}."""
        self.smallest_eigenvalue: float = smallest_eigenvalue
        """Of the correlations: unless it is above 0 they contradict each other, and a simulation repairs them."""
        self.notes: list[str] = notes
        """What to know about the design."""
        self._pairs = correlations

    @property
    def correlations(self) -> pandas.DataFrame:
        """The matrix of the correlations."""
        import pandas

        names = list(self.variables)
        frame = pandas.DataFrame(0.0, index=names, columns=names)
        for name in names:
            frame.loc[name, name] = 1.0
        for first, second, value in self._pairs:
            frame.loc[first, second] = frame.loc[second, first] = value
        return frame

    def __str__(self):
        lines = [f"{name} ~ {distribution}" for name, distribution in self.variables.items()]
        return "\n".join(lines + [f"correlation {a}, {b} = {value!r}" for a, b, value in self._pairs])

    def __repr__(self):
        return f"<Design of {', '.join(self.variables) or 'nothing'}>"


def _parts(source, correlations):
    """What a Design holds as it is given by hand, its correlations before those given; any other source as it is."""
    if not isinstance(source, Design):
        return source, correlations
    correlations = _framed(correlations)
    if correlations is None or isinstance(correlations, Mapping):
        given = dict(correlations or {})
        changed = {frozenset(pair) for pair in given if isinstance(pair, tuple)}
        kept = {(first, second): value for first, second, value in source._pairs
                if frozenset((first, second)) not in changed}
        correlations = {**kept, **given} or None
    return source.variables, correlations


def _notation(name, distribution):
    if isinstance(distribution, Distribution):
        values, offset = list(distribution._values), distribution._offset if distribution._has_offset else 0.0
        return _brenvolt._notation(distribution.code, values, offset)
    if isinstance(distribution, str):
        return distribution
    return _arguments.refuse(f"the distribution of {name}", "a Distribution or its notation", distribution)


def _square(matrix, what, names=None):
    """A sheet, for the host to take, of a square DataFrame, or of an array or a frame without labels over the named
    variables."""
    import pandas

    if getattr(matrix, "ndim", 2) != 2:
        raise ValueError(f"{what} must have rows and columns; the array has {matrix.ndim} axes")
    frame = pandas.DataFrame(matrix)
    has_labels = hasattr(matrix, "columns") and not isinstance(frame.columns, pandas.RangeIndex)
    if not has_labels:
        frame = _labelled(frame, what, names)
    sheet = _brenvolt.Spreadsheet(what)
    columns = [str(name) for name in frame.columns]
    if not isinstance(frame.index, pandas.RangeIndex):
        rows = "rows"
        while rows in columns:
            rows += "_"
        sheet[rows] = [str(name) for name in frame.index]
    for place, name in enumerate(columns):
        try:
            sheet[name] = frame.iloc[:, place].astype(float)
        except (TypeError, ValueError):
            raise TypeError(f"the column {name!r} of {what} must hold numbers") from None
    return sheet


def _labelled(frame, what, names):
    """A frame that stands for an array, with the variables in their order as its labels."""
    if not names:
        raise ValueError(f"{what} does not name the variables: give a DataFrame whose rows and columns are called "
                         "after them")
    rows, columns = frame.shape
    if (rows, columns) != (len(names), len(names)):
        raise ValueError(f"{what} has {rows} rows and {columns} columns for {len(names)} variables: {', '.join(names)}")
    return frame.set_axis(names, axis=0).set_axis(names, axis=1)


def _framed(rows):
    """Correlations {name: {name: number}} as a square table; in any other form as they are."""
    if not isinstance(rows, Mapping) or not any(isinstance(row, Mapping) for row in rows.values()):
        return rows
    import pandas

    if not all(isinstance(row, Mapping) for row in rows.values()):
        raise ValueError("correlations must be pairs {(first, second): number} or rows {name: {name: number}}, not "
                         "both")
    names = list(rows)
    return pandas.DataFrame([[rows[a].get(b) for b in names] for a in names], index=names, columns=names)


def _enter(job, variables, correlations=None, from_file=None):
    """Enters in a job what is given by hand."""
    if isinstance(variables, Mapping):
        job.named = [(str(name), _notation(name, distribution)) for name, distribution in variables.items()]
    else:
        job.designed = _arguments.texts(variables, "variables", "a line of text")
    if from_file is not None:
        job.from_file = _arguments.path(from_file, "from_file")
    correlations = _framed(correlations)
    if isinstance(correlations, Mapping):
        job.pairs = _pairs(correlations, "correlations")
    elif hasattr(correlations, "shape"):
        is_whole = isinstance(variables, Mapping) and from_file is None
        names = list(variables) if is_whole else job.designed_names()
        job.correlation_table = _square(correlations, "correlations", names)
    elif correlations is not None:
        _arguments.refuse("correlations", "a mapping of pairs, a DataFrame or an array", correlations)


def _pairs(correlations, what):
    """The correlations of a mapping of pairs, [(first, second, number)]."""
    if correlations is None:
        return []
    if not isinstance(correlations, Mapping):
        _arguments.refuse(what, "a mapping of pairs", correlations)
    for pair in correlations:
        if not isinstance(pair, tuple) or len(pair) != 2:
            raise ValueError(f"{what} must be between pairs (first, second), not {pair!r}")
    return [(str(first), str(second), _arguments.number(value, f"{what}[{(first, second)!r}]"))
            for (first, second), value in correlations.items()]


def design(project: str | os.PathLike, variables: Mapping[str, Distribution | str] | Iterable[str] | None = None, *,
           correlations: Mapping[tuple[str, str], float] | pandas.DataFrame | numpy.ndarray | None = None,
           matrix: str | os.PathLike | None = None, from_file: str | os.PathLike | None = None,
           sheet: str | None = None) -> Design:
    """Enters distributions and correlations by hand in a project, which is made if missing, and returns its design.

    variables: {name: distribution}, each a Distribution or its notation ("triangular(100, 180, 120) in [, 170]"); or
    lines like "h ~ normal(50.2, 0.05)".
    correlations: {(first, second): number}, or a square DataFrame, or an array in the order of the variables. Pairs
    that nothing is said about stay as they are.
    matrix: correlations to begin with: a sheet of the project, a CSV file, or PROJECT.bvw[:SHEET].
    from_file: a text file of such lines; the other arguments come after it.

    Without anything to enter, the project stays as it is.
    """
    job = _brenvolt.DesignJob()
    job.project = _arguments.path(project, "project")
    _enter(job, variables, correlations, from_file)
    if sheet is not None:
        job.sheet = _arguments.text(sheet, "sheet")
    if matrix is not None:
        job.matrix = _arguments.path(matrix, "matrix")
    job.check()
    if os.path.exists(project):
        target = _brenvolt._fitted_sheet(_brenvolt._open_project(project), sheet or "")
    else:
        target = _brenvolt._new_design()
    return Design(*job.run(target))
