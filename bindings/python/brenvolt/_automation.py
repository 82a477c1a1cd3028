"""Analyses and their dialogs, as macros drive them.

The classes of the dialogs are made from the analysis module's type library when they are first needed: every member is
an attribute with its help text, an indexed one takes its indexes in brackets.
"""

from __future__ import annotations

import difflib
import enum
import functools
import os
from collections.abc import Iterable
from typing import TYPE_CHECKING, Any

from . import _arguments, _brenvolt, _reading

if TYPE_CHECKING:
    import pandas

Nothing = None


def Array(*values: Any) -> list:
    """The values as one value of a macro: Array(scWeibull, 83.3, 2.19, Nothing, 0, 0, 0, 0)."""
    return list(values)


class AutomationObject:
    """An object of the system that macros drive: a dialog or a document. Members are attributes."""

    __slots__ = ("_automation",)

    def __init__(self, automation):
        object.__setattr__(self, "_automation", automation)

    def __getattr__(self, name: str) -> Any:
        member = getattr(type(self), name, None)
        if isinstance(member, _Member):
            return member.__get__(self)  # came here by its AttributeError, which it raises again
        if name.startswith("_") or not self._automation.has(name):
            raise AttributeError(self._unknown(name))
        return wrapped(self._automation.get(name))

    def __setattr__(self, name: str, value: Any) -> None:
        if isinstance(getattr(type(self), name, None), _Member):
            object.__setattr__(self, name, value)
        elif not name.startswith("_") and self._automation.has(name):
            self._automation.put(name, value)
        else:
            raise AttributeError(self._unknown(name))

    def __eq__(self, other):
        return isinstance(other, AutomationObject) and self._automation.identity == other._automation.identity

    def __hash__(self):
        return hash(self._automation.identity)

    def __repr__(self):
        return f"<{type(self).__name__}>"

    def _unknown(self, name):
        close = difflib.get_close_matches(name, [n for n in dir(type(self)) if not n.startswith("_")], 1)
        hint = f"; did you mean {close[0]!r}?" if close else ""
        return f"{type(self).__name__!r} object has no attribute {name!r}{hint}"


class _Member:
    """A property of an automation object."""

    def __init__(self, description):
        self._description = description
        self.__name__ = description["name"]
        self.__doc__ = _signature(description) + "\n\n" + description["help"]

    def __get__(self, instance, owner=None):
        if instance is None:
            return self
        if self._description["indexes"]:
            return IndexedProperty(instance, self._description)
        return _get(instance, self._description)

    def __set__(self, instance, value):
        if self._description["indexes"]:
            indexes = ", ".join(name for name, _ in self._description["indexes"])
            raise TypeError(f"{self.__name__} has indexes: {self.__name__}[{indexes}] = value")
        _put(instance, self._description, value)


class IndexedProperty:
    """A property with indexes, which are written in brackets: dialog.IsWeibullDistribution[1] = True."""

    def __init__(self, owner, description):
        self._owner = owner
        self._description = description
        self.__doc__ = _signature(description) + "\n\n" + description["help"]

    def __getitem__(self, indexes: Any) -> Any:
        return _get(self._owner, self._description, *self._checked(indexes))

    def __setitem__(self, indexes: Any, value: Any) -> None:
        _put(self._owner, self._description, value, *self._checked(indexes))

    def __call__(self, *indexes: Any) -> Any:
        return self[indexes]

    def __iter__(self):
        raise TypeError(f"{self._description['name']} cannot be iterated over: it does not know its last index")

    def __repr__(self):
        return f"<indexed property {_signature(self._description)}>"

    def _checked(self, indexes):
        indexes = indexes if isinstance(indexes, tuple) else (indexes,)
        wanted = self._description["indexes"]
        if len(indexes) != len(wanted):
            raise TypeError(f"{self._description['name']} has {len(wanted)} index(es), not {len(indexes)}")
        return indexes


