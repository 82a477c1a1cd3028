"""The common jobs in one call. They drive the dialogs by the members that macros use; pandas is imported on use."""

from __future__ import annotations

import contextlib
import functools
import html
import json
import os
from collections.abc import Callable, Iterable, Mapping
from typing import TYPE_CHECKING, Any

from . import _arguments, _automation, _brenvolt, _design, _function, _reading, _sheets, distributions as _distributions
from ._brenvolt import Spreadsheet, Workbook
from ._errors import Error

if TYPE_CHECKING:
    import numpy
    import pandas

    from . import _censored

Names = str | int | Iterable[str] | Iterable[int] | None

# The graphs of a fit by their kinds, with the members of the dialog that make them.
_FIT_GRAPHS = {**_brenvolt._fit_graphs, "fit-comparison": None, "return-levels": None}
_DATA = ("a Series, DataFrame, mapping of arrays, array of one or two axes, table with to_pandas() or __dataframe__(), "
         "Spreadsheet, Workbook or path")


def _sheet_of(data, name, required=(), decimal_comma=False, reading=None):
    """The spreadsheet in whatever people have their data in; the columns required of a frame cannot be left out of it."""
    if name is not None:
        _arguments.text(name, "sheet", "a name")
    if isinstance(data, (str, os.PathLike)):
        return _brenvolt.open_workbook(data, decimal_comma, _reading.options(reading or {}, "fit"),
                                       name or "").sheet(name or "")
    _reading.refuse(reading or {}, "data", data)
    if decimal_comma:
        raise ValueError(f"decimal_comma has no effect: data is a {type(data).__name__}")
    if isinstance(data, (Spreadsheet, _automation.TableDocument)):
        _refuse_sheet(name, "data", data)
        return _automation._sheet(data)
    if isinstance(data, Workbook):
        return data.sheet(name or "")
    if not hasattr(data, "iloc") and (hasattr(data, "to_pandas") or hasattr(data, "__dataframe__")):
        data = _sheets._frame_of_another_library(data)
    if hasattr(data, "iloc"):
        return Spreadsheet.from_pandas(data, name or "Sheet", required)
    if getattr(getattr(data, "dtype", None), "names", None):
        data = {column: data[column] for column in data.dtype.names}
    if not hasattr(data, "items"):
        values = hasattr(data, "__len__") and not isinstance(data, (bytes, bytearray, set, frozenset))
        if not values or getattr(data, "ndim", 1) not in (1, 2):
            _arguments.refuse("data", _DATA, data)
        data = _array_of_rows(data) if len(data) else {}
    if not hasattr(data, "items"):
        columns = data.T if getattr(data, "ndim", 1) == 2 else [data]
        data = {"x" if len(columns) == 1 else f"x{i}": column for i, column in enumerate(columns, start=1)}
    if len(data) == 0:
        raise TypeError(f"data must be {_DATA}, and not empty")
    return _sheets._from_columns(data, name or "Sheet", required)


def _array_of_rows(data):
    """Lists of lists of one length as the array that they are."""
    rows = isinstance(data, (list, tuple)) and all(isinstance(row, (list, tuple)) for row in data)
    if not rows or len({len(row) for row in data}) != 1:
        return data
    import numpy

    return numpy.array(data, dtype=object)


def _refuse_sheet(name, what, given):
    """The name of a sheet chooses among those of a file, or names one that is made."""
    if name is not None:
        raise ValueError(f"sheet has no effect: {what} is a {type(given).__name__}")


def _is_lent(data):
    """Whether people hold the sheet themselves, which then keeps its own weights and selection."""
    return isinstance(data, (Spreadsheet, _automation.TableDocument, Workbook))


def _is_path(data):
    return isinstance(data, (str, os.PathLike))


def _file_of(data):
    """The file that data come from; None for data that do not come from one."""
    if isinstance(data, (str, os.PathLike)):
        return data
    return data.path if isinstance(data, Workbook) else None


@contextlib.contextmanager
def _conditions(table, weights, select):
    """The sheet with these conditions; afterwards it has its former ones again, whatever happened."""
    former = table._conditions
    try:
        if weights is not None:
            table.weight_variable = weights or None
        if select is not None:
            table.selection = select or None
        yield
    finally:
        table._conditions = former


def _mapping(value, what, of):
    """The items of an argument that is a mapping, or None for none."""
    if value is None:
        return []
    if not hasattr(value, "items"):
        _arguments.refuse(what, f"a mapping {of}", value)
    return value.items()


def _job(kind, **fields):
    """A job with these fields; one that is None keeps what the job starts with."""
    job = kind()
    for field, value in fields.items():
        if value is None:
            continue
        _arguments.set_field(job, field, value)
    return job


def _choice(word, choices, what):
    if not isinstance(word, str):
        _arguments.refuse(what, "a text", word)
    if word not in choices:
        raise ValueError(f"{what} must be one of {', '.join(choices)}, not {word!r}")
    return choices[word]


def _numbers(given, what):
    """One number or several."""
    if given is None:
        return []
    if not isinstance(given, Iterable) or isinstance(given, (str, bytes)):
        return [_arguments.number(given, what, "a number or numbers")]
    return [_arguments.number(one, f"{what}[{place}]") for place, one in enumerate(given)]


def _offsets(offsets):
    found = []
    for variable, given in _mapping(offsets, "offsets", "{variable: {distribution: offset}}"):
        for name, offset in _mapping(given, f"offsets[{variable!r}]", "{distribution: offset}"):
            offset = _arguments.number(offset, f"offsets[{variable!r}][{name!r}]")
            found.append(_brenvolt.FitJob.Offset(str(variable), str(name), offset))
    return found


