"""Graphs drawn with matplotlib, which is needed only here."""

from __future__ import annotations

import math
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from ._automation import GraphDocument

# Those of the pictures that the command draws (Okabe and Ito 2008); lines differ in pattern, too.
BAR, BAR_EDGE, NEGATIVE_BAR, POINT, REFERENCE, MARKER = "#bfd7ea", "#6f9bbf", "#e8c088", "#0072b2", "#777777", "#a03000"
LINES = (("#d55e00", "-"), ("#0072b2", "--"), ("#009e73", ":"), ("#a8558a", "-."))


def pyplot():
    try:
        import matplotlib.pyplot
    except ImportError as error:
        raise ImportError("drawing in Python needs matplotlib; Debian's package is python3-matplotlib") from error
    return matplotlib.pyplot


def _lines():
    while True:
        yield from LINES


def _is_marker(series):
    return series["style"] == "line" and len(series["x"]) == 2 and series["x"][0] == series["x"][1]


def _draw_tornado(bars, axes):
    names = [one["name"] for one in bars]
    values = [one["heights"][0] for one in bars]
    axes.barh(names, values, color=[NEGATIVE_BAR if value < 0 else BAR for value in values], edgecolor=BAR_EDGE)
    axes.invert_yaxis()
    axes.axvline(0, color="black", linewidth=1)


def _draw_boxes(boxes, axes):
    parts = [{"label": box["name"], "q1": box["lower_quartile"], "med": box["median"], "q3": box["upper_quartile"],
              "whislo": box["lower_whisker"], "whishi": box["upper_whisker"], "mean": box["mean"],
              "fliers": box["outliers"]} for box in boxes]
    axes.bxp(parts, vert=False, showmeans=True, patch_artist=True,
             boxprops={"facecolor": BAR, "edgecolor": BAR_EDGE}, medianprops={"color": "black"},
             meanprops={"marker": "D", "markerfacecolor": LINES[0][0], "markeredgecolor": LINES[0][0]},
             flierprops={"marker": "o", "markerfacecolor": POINT, "markeredgecolor": POINT, "markersize": 4})


def _draw_series(series, style, axes):
    x, y, name = series["x"], series["y"], series["name"]
    if _is_marker(series):
        axes.axvline(x[0], color=MARKER, linestyle="--", label=f"{name} {x[0]:g}")
    elif series["style"] == "points":
        axes.plot(x, y, "o", color=POINT, alpha=0.5, markersize=4, markeredgewidth=0, label=name)
    elif series["style"] == "steps":
        axes.step(x, y, where="post", color=LINES[1][0], label=name)
    else:
        axes.plot(x, y, color=style[0], linestyle=style[1], label=name)


def _draw_parts(graph, axes):
    lines = _lines()
    for band in graph.bands:
        axes.fill_between(band["x"], band["lower"], band["upper"], color=POINT, alpha=0.2, linewidth=0, label=band["name"])
    for bars in graph.bars:
        axes.bar(bars["bounds"][:-1], bars["heights"], bars["bounds"][1:] - bars["bounds"][:-1], align="edge", color=BAR,
                 edgecolor=BAR_EDGE, label=bars["name"])
    for series in graph.series:
        reference = (REFERENCE, "--") if graph.Kind in ("pp", "qq") else None
        _draw_series(series, reference or (next(lines) if series["style"] == "line" else None), axes)
    for curve in graph.curves:
        colour, pattern = next(lines)
        axes.plot(curve["x"], curve["y"], color=colour, linestyle=pattern, label=curve["name"])


def draw(graph: GraphDocument, axes: Any = None) -> Any:
    """Draws a graph on axes, those given or new ones, and returns them; of one made of panels, an array of axes."""
    if graph.NumberOfPanels:
        return _draw_panels(graph, axes)
    if axes is None:
        axes = pyplot().subplots()[1]
    axes.set_title(graph.Title)
    if graph.Kind == "tornado":
        _draw_tornado(graph.bars, axes)
        axes.set_xlabel(graph.YAxisTitle)
        return axes
    if graph.boxes:
        _draw_boxes(graph.boxes, axes)
        axes.set_xlabel(graph.YAxisTitle)
        return axes
    _draw_parts(graph, axes)
    axes.set_xlabel(graph.XAxisTitle)
    axes.set_ylabel(graph.YAxisTitle)
    if len(axes.get_legend_handles_labels()[0]) > 1:
        axes.legend(fontsize="small")
    return axes


def grid(count: int, axes: Any = None) -> Any:
    """So many axes, in about a square: those given, or new ones."""
    if axes is not None:
        import numpy

        found = numpy.ravel(axes)
        if len(found) < count:
            raise ValueError(f"{count} axes are needed, not {len(found)}")
        return found
    columns = math.ceil(math.sqrt(count))
    rows = math.ceil(count / columns)
    figure, made = pyplot().subplots(rows, columns, squeeze=False, figsize=(5 * columns, 4 * rows), layout="constrained")
    made = made.ravel()
    for unused in made[count:]:
        figure.delaxes(unused)
    return made[:count]


def _draw_panels(graph, axes):
    panels = graph.panels
    found = grid(len(panels), axes)
    for panel, one in zip(panels, found):
        draw(panel, one)
    if axes is None:
        found[0].figure.suptitle(graph.Title)
    return found


def _response_tornado(response, axes):
    _draw_tornado([{"name": name, "heights": [value]} for name, value in response.sensitivity["rank_correlation"].items()],
                  axes)
    axes.set_title(f"What drives {response.name}")
    axes.set_xlabel("Rank correlation")


def _response_histogram(response, axes):
    classes = response.frequencies
    axes.bar(classes["from"], classes["count"], classes["to"] - classes["from"], align="edge", color=BAR, edgecolor=BAR_EDGE)
    if response.capability is not None:
        for limit, name in (("lsl", "LSL"), ("target", "Target"), ("usl", "USL")):
            value = response.capability.at[limit, "value"]
            if not math.isnan(value):
                axes.axvline(value, color=MARKER, linestyle="--", label=f"{name} {value:g}")
        axes.legend(fontsize="small")
    axes.set_title(f"Histogram of {response.name}")
    axes.set_xlabel(response.name)
    axes.set_ylabel("Number of observations")


def _response_profiles(response, axes):
    found = grid(len(response.profiles), axes)
    for (predictor, means), one in zip(response.profiles.items(), found):
        one.plot(means["value"], means["mean"], color=LINES[0][0])
        one.set_xlabel(predictor)
        one.set_ylabel(f"Mean of {response.name}")
    return found


RESPONSE_KINDS = ("tornado", "histogram", "profile")


def draw_response(response: Any, kind: str, axes: Any) -> Any:
    """Draws what simulated runs told of a response, and returns the axes."""
    if kind not in RESPONSE_KINDS:
        raise ValueError(f"kind must be one of {', '.join(RESPONSE_KINDS)}, not {kind!r}")
    if kind == "profile":
        return _response_profiles(response, axes)
    if axes is None:
        axes = pyplot().subplots()[1]
    (_response_tornado if kind == "tornado" else _response_histogram)(response, axes)
    return axes