def _signature(description):
    name = description["name"]
    if description["method"]:
        return f"{name}()"
    indexes = ", ".join(f"{index}: {kind}" for index, kind in description["indexes"])
    access = {(True, False): "read-only", (False, True): "write-only"}.get((bool(description["get"]),
                                                                           bool(description["put"])))
    kind = description["enumeration"] or _value_type(description)
    return (f"{name}[{indexes}]" if indexes else name) + f": {kind}" + (f" ({access})" if access else "")


def _value_type(description):
    """What people see: a 32-bit integer that a truth value is put into is one."""
    return "bool" if description["put"] == "bool" else description["get"] or description["put"]


def _get(instance, description, *indexes):
    if not description["get"]:
        raise AttributeError(f"{description['name']} is write-only")
    value = instance._automation.get(description["name"], *indexes)
    if description["enumeration"]:
        return _constant(description["enumeration"], value)
    if description["put"] == "bool" and isinstance(value, int):
        return bool(value)
    return wrapped(value)


def _put(instance, description, value, *indexes):
    if not description["put"]:
        raise AttributeError(f"{description['name']} is read-only")
    if value is None and description["put"] in ("int", "float"):
        value = _brenvolt.NotSet
    instance._automation.put(description["name"], *indexes, value)


def _constant(enumeration, value):
    kind = enumerations()[enumeration]
    return kind(value) if value in kind._value2member_map_ else value


def _method(description):
    def method(self):
        result = self._automation.call(description["name"])
        return bool(result) if description["get"] == "int" else wrapped(result)

    method.__name__ = method.__qualname__ = description["name"]
    method.__doc__ = help_of(description)
    return method


def help_of(description):
    """The help of a member, with what is otherwise in Python."""
    if description["method"] and description["get"] == "int":
        return description["help"] + " Here it returns True, or raises Error with the message that says why."
    return description["help"]


@functools.cache
def _library():
    return _brenvolt._type_library()


@functools.cache
def enumerations():
    """The enumerations of the type library by name."""
    found = {}
    for description in _library()["enumerations"]:
        constants = {name: value for value, name in enumerate(description["constants"])}
        kind = enum.IntEnum(description["name"], constants, module="brenvolt")
        kind.__doc__ = description["help"]
        found[description["name"]] = kind
    return found


@functools.cache
def constants():
    """The constants of all enumerations by name."""
    return {constant.name: constant for kind in enumerations().values() for constant in kind}


class TableDocument(AutomationObject):
    """A spreadsheet that an analysis made."""

    __slots__ = ()

    @property
    def title(self) -> str:
        """What the table is about."""
        return self._automation.get("Title")

    @property
    def sheet(self) -> _brenvolt.Spreadsheet:
        """The spreadsheet; its columns are views of the document's."""
        return self._automation.sheet()

    def to_pandas(self) -> pandas.DataFrame:
        """A DataFrame of the spreadsheet."""
        return self.sheet.to_pandas()

    def _repr_html_(self):
        return self.to_pandas()._repr_html_()

    def __repr__(self):
        return f"<TableDocument {self.title}: {self.NumberOfCases} cases, {self.NumberOfVariables} variables>"