def _counts(counts, what, of):
    found = []
    for variable, count in _mapping(counts, what, of):
        found.append(_brenvolt.FitJob.Count(str(variable), _arguments.number(count, f"{what}[{variable!r}]")))
    return found


def _tuples(kind, given, what, of):
    """Entries of several numbers for a variable, any of which may be None."""
    count = of.count(",") + 1
    found = []
    for name, several in _mapping(given, what, f"{{name: {of}}}"):
        if isinstance(several, (str, bytes)) or not hasattr(several, "__len__"):
            _arguments.refuse(f"{what}[{name!r}]", of, several)
        if len(several) != count:
            raise ValueError(f"{what}[{name!r}] must be {of}, not {len(several)} values")
        place = f"{what}[{name!r}]"
        found.append(kind(str(name), *(None if one is None else _arguments.number(one, place, "numbers or None")
                                       for one in several)))
    return found


def _truncations(truncate):
    return _tuples(_brenvolt.FitJob.Truncation, truncate, "truncate", "(low, high)")


def _orders(order):
    return [_brenvolt.FitJob.Order(str(variable), _arguments.texts(names, f"order[{variable!r}]", "a name"))
            for variable, names in _mapping(order, "order", "{variable: [distribution, ...]}")]


def fit(data: Any, continuous: Names = None, discrete: Names = None, distributions: Names = None, *,
        rank_by: str | None = None, discrete_rank_by: str | None = None, binning: str | None = None,
        missing: str = "pairwise",
        weights: str | None = None, select: str | None = None,
        offsets: Mapping[str, Mapping[str, float]] | None = None, mixtures: Mapping[str, int] | None = None,
        trials: Mapping[str, int] | None = None, johnson_percentiles: bool = False,
        bootstrap: int | None = None, bootstrap_seed: int | None = None,
        quantiles: float | Iterable[float] | None = None, exceed: float | Iterable[float] | None = None,
        return_periods: float | Iterable[float] | None = None, intervals: str | None = None,
        confidence: float | None = None, top: int | None = None,
        censor: str | None = None, censor_upper: str | None = None, censor_event: str | float | None = None,
        sheet: str | None = None, save: str | os.PathLike | None = None, graphs: str | os.PathLike | None = None,
        plot: str | os.PathLike | None = None, plot_kind: str | None = None, plot_theme: str | None = None,
        plot_width: int | None = None, plot_band: bool = False, report: str | os.PathLike | None = None,
        yes: bool = False, decimal_comma: bool = False,
        **reading: Any) -> FitResult | _censored.CensoredFitResult:
    """Fits distributions to variables, tests every fit, and ranks the fits.

    data: a Series, DataFrame, mapping of arrays, array of one or two axes, table of another library that has to_pandas() or
          __dataframe__(), Spreadsheet, Workbook, or the path of a CSV
    file or project.
    continuous, discrete: names of variables; without both, every numeric variable is fitted as continuous.
    distributions: names of those to try ("weibull", "gev", ...); without, all that apply to a variable.
    rank_by: "ks" (as without), "chi-square", "anderson-darling", "aic" or "bic"; discrete_rank_by: "ks" (as without),
    "chi-square", "aic" or "bic". A fit that gives a value density 0 comes last by any.
    binning: of the chi-square test of continuous variables, "equal-probability" (as without) or "equal-interval".
    missing: "pairwise" leaves out a missing value alone, "casewise" its case for all variables.
    weights: variable whose whole numbers say how often each case counts. It and select leave a Spreadsheet or
    Workbook with the weights and selection that it had.
    select: condition that a case must meet, such as "x > 3 and y = 1". An empty text for either leaves out what the data have.
    offsets: {variable: {distribution: offset}}, where the distribution starts.
    mixtures: {variable: components} of the Gaussian mixture; trials: {variable: trials} of the binomial.
    johnson_percentiles: fits the Johnson distribution from percentiles instead of moments.
    bootstrap: samples of a parametric bootstrap, which gives p-values that allow for the estimation; bootstrap_seed:
    where its random numbers start, 1 without.
    quantiles, exceed, return_periods: what to read off the best fit of each continuous variable, with intervals by its
    covariance and, with bootstrap, by that: quantiles of probabilities, probabilities of exceeding values, return levels;
    see FittedVariable.quantiles. intervals: "covariance" (as without) or "profile", which adds those by the profile
    likelihood; they hold for small samples and far tails. confidence: of the intervals, 0.95 without.
    censor: the column that says how each value is known: 1 or "exact", 0 or "right" (censored), 2 or "left", 3 or "interval"; in a
    column called after censoring, 1 is right censored and 0 exact. censor_event: what it holds where a value is exact, as 2
    where 1 is censored; all others are then right censored. censor_upper: the column of upper bounds, of which the
    variable has the lower ones; without censor, a missing bound is infinite. Either gives a CensoredFitResult.
    sheet: name of the sheet of a workbook; without, its first data sheet. Of a frame, mapping or array, the name that
    its sheet gets; without, "Sheet".
    save: project file that takes the data with the fits; see FitResult.save.
    graphs: JSON file that takes the data of each variable's graphs with the fit that is saved first.
    plot: picture, by ending .png, .svg, or .pdf with a page for each variable; with "{name}" in its name a file for each.
    top: how many fits of each variable are reported, the best; without, all.
    plot_kind: "overview" (as without), "fit-comparison", "histogram", "cumulative-histogram", "pp", "qq",
    "empirical-distribution", "box-plot" or "return-levels"; plot_theme: "light" (as without) or "dark"; plot_width: in pixels;
    plot_band: P-P and Q-Q plots have the limits within which 95 % of samples from a continuous fit lie.
    report: see FitResult.report.
    yes: says that the rows of a matrix are meant as data; without, a fit of a matrix is refused, and so is yes for any other
    data.
    decimal_comma: the text file has decimal commas, and semicolons between the fields.
    reading: how a text file is laid out, which otherwise is found by looking at it: delimiter, decimal, thousands, header
    (the number of its line, or False), units_row, comment, encoding, missing_text (texts that mean a missing value), text
    (names of columns that are texts whatever they hold).

    Returns a FitResult; of censored values a CensoredFitResult. Raises Error with the system's message where the data cannot be fitted, ValueError for
    arguments that make no sense.
    """
    job = _job(_brenvolt.FitJob, data=_file_of(data), continuous=_arguments.names(continuous, "continuous"),
               discrete=_arguments.names(discrete, "discrete"),
               distributions=_arguments.texts(distributions, "distributions", "a name"),
               rank_by=rank_by, discrete_rank_by=discrete_rank_by, binning=binning, missing=missing,
               offsets=_offsets(offsets), mixtures=_counts(mixtures, "mixtures", "{variable: components}"),
               trials=_counts(trials, "trials", "{variable: trials}"), johnson_percentiles=johnson_percentiles,
               bootstrap=bootstrap, bootstrap_seed=bootstrap_seed, quantiles=_numbers(quantiles, "quantiles"),
               exceed=_numbers(exceed, "exceed"), return_periods=_numbers(return_periods, "return_periods"),
               intervals=intervals, confidence=confidence, top=top, weights=weights, select=select, save=save,
               graphs=graphs, plot=plot, plot_kind=plot_kind, plot_theme=plot_theme, plot_width=plot_width,
               plot_band=plot_band, report=report, yes=yes, decimal_comma=decimal_comma,
               reading=_reading.options(reading, "fit"))
    required = [name for given in (continuous, discrete, weights, censor, censor_upper)
                for name in _arguments.names(given, "required")]
    if censor is not None or censor_upper is not None or censor_event is not None:
        from . import _censored

        return _censored.fit(job, censor, censor_upper, censor_event,
                             lambda: _sheet_of(data, sheet, required, decimal_comma, reading))
    job.check()
    result = FitResult(job, _sheet_of(data, sheet, required, decimal_comma, reading), _is_lent(data))
    if report:
        result.report(report)
    return result


