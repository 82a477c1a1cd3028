"""Spreadsheets to and from pandas; these methods are added to the extension's class. pandas is imported on use."""

import numbers
from decimal import Decimal

from . import _arguments
from ._brenvolt import Spreadsheet, Variable
from ._errors import warn

# What pandas.api.types.infer_dtype calls columns of Python objects that are all numbers, all texts, or neither.
_NUMBERS = frozenset(("integer", "floating", "mixed-integer-float", "decimal", "boolean"))
_TEXTS = frozenset(("string", "empty"))
_DATES = frozenset(("date", "datetime", "datetime64"))
_TIMES = frozenset(("time", "timedelta", "timedelta64"))
_HELD = ("numbers", "texts", "dates", "times")
_OTHERS = frozenset(("bytes", "complex", "period", "interval"))


def _mixed_kind(series):
    """The same of a column of Python objects of several types."""
    others = {type(value).__name__: value for value in series[series.notna()]
              if not isinstance(value, (str, numbers.Real, Decimal))}
    if others:
        return next(iter(others))
    return "texts" if any(isinstance(value, str) for value in series) else "numbers"


def _kind(series):
    """What a column holds: "numbers", "texts", "dates", "times" (of day, or durations), or the name of a kind that a
    spreadsheet cannot hold."""
    import pandas

    kind = series.dtype
    if isinstance(kind, pandas.CategoricalDtype):
        return _kind(pandas.Series(kind.categories))
    if pandas.api.types.is_complex_dtype(kind):
        return "complex"
    if pandas.api.types.is_numeric_dtype(kind):
        return "numbers"
    found = pandas.api.types.infer_dtype(series, skipna=True)
    if found in _NUMBERS:
        return "numbers"
    if found in _DATES:
        return "dates"
    if found in _TIMES:
        return "times"
    if found in _OTHERS:
        return found
    return "texts" if found in _TEXTS else _mixed_kind(series)


def _numbers(series):
    """The values as doubles, missing ones as NaN: of numbers of any type, and of categories that are numbers."""
    import pandas

    if series.dtype == object or isinstance(series.dtype, pandas.CategoricalDtype):
        series = series.astype(object).map(lambda value: float("nan") if pandas.isna(value) else float(value))
    return series.to_numpy(dtype=float, na_value=float("nan"))


def _dates(series):
    """Dates as workbooks' are read: "2024-02-29", with the time where there is one."""
    import pandas

    def text(value):
        if pandas.isna(value):
            return None
        moment = f"{value.year:04}-{value.month:02}-{value.day:02}"
        clock = tuple(getattr(value, part, 0) for part in ("hour", "minute", "second"))
        return moment + " {:02}:{:02}:{:02}".format(*clock) if any(clock) else moment

    return series.astype(object).map(text)


def _hours(series):
    """Times of day and durations as workbooks' are read: hours."""
    import pandas

    def hours(value):
        if pandas.isna(value):
            return float("nan")
        if hasattr(value, "hour"):
            return value.hour + value.minute / 60 + (value.second + value.microsecond / 1e6) / 3600
        return pandas.Timedelta(value).total_seconds() / 3600

    return series.astype(object).map(hours).to_numpy(dtype=float)


def _too_large(name):
    return ValueError(f"column {name!r} holds a number that is too large")


def _series(name, values):
    """The values of a column in whatever people have them, which has one axis."""
    import numpy
    import pandas

    if isinstance(values, pandas.Series):
        return values
    scalar = isinstance(values, (str, bytes, bytearray, dict, set, frozenset)) or not hasattr(values, "__len__")
    if scalar or getattr(values, "ndim", 1) == 0:
        raise TypeError(f"column {name!r} must be an array or list of values, not {type(values).__name__}")
    if getattr(values, "ndim", 1) != 1:
        raise ValueError(f"column {name!r} must have one axis, not {values.ndim}")
    objects = getattr(values, "dtype", None) == object and not isinstance(values, numpy.ma.MaskedArray)
    if isinstance(values, (list, tuple)) or objects:
        values = [None if value is numpy.ma.masked else value for value in values]
    try:
        return pandas.Series(values, dtype=None if len(values) else float)
    except OverflowError:
        raise _too_large(name) from None


def _codes_and_labels(series):
    """The codes 1, 2, ... of texts in the order in which they are first met; NaN for a missing text."""
    import numpy
    import pandas

    codes, texts = pandas.factorize(series)
    values = codes.astype(float) + 1
    values[codes < 0] = numpy.nan
    return values, {float(i + 1): str(text) for i, text in enumerate(texts)}


def _refusal(name, kind):
    return TypeError(f"column {name!r} holds {kind} values, neither numbers nor texts")


def _set_column(sheet, name, series, kind):
    """Sets a column of a kind that _kind() told."""
    if kind == "numbers":
        try:
            sheet._set_column(name, _numbers(series))
        except OverflowError:
            raise _too_large(name) from None
    elif kind == "texts":
        sheet._set_column(name, *_codes_and_labels(series.astype(object)))
    elif kind == "dates":
        sheet._set_column(name, *_codes_and_labels(_dates(series)))
    elif kind == "times":
        sheet._set_column(name, _hours(series))
    else:
        raise _refusal(name, kind)


