"""Fits of life data, of whose values some are known by bounds alone."""

from __future__ import annotations

import json
import re
from collections.abc import Callable
from typing import TYPE_CHECKING, Any

from . import _arguments, _brenvolt, _errors, _jobs, distributions as _distributions

if TYPE_CHECKING:
    import pandas


def fit(job: Any, censor: str | None, censor_upper: str | None, censor_event: str | float | None,
        sheet: Callable[[], Any]) -> CensoredFitResult:
    """Carries the job of a fit out over censored values."""
    if isinstance(censor_event, (int, float)) and not isinstance(censor_event, bool):
        censor_event = format(censor_event, ".17g")
    columns = [None if name is None else _arguments.text(name, what)
               for name, what in ((censor, "censor"), (censor_upper, "censor_upper"), (censor_event, "censor_event"))]
    censored = _brenvolt.CensoredFitJob(job, *columns)
    censored.check()
    found = CensoredFitResult(json.loads(censored.run(sheet())))
    for variable in found.report["variables"]:
        for note in variable["notes"]:
            keyword = re.sub("(?=[A-Z])", "_", note["option"]).lower()
            _errors.warn(f"{note['message']} ({keyword})")
    return found


class CensoredFitResult:
    """The fits of censored variables.

    variables: {name: CensoredVariable}; `report` is what the command prints as JSON.
    """

    def __init__(self, report: dict[str, Any]) -> None:
        self.report = report
        self.variables = {one["name"]: CensoredVariable(one) for one in report["variables"]}

    @property
    def best(self) -> dict[str, _distributions.Distribution]:
        """{name: the variable's best distribution}, without variables that no distribution fits."""
        return {name: one.best for name, one in self.variables.items() if one.best is not None}

    def __repr__(self):
        return "\n".join(["<CensoredFitResult", *(f"  {name}: {one.best!r}" for name, one in self.variables.items())]) + ">"


class CensoredVariable:
    """A variable with its ranked fits.

    name, n, missing; censoring: how many values are known in which way, and how the column of codes was read; distributions:
    those fitted, best first, None where a fit failed; curve, positions: DataFrames of the distribution function of Kaplan and
    Meier or of Turnbull, as `estimator` says, and of the points of a probability plot; notes: what else the codes may mean.
    """

    def __init__(self, found: dict[str, Any]) -> None:
        self.name: str = found["name"]
        self.n: int = found["n"]
        self.missing: int = found["missing"]
        self.censoring: dict[str, Any] = found["censoring"]
        self.notes: list[str] = [note["message"] for note in found["notes"]]
        self._fits = found["fits"]
        self._quantiles = found["quantiles"]
        self.distributions = [None if fit["parameters"] is None else
                              _distributions.from_code(fit["code"], fit["parameters"], float("nan") if fit["offset"] is None
                                                       else fit["offset"]) for fit in self._fits]
        curve = found["curve"]
        self.estimator: str = curve["estimator"]
        self.curve = _jobs._frame(curve["steps"], "steps", dtype=float)
        self.positions = _jobs._frame(curve["plottingPositions"], "positions", dtype=float)

    @property
    def best(self) -> _distributions.Distribution | None:
        """The distribution ranked first; None if no distribution fits."""
        return self.distributions[0] if self.distributions else None

    @property
    def fits(self) -> pandas.DataFrame:
        """A DataFrame of the fits by rank: distribution, parameters, log-likelihood, AIC and BIC, the distance from the curve;
        `reason` says why a fit failed."""
        import pandas

        rows = []
        for fit, distribution in zip(self._fits, self.distributions):
            rows.append({"rank": fit["rank"], "distribution": fit["distribution"], **_jobs._scalars(distribution),
                         **_jobs._numbers_of(fit, "likelihood"), **_jobs._numbers_of(fit, "distance"),
                         "reason": fit["reason"] or ""})
        return pandas.DataFrame(rows)

    @property
    def quantiles(self) -> pandas.DataFrame | None:
        """As FittedVariable.quantiles."""
        return _jobs._read_off(self._quantiles, "quantiles")

    @property
    def exceedances(self) -> pandas.DataFrame | None:
        """As FittedVariable.exceedances."""
        return _jobs._read_off(self._quantiles, "exceedances")

    def standard_errors(self, name: str) -> dict[str, float]:
        """{parameter: standard error} of the fit of a distribution; empty if that failed. Raises KeyError if it was not tried."""
        code = _brenvolt._code_of(_arguments.text(name, "distribution"))
        for fit, distribution in zip(self._fits, self.distributions):
            if fit["code"] == code:
                return dict(zip(_jobs._scalars(distribution), fit["standardErrors"] or []))
        raise KeyError(name)

    def __repr__(self):
        return f"<CensoredVariable {self.name}: {self.best!r}>"