class FitResult:
    """The fits of some variables.

    variables: {name: FittedVariable}; sheet: the data; dialog: the results dialog, for everything else that it offers.

    If a Spreadsheet or Workbook was fitted, weights and a selection given to fit() are in force while the methods of
    this class and of FittedVariable work, and the sheet has its own again afterwards; what `dialog` makes follows those
    of the sheet.
    """

    def __init__(self, job: Any, sheet: Spreadsheet, lent: bool) -> None:
        analysis, self._names, results, quantiles = job.run(sheet, lent)
        self._job, self._lent = job, lent
        self.analysis = _automation.Analysis._of(analysis)
        self.dialog = self.analysis.dialog
        self.sheet = self.analysis.sheet
        self.variables = {name: FittedVariable(self, place, results[place - 1], json.loads(quantiles[place - 1]))
                          for place, name in enumerate(self._names, 1)}

    @property
    def best(self) -> dict[str, _distributions.Distribution]:
        """{name: the variable's best distribution}, without variables that no distribution fits."""
        return {name: variable.best for name, variable in self.variables.items() if variable.best is not None}

    @property
    def summary(self) -> pandas.DataFrame:
        """A DataFrame with the moments of the variables, a row for each."""
        return _rows_frame(((name, {"kind": one.kind, **one._moments}) for name, one in self.variables.items()), "variable")

    def _conditions(self):
        wanted = (self._job.weights, self._job.select) if self._lent else (None, None)
        return _conditions(self.sheet, *wanted)

    def correlations(self) -> pandas.DataFrame:
        """A DataFrame with the correlations between the fitted variables."""
        with self._conditions():
            frame = self.dialog.CorrelationMatrix.to_pandas()
        return frame.iloc[:frame.shape[1]]

    def keep(self, truncate: Mapping[str, tuple[float | None, float | None]] | None = None,
             order: Mapping[str, Names] | None = None) -> Spreadsheet:
        """Puts the fits on the variables of the sheet as properties, and returns their correlation matrix.

        truncate: {variable: (low, high)}, bounds within which it is simulated, either None; order: {variable:
        [distribution, ...]}, the fits to keep, best first.
        """
        self._job.truncate, self._job.order = _truncations(truncate), _orders(order)
        return self._job.keep(self.analysis._analysis, self._names)

    def save(self, path: str | os.PathLike, truncate: Mapping[str, tuple[float | None, float | None]] | None = None,
             order: Mapping[str, Names] | None = None) -> None:
        """Saves the data with the fits and their correlation matrix in a project (.bvw).

        A new one is made if there is none. A sheet of that name with the same data takes the fits over; one with
        other data is an Error. See keep for truncate and order.
        """
        self._job.truncate, self._job.order = _truncations(truncate), _orders(order)
        self._job.save = _arguments.path(path, "path")
        self._job.save_fits(self.analysis._analysis, self._names)

    def report(self, path: str | os.PathLike) -> None:
        """Writes a report with tables, pictures and notes, by ending: .html as one file, .pdf, or .md with its pictures in a
        folder beside it. Of more than fifty variables those that their fits miss most are shown one by one."""
        path = _arguments.path(path, "path")
        with self._conditions():
            self._job.write_report(self.analysis._analysis, path, not self._lent)

    def plot(self, kind: str = "histogram", ax: Any = None, band: bool = False) -> Any:
        """Draws a graph of each variable, of a kind of FittedVariable.graph, as pictures of fit() show it: with the best fit, and
        a variable without fits by its data. Returns the axes: of several variables an array of them."""
        from . import _plotting

        if kind == "summary" and len(self.variables) > 1:
            raise ValueError("the summary of a variable has several panels, so that it is drawn for one at a time: "
                             f"variables[{next(iter(self.variables))!r}].plot('summary')")
        graphs = [variable._picture(kind, band) for variable in self.variables.values()]
        if len(graphs) == 1:
            return graphs[0].plot(ax)
        axes = _plotting.grid(len(graphs), ax)
        for graph, one in zip(graphs, axes):
            graph.plot(one)
        return axes

    def _repr_html_(self):
        return "".join(f"<h4>{html.escape(name)}</h4>{variable._repr_html_()}"
                       for name, variable in self.variables.items())

    def __repr__(self):
        lines = [f"  {name}: {variable.best!r}" for name, variable in self.variables.items()]
        return "\n".join(["<FitResult, best fits", *lines]) + ">"


