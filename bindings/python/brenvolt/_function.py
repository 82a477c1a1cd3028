"""Functions of Python as prediction models."""

from __future__ import annotations

import inspect
from collections.abc import Callable, Iterable, Mapping
from typing import Any

_BY_NAME = (inspect.Parameter.POSITIONAL_OR_KEYWORD, inspect.Parameter.KEYWORD_ONLY)


class Fault(Exception):
    """What a function gave that is no prediction."""


class Model:
    """A function of columns that predicts responses in blocks of runs.

    It takes the columns of the inputs that its parameters are called after; or, as its only argument of another name, all
    inputs as a dictionary of arrays.
    """

    def __init__(self, function: Callable, inputs: Iterable[str], responses: str | Iterable[str] | None) -> None:
        self._function = function
        self.predictors, self._as_mapping = _arguments(function, list(inputs))
        self.name = getattr(function, "__name__", "") or type(function).__name__
        if responses is None:
            responses = [self.name if self.name.isidentifier() else "y"]
        self.responses = [responses] if isinstance(responses, str) else [str(name) for name in responses]
        self.failure: BaseException | None = None

    def __call__(self, first: int, columns: list) -> list:
        """The responses of a block, of which the first run is `first`, from 0. Raises Fault, which names the block."""
        count = len(columns[0]) if columns else 0
        where = f"{self.name}, runs {first + 1} to {first + count}"
        named = dict(zip(self.predictors, columns))
        try:
            given = self._function(named) if self._as_mapping else self._function(**named)
        except BaseException as failure:
            self.failure = failure
            raise Fault(f"the function failed with {type(failure).__name__}: {failure}", where) from failure
        return [_checked(values, name, first, count, where) for name, values in self._parts(given, where)]

    def _parts(self, given, where):
        """Each response with what the function gave for it."""
        if isinstance(given, Mapping) or hasattr(given, "columns"):
            lacking = [name for name in self.responses if name not in given]
            if lacking:
                raise Fault(f"the function gave no column {lacking[0]!r}", where)
            return [(name, given[name]) for name in self.responses]
        if len(self.responses) == 1:
            return [(self.responses[0], given)]
        columns = list(given.T) if getattr(given, "ndim", 0) == 2 else given
        if not isinstance(columns, (tuple, list)) or len(columns) != len(self.responses):
            raise Fault(f"expected {len(self.responses)} columns, for {', '.join(self.responses)}; the function gave "
                        f"{_described(given)}", where)
        return list(zip(self.responses, columns))


def _arguments(function, inputs):
    """The names of the inputs that a function takes, and whether it takes all of them as one mapping."""
    try:
        parameters = list(inspect.signature(function).parameters.values())
    except (TypeError, ValueError):  # of a function that does not tell
        return inputs, True
    if any(one.kind is inspect.Parameter.VAR_KEYWORD for one in parameters):
        return inputs, False
    taken = [one.name for one in parameters if one.kind in _BY_NAME and one.name in inputs]
    others = [one for one in parameters if one.name not in taken and one.default is inspect.Parameter.empty
              and one.kind is not inspect.Parameter.VAR_POSITIONAL]
    if len(others) == 1 and not taken and others[0].kind is not inspect.Parameter.KEYWORD_ONLY:
        return inputs, True
    if others or not taken:
        unknown = ", ".join(one.name for one in others) or "no parameters"
        raise ValueError(f"the function takes {unknown}, which no input is called; the inputs are {', '.join(inputs)}")
    return taken, False


def _described(given):
    shape = getattr(given, "shape", None)
    if shape is not None:
        return f"an array of shape {tuple(shape)}"
    if isinstance(given, (tuple, list)):
        return f"{len(given)} values"
    return f"a {type(given).__name__}"


def _checked(values, response, first, count, where):
    """The numbers of a response, one for each run of the block."""
    import numpy

    described = f"{response}: expected {count} numbers; the function gave {_described(values)}"
    try:
        numbers = numpy.asarray(values)
        if numbers.dtype.kind not in "fiub":
            numbers = numbers.astype(float) if numbers.dtype.kind == "O" else None
        numbers = None if numbers is None else numbers.astype(float)
    except (TypeError, ValueError):
        numbers = None
    if numbers is None or numbers.shape != (count,):
        raise Fault(described, where)
    wrong = numpy.flatnonzero(~numpy.isfinite(numbers) | numpy.ma.getmaskarray(values))
    if len(wrong):
        raise Fault(f"{response}: run {first + int(wrong[0]) + 1} has no number but {numbers[wrong[0]]}; of the block "
                    f"{len(wrong)} have none", where)
    return numpy.ascontiguousarray(numbers)