class GraphDocument(AutomationObject):
    """A graph that an analysis made, as data: what is to be drawn, with its titles.

    Parts are dictionaries whose values are texts and NumPy arrays. Attributes and keys are those of the JSON that
    --graphs writes, in Python's spelling: xTitle is x_title. Members with a capital are those of macros.
    """

    __slots__ = ()

    @property
    def kind(self) -> str:
        """What it is: "histogram", "cumulative-histogram", "pp", "qq", "empirical-distribution", "box-plot", "summary",
        "profile", "tornado", "fit-comparison", "scatter-matrix", "scatter", "heat-map" or "text"."""
        return self._automation.get("Kind")

    @property
    def title(self) -> str:
        """What the graph is about."""
        return self._automation.get("Title")

    @property
    def x_title(self) -> str:
        """What the horizontal axis is."""
        return self._automation.get("XAxisTitle")

    @property
    def y_title(self) -> str:
        """What the vertical axis is; of bars and boxes that lie on their side, the horizontal one."""
        return self._automation.get("YAxisTitle")

    @property
    def bars(self) -> list[dict[str, Any]]:
        """Adjoining bars: name, bounds (one more than heights), heights."""
        return self._automation.graph()["bars"]

    @property
    def series(self) -> list[dict[str, Any]]:
        """Points, lines and steps: name, style, x, y."""
        return self._automation.graph()["series"]

    @property
    def curves(self) -> list[dict[str, Any]]:
        """Curves drawn by a formula: name, formula, from, to, whole_numbers, and points x, y along it."""
        return self._automation.graph()["curves"]

    @property
    def bands(self) -> list[dict[str, Any]]:
        """What lies between two lines: name, x, lower, upper."""
        return self._automation.graph()["bands"]

    @property
    def regions(self) -> list[dict[str, Any]]:
        """Ranges of x that stand out, such as what a specification excludes: name, from, to, which may be infinite."""
        return self._automation.graph()["regions"]

    @property
    def boxes(self) -> list[dict[str, Any]]:
        """Boxes: name, lower_whisker, lower_quartile, median, upper_quartile, upper_whisker, mean, outliers."""
        return self._automation.graph()["boxes"]

    @property
    def cells(self) -> list[dict[str, Any]]:
        """Tables of numbers: name, columns, rows, values with an axis for each."""
        return self._automation.graph()["cells"]

    @property
    def panel_columns(self) -> int:
        """How many panels stand side by side; 0 where it does not matter."""
        return self._automation.graph()["panel_columns"]

    @property
    def panels(self) -> list[GraphDocument]:
        """The graphs that this one is made of."""
        return [self.Panel[i] for i in range(1, self.NumberOfPanels + 1)]

    @property
    def notes(self) -> list[str]:
        """What a reader must know of the data shown."""
        return [self.Note[i] for i in range(1, self.NumberOfNotes + 1)]

    def to_pandas(self) -> pandas.DataFrame:
        """A DataFrame with the data of all parts side by side."""
        return self.Data.to_pandas()

    def plot(self, ax: Any = None) -> Any:
        """Draws the graph with matplotlib on axes, those given or new ones, and returns them. Of a graph made of panels, an
        array of axes, one for each."""
        from . import _plotting

        return _plotting.draw(self, ax)

    def save(self, path: str | os.PathLike, theme: str | None = None, width: int | None = None) -> None:
        """Writes the graph as a picture, by ending .png, .svg or .pdf.

        theme: "light" (as without) or "dark"; width: in pixels of 1/96 inch, 320 to 8000; without, what the graph needs.
        """
        self._automation.save_graph(os.fspath(path), theme, width)

    def _repr_svg_(self):
        return self._automation.small_picture()

    def __repr__(self):
        return f"<GraphDocument {self.kind}: {self.title}>"


_DOCUMENTS = {"Spreadsheet": TableDocument, "Graph": GraphDocument}


def _descriptors(description):
    return {member["name"]: _method(member) if member["method"] else _Member(member)
            for member in description["members"]}


def _class(description, base):
    return type(description["name"], (base,), {"__slots__": (), "__doc__": description["help"],
                                               "__module__": "brenvolt.dialogs", **_descriptors(description)})


@functools.cache
def classes():
    """The classes of the interfaces by name: the host's own objects, the base of all dialogs, the dialogs."""
    found = {}
    for description in _library()["host"]:
        name = description["name"]
        if name not in _DOCUMENTS:
            found[name] = _class(description, AutomationObject)
            continue
        found[name] = _DOCUMENTS[name]
        for member, descriptor in _descriptors(description).items():
            setattr(found[name], member, descriptor)
    dialog, *others = _library()["interfaces"]
    base = found[dialog["name"]] = _class(dialog, AutomationObject)
    for description in others:
        found[description["name"]] = _class(description, base)
    return found