class FittedVariable:
    """A variable with its ranked fits.

    name, kind ("continuous" or "discrete"), n and missing; `reason` says why there are no fits, and is empty where
    there are; `distributions` lists the fitted distributions, best first,
    and None if a fit failed. `cautions` says what speaks against simulating the best one: values of a sign that the
    data do not have, an infinite mean or variance. `notes` says how to read the fits as a whole: that a test refuses
    all of them, that the data are much rounded.
    """

    def __init__(self, result, place, numbers, quantiles):
        self._result = result
        self._quantiles = quantiles
        self._place = place
        self.name = numbers["name"]
        self.kind = "continuous" if numbers["continuous"] else "discrete"
        self._moments = numbers["moments"]
        self.n = int(numbers["moments"]["n"])
        self.missing = int(numbers["moments"]["missing"])
        self.reason = numbers["reason"]
        self._fits = numbers["fits"]
        self.cautions = numbers["cautions"]
        self.notes = numbers["notes"]
        self.distributions = [_distribution(fit) for fit in self._fits]

    @property
    def best(self) -> _distributions.Distribution | None:
        """The distribution that the variable is simulated from unless told otherwise: the one ranked first, of discrete
        ones the first that does not merely repeat the data as a histogram. One that gives a value density 0 only where
        no other was tried. None if no distribution fits."""
        first = _brenvolt._first_saved(self._result.analysis._analysis, self._place, [fit["code"] for fit in self._fits])
        return None if first is None else self.distributions[first]

    @property
    def fits(self) -> pandas.DataFrame:
        """A DataFrame of the fits by rank: distribution, under its identifier and its name, parameters, test statistics, p-values (ks: Kolmogorov-Smirnov,
        ad: Anderson-Darling), log-likelihood, AIC and BIC, the number of values of density 0; `reason` says why a fit failed,
        `origin` what its parameters come from ("likelihood", "moments", "percentiles", "extremes"), `note` what speaks
        against it.

        p-values take the parameters for known; those of a bootstrap allow for their estimation.
        """
        import pandas

        rows = []
        for place, fit in enumerate(self._fits):
            rows.append({"rank": place + 1, "identifier": fit["identifier"], "distribution": fit["name"],
                         **_scalars(self.distributions[place])})
        frame = pandas.DataFrame(rows, columns=None if rows else ["rank", "identifier", "distribution"])
        if rows:
            for name in self._fits[0]["statistics"]:
                frame[name] = [fit["statistics"][name] for fit in self._fits]
            for name in ("origin", "reason", "note"):
                frame[name] = [fit[name] for fit in self._fits]
        return frame

    @property
    def quantiles(self) -> pandas.DataFrame | None:
        """A DataFrame of the quantiles and return levels that fit() was asked for, with their intervals by the covariance of
        the best fit (lower, upper), by its profile likelihood (profile_lower, profile_upper) and by bootstrap
        (bootstrap_lower, bootstrap_upper); None if none were."""
        return _read_off(self._quantiles, "quantiles")

    @property
    def exceedances(self) -> pandas.DataFrame | None:
        """The same for the probabilities of exceeding values."""
        return _read_off(self._quantiles, "exceedances")

    def distribution(self, name: str) -> _distributions.Distribution | None:
        """The fitted distribution of that name; None if its fit failed. Raises KeyError if it was not tried."""
        return self.distributions[self._place_of(name)]

    def standard_errors(self, name: str) -> dict[str, float]:
        """{parameter: standard error} of the fit of a distribution; empty if its estimator gives none."""
        place = self._place_of(name)
        return dict(zip(_scalars(self.distributions[place]), self._fits[place]["standard_errors"]))

    def graph(self, kind: str, distribution: str | None = None, band: bool = False) -> _automation.GraphDocument:
        """A GraphDocument of the fit ranked first, or of that of a named distribution.

        kind: "histogram", "cumulative-histogram", "pp", "qq", "empirical-distribution", "box-plot", "summary",
        "fit-comparison", the histogram with the curves of this fit and the best others, or "return-levels" with their
        intervals by covariance. band: P-P and Q-Q plots have the
        limits within which 95 % of samples from a continuous fit lie.
        """
        member = _choice(kind, _FIT_GRAPHS, "kind")
        place = 0 if distribution is None else self._place_of(distribution)
        if member is None or band:
            return self._drawn(place + 1, kind, band)
        dialog = self._shown()
        dialog.QuickTabDistribution = place + 1
        with self._result._conditions():
            return getattr(dialog, member)

    def plot(self, kind: str = "histogram", distribution: str | None = None, ax: Any = None, band: bool = False) -> Any:
        """Draws a graph (see graph) with matplotlib on axes, those given or new ones, and returns them."""
        return self.graph(kind, distribution, band).plot(ax)

    def _picture(self, kind, band=False):
        """The graph as pictures show it."""
        _choice(kind, _FIT_GRAPHS, "kind")
        return self._drawn(0, kind, band)

    def _drawn(self, fit, kind, band):
        analysis = self._result.analysis._analysis
        with self._result._conditions():
            if kind == "return-levels":
                return _automation.wrapped(self._result._job.return_levels(analysis, self._place, max(fit, 1)))
            return _automation.wrapped(_brenvolt._fit_graph(analysis, self._place, fit, kind, band))

    def _place_of(self, name):
        """The place of a distribution among the fits, from 0."""
        code = _brenvolt._code_of(_arguments.text(name, "distribution"))
        for place, fit in enumerate(self._fits):
            if fit["code"] == code:
                return place
        raise KeyError(name)

    def _shown(self):
        dialog = self._result.dialog
        dialog.QuickTabVariable = self._place
        return dialog

    def _repr_html_(self):
        table = self.fits.dropna(axis="columns", how="all").to_html(index=False)
        picture = self._picture("histogram")._repr_svg_()
        return table if picture is None else table + picture[picture.index("<svg"):]

    def __repr__(self):
        return f"<FittedVariable {self.name}: {self.best!r}>"