def _setitem(self, name, values):
    """Sets a column, a new one or in the place of the one of that name: numbers, or texts.

    Missing values, and those that a NumPy mask hides, stay missing. Dates become texts such as 2024-02-29, times of
    day and durations numbers of hours. Complex numbers are refused.
    """
    import numpy

    _arguments.text(name, "name")
    plain = isinstance(values, numpy.ndarray) and not isinstance(values, numpy.ma.MaskedArray)
    if plain and values.dtype.kind in "fiub" and values.ndim == 1:
        self._set_column(name, values)
    else:
        series = _series(name, values)
        _set_column(self, name, series, _kind(series))


def _set_values(self, values):
    series = _series(self.name, values)
    kind = _kind(series)
    if kind != "numbers":
        raise TypeError(f"the values of {self.name!r} must be numbers, not {kind}")
    _assign_values(self, _numbers(series))


def _frame_of_another_library(table):
    """The pandas frame of a table of Arrow, Polars and the like: as the library makes it, or by the interchange
    protocol."""
    if hasattr(table, "to_pandas"):
        try:
            return table.to_pandas()
        except ImportError:
            if not hasattr(table, "__dataframe__"):
                raise
    from pandas.api.interchange import from_dataframe

    return from_dataframe(table)


def _from_columns(columns, name, required):
    """A spreadsheet with the columns of a mapping, under the rules of _from_pandas."""
    sheet = Spreadsheet(name)
    left_out = []
    for column, values in columns.items():
        title, kind = str(column), _kind_of(column, values)
        if kind not in _HELD and title not in required:
            left_out.append(f"{title} ({kind})")
        elif sheet.names and len(values) != len(sheet):
            raise ValueError(f"column {title!r} has {len(values)} values, the ones before have {len(sheet)}")
        else:
            sheet[title] = values
    _say_left_out(left_out)
    return sheet


def _kind_of(name, values):
    """The kind of any column; plain arrays of numbers need no pandas."""
    if getattr(getattr(values, "dtype", None), "kind", "O") in "fiub":
        return "numbers"
    return _kind(_series(name, values))


def _say_left_out(columns):
    if columns:
        warn(f"columns that hold neither numbers nor texts are left out: {', '.join(columns)}")


def _from_pandas(frame, name="Sheet", required=()):
    """A spreadsheet with the columns of a DataFrame, or of a Series.

    Numbers, numbers as Python objects or categories, and truth values become numeric variables; texts become text
    variables, and so do dates, as 2024-02-29; times of day and durations become numbers of hours; missing values stay
    missing. Columns of other kinds (complex numbers, lists) are left out with a warning; one that `required` names is
    refused. The index gives the names of the cases, unless it merely counts them.
    """
    import pandas

    if not isinstance(frame, (pandas.DataFrame, pandas.Series)):
        _arguments.refuse("frame", "a DataFrame or a Series", frame)
    if isinstance(frame, pandas.Series):
        frame = frame.to_frame(name=frame.name if frame.name is not None else "x")
    sheet = Spreadsheet(name)
    left_out = []
    for place, column in enumerate(frame.columns):
        title, series = str(column), frame.iloc[:, place]
        if title in sheet:
            raise ValueError(f"{title!r} names two columns")
        kind = _kind(series)
        if kind not in _HELD:
            if title in required:
                raise _refusal(title, kind)
            left_out.append(f"{title} ({kind})")
        else:
            _set_column(sheet, title, series, kind)
    _say_left_out(left_out)
    if not isinstance(frame.index, pandas.RangeIndex):
        sheet.case_names = [str(label) for label in frame.index]
    return sheet


def _to_pandas(self):
    """A DataFrame with the variables as columns; texts as texts, missing values as NaN, case names as the index."""
    import numpy
    import pandas

    columns = {}
    for number, name in enumerate(self.names, start=1):
        variable = self.variable(number)
        if variable.is_text:
            labels = variable.labels
            column = numpy.array([labels.get(value, value) for value in variable.values], dtype=object)
        else:
            column = variable.values.copy()
        if not numpy.isnan(variable.missing_code):
            column[variable.missing] = numpy.nan
        columns[name] = column
    if self._cases_numbered:
        index = pandas.RangeIndex(1, len(self) + 1, name=self.header or None)
    elif self.case_names is not None:
        index = pandas.Index(self.case_names, name=self.header or None)
    else:
        index = pandas.RangeIndex(len(self))
    return pandas.DataFrame(columns, index=index)


_assign_values = Variable.values.fset
Variable.values = property(Variable.values.fget, _set_values, None, Variable.values.__doc__)
for _name, _method in (("__setitem__", _setitem), ("to_pandas", _to_pandas),
                       ("from_pandas", staticmethod(_from_pandas))):
    setattr(Spreadsheet, _name, _method)
