"""Spreadsheets to and from pandas; these methods are added to the extension's class. pandas is imported on use."""

from ._brenvolt import Spreadsheet


def _numbers(series):
    return series.to_numpy(dtype=float, na_value=float("nan"))


def _codes_and_labels(series):
    """The codes 1, 2, ... of texts in the order in which they are first met; NaN where there is none."""
    import numpy
    import pandas

    codes, texts = pandas.factorize(series)
    values = codes.astype(float) + 1
    values[codes < 0] = numpy.nan
    return values, {float(i + 1): str(text) for i, text in enumerate(texts)}


def _set_column(sheet, name, values):
    import pandas

    series = values if isinstance(values, pandas.Series) else pandas.Series(values)
    kind = series.dtype
    if pandas.api.types.is_complex_dtype(kind) or kind.kind in "mM":
        raise TypeError(f"column {name!r} is of type {kind}, neither numbers nor texts")
    if isinstance(kind, pandas.CategoricalDtype) or not pandas.api.types.is_numeric_dtype(kind):
        sheet._set_column(name, *_codes_and_labels(series.astype(object)))
    else:
        sheet._set_column(name, _numbers(series))


def _setitem(self, name, values):
    """Sets a column, a new one or in the place of the one of that name: numbers, or texts."""
    import numpy

    if isinstance(values, numpy.ndarray) and values.dtype.kind in "fiub":
        self._set_column(name, values)
    else:
        _set_column(self, name, values)


def _from_pandas(frame, name="Sheet"):
    """A spreadsheet with the columns of a DataFrame, or of a Series.

    Numbers and truth values become numeric variables, everything else texts; missing values stay missing. The index
    gives the names of the cases, unless it merely counts them.
    """
    import pandas

    if isinstance(frame, pandas.Series):
        frame = frame.to_frame(name=frame.name if frame.name is not None else "x")
    sheet = Spreadsheet(name)
    for place, column in enumerate(frame.columns):
        if str(column) in sheet:
            raise ValueError(f"{str(column)!r} names two columns")
        _set_column(sheet, str(column), frame.iloc[:, place])
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


for _name, _method in (("__setitem__", _setitem), ("to_pandas", _to_pandas),
                       ("from_pandas", staticmethod(_from_pandas))):
    setattr(Spreadsheet, _name, _method)