def _numbers_of(row, table):
    """The numbers of an object of JSON by the columns of frames."""
    return {column: functools.reduce(lambda part, key: part[key], places, row)
            for column, places in _brenvolt._columns[table].items()}


def _frame(rows, table, **options):
    """A DataFrame of objects of JSON, a row for each."""
    import pandas

    return pandas.DataFrame([_numbers_of(row, table) for row in rows], columns=list(_brenvolt._columns[table]), **options)


def _read_off(quantiles, which):
    """A DataFrame of what was read off a fit, or None."""
    if quantiles is None or not quantiles[which]:
        return None
    return _frame(quantiles[which], "read_off", dtype=float)


def _distribution(fit):
    """The distribution of a fit; None for one that failed."""
    if not fit["parameters"]:
        return None
    return _distributions.from_code(fit["code"], fit["parameters"], fit["offset"])


def _scalars(distribution):
    """Parameters that fit a cell: groups of a mixture or histogram do not."""
    parameters = {} if distribution is None else distribution.parameters
    return {name: value for name, value in parameters.items() if not isinstance(value, list)}


def simulate(source: FitResult | Workbook | Spreadsheet | str | os.PathLike
             | Mapping[str, _distributions.Distribution | str] | _design.Design | None = None, samples: int = 1000,
             method: str | None = None, *, seed: int | None = None, truncate: bool = False, matrix: Any = None,
             correlations: Mapping[tuple[str, str], float] | pandas.DataFrame | numpy.ndarray | None = None,
             from_file: str | os.PathLike | None = None, variables: Names = None,
             sheet: str | None = None, plot: str | os.PathLike | None = None,
             plot_kind: str | None = None, plot_theme: str | None = None,
             plot_width: int | None = None, report: str | os.PathLike | None = None) -> pandas.DataFrame:
    """Draws samples from the best fit of each variable, or from distributions given by hand.

    source: a FitResult, or fits saved in a project: its path, a Workbook, or a Spreadsheet of one. Or by hand {name:
    distribution}, each a Distribution or its notation ("triangular(100, 180, 120) in [, 170]"), or a Design, with its
    correlations.
    method: "monte-carlo", "latin-hypercube", or with rank correlations "iman-conover" or
    "latin-hypercube-iman-conover"; "norta" has no generator and is refused. Without, "iman-conover" where correlations are
    known, else "monte-carlo"; the frame's attrs["method"] tells it.
    seed: 0 to 2147483647; the same seed gives the same samples. Without, one is drawn, so that they differ each time;
    the frame's attrs["seed"] tells it.
    truncate: keeps each variable within its 0.5 % and 99.5 % quantiles.
    matrix: the correlations that samples follow: a square DataFrame, a matrix Spreadsheet, or the name of a matrix
    sheet or file; without, the correlations that belong to the fits.
    correlations: of what is given by hand: {(first, second): number}, a square DataFrame or {name: {name: number}}, or an
    array in the order of the variables; pairs that nothing is said about are not correlated.
    from_file: a text file of variables and correlations, in place of a source or before its variables.
    variables: names of those to simulate; without, those of the FitResult, or all with distributions.
    plot: picture, as for fit(); plot_kind: "overview" (as without), "histogram", "box-plot", or "scatter-matrix" and
    "heat-map" with the correlations asked for and reached; report: file with tables, pictures and notes, as FitResult.report
    writes it.

    Returns a DataFrame with a row per sample, numbered from 1. Its plot("scatter-matrix"), "heat-map", "histogram" and
    "box-plot" draw the samples with what they were asked to be; other plots are those of a DataFrame. Its attrs tell what it was drawn from: "method", "seed",
    "truncate"; "distributions" in the notation by variable; "correlations", by kind ("asked", "used", "pearson", "spearman")
    those of each pair as {name: {name: number}}; "repaired_matrix", which took the place of the correlations asked for where
    they contradict each other, in the same form, or None; "cautions", what speaks against simulating the best fits, as
    FittedVariable.cautions does; and "notes", what else to know about the samples.
    """
    source, correlations = _design._parts(source, correlations)
    by_hand = from_file is not None or isinstance(source, Mapping)
    job = _job(_brenvolt.SimulateJob, data=None if by_hand else _file_of(source), samples=samples, method=method,
               seed=seed, truncate=truncate, sheet=sheet if by_hand else None,
               matrix=os.fspath(matrix) if isinstance(matrix, (str, os.PathLike)) else None,
               variables=_arguments.names(variables, "variables"), plot=plot, plot_kind=plot_kind, plot_theme=plot_theme,
               plot_width=plot_width, report=report)
    if by_hand or correlations is not None:
        _design._enter(job, source if by_hand else None, correlations, from_file)
    job.check()
    chosen = None if matrix is None or job.matrix else _matrix_of(matrix)
    kept = None
    if isinstance(source, FitResult):
        kept = source.keep()
        if variables is None:
            job.variables = sorted(source.best, key=lambda name: source.sheet.variable(name).number)
    target = _brenvolt._new_design() if by_hand else _fitted_sheet(source, sheet)
    simulated, method, seed, cautions, drawn, pairs, repaired, notes = job.run(target, chosen, kept,
                                                                               by_hand or _is_path(source))
    from ._samples import teach_to_draw

    frame = simulated.to_pandas()
    frame.attrs.update(seed=seed, cautions=cautions, method=method, truncate=truncate, distributions=drawn,
                       correlations={kind: _by_name(one) for kind, one in pairs.items()}, repaired_matrix=repaired,
                       notes=notes)
    return teach_to_draw(frame)