def wrapped(value):
    """An automation object as one of its class; a list with each of its elements so; anything else as it is."""
    if isinstance(value, _brenvolt.AutomationRef):
        return classes().get(value.interface, AutomationObject)(value)
    if isinstance(value, list):
        return [wrapped(element) for element in value]
    return value


class Analysis:
    """An analysis over a spreadsheet, with its open dialog. It starts with the startup dialog.

    Messages that the system shows while it goes on are warnings of the class MessageWarning; where a dialog refuses,
    its OK raises Error with the message. Ctrl-C during a long call raises KeyboardInterrupt, and the dialog is as it
    was.
    """

    def __init__(self, sheet: _brenvolt.Spreadsheet | TableDocument):
        self._analysis = _brenvolt.AnalysisRef(_sheet(sheet))

    @classmethod
    def _of(cls, analysis):
        """The analysis that a job has started."""
        made = cls.__new__(cls)
        made._analysis = analysis
        return made

    @property
    def dialog(self) -> AutomationObject:
        """The open dialog."""
        return wrapped(self._analysis.dialog)

    @property
    def documents(self) -> list[TableDocument | GraphDocument]:
        """The documents shown so far, oldest first."""
        return [wrapped(document) for document in self._analysis.documents]

    @property
    def messages(self) -> list[_brenvolt.Message]:
        """The messages shown so far, oldest first."""
        return self._analysis.messages

    @property
    def sheet(self) -> _brenvolt.Spreadsheet:
        """The input spreadsheet."""
        return self._analysis.sheet

    # As macros write them.

    @property
    def Dialog(self) -> AutomationObject:
        """The open dialog."""
        return self.dialog

    @property
    def Documents(self) -> list[TableDocument | GraphDocument]:
        """The documents shown so far, oldest first."""
        return self.documents

    @property
    def Sheet(self) -> _brenvolt.Spreadsheet:
        """The input spreadsheet."""
        return self.sheet

    def __repr__(self):
        return f"<Analysis of {self.sheet.name}>"


def _sheet(table, what="sheet"):
    if isinstance(table, TableDocument):
        return table.sheet
    if not isinstance(table, _brenvolt.Spreadsheet):
        _arguments.refuse(what, "a Spreadsheet or a TableDocument", table)
    return table


