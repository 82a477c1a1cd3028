"""Simulated samples that draw themselves with what their frame knows of its origin."""

from __future__ import annotations

import weakref
from typing import Any

import pandas

from . import _automation, _brenvolt
from ._errors import Error

# Beyond these a picture would make a table slow to show.
_MOST_SHOWN = 1_000_000


class SamplesPlot:
    """Draws samples with matplotlib on axes, those given or new ones, and returns them; of several variables an array.

    plot("scatter-matrix"): every pair, with the rank correlations reached and asked for; "heat-map": these alone;
    "histogram": with what the distribution of the variable lets expect; "box-plot". Any other call, and every
    attribute, is that of a DataFrame's plot.
    """

    # The frame has this object, which therefore must not hold the frame: only what is left of one that was not kept.
    def __init__(self, samples: pandas.DataFrame) -> None:
        self._samples = weakref.ref(samples)
        self._shared = samples.copy(deep=False)

    def _frame(self):
        found = self._samples()
        return self._shared if found is None else found

    def __call__(self, *args: Any, **kwargs: Any) -> Any:
        kind = kwargs.get("kind", args[0] if args else None)
        if not isinstance(kind, str) or kind not in _brenvolt._data_plot_kinds:
            return pandas.plotting.PlotAccessor(self._frame())(*args, **kwargs)
        if len(args) > 1 or set(kwargs) - {"kind", "ax"}:
            raise TypeError(f"plot({kind!r}) takes ax alone")
        return graph(self._frame(), kind).plot(kwargs.get("ax"))

    def __getattr__(self, name: str) -> Any:
        return getattr(pandas.plotting.PlotAccessor(self._frame()), name)

    def html(self) -> str | None:
        """The table of the samples with a small picture below it."""
        frame = self._frame()
        table = pandas.DataFrame._repr_html_(frame)
        if table is None or frame.empty or frame.size > _MOST_SHOWN:
            return table
        try:
            picture = graph(frame, "overview")._repr_svg_()
        except (Error, TypeError, ValueError):  # columns that were changed since
            return table
        return table if picture is None else table + picture[picture.index("<svg"):]


def teach_to_draw(samples: pandas.DataFrame) -> pandas.DataFrame:
    """Gives the frame, which stays a DataFrame, a plot of its own. Its attrs tell of its origin."""
    plot = SamplesPlot(samples)
    object.__setattr__(samples, "plot", plot)
    object.__setattr__(samples, "_repr_html_", plot.html)
    return samples


def graph(samples: pandas.DataFrame, kind: str) -> _automation.GraphDocument:
    """The graph of samples with what their attrs tell of their origin."""
    numbers = samples.select_dtypes("number")
    asked = samples.attrs.get("correlations", {}).get("asked", {})
    pairs = [(first, second, value) for first, row in asked.items() for second, value in row.items() if first != second]
    return _automation.wrapped(_brenvolt._sample_graph(
        _brenvolt.Spreadsheet.from_pandas(numbers, "Samples"), kind, samples.attrs.get("distributions", {}),
        samples.attrs.get("truncate", False), pairs))