def _by_name(pairs):
    """The numbers of pairs as {name: {name: number}}, each both ways and with 1 for a name itself."""
    square = {name: {name: 1.0} for pair in pairs for name in pair}
    for (first, second), value in pairs.items():
        square[first][second] = square[second][first] = value
    return square


def _is_design(source):
    """Whether these are distributions given by hand, and no data."""
    return isinstance(source, Mapping) and all(isinstance(value, (str, _distributions.Distribution))
                                               for value in source.values())


def _fitted_sheet(source, name):
    if name is not None:
        _arguments.text(name, "sheet", "a name")
    if isinstance(source, (FitResult, Spreadsheet)):
        _refuse_sheet(name, "source", source)
        return source.sheet if isinstance(source, FitResult) else source
    if not isinstance(source, (Workbook, str, os.PathLike)):
        raise TypeError(f"simulate needs a project, a fit result or distributions by name, not {type(source).__name__}")
    workbook = source if isinstance(source, Workbook) else _brenvolt._open_project(source)
    return _brenvolt._fitted_sheet(workbook, name or "")


def _matrix_of(matrix):
    if isinstance(matrix, (Spreadsheet, _automation.TableDocument)):
        return _automation._sheet(matrix)
    if not hasattr(matrix, "__len__") or isinstance(matrix, bytes):
        _arguments.refuse("matrix", "a square DataFrame, a matrix Spreadsheet, or the name of a sheet or file", matrix)
    return _brenvolt._matrix_from_table(_design._square(matrix, "matrix"))