class Application:
    """What macros start from: opens data files and starts analyses."""

    def open(self, path: str | os.PathLike, decimal_comma: bool = False, **reading: Any) -> _brenvolt.Workbook:
        """Opens a project (.bvw), or a data file of another kind as a workbook; reading: see fit()."""
        return _brenvolt.open_workbook(path, decimal_comma, _reading.options(reading, "open"))

    def new_workbook(self) -> _brenvolt.Workbook:
        """An empty project without a file."""
        return _brenvolt.Workbook()

    def new_sheet(self, name: str) -> _brenvolt.Spreadsheet:
        """An empty spreadsheet, in no workbook."""
        return _brenvolt.Spreadsheet(name)

    def analysis(self, sheet: _brenvolt.Spreadsheet | TableDocument) -> Analysis:
        """A new analysis over a spreadsheet: its startup dialog is open."""
        return Analysis(sheet)

    def read_csv(self, path: str | os.PathLike, decimal_comma: bool = False) -> _brenvolt.Spreadsheet:
        """The spreadsheet in a CSV file with a header row, in no workbook."""
        return _brenvolt.read_csv(path, decimal_comma)

    # What the command does besides the dialogs; recorded jobs are made of these.

    def take_former_properties(self, sheet: _brenvolt.Spreadsheet, path: str | os.PathLike) -> None:
        """Gives a sheet what a project holds for the same data: fits and truncations of its variables."""
        _brenvolt._take_former_properties(_sheet(sheet), path)

    def save_fits(self, sheet: _brenvolt.Spreadsheet, matrix: _brenvolt.Spreadsheet | TableDocument | None,
                  path: str | os.PathLike) -> None:
        """Saves a fitted sheet with the correlation matrix of its fits in a project (.bvw), created if missing."""
        _brenvolt._save_fits(_sheet(sheet), None if matrix is None else _sheet(matrix, "matrix"), path)

    def write_fit_graphs(self, analysis: Analysis, path: str | os.PathLike) -> None:
        """Writes the data of the graphs of fits, whose results are the open dialog, as JSON."""
        if not isinstance(analysis, Analysis):
            _arguments.refuse("analysis", "an Analysis", analysis)
        _brenvolt._write_fit_graphs(analysis._analysis, path)

    def saved_matrix(self, sheet: _brenvolt.Spreadsheet) -> _brenvolt.Spreadsheet | None:
        """A copy of the correlation matrix saved with the fits of a sheet of a project."""
        return _brenvolt._saved_matrix(_sheet(sheet))

    def named_matrix(self, name: str, sheet: _brenvolt.Spreadsheet) -> _brenvolt.Spreadsheet:
        """The correlation matrix of that name: a sheet of the sheet's project, PROJECT.bvw[:SHEET], or a CSV file."""
        return _brenvolt._named_matrix(name, _sheet(sheet))

    def append(self, path: str | os.PathLike, *sheets: _brenvolt.Spreadsheet | TableDocument) -> list[str]:
        """Adds sheets to a project (.bvw), created if missing, and returns their names there."""
        return _brenvolt._append(path, [_sheet(sheet) for sheet in sheets])

    def import_file(self, file: str | os.PathLike, output: str | os.PathLike, sheet: str = "", kind: str = "",
                    decimal_comma: bool = False, name: str = "", **reading: Any) -> str:
        """Imports a data file into a project (.bvw), created if missing, and returns the sheet's name.

        sheet: which one of a workbook; by default the first. kind: "data" or "matrix"; by default the file decides. name: of the
        new sheet; by default that of the one taken, or the file's. reading: see fit().
        """
        return _brenvolt._import(file, output, sheet, kind, decimal_comma, name, _reading.options(reading, "import_file"))

    def export_sheet(self, source: str, output: str | os.PathLike, decimal_comma: bool = False,
                     safe_cells: bool = False) -> None:
        """Writes a sheet of a project, PROJECT.bvw or PROJECT.bvw:SHEET, as CSV."""
        _brenvolt._export(source, output, decimal_comma, safe_cells)

    def score(self, model: str | os.PathLike, data: str | os.PathLike | _brenvolt.Spreadsheet | TableDocument,
              sheet: str = "", probabilities: bool = False, leave_invalid: bool = False, decimal_comma: bool = False,
              keep: Iterable[str] = (), **reading: Any) -> _brenvolt.Spreadsheet:
        """The predictions of a PMML model for the cases of a file, by the name of its sheet, or of an open sheet.

        probabilities: also the probability of every class; leave_invalid: no prediction, instead of an error, where
        the model refuses a value; keep: columns of the data that stand before the predictions. The predictions'
        `unpredicted` says why cases have none.
        """
        job = _brenvolt.ScoreJob()
        fields = {"model": model, "probabilities": probabilities, "leave_invalid": leave_invalid, "keep": list(keep)}
        cases = _sheet(data) if isinstance(data, (_brenvolt.Spreadsheet, TableDocument)) else None
        if cases is None:
            fields.update(data=data, decimal_comma=decimal_comma, reading=_reading.options(reading, "score"),
                          **({"sheet": sheet} if sheet else {}))
        for field, value in fields.items():
            _arguments.set_field(job, field, value)
        return job.run(cases)

    Open = open
    NewWorkbook = new_workbook
    NewSheet = new_sheet
    Analysis = analysis
    ReadCsv = read_csv
    TakeFormerProperties = take_former_properties
    SaveFits = save_fits
    WriteFitGraphs = write_fit_graphs
    SavedMatrix = saved_matrix
    NamedMatrix = named_matrix
    Append = append
    Import = import_file
    Export = export_sheet
    Score = score

    def __repr__(self):
        return "<Application>"


for _name in ("sheet", "add", "save"):
    setattr(_brenvolt.Workbook, _name.capitalize(), getattr(_brenvolt.Workbook, _name))
