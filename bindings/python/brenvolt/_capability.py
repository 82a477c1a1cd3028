"""The capability of measured processes."""

from __future__ import annotations

import json
import os
from collections.abc import Mapping
from typing import TYPE_CHECKING, Any

from . import _arguments, _brenvolt, _jobs, _reading

if TYPE_CHECKING:
    import pandas

Specifications = Mapping[str, tuple[float | None, float | None, float | None]]


def capability(data: Any, response: str | None = None, specifications: Specifications | None = None, *,
               subgroup: str | int | None = None, within: str | None = None, control_chart: str | None = None,
               rules: str | None = None, distribution: str | None = None, rank_by: str | None = None,
               bootstrap: int | None = None, bootstrap_seed: int | None = None, confidence: float | None = None,
               select: str | None = None, sheet: str | None = None, plot: str | os.PathLike | None = None,
               plot_kind: str | None = None, plot_theme: str | None = None, plot_width: int | None = None,
               report: str | os.PathLike | None = None, decimal_comma: bool = False, **reading: Any) -> CapabilityResult:
    """Judges measured values against a specification: control charts, indices, parts per million.

    data: as for fit().
    response: the variable that was measured; without, the one that is specified.
    specifications: {response: (lower limit, target, upper limit)}, each of which may be None.
    subgroup: the column that tells subgroups apart, or how many cases in a row make one.
    within: how the deviation within is estimated: "pooled" (as without), "r-bar", "s-bar", or "moving-range", which is the
    one without subgroups.
    control_chart: "i-mr", "x-bar-r" or "x-bar-s"; without, by the sizes of the subgroups. rules: "western-electric" (as
    without) or "nelson".
    distribution: whose percentiles are used; without, the one that fits best where the values are not normal.
    rank_by: by what the best fit is found, as for fit().
    bootstrap: samples of a parametric bootstrap, which gives intervals to what rests on a fitted distribution;
    bootstrap_seed: where its random numbers start, 1 without.
    confidence: of the intervals, 0.95 without.
    select, sheet, plot, plot_theme, plot_width, report, decimal_comma, reading: as for fit(). plot_kind: "overview" (as without),
    "control-charts" or "histogram".

    Returns a CapabilityResult.
    """
    if isinstance(subgroup, int) and not isinstance(subgroup, bool):
        subgroup = str(subgroup)
    job = _jobs._job(_brenvolt.CapabilityJob, data=_jobs._file_of(data), response=response,
                     specifications=_jobs._tuples(_brenvolt.ResponseSpecification, specifications, "specifications",
                                                  "(lower limit, target, upper limit)"),
                     subgroup=subgroup, within=within, control_chart=control_chart, rules=rules,
                     distribution=distribution, rank_by=rank_by, bootstrap=bootstrap,
                     bootstrap_seed=bootstrap_seed, confidence=confidence, select=select, plot=plot, plot_kind=plot_kind,
                     plot_theme=plot_theme, plot_width=plot_width, report=report, decimal_comma=decimal_comma,
                     reading=_reading.options(reading, "capability"))
    job.check()
    required = [name for name in (response, *(specifications or ()), subgroup) if isinstance(name, str)]
    return CapabilityResult(json.loads(job.run(_jobs._sheet_of(data, sheet, required, decimal_comma, reading))))


class CapabilityResult:
    """What is known of a measured process.

    is_stable: whether the control charts have no signal; `warning` says what follows where they have one.
    indices: a DataFrame of cp, cpl, cpu, cpk, pp, ppl, ppu, ppk and cpm with their intervals; percentiles: the indices and
    the expected parts by the percentiles of a fitted distribution, or None.
    ppm: a DataFrame of parts per million below, above and in all, observed and expected, with their intervals.
    location, dispersion: DataFrames of the points of the charts with their limits; signals: a DataFrame of the points that
    end a signal.
    deviations, normality: the estimates of the deviation, and the test of the values for normality; notes: how to read all
    this. `report` is what the command prints as JSON.
    """

    def __init__(self, report: dict[str, Any]) -> None:
        import pandas

        self.report = report
        self.response: str = report["response"]
        stability = report["stability"]
        self.is_stable: bool = stability["isStable"]
        self.warning: str | None = stability["warning"]
        self.location, self.dispersion = (_chart(stability[which]) for which in ("location", "dispersion"))
        signals = [(stability[which]["of"], signal) for which in ("location", "dispersion")
                   for signal in stability[which]["signals"]]
        self.signals = _jobs._frame([signal for _, signal in signals], "signals")
        self.signals.insert(0, "chart", [chart for chart, _ in signals])
        self.indices = pandas.DataFrame.from_dict(report["indices"], orient="index", dtype=float)
        self.percentiles: dict[str, Any] | None = report["percentiles"]
        rows = {(kind, which): one for kind, parts in report["ppm"].items() for which, one in parts.items()}
        self.ppm = pandas.DataFrame.from_dict(rows, orient="index", dtype=float)
        self.ppm.index = pandas.MultiIndex.from_tuples(rows)
        self.deviations: dict[str, Any] = report["deviations"]
        self.normality: dict[str, float | None] = report["normality"]
        self.notes: list[str] = report["notes"]

    def _repr_html_(self):
        return self.indices.to_html() + self.ppm.to_html()

    def __repr__(self):
        return f"<CapabilityResult of {self.response}, {'stable' if self.is_stable else 'not stable'}>"


def _chart(chart: Mapping[str, Any]) -> pandas.DataFrame:
    import pandas

    return pandas.DataFrame(_jobs._numbers_of(chart, "levels"), index=chart["names"], dtype=float)