def profile(data: Any = None, models: str | os.PathLike | Iterable[str | os.PathLike] | None = None,
            formulas: str | Iterable[str] | None = None, *, samples: int | None = None, seed: int | None = None,
            correlated: bool = False, fit_best: bool = False, saved_fits: bool = True,
            variables: Mapping[str, _distributions.Distribution | str] | None = None,
            correlations: Mapping[tuple[str, str], float] | pandas.DataFrame | numpy.ndarray | None = None,
            matrix: Any = None, from_file: str | os.PathLike | None = None, noise: Mapping[str, float] | None = None,
            noise_correlations: Mapping[tuple[str, str], float] | None = None,
            specifications: Mapping[str, tuple[float | None, float | None, float | None]] | None = None,
            fixed: Mapping[str, float | str] | None = None,
            truncate: Mapping[str, tuple[float | None, float | None]] | None = None,
            responses: str | Iterable[str] | None = None, sheet: str | None = None,
            output: str | os.PathLike | None = None, graphs: str | os.PathLike | None = None,
            plot: str | os.PathLike | None = None, plot_kind: str | None = None, plot_theme: str | None = None,
            plot_width: int | None = None, report: str | os.PathLike | None = None,
            decimal_comma: bool = False, **reading: Any) -> ProfileResult:
    """Simulates what models, formulas or a function predict, and compares it with specifications.

    profile(data, models, formulas, ...) or profile(function, inputs, ...), where inputs are as data.

    data: as for fit(); predictors start from the columns of their names: from the distribution that is saved with the
    column, else Normal with its mean and standard deviation. Or no data but {name: distribution}, each a Distribution or
    its notation ("triangular(100, 180, 120) in [, 170]"), or a Design, with its correlations.
    models: PMML files; formulas: "RESPONSE = EXPRESSION", in place of a model of the response.
    function: of columns of runs, which it takes as NumPy arrays, in blocks: those of the inputs that its parameters are called
    after, or as its only argument of another name a dictionary of all; as `*arguments`, and of a ufunc, all in their order. It
    gives an array of as many numbers; for several responses, whose names `responses` lists, a mapping or a list of arrays.
    Without, the response is called after the function, or "y", or "response" where an input is called so. What it
    raises, and what is no number, ends the profile with an Error that names the block.
    samples: runs, 1 or more; 5000 without. Of more than 100000, ProfileResult.samples has the first ones, and output takes
    .csv and .npz. seed: 1 or more; the same seed gives the same runs. Without, one is drawn; ProfileResult.seed tells it.
    correlated: correlates the predictors as the matrix saved with their distributions has it, else as their columns are;
    fit_best: draws each from what fits its column best; saved_fits: False starts from the columns alone.
    variables: {predictor: distribution} over those of the data. from_file: a text file of variables and correlations.
    correlations, matrix: as for simulate(), of the predictors.
    noise: {response: standard deviation} of normal noise that is added; noise_correlations: {(response, response): number}.
    specifications: {response: (lower limit, target, upper limit)}, each of which may be None.
    fixed: {predictor: number, or the name of a class}.
    truncate: {predictor: (minimum, maximum)}, each of which may be None, in place of the range that a model declares.
    output: file that takes the simulated runs, by ending .csv, .npz, .xlsx, .sav, .dta or .bvw; graphs: JSON file for the data of the graphs.
    plot: picture, as for fit(), of each response; plot_kind: "overview" (as without), "histogram", "tornado", "profile",
    "defect-profile" or "capability". report: file with tables, pictures and notes, as FitResult.report writes it.
    decimal_comma, reading: as for fit().

    Returns a ProfileResult.
    """
    function = None
    if callable(data):
        function, data, models = data, models, None
    data, correlations = _design._parts(data, correlations)
    by_hand = data is None or _is_design(data)
    job = _job(_brenvolt.ProfileJob, data=None if by_hand else _file_of(data),
               models=_arguments.texts(models, "models", "a path"),
               formulas=_arguments.texts(formulas, "formulas", "a formula"), samples=samples, seed=seed,
               correlated=correlated, fit_best=fit_best, saved_fits=saved_fits,
               matrix=os.fspath(matrix) if isinstance(matrix, (str, os.PathLike)) else None,
               noise=_entries(_brenvolt.ProfileJob.Noise, noise, "noise", "{response: deviation}"),
               noise_correlations=[f"{first},{second}={value!r}" for first, second, value in
                                   _design._pairs(noise_correlations, "noise_correlations")],
               specifications=_tuples(_brenvolt.ResponseSpecification, specifications, "specifications",
                                      "(lower limit, target, upper limit)"),
               fixed=_entries(_brenvolt.ProfileJob.Fixed, fixed, "fixed", "{predictor: value}", texts=True),
               truncate=_tuples(_brenvolt.ProfileJob.Truncation, truncate, "truncate", "(minimum, maximum)"),
               output=output, graphs=graphs, plot=plot, plot_kind=plot_kind, plot_theme=plot_theme,
               plot_width=plot_width, report=report, decimal_comma=decimal_comma,
               reading=_reading.options(reading, "profile"))
    given = {**data, **(variables or {})} if by_hand and data is not None else variables
    _design._enter(job, given, correlations, from_file)
    table = None
    if function is not None:
        table = None if by_hand else _sheet_of(data, sheet, decimal_comma=decimal_comma, reading=reading)
        model = _function.Model(function, _inputs_of(job, table), responses)
        job.add_function(model.name, model.predictors, model.responses, model)
    elif responses is not None:
        raise ValueError("responses are those of a function; there is none")
    job.check()
    chosen = None if matrix is None or isinstance(matrix, (str, os.PathLike)) else _matrix_of(matrix)
    if table is None:
        table = _brenvolt._new_design() if by_hand else _sheet_of(data, sheet, decimal_comma=decimal_comma, reading=reading)
    try:
        return ProfileResult(*job.run(table, chosen, by_hand or _is_path(data)))
    except Error as error:
        if function is None or model.failure is None:
            raise
        if not isinstance(model.failure, Exception):  # an interruption
            raise model.failure from None
        raise error from model.failure


def _inputs_of(job, table):
    """The names of what a function may take: what is given by hand, and the numeric columns of the data."""
    names = job.designed_names()
    if table is not None:
        names += [name for name in table.names if name not in names and not table.variable(name).is_text]
    return names


def _entries(kind, given, what, of, texts=False):
    found = []
    for name, entry in _mapping(given, what, of):
        if not (texts and isinstance(entry, str)):
            wanted = "a number or the name of a class" if texts else "a number"
            entry = _arguments.number(entry, f"{what}[{name!r}]", wanted)
        found.append(kind(str(name), entry))
    return found


def _rows_frame(rows, index):
    """A DataFrame of named rows of numbers."""
    import pandas

    rows = list(rows)
    frame = pandas.DataFrame([numbers_ for _, numbers_ in rows], index=[name for name, _ in rows])
    return frame.rename_axis(index=index)


