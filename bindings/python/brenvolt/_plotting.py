"""Graphs drawn with matplotlib, which is needed only here."""

from __future__ import annotations

import itertools
import math
from typing import TYPE_CHECKING, Any

from ._brenvolt import palette

if TYPE_CHECKING:
    from ._automation import GraphDocument

# Those of the pictures that the command draws; lines differ in pattern, too.
_PALETTE = palette()
BAR, BAR_EDGE, NEGATIVE_BAR, POINT, REFERENCE, MARKER = (
    _PALETTE[name][0] for name in ("bar", "bar_edge", "negative_bar", "point", "reference", "marker"))
COLOURS = _PALETTE["lines"]
PATTERNS = ("-", "--", ":", "-.", (0, (3, 1, 1, 1, 1, 1)))


def pyplot():
    try:
        import matplotlib.pyplot
    except ImportError as error:
        raise ImportError("drawing in Python needs matplotlib; Debian's package is python3-matplotlib") from error
    return matplotlib.pyplot


def _lines():
    return zip(itertools.cycle(COLOURS), itertools.cycle(PATTERNS))


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
             meanprops={"marker": "D", "markerfacecolor": COLOURS[0], "markeredgecolor": COLOURS[0]},
             flierprops={"marker": "o", "markerfacecolor": POINT, "markeredgecolor": POINT, "markersize": 4})


def _draw_series(series, style, axes):
    x, y, name = series["x"], series["y"], series["name"]
    if _is_marker(series):
        axes.axvline(x[0], color=MARKER, linestyle="--", label=f"{name} {x[0]:g}")
    elif series["style"] == "points":
        axes.plot(x, y, "o", color=POINT, alpha=0.5, markersize=4, markeredgewidth=0, label=name)
    elif series["style"] == "steps":
        axes.step(x, y, where="post", color=COLOURS[1], label=name)
    else:
        axes.plot(x, y, color=style[0], linestyle=style[1], label=name)


def _draw_regions(regions, axes):
    """Over the range that the other parts have."""
    limits = axes.get_xlim()
    names = set()
    for region in regions:
        low, high = max(region["from"], limits[0]), min(region["to"], limits[1])
        if low < high:
            label = None if region["name"] in names else region["name"]
            axes.axvspan(low, high, color=COLOURS[0], alpha=0.15, linewidth=0, label=label, zorder=0)
            names.add(region["name"])
    axes.set_xlim(limits)


def _draw_cells(cells, axes):
    from matplotlib.colors import LinearSegmentedColormap

    colours = LinearSegmentedColormap.from_list("correlation", [COLOURS[0], "white", COLOURS[1]])
    values = cells["values"]
    image = axes.imshow(values, cmap=colours, vmin=-1, vmax=1)
    axes.set_xticks(range(len(cells["columns"])), cells["columns"], rotation=90)
    axes.set_yticks(range(len(cells["rows"])), cells["rows"])
    if values.size <= 400:
        for (row, column), value in _finite(values):
            axes.text(column, row, f"{value:.2f}", ha="center", va="center", fontsize="small",
                      color="white" if abs(value) > 0.7 else "black")
    axes.figure.colorbar(image, ax=axes, label=cells["name"])


def _finite(values):
    import numpy

    return [(place, value) for place, value in numpy.ndenumerate(values) if math.isfinite(value)]


def _draw_text(lines, axes):
    axes.text(0.5, 0.5, "\n".join(lines), ha="center", va="center", transform=axes.transAxes)
    axes.set_axis_off()


def _draw_parts(graph, axes):
    lines = _lines()
    for band in graph.bands:
        axes.fill_between(band["x"], band["lower"], band["upper"], color=POINT, alpha=0.2, linewidth=0,
                          label=band["name"])
    for bars in graph.bars:
        axes.bar(bars["bounds"][:-1], bars["heights"], bars["bounds"][1:] - bars["bounds"][:-1], align="edge",
                 color=BAR, edgecolor=BAR_EDGE, label=bars["name"])
    for series in graph.series:
        reference = (REFERENCE, "--") if graph.kind in ("pp", "qq") else None
        is_line = series["style"] == "line" and not _is_marker(series)
        _draw_series(series, reference or (next(lines) if is_line else None), axes)
    for curve in graph.curves:
        colour, pattern = next(lines)
        axes.plot(curve["x"], curve["y"], color=colour, linestyle=pattern, label=curve["name"])
    _draw_regions(graph.regions, axes)


def _note(notes, axes):
    """Below the axes."""
    if notes:
        axes.annotate("; ".join(notes), (0.5, 0), (0, -36), xycoords="axes fraction", textcoords="offset points",
                      ha="center", va="top", fontsize="x-small", annotation_clip=False)


def draw(graph: GraphDocument, axes: Any = None) -> Any:
    """Draws a graph on axes, those given or new ones, and returns them; of one made of panels, an array of axes."""
    panels = graph.panels
    if len(panels) == 1:
        return _draw_only_panel(graph, panels[0], axes)
    if panels:
        return _draw_panels(graph, panels, axes)
    if axes is None:
        axes = pyplot().subplots(layout="constrained")[1]
    if graph.kind == "text":
        _draw_text(graph.notes, axes)
        return axes
    axes.set_title(graph.title)
    if graph.kind == "tornado":
        _draw_tornado(graph.bars, axes)
        axes.set_xlabel(graph.y_title)
    elif graph.boxes:
        _draw_boxes(graph.boxes, axes)
        axes.set_xlabel(graph.y_title)
    elif graph.cells:
        _draw_cells(graph.cells[0], axes)
    else:
        _draw_parts(graph, axes)
        axes.set_xlabel(graph.x_title)
        axes.set_ylabel(graph.y_title)
        if len(axes.get_legend_handles_labels()[0]) > 1:
            axes.legend(fontsize="small")
    _note(graph.notes, axes)
    return axes


def _draw_only_panel(graph, panel, axes):
    axes = draw(panel, axes)
    axes.set_title(graph.title)
    _note(graph.notes, axes)
    return axes


def grid(count: int, axes: Any = None, columns: int = 0) -> Any:
    """So many axes: those given, or new ones, side by side in so many columns, or in about a square."""
    if axes is not None:
        import numpy

        found = numpy.ravel(axes)
        if len(found) < count:
            raise ValueError(f"{count} axes are needed, not {len(found)}")
        return found
    columns = columns or math.ceil(math.sqrt(count))
    rows = math.ceil(count / columns)
    figure, made = pyplot().subplots(rows, columns, squeeze=False, figsize=(min(5 * columns, 20), min(4 * rows, 40)),
                                     layout="constrained")
    made = made.ravel()
    for unused in made[count:]:
        figure.delaxes(unused)
    return made[:count]


def _draw_panels(graph, panels, axes):
    found = grid(len(panels), axes, graph.panel_columns)
    for panel, one in zip(panels, found):
        draw(panel, one)
    if graph.kind == "scatter-matrix":
        _share(found, graph.panel_columns)
    if axes is None:
        found[0].figure.suptitle(graph.title)
        if graph.notes:
            found[0].figure.supxlabel("; ".join(graph.notes), fontsize="small")
    return found


def _share(axes, columns):
    """The cells of a matrix: numbers and names stand at its left and below it."""
    for place, one in enumerate(axes):
        one.set_title("")
        if place % columns:
            one.set_ylabel("")
        if place + columns < len(axes):
            one.set_xlabel("")
