"""Functions of Python as prediction models."""

from __future__ import annotations

import inspect
import itertools
from collections.abc import Callable, Iterable, Mapping
from typing import Any

from . import _arguments

_BY_NAME = (inspect.Parameter.POSITIONAL_OR_KEYWORD, inspect.Parameter.KEYWORD_ONLY)


class Fault(Exception):
    """What a function gave that is no prediction."""


class Model:
    """A function of columns that predicts responses in blocks of runs.

    It takes the columns of the inputs that its parameters are called after; or, as its only argument of another name,
    all inputs as a dictionary of arrays. A ufunc of NumPy takes the inputs in their order.
    """

    def __init__(self, function: Callable, inputs: Iterable[str], responses: str | Iterable[str] | None) -> None:
        self._function = function
        self.predictors, self._call = _call_of(function, list(inputs))
        self.name = getattr(function, "__name__", "") or type(function).__name__
        self.responses = self._named(responses)
        self.failure: BaseException | None = None

    def __call__(self, first: int, columns: list) -> list:
        """The responses of a block, of which the first run is `first`, from 0. Raises Fault, which names the block."""
        count = len(columns[0]) if columns else 0
        where = f"{self.name}, runs {first + 1} to {first + count}"
        try:
            given = self._call(self._function, dict(zip(self.predictors, columns)))
        except BaseException as failure:
            self.failure = failure
            raise Fault(f"the function failed with {_told(failure)}", where) from failure
        return [_checked(values, name, first, count, where) for name, values in self._parts(given, where)]

    def _named(self, responses):
        """The names of the responses; without any, the function's own name or another that no input has."""
        if responses is None:
            usual = [self.name if self.name.isidentifier() else "y", "response"]
            names = itertools.chain(usual, (f"response{i}" for i in itertools.count(2)))
            return [next(name for name in names if name not in self.predictors)]
        names = _arguments.names(responses, "responses")
        if not names:
            raise ValueError("responses must name what the function gives, one response or more")
        for place, name in enumerate(names):
            if name in names[:place]:
                raise ValueError(f"responses names {name!r} twice")
            if name in self.predictors:
                raise ValueError(f"the response {name!r} is an input of the function as well; give it another name")
        return names

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


def _by_mapping(function, named):
    return function(named)


def _by_name(function, named):
    return function(**named)


def _by_place(function, named):
    return function(*named.values())


def _call_of(function, inputs):
    """The names of the inputs that a function takes, and how it takes them."""
    count = getattr(function, "nin", None)  # of a ufunc
    if count is not None:
        if count != len(inputs):
            raise ValueError(f"{function.__name__} takes {count} inputs, in their order; the inputs are "
                             f"{', '.join(inputs)}")
        return inputs, _by_place
    try:
        parameters = list(inspect.signature(function).parameters.values())
    except (TypeError, ValueError):  # of a function that does not tell
        return inputs, _by_mapping
    if any(one.kind is inspect.Parameter.VAR_KEYWORD for one in parameters):
        return inputs, _by_name
    taken = [one.name for one in parameters if one.kind in _BY_NAME and one.name in inputs]
    others = [one for one in parameters if one.name not in taken and one.default is inspect.Parameter.empty
              and one.kind is not inspect.Parameter.VAR_POSITIONAL]
    if len(others) == 1 and not taken and others[0].kind is not inspect.Parameter.KEYWORD_ONLY:
        return inputs, _by_mapping
    if [one.kind for one in parameters] == [inspect.Parameter.VAR_POSITIONAL]:
        return inputs, _by_place
    if others or not taken:
        unknown = ", ".join(one.name for one in others) or "no parameters"
        raise ValueError(f"the function takes {unknown}, which no input is called; the inputs are {', '.join(inputs)}")
    return taken, _by_name


def _told(failure):
    """The kind and the text of an exception, which may fail to tell its text."""
    kind = type(failure).__name__
    try:
        return f"{kind}: {failure}"
    except Exception:
        return kind


def _described(given):
    shape = getattr(given, "shape", None)
    if shape is not None:
        kind = getattr(getattr(given, "dtype", None), "kind", "O")
        return f"an array of shape {tuple(shape)}" if kind in "fiubO" else f"an array of type {given.dtype}"
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