class ProfileResult:
    """What simulated runs told of the responses.

    runs, seed; method: how they were drawn, as for simulate(); predictors: {name: what it is drawn from}, in the notation of
    distributions; fixed: {name: the value at which it stays}; correlations: {(predictor, predictor): number}; samples: a DataFrame with a row per run; responses: {name:
    ProfiledResponse}; defects: a DataFrame with a row per specified response, then that of all, with limits of 95 %
    confidence; notes: texts on what is left out.
    """

    def __init__(self, simulated: Spreadsheet, seed: int, found: Mapping[str, Any],
                 make_graphs: Callable[[], list[Mapping[str, Any]]]) -> None:
        self._simulated = simulated
        self._make_graphs = make_graphs
        self.runs: int = found["runs"]
        self.seed = seed
        self.method: str = found["method"]
        self.predictors: dict[str, str] = found["predictors"]
        self.fixed: dict[str, float | str] = found["fixed"]
        self.correlations: dict[tuple[str, str], float] = found["correlations"]
        self.responses = {response["name"]: ProfiledResponse(self, place, response)
                          for place, response in enumerate(found["responses"])}
        self.defects = _rows_frame(found["defects"], "response")
        self.notes: list[str] = found["notes"]

    @functools.cached_property
    def _graphs(self):
        """The graphs by kind, a dictionary for each response, made when the first is wanted."""
        return self._make_graphs()

    @property
    def samples(self) -> pandas.DataFrame:
        """A DataFrame with predictors and responses, a row per run."""
        return self._simulated.to_pandas()

    def plot(self, kind: str = "tornado", response: str | None = None, ax: Any = None) -> Any:
        """Draws a graph of a response, the only one where none is named; see ProfiledResponse.plot."""
        if response is None:
            if len(self.responses) != 1:
                raise ValueError(f"response must be one of {', '.join(self.responses)}")
            response = next(iter(self.responses))
        return self.responses[response].plot(kind, ax)

    def _repr_html_(self):
        return "".join(f"<h4>{html.escape(name)}</h4>{response._repr_html_()}" for name, response in self.responses.items())

    def __repr__(self):
        return f"<ProfileResult of {self.runs} runs: {', '.join(self.responses)}>"


class ProfiledResponse:
    """The simulated values of a response.

    name; statistics: a Series of moments; percentiles, frequencies, correlations, sensitivity: DataFrames, the sensitivity
    ordered by influence; r_squared: of all predictors together; capability: a DataFrame of statistics where the response
    is specified, otherwise None, and capability_distribution, that of its percentiles; profiles: {predictor: DataFrame}, the
    means of the response in classes of the predictor's values; unpredicted: a DataFrame with a row for each reason why
    runs have no prediction.
    """

    def __init__(self, result: ProfileResult, place: int, found: Mapping[str, Any]) -> None:
        import pandas

        self._result, self._place = result, place
        self.name: str = found["name"]
        self.statistics = pandas.Series(found["statistics"], name=self.name)
        self.percentiles = _rows_frame(found["percentiles"], "percent")
        self.frequencies = _rows_frame(found["frequencies"], "class")
        self.correlations = _rows_frame(found["correlations"], "predictor")
        self.sensitivity = _rows_frame(found["sensitivity"], "predictor")
        self.r_squared: float = found["r_squared"]
        self.unpredicted = pandas.DataFrame(found["unpredicted"])
        self.profiles = {predictor: pandas.DataFrame(means) for predictor, means in found["profiles"].items()}
        capability = found["capability"]
        self.capability = None if capability is None else _rows_frame(capability["rows"], "statistic")
        self.capability_distribution = None if capability is None else capability["distribution"]

    @property
    def _graphs(self):
        return self._result._graphs[self._place]

    def graph(self, kind: str) -> _automation.GraphDocument:
        """A GraphDocument, as pictures of profile() show it.

        kind: "tornado", "histogram" with the limits, "profile", the runs over each predictor with their mean and the band of
        nine tenths of them, "overview", and with a specification "defect-profile" and "capability".
        """
        return _automation.wrapped(_choice(kind, self._graphs, "kind"))

    def plot(self, kind: str = "tornado", ax: Any = None) -> Any:
        """Draws a graph (see graph) with matplotlib on axes, those given or new ones, and returns them; of several panels, such
        as the profiles over several predictors, an array of axes."""
        return self.graph(kind).plot(ax)

    def _repr_html_(self):
        table = self.statistics.to_frame().T.to_html()
        picture = self.graph("overview")._repr_svg_() if self._graphs else None
        return table if picture is None else table + picture[picture.index("<svg"):]

    def __repr__(self):
        return f"<ProfiledResponse {self.name}>"


def score(model: str | os.PathLike, data: Any, *, keep: Names = None, probabilities: bool = False, leave_invalid: bool = False,
          sheet: str | None = None, decimal_comma: bool = False, **reading: Any) -> pandas.DataFrame:
    """The predictions of a PMML model, a DataFrame with a row per case.

    data: as for fit(); the columns that the model reads are found by their names.
    keep: columns of the data that stand before the predictions; one that is called like a prediction gets " (data)" behind
    its name. The predictions of a DataFrame have its index; others count from 0, or have the names of their cases.
    probabilities: also the probability of every class; leave_invalid: no prediction, instead of an Error, where the model
    refuses a value.
    decimal_comma, reading: as for fit().

    attrs["unpredicted"] of the frame says why cases have no prediction: for each reason its field, reason, value, the lowest
    and the highest number, and the count. attrs["unavailable_outputs"] names the outputs of the model that cannot be given,
    with the reason.
    """
    import pandas

    kept = _arguments.names(keep, "keep")
    job = _job(_brenvolt.ScoreJob, model=model, keep=kept, probabilities=probabilities, leave_invalid=leave_invalid,
               data=_file_of(data), decimal_comma=decimal_comma, reading=_reading.options(reading, "score"))
    job.check()
    if isinstance(data, (str, os.PathLike)):
        job.sheet = "" if sheet is None else _arguments.text(sheet, "sheet")
        predictions = job.run(None)
    else:
        predictions = job.run(_sheet_of(data, sheet, kept, decimal_comma, reading))
    frame = predictions.to_pandas()
    if hasattr(data, "iloc"):
        frame.index = data.index
    elif isinstance(frame.index, pandas.RangeIndex):
        frame = frame.reset_index(drop=True)
    frame.attrs["unpredicted"] = predictions.unpredicted
    frame.attrs["unavailable_outputs"] = predictions.unavailable_outputs
    return frame
